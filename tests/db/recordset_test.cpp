#include "db/recordset.h"

#include <gtest/gtest.h>

#include "db/connection.h"

namespace {

using base::Valor;
using db::Recordset;

std::shared_ptr<const db::Columnas> Columnas() {
  return std::make_shared<db::Columnas>(
      db::Columnas{{"Id", base::Tipo::Entero}, {"Año", base::Tipo::Texto}, {"id", base::Tipo::Texto}});
}

Recordset DosFilas() { return {Columnas(), {1, "uno", "x", 2, base::Nulo{}, "y"}, "select"}; }

TEST(Recordset, ColumnsAreFoundWhateverTheirCaseAndTheFirstOneWins) {
  const Recordset r = DosFilas();
  EXPECT_EQ(r.Posicion("ID"), 0);
  EXPECT_EQ(r.Posicion("aÑO"), 1);
  EXPECT_EQ(r.Posicion("Ano"), -1);
  EXPECT_EQ(r.Campos().size(), 3U);
  EXPECT_EQ(r.Fuente(), "select");
}

TEST(Recordset, TheCursorWalksTheRows) {
  Recordset r = DosFilas();
  ASSERT_FALSE(r.Eof());
  EXPECT_EQ(r.Campo("Id"), Valor(1));
  EXPECT_EQ(r.Campo("año"), Valor("uno"));
  r.MoveNext();
  EXPECT_EQ(r.Campo(0), Valor(2));
  EXPECT_TRUE(r.Campo(1).EsNulo());
  r.MoveNext();
  EXPECT_TRUE(r.Eof());
  EXPECT_THROW(r.Campo(0), db::Error);
  EXPECT_THROW(r.Campo("Id"), db::Error);
  r.MoveNext();  // beyond the end it stays at the end
  EXPECT_TRUE(r.Eof());
  r.MoveFirst();
  EXPECT_EQ(r.Campo(0), Valor(1));
}

TEST(Recordset, AnUnknownColumnIsAnErrorThatNamesIt) {
  const Recordset r = DosFilas();
  EXPECT_THROW(r.Campo(3), db::Error);
  try {
    r.Campo("Falta");
    FAIL() << "no error";
  } catch (const db::Error& e) {
    EXPECT_EQ(e.Descripcion(), "No existe el campo \"Falta\" en el resultado");
  }
}

TEST(Recordset, RowsAsFieldByRow) {
  const auto filas = DosFilas().GetRows();
  ASSERT_EQ(filas.size(), 3U);
  ASSERT_EQ(filas[0].size(), 2U);
  EXPECT_EQ(filas[0][1], Valor(2));
  EXPECT_EQ(filas[2][0], Valor("x"));
}

TEST(Recordset, EmptyAndOfNoQuery) {
  const Recordset vacio(Columnas(), {});
  EXPECT_TRUE(vacio.Vacio());
  EXPECT_TRUE(vacio.Eof());
  EXPECT_EQ(vacio.GetRows().size(), 3U);
  EXPECT_TRUE(vacio.GetRows()[0].empty());
  const Recordset nada;
  EXPECT_TRUE(nada.Vacio());
  EXPECT_TRUE(nada.Campos().empty());
  EXPECT_EQ(nada.Posicion("Id"), -1);
  EXPECT_TRUE(nada.GetRows().empty());
  EXPECT_THROW(nada.Campo("Id"), db::Error);
}

TEST(Recordset, CopiesHaveTheirOwnCursor) {
  Recordset r = DosFilas();
  Recordset copia = r;
  copia.MoveNext();
  EXPECT_EQ(r.Campo(0), Valor(1));
  EXPECT_EQ(copia.Campo(0), Valor(2));
}

}  // namespace
