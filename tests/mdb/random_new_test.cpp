// The same random changes on files of our own making, in each sort order, over every type and kind of index;
// and a table that grows to thousands of pages, shrinks and grows again.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "mdb/new_base.h"
#include "mdb/pages/page_map.h"
#include "mdb/pages/page_rows.h"
#include "mdb/random_rows.h"
#include "mdb/rows/table.h"

namespace {

using mdb::TipoColumna;
using mdb_test::Azar;
using mdb_test::BaseNueva;
using mdb_test::Columna;
using mdb_test::TablaConModelo;

// Every type that is written; an index over each, rising or falling by turns, some over two or three.
mdb::NuevaTabla DeTodo(const std::string& nombre, bool descendente) {
  mdb::NuevaTabla t{nombre, {}, {}};
  t.columnas = {Columna("Id", TipoColumna::Largo),         Columna("Octeto", TipoColumna::Byte),
                Columna("Corto", TipoColumna::Entero),     Columna("Dinero", TipoColumna::Moneda),
                Columna("Simple", TipoColumna::Simple),    Columna("Doble", TipoColumna::Doble),
                Columna("Cuando", TipoColumna::Fecha),     Columna("Bytes", TipoColumna::Binario, 60),
                Columna("Nombre", TipoColumna::Texto, 90), Columna("Foto", TipoColumna::Ole),
                Columna("Nota", TipoColumna::Memo),        Columna("Guid", TipoColumna::Guid),
                Columna("Decimal", TipoColumna::Decimal),  Columna("Activo", TipoColumna::Booleano),
                Columna("Libre", TipoColumna::Texto, 255)};
  t.columnas[12].precision = 14;
  t.columnas[12].escala = 3;
  t.indices.push_back({"PrimaryKey", {{"Id", false}}, true, true, false, true});
  for (const char* c : {"Octeto", "Corto", "Dinero", "Simple", "Doble", "Cuando", "Bytes", "Nombre", "Guid",
                        "Decimal", "Activo"}) {
    t.indices.push_back({std::string("Por") + c, {{c, descendente}}, false, false, false, false});
    descendente = !descendente;
  }
  t.indices.push_back(
      {"Junto", {{"Nombre", descendente}, {"Corto", !descendente}}, true, false, false, false});
  t.indices.push_back(
      {"Tres", {{"Activo", false}, {"Octeto", descendente}, {"Nombre", false}}, false, false, false, false});
  t.indices.push_back({"SinNulos", {{"Dinero", descendente}}, false, false, true, false});
  t.indices.push_back(
      {"SinNulosJunto", {{"Simple", false}, {"Cuando", descendente}}, false, false, true, false});
  return t;
}

mdb::NuevaTabla Llana(const std::string& nombre) {
  mdb::NuevaTabla t{nombre, {}, {}};
  t.columnas = {Columna("Id", TipoColumna::Largo), Columna("Nombre", TipoColumna::Texto, 40),
                Columna("Corto", TipoColumna::Entero), Columna("Activo", TipoColumna::Booleano)};
  t.indices.push_back({"PrimaryKey", {{"Id", false}}, true, true, false, true});
  t.indices.push_back({"PorNombre", {{"Nombre", false}}, false, false, false, false});
  return t;
}

// The lines that mdb-export prints of a table of the shape of Llana, sorted.
std::vector<std::string> LineasDelModelo(const TablaConModelo& tabla) {
  std::vector<std::string> lineas;
  for (const auto& [id, fila] : tabla.Filas()) {
    std::string linea;
    for (const auto& dato : fila) {
      if (!linea.empty()) linea += '|';
      if (const auto* n = std::get_if<std::int64_t>(&dato)) linea += std::to_string(*n);
      if (const auto* s = std::get_if<std::string>(&dato)) linea += *s;
      if (const auto* b = std::get_if<bool>(&dato)) linea += *b ? "1" : "0";
    }
    lineas.push_back(linea);
  }
  std::sort(lineas.begin(), lineas.end());
  return lineas;
}
std::vector<std::string> LineasDeFuera(const mdb::Bytes& archivo, const std::string& tabla) {
  std::istringstream salida(mdb_test::Mdbtools("mdb-export", "-H -Q -d '|'", archivo, tabla));
  std::vector<std::string> lineas;
  for (std::string linea; std::getline(salida, linea);) lineas.push_back(linea);
  std::sort(lineas.begin(), lineas.end());
  return lineas;
}

class CambiosEnNueva : public testing::TestWithParam<std::uint16_t> {};

TEST_P(CambiosEnNueva, LeaveASoundFileThatOthersReadAlike) {
  BaseNueva base(GetParam());
  const auto a = base.Crear(DeTodo("Todo", false)), b = base.Crear(DeTodo("TodoAlReves", true)),
             c = base.Crear(Llana("Llana"));
  Azar azar(GetParam());
  TablaConModelo tablas[] = {{base.Hojas(), a.Pagina(), "Todo"},
                             {base.Hojas(), b.Pagina(), "TodoAlReves"},
                             {base.Hojas(), c.Pagina(), "Llana"}};
  for (auto& t : tablas) t.filas_de_mas = 100;
  for (unsigned lote = 0; lote < 60; ++lote) {
    for (auto& t : tablas) {
      SCOPED_TRACE(t.Def().nombre);
      ASSERT_NO_FATAL_FAILURE(t.Cambiar(azar, lote % 15 == 0 ? 150 : 30));
      if (lote % 5 == 0) {
        ASSERT_NO_FATAL_FAILURE(t.Comparar());
      }
    }
    if (lote % 20 == 7) {
      ASSERT_EQ(base.Control(), "");
    }
  }
  mdb_test::Cuentas todas;
  for (auto& t : tablas) {
    SCOPED_TRACE(t.Def().nombre);
    ASSERT_NO_FATAL_FAILURE(t.Rotar());
    ASSERT_NO_FATAL_FAILURE(t.Comparar());
    todas.nuevas += t.cuentas.nuevas;
    todas.cambiadas += t.cuentas.cambiadas;
    todas.borradas += t.cuentas.borradas;
    todas.rechazadas += t.cuentas.rechazadas;
  }
  EXPECT_EQ(base.Control(), "");
  if (mdb_test::HayMdbtools()) {
    EXPECT_EQ(LineasDeFuera(base.Guardado(), "Llana"), LineasDelModelo(tablas[2]));
  }
  std::cout << "order " << GetParam() << ": " << todas.nuevas << " inserts, " << todas.cambiadas
            << " updates, " << todas.borradas << " deletes, " << todas.rechazadas << " batches refused\n";
  for (auto& t : tablas) ASSERT_NO_FATAL_FAILURE(t.BorrarTodo());
  for (auto& t : tablas) ASSERT_NO_FATAL_FAILURE(t.Comparar());
  EXPECT_EQ(base.Control(), "");
}

INSTANTIATE_TEST_SUITE_P(EnCadaOrden, CambiosEnNueva, testing::Values(3082, 1034, 1033));

TEST(Crecer, ATableOfThousandsOfPagesShrinksAndTakesTheSamePagesAgain) {
  BaseNueva base;
  mdb::NuevaTabla ancha = Llana("Ancha");
  for (const char* nombre : {"A", "B", "C"}) {
    ancha.columnas.push_back(Columna(nombre, TipoColumna::Texto));
    ancha.columnas.back().comprime = false;
  }
  ancha.columnas.push_back(Columna("Nota", TipoColumna::Memo));
  auto d = base.Crear(ancha);
  const auto control = [&] { return base.Control(false); };
  const std::string largo(255, 'x'), memo(3000, 'm');
  const auto llenar = [&](int desde, int hasta) {
    mdb::Cambios c;
    for (int i = desde; i < hasta; ++i)
      c.nuevas.push_back({std::int64_t{i}, std::string("n") + std::to_string(i % 100), std::int64_t{i % 7},
                          i % 2 == 0, largo, largo, largo,
                          i % 4 == 0 ? mdb::Dato(memo) : mdb::Dato(base::Nulo{})});
    return mdb::Aplicar(base.Hojas(), d, c);
  };
  std::vector<mdb::IdFila> ids;
  for (int i = 0; i < 6000; i += 500) {
    const auto nuevas = llenar(i, i + 500);
    ids.insert(ids.end(), nuevas.begin(), nuevas.end());
    base->Confirmar();
  }
  const auto paginas = base.Hojas().Cantidad();
  EXPECT_GT(paginas, 5000U);  // two rows a page; 6000 bytes of memo for each fourth row
  EXPECT_EQ(control(), "");

  // Every other row away: each page keeps one, and takes one again.
  mdb::Cambios c;
  for (std::size_t i = 0; i < ids.size(); i += 2) c.borradas.push_back(ids[i]);
  mdb::Aplicar(base.Hojas(), d, c);
  EXPECT_EQ(control(), "");
  llenar(6000, 9000);
  EXPECT_EQ(control(), "");
  EXPECT_LE(base.Hojas().Cantidad(), paginas + 20);

  // All away: the table has no page left, and the file takes the free ones before it grows.
  c = {};
  mdb::RecorrerFilas(base.Hojas(), d,
                     [&](mdb::IdFila id, const mdb::Fila&) {
                       c.borradas.push_back(id);
                       return true;
                     },
                     {0});
  ASSERT_EQ(c.borradas.size(), 6000U);
  mdb::Aplicar(base.Hojas(), d, c);
  EXPECT_TRUE(mdb::LeerMapa(base.Hojas(), d.propias).empty());
  EXPECT_TRUE(mdb::LeerMapa(base.Hojas(), d.libres).empty());
  EXPECT_EQ(control(), "");
  const auto libres = mdb::LeerMapa(base.Hojas(), {1, 0}).size();
  EXPECT_GT(libres, 5000U);
  const auto antes = base.Hojas().Cantidad();
  llenar(0, 5000);
  EXPECT_EQ(base.Hojas().Cantidad(), antes);
  EXPECT_EQ(control(), "");
}

}  // namespace
