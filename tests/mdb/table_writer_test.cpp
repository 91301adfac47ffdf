// Changes of rows, one behaviour a test: where the bytes go, and what indexes and counters become.
#include "mdb/table_writer.h"

#include <gtest/gtest.h>

#include "mdb/index_key.h"
#include "mdb/index_tree.h"
#include "mdb/new_base.h"
#include "mdb/page_map.h"
#include "mdb/page_rows.h"
#include "mdb/table.h"

namespace {

using mdb::Cambios;
using mdb::Fila;
using mdb::IdFila;
using mdb::Ranura;
using mdb::TipoColumna;
using mdb_test::BaseNueva;
using mdb_test::Cambio;

const base::Nulo kNulo{};
std::int64_t N(int n) { return n; }
std::string S(std::size_t largo, char letra = 'x') { return std::string(largo, letra); }

// A Long and three wide texts.
mdb::NuevaTabla Ancha() {
  mdb::NuevaTabla t{"Ancha", {}, {}};
  t.columnas.push_back(mdb_test::Columna("Id", TipoColumna::Largo));
  for (const char* nombre : {"A", "B", "C"})
    t.columnas.push_back(mdb_test::Columna(nombre, TipoColumna::Texto));
  for (std::size_t i = 1; i < 4; ++i) t.columnas[i].comprime = false;
  return t;
}
// A Long and a memo.
mdb::NuevaTabla ConMemo() {
  mdb::NuevaTabla t{"ConMemo", {}, {}};
  t.columnas = {mdb_test::Columna("Id", TipoColumna::Largo), mdb_test::Columna("M", TipoColumna::Memo),
                mdb_test::Columna("O", TipoColumna::Ole)};
  return t;
}
mdb::NuevaTabla ConClave(const char* nombre = "Clave") {
  mdb::NuevaTabla t{nombre, {}, {}};
  t.columnas = {mdb_test::Columna("Id", TipoColumna::Largo), mdb_test::Columna("Nombre", TipoColumna::Texto),
                mdb_test::Columna("Edad", TipoColumna::Entero)};
  mdb::NuevoIndice clave{"PrimaryKey", {{"Id", false}}, true, true, false, true};
  mdb::NuevoIndice nombre_unico{"PorNombre", {{"Nombre", false}, {"Edad", true}}, true, false, false, false};
  mdb::NuevoIndice edad{"PorEdad", {{"Edad", false}}, false, false, true, false};
  t.indices = {clave, nombre_unico, edad};
  return t;
}

struct Tabla {
  BaseNueva base;
  mdb::Definicion d;
  explicit Tabla(const mdb::NuevaTabla& t) { d = base.Crear(t); }
  mdb::Paginas& P() { return base->Hojas(); }
  std::vector<IdFila> Aplicar(const Cambios& c) { return mdb::Aplicar(P(), d, c); }
  IdFila Insertar(Fila f) { return Aplicar({{}, {}, {std::move(f)}}).at(0); }
  void Cambiar(IdFila id, std::size_t columna, mdb::Dato dato) {
    Aplicar({{}, {Cambio(id, {{columna, std::move(dato)}})}, {}});
  }
  void Borrar(IdFila id) { Aplicar({{id}, {}, {}}); }
  Fila Leer(IdFila id) { return mdb::LeerFila(P(), d, id).value(); }
  Ranura RanuraDe(IdFila id) { return mdb::LeerRanura(id.pagina, *P().Leer(id.pagina), id.fila); }
  IdFila Lugar(IdFila id) { return mdb::BuscarFila(P(), d, id).value().lugar; }
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

mdb::Dato Texto(std::string s) { return s; }

TEST(AplicarFilas, NewRowsGetTheirPlacesInOrderAndAreCounted) {
  Tabla t(Ancha());
  const auto ids = t.Aplicar({{}, {}, {{N(1), S(10), kNulo, kNulo}, {N(2), kNulo, kNulo, kNulo}}});
  ASSERT_EQ(ids.size(), 2U);
  EXPECT_EQ(ids[0].pagina, ids[1].pagina);
  EXPECT_EQ(ids[0].fila, 0);
  EXPECT_EQ(ids[1].fila, 1);
  EXPECT_EQ(t.Leer(ids[0]), (Fila{N(1), S(10), kNulo, kNulo}));
  EXPECT_EQ(t.Propias(), std::vector{ids[0].pagina});
  EXPECT_EQ(t.Libres(), std::vector{ids[0].pagina});
  EXPECT_EQ(mdb::LeerDefinicion(t.P(), t.d.Pagina()).filas, 2U);
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarFilas, RowsGrowAndShrinkInTheirPage) {
  Tabla t(Ancha());
  const auto a = t.Insertar({N(1), S(10), kNulo, kNulo}), b = t.Insertar({N(2), S(20), kNulo, kNulo});
  t.Cambiar(a, 1, S(200));
  EXPECT_EQ(t.RanuraDe(a).marcas, 0);
  EXPECT_EQ(t.Leer(a), (Fila{N(1), S(200), kNulo, kNulo}));
  t.Cambiar(a, 1, kNulo);
  EXPECT_EQ(t.Leer(a), (Fila{N(1), kNulo, kNulo, kNulo}));
  EXPECT_EQ(t.Leer(b), (Fila{N(2), S(20), kNulo, kNulo}));
  EXPECT_EQ(t.Control(), "");
}

// Two rows of about 1550 bytes fill a page but for some 900.
TEST(AplicarFilas, ARowThatOutgrowsItsPageMovesAndKeepsItsIdentity) {
  Tabla t(Ancha());
  const Fila llena{N(0), S(255), S(255), S(255)};
  const auto a = t.Insertar({N(1), S(10), kNulo, kNulo});
  t.Insertar(llena);
  t.Insertar(llena);
  t.Cambiar(a, 1, S(255));
  ASSERT_EQ(t.Lugar(a), a);  // still room
  t.Cambiar(a, 2, S(255, 'y'));
  const IdFila uno = t.Lugar(a);
  ASSERT_NE(uno, a);
  EXPECT_EQ(t.RanuraDe(a).marcas, Ranura::kMovida);
  EXPECT_EQ(t.RanuraDe(a).largo, 4U);
  EXPECT_EQ(t.RanuraDe(uno).marcas, Ranura::kDestino);
  EXPECT_EQ(t.Leer(a), (Fila{N(1), S(255), S(255, 'y'), kNulo}));
  // In its new page it grows without moving.
  t.Cambiar(a, 3, S(100));
  EXPECT_EQ(t.Lugar(a), uno);
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarFilas, AMovedRowMovesOnAndTheMiddlePlaceIsFreed) {
  Tabla t(Ancha());
  const Fila llena{N(0), S(255), S(255), S(255)};
  const auto a = t.Insertar({N(1), S(10), kNulo, kNulo});
  t.Insertar(llena);
  t.Insertar(llena);
  t.Cambiar(a, 1, S(255));
  t.Cambiar(a, 2, S(255, 'y'));
  const IdFila uno = t.Lugar(a);
  ASSERT_NE(uno, a);
  t.Insertar(llena);  // beside it
  t.Insertar({N(0), S(255), S(255), S(200)});
  ASSERT_EQ(t.Propias().size(), 2U);
  t.Cambiar(a, 3, S(255, 'z'));
  const IdFila dos = t.Lugar(a);
  EXPECT_NE(dos.pagina, uno.pagina);
  EXPECT_NE(dos.pagina, a.pagina);
  EXPECT_TRUE(t.RanuraDe(uno).Borrada());
  EXPECT_EQ(t.RanuraDe(uno).largo, 0U);
  EXPECT_EQ(t.RanuraDe(a).marcas, Ranura::kMovida);
  EXPECT_EQ(t.Leer(a), (Fila{N(1), S(255), S(255, 'y'), S(255, 'z')}));
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarFilas, AMovedRowGoesHomeWhenItFitsThere) {
  Tabla t(Ancha());
  const Fila llena{N(0), S(255), S(255), S(255)};
  const auto a = t.Insertar({N(1), S(255), kNulo, kNulo});
  t.Insertar(llena);
  t.Insertar(llena);
  t.Cambiar(a, 2, S(255));
  const IdFila uno = t.Lugar(a);
  ASSERT_NE(uno, a);
  t.Cambiar(a, 2, S(3));
  EXPECT_EQ(t.Lugar(a), a);
  EXPECT_EQ(t.RanuraDe(a).marcas, 0);
  EXPECT_EQ(t.Propias(), std::vector{a.pagina});  // the page that it leaves empty goes back
  EXPECT_EQ(t.Leer(a), (Fila{N(1), S(255), S(3), kNulo}));
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarFilas, DeletingAMovedRowFreesBothPlaces) {
  Tabla t(Ancha());
  const Fila llena{N(0), S(255), S(255), S(255)};
  const auto a = t.Insertar({N(1), S(255), kNulo, kNulo});
  t.Insertar(llena);
  t.Insertar(llena);
  t.Cambiar(a, 2, S(255));
  const IdFila uno = t.Lugar(a);
  t.Borrar(a);
  EXPECT_TRUE(t.RanuraDe(a).Borrada());
  EXPECT_EQ(t.RanuraDe(a).largo, 0U);
  EXPECT_FALSE(mdb::EnMapa(t.P(), t.d.propias, uno.pagina));
  EXPECT_TRUE(mdb::EnMapa(t.P(), {1, 0}, uno.pagina));
  EXPECT_EQ(t.d.filas, 2U);
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarFilas, TheRoomOfADeletedRowIsUsedAgainButNotItsNumber) {
  Tabla t(Ancha());
  const Fila llena{N(0), S(255), S(255), S(255)};
  const auto a = t.Insertar(llena);
  const auto b = t.Insertar(llena);
  ASSERT_EQ(a.pagina, b.pagina);
  const auto c = t.Insertar(llena);
  ASSERT_NE(c.pagina, a.pagina);
  t.Borrar(a);
  const auto d = t.Insertar(llena), e = t.Insertar(llena);
  EXPECT_EQ(d.pagina == a.pagina || e.pagina == a.pagina, true);
  EXPECT_NE(d, a);
  EXPECT_NE(e, a);
  EXPECT_EQ(t.Propias().size(), 2U);
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarFilas, PagesWithHardlyAnyRoomLeaveTheMapOfFreeSpace) {
  Tabla t(Ancha());
  // 2 + 4 of the fixed part, 4 + 2 * 3 of the places, 1 of the mask: 17 bytes and the text.
  const auto a = t.Insertar({N(1), S(255), S(255), S(255)});
  t.Insertar({N(2), S(255), S(255), S(255)});
  EXPECT_EQ(t.Libres(), std::vector{a.pagina});
  // 4082 - 2 * (17 + 1530 + 2) - (17 + 2) leaves 965: 30 less than that is more than can be used.
  t.Insertar({N(3), S(255), S(210), kNulo});
  EXPECT_EQ(mdb::U16(*t.P().Leer(a.pagina), 2), 35);
  EXPECT_TRUE(t.Libres().empty());
  t.Borrar(a);
  EXPECT_EQ(t.Libres(), std::vector{a.pagina});
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarFilas, TheLastRowOfAPageGivesThePageBack) {
  Tabla t(Ancha());
  const auto a = t.Insertar({N(1), kNulo, kNulo, kNulo});
  const auto b = t.Insertar({N(2), kNulo, kNulo, kNulo});
  const auto antes = t.P().Cantidad();
  t.Aplicar({{a, b}, {}, {}});
  EXPECT_TRUE(t.Propias().empty());
  EXPECT_TRUE(t.Libres().empty());
  EXPECT_TRUE(mdb::EnMapa(t.P(), {1, 0}, a.pagina));
  EXPECT_EQ(t.d.filas, 0U);
  EXPECT_EQ(t.Control(), "");
  t.Insertar({N(3), kNulo, kNulo, kNulo});
  EXPECT_EQ(t.P().Cantidad(), antes);
}

TEST(AplicarFilas, APageTakesNoMoreThan255Rows) {
  mdb::NuevaTabla angosta{"Angosta", {mdb_test::Columna("B", TipoColumna::Byte)}, {}};
  Tabla t(angosta);
  Cambios c;
  for (int i = 0; i < 600; ++i) c.nuevas.push_back({N(i % 256)});
  const auto ids = t.Aplicar(c);
  EXPECT_EQ(t.Propias().size(), 3U);
  EXPECT_EQ(ids[254].fila, 254);
  EXPECT_EQ(ids[255].fila, 0);
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarFilas, ARowIsRefusedBeyond4060Bytes) {
  mdb::NuevaTabla t9{"Nueve", {}, {}};
  for (int i = 0; i < 9; ++i) {
    t9.columnas.push_back(mdb_test::Columna(std::to_string(i), TipoColumna::Texto));
    t9.columnas.back().comprime = false;
  }
  Tabla t(t9);
  // 2 + 4 + 2 * 9 + 2 of the mask are 26; 8 * 504 + 2 makes 4060.
  Fila fila(9, S(252));
  fila[8] = S(1);
  const auto id = t.Insertar(fila);
  EXPECT_EQ(t.RanuraDe(id).largo, 4060U);
  fila[8] = S(2);
  try {
    t.Insertar(fila);
    FAIL();
  } catch (const base::Error& e) {
    EXPECT_EQ(e.Numero(), 3047);
    EXPECT_EQ(e.Descripcion(),
              "La fila es demasiado larga para la tabla \"Nueve\": ocupa 4062 bytes y caben 4060");
  }
}

// ---- long values

std::vector<mdb::NumPagina> PaginasLargas(Tabla& t, std::size_t columna = 1) {
  return mdb::LeerMapa(t.P(), t.d.columnas[columna].lv_propias);
}
mdb::Bytes Campo(Tabla& t, IdFila id, std::size_t columna = 1) {
  const auto fila = mdb::BuscarFila(t.P(), t.d, id).value();
  const auto crudo = mdb::PartirFila(t.P().Cab(), t.d, fila.bytes)[columna].value();
  return {crudo.begin(), crudo.end()};
}
// OLE values have no text rules: their bytes are as many as one wishes.
mdb::Dato Ole(std::size_t largo, std::uint8_t con = 1) { return mdb::Bytes(largo, con); }

TEST(ValoresLargos, UpTo64BytesStandInTheRow) {
  Tabla t(ConMemo());
  const auto id = t.Insertar({N(1), kNulo, Ole(64)});
  const auto campo = Campo(t, id, 2);
  EXPECT_EQ(campo.size(), 76U);
  EXPECT_EQ(mdb::U32(campo, 0), 0x80000000U | 64U);
  EXPECT_EQ(mdb::U64(campo, 4), 0U);
  EXPECT_TRUE(PaginasLargas(t, 2).empty());
  EXPECT_EQ(t.Leer(id)[2], Ole(64));
  t.Cambiar(id, 2, Ole(0));  // empty is not Null
  EXPECT_EQ(Campo(t, id, 2).size(), 12U);
  EXPECT_EQ(t.Leer(id)[2], Ole(0));
  EXPECT_EQ(t.Control(), "");
}

TEST(ValoresLargos, UpTo4076BytesAreOneRowOfALongValuePage) {
  Tabla t(ConMemo());
  const auto id = t.Insertar({N(1), kNulo, Ole(4076)});
  const auto campo = Campo(t, id, 2);
  EXPECT_EQ(campo.size(), 12U);
  EXPECT_EQ(mdb::U32(campo, 0), 0x40000000U | 4076U);
  ASSERT_EQ(PaginasLargas(t, 2), std::vector{mdb::U24(campo, 5)});
  EXPECT_EQ(mdb::DuenoDe(*t.P().Leer(mdb::U24(campo, 5))), mdb::kDuenoLargos);
  EXPECT_TRUE(PaginasLargas(t, 1).empty());  // the other column's
  EXPECT_EQ(t.Leer(id)[2], Ole(4076));
  EXPECT_EQ(t.Control(), "");
}

TEST(ValoresLargos, LongerOnesAreAChainOfWhichOnlyTheLastPieceIsShort) {
  Tabla t(ConMemo());
  const auto id = t.Insertar({N(1), kNulo, Ole(4077)});
  const auto campo = Campo(t, id, 2);
  EXPECT_EQ(mdb::U32(campo, 0), 4077U);
  const IdFila primera{mdb::U24(campo, 5), campo[4]};
  const auto r = t.RanuraDe(primera);
  EXPECT_EQ(r.largo, 4076U);
  const IdFila segunda{mdb::U24(*t.P().Leer(primera.pagina), r.desde + 1),
                       (*t.P().Leer(primera.pagina))[r.desde]};
  EXPECT_EQ(t.RanuraDe(segunda).largo, 4U + 5U);
  EXPECT_EQ(mdb::U32(*t.P().Leer(segunda.pagina), t.RanuraDe(segunda).desde), 0U);
  EXPECT_EQ(t.Leer(id)[2], Ole(4077));
  t.Cambiar(id, 2, Ole(100000, 7));
  EXPECT_EQ(t.Leer(id)[2], Ole(100000, 7));
  EXPECT_EQ(PaginasLargas(t, 2).size(), 25U);  // 24 full pieces, and one of 2272 bytes
  EXPECT_EQ(t.Control(), "");
}

TEST(ValoresLargos, ShortOnesShareAPage) {
  Tabla t(ConMemo());
  Cambios c;
  for (int i = 0; i < 30; ++i) c.nuevas.push_back({N(i), kNulo, Ole(100)});
  t.Aplicar(c);
  EXPECT_EQ(PaginasLargas(t, 2).size(), 1U);
  EXPECT_EQ(t.Control(), "");
}

TEST(ValoresLargos, AreFreedWhenReplacedAndWhenTheirRowGoes) {
  Tabla t(ConMemo());
  const auto id = t.Insertar({N(1), Texto(S(3000)), Ole(50000)});
  const auto antes = t.P().Cantidad();
  t.Cambiar(id, 2, Ole(10));
  EXPECT_TRUE(PaginasLargas(t, 2).empty());
  t.Cambiar(id, 2, Ole(50000));
  EXPECT_EQ(t.P().Cantidad(), antes);  // the same pages again
  t.Cambiar(id, 2, kNulo);
  EXPECT_TRUE(PaginasLargas(t, 2).empty());
  EXPECT_EQ(PaginasLargas(t, 1).size(), 2U);  // not compressed beyond 1024 characters: 6000 bytes
  t.Borrar(id);
  EXPECT_TRUE(PaginasLargas(t, 1).empty());
  EXPECT_EQ(t.Control(), "");
}

TEST(ValoresLargos, OfColumnsThatAreNotNamedKeepTheirBytes) {
  Tabla t(ConMemo());
  const auto id = t.Insertar({N(1), Texto(S(3000)), Ole(40)});
  const auto memo = Campo(t, id, 1), ole = Campo(t, id, 2);
  t.Cambiar(id, 0, N(2));
  EXPECT_EQ(Campo(t, id, 1), memo);
  EXPECT_EQ(Campo(t, id, 2), ole);
  EXPECT_EQ(t.Leer(id), (Fila{N(2), S(3000), Ole(40)}));
}

TEST(ValoresLargos, TheLongestLeaveARowThatIsTooLong) {
  mdb::NuevaTabla muchos{"Muchos", {}, {}};
  for (int i = 0; i < 7; ++i) {
    muchos.columnas.push_back(mdb_test::Columna("T" + std::to_string(i), TipoColumna::Texto));
    muchos.columnas.back().comprime = false;
  }
  for (int i = 0; i < 12; ++i)
    muchos.columnas.push_back(mdb_test::Columna("O" + std::to_string(i), TipoColumna::Ole));
  Tabla t(muchos);
  Fila fila(7, S(226));  // 3164 bytes
  for (int i = 0; i < 12; ++i) fila.push_back(Ole(53U + static_cast<unsigned>(i)));
  // 2 + 4 + 2 * 19 + 3 and the texts are 3211; 12 * 12 and 53 + … + 64 are 846 more: 4057. One more is too
  // much.
  auto id = t.Insertar(fila);
  EXPECT_EQ(t.RanuraDe(id).largo, 4057U);
  fila[0] = S(228);
  id = t.Insertar(fila);
  EXPECT_EQ(t.RanuraDe(id).largo, 4061U - 64U);
  EXPECT_EQ(mdb::U32(Campo(t, id, 18), 0), 0x40000000U | 64U);
  EXPECT_EQ(mdb::U32(Campo(t, id, 17), 0), 0x80000000U | 63U);
  EXPECT_EQ(t.Leer(id), fila);
  EXPECT_EQ(t.Control(), "");
}

// ---- indexes

std::string Rechazo(Tabla& t, const Cambios& c) {
  const auto punto = t.P().Guardar();
  const auto antes = t.d;
  try {
    t.Aplicar(c);
    return "(taken)";
  } catch (const mdb::ErrorDeClave& e) {
    t.P().Volver(punto);
    t.d = antes;
    return std::to_string(e.Numero()) + " " + e.indice + ": " + e.Descripcion();
  }
}

TEST(AplicarIndices, RowsMayExchangeTheValuesOfAUniqueIndex) {
  Tabla t(ConClave());
  const auto ids = t.Aplicar({{}, {}, {{N(1), Texto("a"), N(30)}, {N(2), Texto("b"), N(40)}}});
  t.Aplicar({{}, {Cambio(ids[0], {{0, N(2)}}), Cambio(ids[1], {{0, N(1)}})}, {}});
  EXPECT_EQ(t.Leer(ids[0]), (Fila{N(2), Texto("a"), N(30)}));
  EXPECT_EQ(t.Entradas(0).at(0).fila, ids[1]);
  // A key that goes away with its row may come again in the same batch.
  const auto nueva = t.Aplicar({{ids[0]}, {}, {{N(2), Texto("c"), N(30)}}});
  EXPECT_EQ(t.Entradas(0).at(1).fila, nueva[0]);
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarIndices, ADuplicateNamesTheIndexAndTheValue) {
  Tabla t(ConClave());
  t.Insertar({N(1), Texto("Ana"), N(30)});
  EXPECT_EQ(
      Rechazo(t, {{}, {}, {{N(1), Texto("b"), N(1)}}}),
      "3022 PrimaryKey: Ya hay en la tabla \"Clave\" una fila con el valor 1 en el índice \"PrimaryKey\", "
      "que no admite duplicados");
  EXPECT_EQ(Rechazo(t, {{}, {}, {{N(2), Texto("ANA "), N(30)}}}),  // neither case nor a blank at the end
            "3022 PorNombre: Ya hay en la tabla \"Clave\" una fila con el valor \"ANA \", 30 en el índice "
            "\"PorNombre\", que no admite duplicados");
  EXPECT_EQ(Rechazo(t, {{}, {}, {{N(5), kNulo, kNulo}, {N(5), kNulo, kNulo}}}).substr(0, 15),
            "3022 PrimaryKey");                            // twice among the new
  const auto b = t.Insertar({N(2), Texto("Aná"), N(30)});  // an accent is another name
  EXPECT_EQ(Rechazo(t, {{}, {Cambio(b, {{0, N(1)}})}, {}}).substr(0, 15), "3022 PrimaryKey");
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarIndices, ANullIsRefusedWhereTheIndexRequiresAValue) {
  Tabla t(ConClave());
  EXPECT_EQ(Rechazo(t, {{}, {}, {{kNulo, Texto("b"), N(1)}}}),
            "3058 PrimaryKey: El índice \"PrimaryKey\" de la tabla \"Clave\" no admite valores Nulos");
  const auto id = t.Insertar({N(1), Texto("b"), N(1)});
  EXPECT_EQ(Rechazo(t, {{}, {Cambio(id, {{0, kNulo}})}, {}}).substr(0, 4), "3058");
}

TEST(AplicarIndices, KeysOfOnlyNullsMayRepeatButPartlyNullOnesAreValues) {
  Tabla t(ConClave());
  t.Insertar({N(1), kNulo, kNulo});
  t.Insertar({N(2), kNulo, kNulo});
  EXPECT_EQ(t.Entradas(1).size(), 2U);
  t.Insertar({N(3), Texto("x"), kNulo});
  EXPECT_EQ(Rechazo(t, {{}, {}, {{N(4), Texto("x"), kNulo}}}).substr(0, 15), "3022 PorNombre:");
  t.Insertar({N(5), kNulo, N(7)});
  EXPECT_EQ(Rechazo(t, {{}, {}, {{N(6), kNulo, N(7)}}}),
            "3022 PorNombre: Ya hay en la tabla \"Clave\" una fila con el valor Nulo, 7 en el índice "
            "\"PorNombre\", "
            "que no admite duplicados");
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarIndices, AnIndexThatIgnoresNullsHasNoEntryForThem) {
  Tabla t(ConClave());
  const auto a = t.Insertar({N(1), kNulo, kNulo});
  EXPECT_TRUE(t.Entradas(2).empty());
  t.Cambiar(a, 2, N(5));
  EXPECT_EQ(t.Entradas(2).size(), 1U);
  t.Cambiar(a, 2, kNulo);
  EXPECT_TRUE(t.Entradas(2).empty());
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarIndices, OnlyThoseWhoseKeyChangesAreTouched) {
  Tabla t(ConClave());
  const auto id = t.Insertar({N(1), Texto("ana"), N(30)});
  t.P().Confirmar();
  t.Cambiar(id, 1, Texto("ANA"));  // the same key
  std::size_t tocadas = 0;
  for (const auto& [numero, bytes] : t.P().Guardar().cambiadas)
    tocadas += (*bytes)[0] == 3 || (*bytes)[0] == 4;
  EXPECT_EQ(tocadas, 0U);
  t.Cambiar(id, 2, N(31));  // two of the three
  tocadas = 0;
  for (const auto& [numero, bytes] : t.P().Guardar().cambiadas)
    tocadas += (*bytes)[0] == 3 || (*bytes)[0] == 4;
  EXPECT_EQ(tocadas, 2U);
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarIndices, AnEntryWithAnotherKeyIsFoundByItsRow) {
  Tabla t(ConClave());
  const auto a = t.Insertar({N(1), Texto("a"), N(30)}), b = t.Insertar({N(2), Texto("b"), N(40)});
  mdb::ArbolDeIndice arbol(t.P(), t.d.Pagina(), t.d.reales[1]);
  const auto entrada = t.Entradas(1).at(0);
  ASSERT_EQ(entrada.fila, a);
  ASSERT_TRUE(arbol.Borrar(entrada.clave, a));
  arbol.Insertar(mdb::Bytes{0x7F, 0x99, 0x01, 0x00}, a);  // as another program may have made it
  t.Borrar(a);
  ASSERT_EQ(t.Entradas(1).size(), 1U);
  EXPECT_EQ(t.Entradas(1).at(0).fila, b);
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarIndices, CountersGrowWithNewKeysOnly) {
  Tabla t(ConClave());
  t.Aplicar({{}, {}, {{N(1), Texto("a"), N(30)}, {N(2), Texto("b"), N(30)}, {N(3), Texto("c"), N(31)}}});
  const auto d = mdb::LeerDefinicion(t.P(), t.d.Pagina());
  EXPECT_EQ(d.filas, 3U);
  EXPECT_EQ(d.reales[0].distintas, 3U);
  EXPECT_EQ(d.reales[2].distintas, 2U);
}

TEST(AplicarFilas, TheLastAutonumberIsTheLargest) {
  mdb::NuevaTabla tabla{"Auto", {mdb_test::Columna("Id", TipoColumna::Largo)}, {}};
  tabla.columnas[0].autonumerica = true;
  Tabla t(tabla);
  t.Aplicar({{}, {}, {{N(5)}, {N(3)}}});
  EXPECT_EQ(mdb::LeerDefinicion(t.P(), t.d.Pagina()).ultimo_automatico, 5);
  t.Insertar({N(4)});
  EXPECT_EQ(mdb::LeerDefinicion(t.P(), t.d.Pagina()).ultimo_automatico, 5);
  EXPECT_EQ(t.Control(), "");
}

// ---- what is refused as a whole

TEST(AplicarFilas, RowsThatAreNotThereAndRowsNamedTwiceAreRefused) {
  Tabla t(Ancha());
  const auto a = t.Insertar({N(1), kNulo, kNulo, kNulo}), b = t.Insertar({N(2), kNulo, kNulo, kNulo});
  t.Borrar(a);
  EXPECT_THROW(t.Borrar(a), base::Error);
  EXPECT_THROW(t.Cambiar(a, 0, N(2)), base::Error);
  EXPECT_THROW(t.Borrar({b.pagina, 77}), base::Error);
  EXPECT_THROW(t.Aplicar({{b, b}, {}, {}}), base::Error);
  EXPECT_THROW(t.Aplicar({{b}, {Cambio(b, {{0, N(2)}})}, {}}), base::Error);
  EXPECT_THROW(t.Aplicar({{}, {Cambio(b, {{4, N(2)}})}, {}}), base::Error);
  EXPECT_THROW(t.Aplicar({{}, {}, {{N(1)}}}), base::Error);
  EXPECT_EQ(t.Leer(b)[0], mdb::Dato(N(2)));
}

TEST(BaseAplicar, DoesAllOrNothing) {
  Tabla t(ConClave());
  const auto ids = t.base->Aplicar("clave", {{}, {}, {{N(1), Texto("a"), N(30)}}});
  t.base->Confirmar();
  EXPECT_THROW(
      t.base->Aplicar("Clave", {{ids[0]}, {}, {{N(2), Texto("a"), N(30)}, {N(3), Texto("b"), N(99999)}}}),
      base::Error);
  EXPECT_FALSE(t.base->Hojas().Guardar().cambiadas.contains(t.d.Pagina()));
  EXPECT_EQ(t.Leer(ids[0]), (Fila{N(1), Texto("a"), N(30)}));
  EXPECT_THROW(t.base->Aplicar("NoHay", {}), base::Error);
  EXPECT_EQ(t.Control(), "");
}

TEST(MotivoNoEscribible, SaysWhyATableIsOnlyRead) {
  Tabla t(ConClave());
  mdb::Cabecera c = t.P().Cab();
  EXPECT_EQ(mdb::MotivoNoEscribible(c, t.d), "");
  c.version = mdb::Version::Jet3;
  EXPECT_EQ(mdb::MotivoNoEscribible(c, t.d),
            "La tabla \"Clave\" solo se lee: los archivos de Access 97 no se escriben");
  c.version = mdb::Version::Ace;
  EXPECT_EQ(mdb::MotivoNoEscribible(c, t.d),
            "La tabla \"Clave\" solo se lee: los archivos .accdb no se escriben");
  c.version = mdb::Version::Jet4;
  auto d = t.d;
  d.columnas[2].tipo = TipoColumna::Complejo;
  EXPECT_EQ(mdb::MotivoNoEscribible(c, d),
            "La tabla \"Clave\" solo se lee: la columna \"Edad\" es de un tipo que no se escribe");
  d = t.d;
  d.columnas[2].banderas_ext = mdb::Columna::kCalculada;
  EXPECT_EQ(mdb::MotivoNoEscribible(c, d),
            "La tabla \"Clave\" solo se lee: la columna \"Edad\" es calculada");
  d = t.d;
  d.columnas[1].lcid = 1041;  // a text of an index in an order that is not known
  EXPECT_NE(mdb::MotivoNoEscribible(c, d).find("La tabla \"Clave\" solo se lee: "), std::string::npos);
  EXPECT_THROW(mdb::Aplicar(t.P(), d, {}), base::Error);
  d.reales.clear();  // without its index it does not matter
  EXPECT_EQ(mdb::MotivoNoEscribible(c, d), "");
}

}  // namespace
