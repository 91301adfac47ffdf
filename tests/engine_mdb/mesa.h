// A new Access file in a folder of its own, and the connection to it.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "base/file.h"
#include "engine_mdb/mdb_connection.h"
#include "mdb/pages/page_file.h"
#include "mdb/schema/database.h"
#include "mdb/verify/verify.h"
#include "render.h"
#include "support/source_dir.h"
#include "support/temp_folder.h"

namespace prueba {

class MesaMdb : public testing::Test {
 protected:
  MesaMdb() : ruta_(carpeta_.Ruta("Personal ñandú.mdb")) {}

  void Nueva() { base_ = engine_mdb::Crear(ruta_, Opciones()); }
  void Abrir(bool solo_lectura = false) {
    base_.reset();
    engine_mdb::Opciones o = Opciones();
    o.solo_lectura = solo_lectura;
    base_ = engine_mdb::Abrir(ruta_, o);
  }
  engine_mdb::Opciones Opciones() const {
    engine_mdb::Opciones o;
    o.reloj = &reloj_;
    return o;
  }

  void Correr(const std::string& sql) { base_->Ejecutar(sql); }
  std::string Filas(const std::string& sql) { return support::Filas(base_->Ejecutar(sql)); }
  template <typename Paso>
  static std::string FallaDe(Paso&& paso) {
    try {
      paso();
    } catch (const db::Error& e) {
      return support::TextoDeError(e);
    }
    return "no error";
  }
  std::string Falla(const std::string& sql) {
    return FallaDe([&] { base_->Ejecutar(sql); });
  }

  // What the file holds, and when it was last written.
  struct Estado {
    std::string bytes;
    std::filesystem::file_time_type fecha;
    bool operator==(const Estado&) const = default;
  };
  Estado Archivo() const {
    return {*base::LeerArchivo(ruta_), std::filesystem::last_write_time(std::filesystem::u8path(ruta_))};
  }

  // Closes the connection and checks the whole file, by our own check and by the independent one where it is
  // here.
  void Revisar() {
    base_.reset();
    const auto paginas = mdb::PaginasDeArchivo::Abrir(ruta_, true);
    for (const auto& h : mdb::Verificar(*paginas).hallazgos)
      EXPECT_NE(h.grado, mdb::Hallazgo::Grado::Error) << h.texto;
    const std::string otro = support::SharedDir() + "/tools/mdbcheck/jetcheck.py";
    if (support::SharedDir().empty() || !base::ExisteArchivo(otro)) return;
    EXPECT_EQ(std::system(("python3 '" + otro + "' --strict '" + ruta_ + "' >/dev/null").c_str()), 0);
  }

  support::CarpetaTemporal carpeta_;
  std::string ruta_;
  ports::RelojFijo reloj_{base::FechaDe(2026, 10, 20)};
  std::unique_ptr<db::Connection> base_;
};

}  // namespace prueba
