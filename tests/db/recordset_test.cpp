#include "db/recordset.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

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

TEST(Recordset, TheFirstRowIsReadByNameAndByPlace) {
  const Recordset r = DosFilas();
  EXPECT_EQ(r.Campo("Id"), Valor(1));
  EXPECT_EQ(r.Campo("año"), Valor("uno"));
  EXPECT_EQ(r.Campo(2), Valor("x"));
  const Recordset none(Columnas(), {});
  EXPECT_THROW(none.Campo(0), db::Error);
  EXPECT_THROW(none.Campo("Id"), db::Error);
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

TEST(Recordset, CellsAreReadByFieldAndRow) {
  const Recordset r = DosFilas();
  ASSERT_EQ(r.Cantidad(), 2U);
  EXPECT_EQ(r.En(0, 1), Valor(2));
  EXPECT_TRUE(r.En(1, 1).EsNulo());
  EXPECT_EQ(r.En(2, 0), Valor("x"));
}

TEST(Recordset, EmptyAndOfNoQuery) {
  const Recordset vacio(Columnas(), {});
  EXPECT_TRUE(vacio.Vacio());
  EXPECT_EQ(vacio.Campos().size(), 3U);
  const Recordset nada;
  EXPECT_TRUE(nada.Vacio());
  EXPECT_TRUE(nada.Campos().empty());
  EXPECT_EQ(nada.Posicion("Id"), -1);
  EXPECT_THROW(nada.Campo("Id"), db::Error);
}

std::string Refused(const std::function<void()>& step) {
  try {
    step();
  } catch (const db::Error& e) {
    EXPECT_FALSE(e.IsStorageFault());
    return e.Descripcion();
  }
  return "no error";
}

TEST(Recordset, AFieldOrRowOutsideIsAnErrorAndNoOtherCell) {
  const Recordset r = DosFilas();
  EXPECT_EQ(r.En(2, 1), Valor("y"));
  // In the middle of the cells: the next row's first one, if only the place counted.
  EXPECT_EQ(Refused([&] { r.En(3, 0); }), "No existe el campo 3 en el resultado, que tiene 3");
  EXPECT_EQ(Refused([&] { r.En(0, 2); }), "No existe la fila 2 en el resultado, que tiene 2");
  EXPECT_EQ(Refused([&] { r.En(static_cast<std::size_t>(r.Posicion("Falta")), 0); }),
            "No existe el campo pedido en el resultado, que tiene 3");
  EXPECT_EQ(Refused([&] { r.En(0, static_cast<std::size_t>(-1)); }).substr(0, 18), "No existe la fila ");
  EXPECT_EQ(Refused([&] { r.Campo(3); }), "No existe el campo 3 en el resultado, que tiene 3");
  EXPECT_EQ(Refused([] { Recordset().En(0, 0); }), "No existe la fila 0 en el resultado, que tiene 0");
}

TEST(Recordset, CellsThatDoNotFillTheirRowsAreRefused) {
  const std::string motivo = "La base respondió con filas incompletas: ";
  EXPECT_EQ(Refused([] { Recordset(Columnas(), {1, "uno", "x", 2}); }), motivo + "4 valores para 3 campos");
  EXPECT_EQ(Refused([] { Recordset(nullptr, {1}); }), motivo + "1 valores para 0 campos");
  EXPECT_EQ(Recordset(nullptr, {}).Cantidad(), 0U);
}

}  // namespace
