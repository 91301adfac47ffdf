// Memo and OLE values as they are written, replaced and freed.
#include <gtest/gtest.h>

#include "mdb/table_at_hand.h"

namespace {

using mdb::Cambios;
using mdb::Fila;
using mdb::IdFila;
using mdb::TipoColumna;
using mdb_test::kNulo;
using mdb_test::N;
using mdb_test::S;
using mdb_test::Tabla;
using mdb_test::Texto;

// A Long and a memo.
mdb::NuevaTabla ConMemo() {
  mdb::NuevaTabla t{"ConMemo", {}, {}};
  t.columnas = {mdb_test::Columna("Id", TipoColumna::Largo), mdb_test::Columna("M", TipoColumna::Memo),
                mdb_test::Columna("O", TipoColumna::Ole)};
  return t;
}
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

}  // namespace
