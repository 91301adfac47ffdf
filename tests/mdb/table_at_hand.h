// A table of a new base, with short ways to change it and to look at its pages; values written shortly.
#pragma once

#include "mdb/indexes/index_tree.h"
#include "mdb/new_base.h"
#include "mdb/pages/page_map.h"
#include "mdb/pages/page_rows.h"
#include "mdb/rows/table.h"

namespace mdb_test {

const base::Nulo kNulo{};
inline std::int64_t N(int n) { return n; }
inline std::string S(std::size_t largo, char letra = 'x') { return std::string(largo, letra); }
inline mdb::Dato Texto(std::string s) { return s; }

struct Tabla {
  BaseNueva base;
  mdb::Definicion d;
  explicit Tabla(const mdb::NuevaTabla& t) { d = base.Crear(t); }
  mdb::Paginas& P() { return base->Hojas(); }
  std::vector<mdb::IdFila> Aplicar(const mdb::Cambios& c) { return mdb::Aplicar(P(), d, c); }
  mdb::IdFila Insertar(mdb::Fila f) { return Aplicar({{}, {}, {std::move(f)}}).at(0); }
  void Cambiar(mdb::IdFila id, std::size_t columna, mdb::Dato dato) {
    Aplicar({{}, {Cambio(id, {{columna, std::move(dato)}})}, {}});
  }
  void Borrar(mdb::IdFila id) { Aplicar({{id}, {}, {}}); }
  mdb::Fila Leer(mdb::IdFila id) { return mdb::LeerFila(P(), d, id).value(); }
  mdb::Ranura RanuraDe(mdb::IdFila id) { return mdb::LeerRanura(id.pagina, *P().Leer(id.pagina), id.fila); }
  mdb::IdFila Lugar(mdb::IdFila id) { return mdb::BuscarFila(P(), d, id).value().lugar; }
  std::vector<mdb::NumPagina> Propias() { return mdb::LeerMapa(P(), d.propias); }
  std::vector<mdb::NumPagina> Libres() { return mdb::LeerMapa(P(), d.libres); }
  std::vector<mdb::Entrada> Entradas(std::size_t indice) {
    std::vector<mdb::Entrada> e;
    mdb::ArbolDeIndice(P(), d.Pagina(), d.reales[indice]).Recorrer([&](const mdb::Entrada& x) {
      e.push_back(x);
      return true;
    });
    return e;
  }
  std::string Control() { return base.Control(); }
};

// A key, a unique index over two columns, and one that ignores Nulls.
inline mdb::NuevaTabla ConClave() {
  mdb::NuevaTabla t{"Clave", {}, {}};
  t.columnas = {Columna("Id", mdb::TipoColumna::Largo), Columna("Nombre", mdb::TipoColumna::Texto),
                Columna("Edad", mdb::TipoColumna::Entero)};
  mdb::NuevoIndice clave{"PrimaryKey", {{"Id", false}}, true, true, false, true};
  mdb::NuevoIndice nombre_unico{"PorNombre", {{"Nombre", false}, {"Edad", true}}, true, false, false, false};
  mdb::NuevoIndice edad{"PorEdad", {{"Edad", false}}, false, false, true, false};
  t.indices = {clave, nombre_unico, edad};
  return t;
}

}  // namespace mdb_test
