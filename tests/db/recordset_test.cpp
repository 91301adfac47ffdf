#include "db/recordset.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "db/connection.h"

namespace {

using base::Value;
using db::Recordset;

std::shared_ptr<const db::Columns> Columns() {
  return std::make_shared<db::Columns>(
      db::Columns{{"Id", base::Type::Integer}, {"Año", base::Type::Text}, {"id", base::Type::Text}});
}

Recordset TwoRows() { return {Columns(), {1, "uno", "x", 2, base::Null{}, "y"}, "select"}; }

TEST(Recordset, ColumnsAreFoundWhateverTheirCaseAndTheFirstOneWins) {
  const Recordset r = TwoRows();
  EXPECT_EQ(r.PositionOf("ID"), 0);
  EXPECT_EQ(r.PositionOf("aÑO"), 1);
  EXPECT_EQ(r.PositionOf("Ano"), -1);
  EXPECT_EQ(r.Fields().size(), 3U);
  EXPECT_EQ(r.Source(), "select");
}

TEST(Recordset, TheFirstRowIsReadByNameAndByPlace) {
  const Recordset r = TwoRows();
  EXPECT_EQ(r.Field("Id"), Value(1));
  EXPECT_EQ(r.Field("año"), Value("uno"));
  EXPECT_EQ(r.Field(2), Value("x"));
  const Recordset none(Columns(), {});
  EXPECT_THROW(none.Field(0), db::Error);
  EXPECT_THROW(none.Field("Id"), db::Error);
}

TEST(Recordset, AnUnknownColumnIsAnErrorThatNamesIt) {
  const Recordset r = TwoRows();
  EXPECT_THROW(r.Field(3), db::Error);
  try {
    r.Field("Falta");
    FAIL() << "no error";
  } catch (const db::Error& e) {
    EXPECT_EQ(e.Description(), "No existe el campo 'Falta' en el resultado");
  }
}

TEST(Recordset, CellsAreReadByFieldAndRow) {
  const Recordset r = TwoRows();
  ASSERT_EQ(r.Count(), 2U);
  EXPECT_EQ(r.At(0, 1), Value(2));
  EXPECT_TRUE(r.At(1, 1).IsNull());
  EXPECT_EQ(r.At(2, 0), Value("x"));
}

TEST(Recordset, EmptyAndOfNoQuery) {
  const Recordset empty(Columns(), {});
  EXPECT_TRUE(empty.IsEmpty());
  EXPECT_EQ(empty.Fields().size(), 3U);
  const Recordset nothing;
  EXPECT_TRUE(nothing.IsEmpty());
  EXPECT_TRUE(nothing.Fields().empty());
  EXPECT_EQ(nothing.PositionOf("Id"), -1);
  EXPECT_THROW(nothing.Field("Id"), db::Error);
}

std::string Refused(const std::function<void()>& step) {
  try {
    step();
  } catch (const db::Error& e) {
    EXPECT_FALSE(e.IsStorageFault());
    return e.Description();
  }
  return "no error";
}

TEST(Recordset, AFieldOrRowOutsideIsAnErrorAndNoOtherCell) {
  const Recordset r = TwoRows();
  EXPECT_EQ(r.At(2, 1), Value("y"));
  // In the middle of the cells: the next row's first one, if only the place counted.
  EXPECT_EQ(Refused([&] { r.At(3, 0); }), "No existe el campo 3 en el resultado, que tiene 3");
  EXPECT_EQ(Refused([&] { r.At(0, 2); }), "No existe la fila 2 en el resultado, que tiene 2");
  EXPECT_EQ(Refused([&] { r.At(static_cast<std::size_t>(r.PositionOf("Falta")), 0); }),
            "No existe el campo pedido en el resultado, que tiene 3");
  EXPECT_EQ(Refused([&] { r.At(0, static_cast<std::size_t>(-1)); }).substr(0, 18), "No existe la fila ");
  EXPECT_EQ(Refused([&] { r.Field(3); }), "No existe el campo 3 en el resultado, que tiene 3");
  EXPECT_EQ(Refused([] { Recordset().At(0, 0); }), "No existe la fila 0 en el resultado, que tiene 0");
}

TEST(Recordset, CellsThatDoNotFillTheirRowsAreRefused) {
  const std::string reason = "La base respondió con filas incompletas: ";
  EXPECT_EQ(Refused([] { Recordset(Columns(), {1, "uno", "x", 2}); }), reason + "4 valores para 3 campos");
  EXPECT_EQ(Refused([] { Recordset(nullptr, {1}); }), reason + "1 valores para 0 campos");
  EXPECT_EQ(Recordset(nullptr, {}).Count(), 0U);
}

}  // namespace
