// A program on a demo base in a folder of its own, with prompts that answer from a queue.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "app/carpeta_demo.h"
#include "app/programa.h"
#include "base/text.h"
#include "support/temp_folder.h"

namespace prueba {

// A box that no test expects, or an expected one that never came, fails the test.
class Cajas final : public ports::Prompts, public ports::FilePicker {
 public:
  ~Cajas() override {
    EXPECT_TRUE(esperadas.empty()) << "never shown: " << (esperadas.empty() ? "" : esperadas.front());
    EXPECT_TRUE(respuestas.empty()) << "an answer was not asked for";
  }
  bool Show(const ports::Notice& aviso) override {
    mostradas.push_back(aviso.text);
    if (aceptar_todo) return false;
    if (esperadas.empty()) {
      ADD_FAILURE() << "unexpected box: " << aviso.text;
      return false;
    }
    EXPECT_EQ(aviso.text, esperadas.front());
    EXPECT_EQ(aviso.icon, ports::Icon::Exclamation);
    esperadas.pop_front();
    return false;
  }
  bool Confirm(const std::string& texto) override {
    if (al_preguntar) al_preguntar();
    preguntas.push_back(texto);
    if (respuestas.empty()) {
      ADD_FAILURE() << "unexpected question: " << texto;
      return false;
    }
    const bool si = respuestas.front();
    respuestas.pop_front();
    return si;
  }
  ports::Reply ShowStoppable(const ports::Notice& aviso) override {
    ++detenibles;
    const bool callar = Show(aviso);
    return {callar, detener};
  }
  bool ConfirmWith(const std::string& texto, const std::string& detalle) override {
    detalles.push_back(detalle);
    return Confirm(texto);
  }
  std::string PickFile(const std::string& titulo, const std::string& filtro,
                       const std::string& inicial) override {
    dialogos.push_back(titulo + "|" + filtro + "|" + inicial);
    return archivo;
  }
  std::int32_t PickColor(std::int32_t inicial) override { return color < 0 ? inicial : color; }

  bool detener = false;  // the answer of boxes that offer to stop
  int detenibles = 0;
  std::vector<std::string> detalles;  // what stood under the questions
  bool aceptar_todo = false;          // boxes are of no interest
  std::deque<std::string> esperadas;
  std::deque<bool> respuestas;
  std::vector<std::string> preguntas, dialogos, mostradas;
  std::function<void()> al_preguntar;
  std::string archivo;
  std::int32_t color = -1;
};

// Events of the window that run while a long command yields.
class Eventos final : public ports::EventPump {
 public:
  void DoEvents() override {
    if (al_correr) al_correr();
  }
  std::function<void()> al_correr;
};

class Banco : public ::testing::Test {
 protected:
  void TearDown() override { programa_.reset(); }

  std::string Ruta(const std::string& nombre) const { return (carpeta_ / nombre).string(); }
  void Demo(demo::Motor motor = demo::Motor::Mdb) {
    demo_ = app::CrearCarpetaDemo(carpeta_.string(), kMes, reloj_, motor);
  }
  app::Programa& Crear() {
    programa_ = std::make_unique<app::Programa>(app::Puertos{cajas_, cajas_, reloj_, &eventos_, conectar_},
                                                Arranque());
    return *programa_;
  }
  app::Arranque Arranque() const {
    app::Arranque arranque;
    arranque.carpeta = carpeta_.string();
    arranque.proponer = proponer_;
    return arranque;
  }
  std::string Leer(const std::string& nombre) const {
    std::ifstream f(carpeta_ / nombre, std::ios::binary);
    std::ostringstream s;
    s << f.rdbuf();
    return s.str();
  }
  void Escribir(const std::string& nombre, const std::string& bytes) const {
    std::ofstream(carpeta_ / nombre, std::ios::binary) << bytes;
  }
  std::string Consulta(const std::string& sql) {
    const auto rs = programa_->Sesion().conexion->Execute(sql);
    return rs.IsEmpty() ? "" : rs.At(0, 0).CsvText();
  }

  static inline const base::Date kMes = base::MakeDate(2026, 10, 1);
  support::TempFolder temporal_;
  std::filesystem::path carpeta_ = temporal_.Folder();
  ports::FixedClock reloj_{base::MakeDate(2026, 10, 20)};
  Cajas cajas_;
  Eventos eventos_;
  app::CarpetaDemo demo_;
  bool proponer_ = false;
  decltype(app::Puertos::conectar) conectar_ = app::AbrirReferencia;
  std::unique_ptr<app::Programa> programa_;
};

}  // namespace prueba
