// Where rows go in their pages as they come, change, move and go.
#include <gtest/gtest.h>

#include "mdb/table_at_hand.h"

namespace {

using mdb::Cambios;
using mdb::Fila;
using mdb::IdFila;
using mdb::Ranura;
using mdb::TipoColumna;
using mdb_test::kNulo;
using mdb_test::N;
using mdb_test::S;
using mdb_test::Tabla;
using mdb_test::Texto;

// A Long and three wide texts.
mdb::NuevaTabla Ancha() {
  mdb::NuevaTabla t{"Ancha", {}, {}};
  t.columnas.push_back(mdb_test::Columna("Id", TipoColumna::Largo));
  for (const char* nombre : {"A", "B", "C"})
    t.columnas.push_back(mdb_test::Columna(nombre, TipoColumna::Texto));
  for (std::size_t i = 1; i < 4; ++i) t.columnas[i].comprime = false;
  return t;
}

// About 1550 bytes: two of them fill a page but for some 900.
const Fila kLlena{N(0), S(255), S(255), S(255)};

// A row at the beginning of a page that two others fill behind it.
IdFila InsertarAntesDeLlenas(Tabla& t, const Fila& primera) {
  const IdFila id = t.Insertar(primera);
  t.Insertar(kLlena);
  t.Insertar(kLlena);
  return id;
}

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

TEST(AplicarFilas, ARowThatOutgrowsItsPageMovesAndKeepsItsIdentity) {
  Tabla t(Ancha());
  const auto a = InsertarAntesDeLlenas(t, {N(1), S(10), kNulo, kNulo});
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
  const auto a = InsertarAntesDeLlenas(t, {N(1), S(10), kNulo, kNulo});
  t.Cambiar(a, 1, S(255));
  t.Cambiar(a, 2, S(255, 'y'));
  const IdFila uno = t.Lugar(a);
  ASSERT_NE(uno, a);
  t.Insertar(kLlena);  // beside it
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
  const auto a = InsertarAntesDeLlenas(t, {N(1), S(255), kNulo, kNulo});
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
  const auto a = InsertarAntesDeLlenas(t, {N(1), S(255), kNulo, kNulo});
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
  const auto a = t.Insertar(kLlena);
  const auto b = t.Insertar(kLlena);
  ASSERT_EQ(a.pagina, b.pagina);
  const auto c = t.Insertar(kLlena);
  ASSERT_NE(c.pagina, a.pagina);
  t.Borrar(a);
  const auto d = t.Insertar(kLlena), e = t.Insertar(kLlena);
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

}  // namespace
