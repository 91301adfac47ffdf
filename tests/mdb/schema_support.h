// A base in memory for tests of its schema.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "mdb/corpus.h"
#include "mdb/outside.h"
#include "mdb/rows/table.h"
#include "mdb/schema/database.h"
#include "mdb/schema/new_file.h"
#include "mdb/verify/verify.h"

namespace mdb_test {

inline base::Fecha Hoy() { return base::FechaDe(2026, 11, 21); }

class BaseDePrueba {
 public:
  explicit BaseDePrueba(std::uint16_t orden = 3082) : BaseDePrueba(PaginasNuevas(orden)) {}
  explicit BaseDePrueba(std::unique_ptr<mdb::PaginasEnMemoria> paginas)
      : paginas_(paginas.get()), base_(std::make_unique<mdb::Base>(std::move(paginas))) {}
  mdb::Base* operator->() { return base_.get(); }
  mdb::Base& operator*() { return *base_; }

  const mdb::Bytes& Guardado() {
    base_->Confirmar();
    return paginas_->Guardado();
  }
  // Files made here from nothing are held to everything.
  void Sana(bool estricto = true) {
    EXPECT_EQ(Controlar(Guardado(), estricto), "");
    Comprobada(estricto);
  }
  // By our own check alone, which takes no process.
  void Comprobada(bool estricto = true) {
    for (const auto& h : mdb::Verificar(base_->Hojas()).hallazgos)
      EXPECT_TRUE(!estricto && h.grado == mdb::Hallazgo::Grado::Nota) << h.texto;
  }
  std::string Esquema(const std::string& opciones, const std::string& dialecto = "") {
    return Mdbtools("mdb-schema", opciones, Guardado(), dialecto);
  }
  // The definition as the pages hold it now.
  mdb::Definicion Def(const std::string& tabla) {
    const auto conocida = base_->Indice().Tabla(tabla);
    if (!conocida) throw base::Error("no table " + tabla);
    return *conocida;
  }
  std::vector<mdb::Fila> Filas(const std::string& tabla) {
    std::vector<mdb::Fila> filas;
    mdb::RecorrerFilas(base_->Hojas(), Def(tabla), [&](mdb::IdFila, const mdb::Fila& fila) {
      filas.push_back(fila);
      return true;
    });
    return filas;
  }
  std::vector<mdb::IdFila> Insertar(const std::string& tabla, std::vector<mdb::Fila> filas) {
    mdb::Cambios cambios;
    cambios.nuevas = std::move(filas);
    return base_->Aplicar(tabla, cambios);
  }

  // `paso` must be refused with a text that holds `dice`, and leave every page as it was.
  template <typename Paso>
  void Rechaza(const std::string& dice, Paso&& paso) {
    const mdb::Bytes antes = Guardado();
    try {
      paso();
      ADD_FAILURE() << "was not refused: " << dice;
    } catch (const base::Error& e) {
      EXPECT_NE(e.Descripcion().find(dice), std::string::npos) << e.Descripcion();
    }
    EXPECT_FALSE(base_->Hojas().HayCambios());
    EXPECT_TRUE(Guardado() == antes) << "the refused step left something behind: " << dice;
  }

 private:
  static std::unique_ptr<mdb::PaginasEnMemoria> PaginasNuevas(std::uint16_t orden) {
    mdb::Bytes bytes = mdb::NuevaBase(orden, Hoy());
    const mdb::Cabecera cabecera = mdb::LeerCabecera(bytes);
    return std::make_unique<mdb::PaginasEnMemoria>(cabecera, std::move(bytes));
  }
  mdb::PaginasEnMemoria* paginas_;
  std::unique_ptr<mdb::Base> base_;
};

inline mdb::NuevaColumna Col(std::string nombre, mdb::TipoColumna tipo, std::uint16_t largo = 0) {
  mdb::NuevaColumna c;
  c.nombre = std::move(nombre);
  c.tipo = tipo;
  c.largo = largo;
  return c;
}

inline mdb::NuevoIndice Ind(std::string nombre, std::vector<std::string> columnas) {
  mdb::NuevoIndice i;
  i.nombre = std::move(nombre);
  for (auto& c : columnas) {
    const bool descendente = !c.empty() && c[0] == '-';
    i.partes.push_back({descendente ? c.substr(1) : c, descendente});
  }
  return i;
}
inline mdb::NuevoIndice Unico(std::string nombre, std::vector<std::string> columnas) {
  auto i = Ind(std::move(nombre), std::move(columnas));
  i.unico = true;
  return i;
}
inline mdb::NuevoIndice Clave(std::vector<std::string> columnas) {
  auto i = Ind("PrimaryKey", std::move(columnas));
  i.primario = true;
  return i;
}

template <typename... T>
mdb::Fila FilaDe(T&&... valores) {
  mdb::Fila fila;
  (fila.emplace_back(std::forward<T>(valores)), ...);
  return fila;
}
inline mdb::Dato N(std::int64_t n) { return n; }
inline mdb::Dato S(std::string texto) { return texto; }
inline mdb::Dato Nada() { return {}; }

}  // namespace mdb_test
