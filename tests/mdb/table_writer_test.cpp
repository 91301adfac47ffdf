// Batches of changes: indexes, counters, and what is refused as a whole.
#include <gtest/gtest.h>

#include "mdb/table_at_hand.h"

namespace {

using mdb::Changes;
using mdb::ColumnType;
using mdb::Row;
using mdb_test::ChangeOf;
using mdb_test::kNull;
using mdb_test::N;
using mdb_test::Table;
using mdb_test::Text;
using mdb_test::WithKey;

std::string Rejection(Table& t, const Changes& c) {
  const auto point = t.P().Save();
  const auto before = t.d;
  try {
    t.Apply(c);
    return "(taken)";
  } catch (const mdb::KeyError& e) {
    t.P().RollbackTo(point);
    t.d = before;
    return std::to_string(e.Number()) + " " + e.index + ": " + e.Description();
  }
}

TEST(ApplyIndexes, RowsMayExchangeTheValuesOfAUniqueIndex) {
  Table t(WithKey());
  const auto ids = t.Apply({{}, {}, {{N(1), Text("a"), N(30)}, {N(2), Text("b"), N(40)}}});
  t.Apply({{}, {ChangeOf(ids[0], {{0, N(2)}}), ChangeOf(ids[1], {{0, N(1)}})}, {}});
  EXPECT_EQ(t.Read(ids[0]), (Row{N(2), Text("a"), N(30)}));
  EXPECT_EQ(t.Entries(0).at(0).row, ids[1]);
  // A key that goes away with its row may come again in the same batch.
  const auto fresh = t.Apply({{ids[0]}, {}, {{N(2), Text("c"), N(30)}}});
  EXPECT_EQ(t.Entries(0).at(1).row, fresh[0]);
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyIndexes, ADuplicateNamesTheIndexAndTheValue) {
  Table t(WithKey());
  t.Insert({N(1), Text("Ana"), N(30)});
  EXPECT_EQ(Rejection(t, {{}, {}, {{N(1), Text("b"), N(1)}}}),
            "3022 PrimaryKey: Ya hay en la tabla 'Clave' una fila con el valor 1 en el índice 'PrimaryKey', "
            "que no admite duplicados");
  EXPECT_EQ(Rejection(t, {{}, {}, {{N(2), Text("ANA "), N(30)}}}),  // neither case nor a blank at the end
            "3022 PorNombre: Ya hay en la tabla 'Clave' una fila con el valor 'ANA ', 30 en el índice "
            "'PorNombre', que no admite duplicados");
  EXPECT_EQ(Rejection(t, {{}, {}, {{N(5), kNull, kNull}, {N(5), kNull, kNull}}}).substr(0, 15),
            "3022 PrimaryKey");                         // twice among the new
  const auto b = t.Insert({N(2), Text("Aná"), N(30)});  // an accent is another name
  EXPECT_EQ(Rejection(t, {{}, {ChangeOf(b, {{0, N(1)}})}, {}}).substr(0, 15), "3022 PrimaryKey");
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyIndexes, ANullIsRefusedWhereTheIndexRequiresAValue) {
  Table t(WithKey());
  EXPECT_EQ(Rejection(t, {{}, {}, {{kNull, Text("b"), N(1)}}}),
            "3058 PrimaryKey: El índice 'PrimaryKey' de la tabla 'Clave' no admite valores Nulos");
  const auto id = t.Insert({N(1), Text("b"), N(1)});
  EXPECT_EQ(Rejection(t, {{}, {ChangeOf(id, {{0, kNull}})}, {}}).substr(0, 4), "3058");
}

TEST(ApplyIndexes, KeysOfOnlyNullsMayRepeatButPartlyNullOnesAreValues) {
  Table t(WithKey());
  t.Insert({N(1), kNull, kNull});
  t.Insert({N(2), kNull, kNull});
  EXPECT_EQ(t.Entries(1).size(), 2U);
  t.Insert({N(3), Text("x"), kNull});
  EXPECT_EQ(Rejection(t, {{}, {}, {{N(4), Text("x"), kNull}}}).substr(0, 15), "3022 PorNombre:");
  t.Insert({N(5), kNull, N(7)});
  EXPECT_EQ(Rejection(t, {{}, {}, {{N(6), kNull, N(7)}}}),
            "3022 PorNombre: Ya hay en la tabla 'Clave' una fila con el valor Nulo, 7 en el índice "
            "'PorNombre', "
            "que no admite duplicados");
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyIndexes, AnIndexThatIgnoresNullsHasNoEntryForThem) {
  Table t(WithKey());
  const auto a = t.Insert({N(1), kNull, kNull});
  EXPECT_TRUE(t.Entries(2).empty());
  t.Update(a, 2, N(5));
  EXPECT_EQ(t.Entries(2).size(), 1U);
  t.Update(a, 2, kNull);
  EXPECT_TRUE(t.Entries(2).empty());
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyIndexes, OnlyThoseWhoseKeyChangesAreTouched) {
  Table t(WithKey());
  const auto id = t.Insert({N(1), Text("ana"), N(30)});
  t.P().Commit();
  t.Update(id, 1, Text("ANA"));  // the same key
  std::size_t touched = 0;
  for (const auto& [number, bytes] : t.P().Save().changed) touched += (*bytes)[0] == 3 || (*bytes)[0] == 4;
  EXPECT_EQ(touched, 0U);
  t.Update(id, 2, N(31));  // two of the three
  touched = 0;
  for (const auto& [number, bytes] : t.P().Save().changed) touched += (*bytes)[0] == 3 || (*bytes)[0] == 4;
  EXPECT_EQ(touched, 2U);
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyIndexes, AnEntryWithAnotherKeyIsFoundByItsRow) {
  Table t(WithKey());
  const auto a = t.Insert({N(1), Text("a"), N(30)}), b = t.Insert({N(2), Text("b"), N(40)});
  mdb::IndexTree tree(t.P(), t.d.Page(), t.d.reals[1]);
  const auto entry = t.Entries(1).at(0);
  ASSERT_EQ(entry.row, a);
  ASSERT_TRUE(tree.Delete(entry.key, a));
  tree.Insert(mdb::Bytes{0x7F, 0x99, 0x01, 0x00}, a);  // as another program may have made it
  t.Delete(a);
  ASSERT_EQ(t.Entries(1).size(), 1U);
  EXPECT_EQ(t.Entries(1).at(0).row, b);
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyIndexes, CountersGrowWithNewKeysOnly) {
  Table t(WithKey());
  t.Apply({{}, {}, {{N(1), Text("a"), N(30)}, {N(2), Text("b"), N(30)}, {N(3), Text("c"), N(31)}}});
  const auto d = mdb::ReadDefinition(t.P(), t.d.Page());
  EXPECT_EQ(d.rows, 3U);
  EXPECT_EQ(d.reals[0].distinct, 3U);
  EXPECT_EQ(d.reals[2].distinct, 2U);
}

TEST(ApplyRows, TheLastAutonumberIsTheLargest) {
  mdb::NewTable table{"Auto", {mdb_test::Column("Id", ColumnType::Long)}, {}};
  table.columns[0].auto_number = true;
  Table t(table);
  t.Apply({{}, {}, {{N(5)}, {N(3)}}});
  EXPECT_EQ(mdb::ReadDefinition(t.P(), t.d.Page()).last_auto_number, 5);
  t.Insert({N(4)});
  EXPECT_EQ(mdb::ReadDefinition(t.P(), t.d.Page()).last_auto_number, 5);
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyRows, RowsThatAreNotThereAndRowsNamedTwiceAreRefused) {
  Table t(WithKey());
  const auto a = t.Insert({N(1), kNull, kNull}), b = t.Insert({N(2), kNull, kNull});
  t.Delete(a);
  EXPECT_THROW(t.Delete(a), base::Error);
  EXPECT_THROW(t.Update(a, 0, N(3)), base::Error);
  EXPECT_THROW(t.Delete({b.page, 77}), base::Error);
  EXPECT_THROW(t.Apply({{b, b}, {}, {}}), base::Error);
  EXPECT_THROW(t.Apply({{b}, {ChangeOf(b, {{0, N(2)}})}, {}}), base::Error);
  EXPECT_THROW(t.Apply({{}, {ChangeOf(b, {{3, N(2)}})}, {}}), base::Error);
  EXPECT_THROW(t.Apply({{}, {}, {{N(1)}}}), base::Error);
  EXPECT_EQ(t.Read(b)[0], mdb::Datum(N(2)));
}

TEST(DatabaseApply, DoesAllOrNothing) {
  Table t(WithKey());
  const auto ids = t.base->Apply("clave", {{}, {}, {{N(1), Text("a"), N(30)}}});
  t.base->Commit();
  EXPECT_THROW(
      t.base->Apply("Clave", {{ids[0]}, {}, {{N(2), Text("a"), N(30)}, {N(3), Text("b"), N(99999)}}}),
      base::Error);
  EXPECT_FALSE(t.base->Pages().Save().changed.contains(t.d.Page()));
  EXPECT_EQ(t.Read(ids[0]), (Row{N(1), Text("a"), N(30)}));
  EXPECT_THROW(t.base->Apply("NoHay", {}), base::Error);
  EXPECT_EQ(t.Control(), "");
}

TEST(NotWritableReason, SaysWhyATableIsOnlyRead) {
  Table t(WithKey());
  mdb::FileHeader c = t.P().Header();
  EXPECT_EQ(mdb::NotWritableReason(c, t.d), "");
  c.version = mdb::Version::Jet3;
  EXPECT_EQ(mdb::NotWritableReason(c, t.d),
            "La tabla 'Clave' solo se lee: los archivos de Access 97 no se escriben");
  c.version = mdb::Version::Ace;
  EXPECT_EQ(mdb::NotWritableReason(c, t.d),
            "La tabla 'Clave' solo se lee: los archivos .accdb no se escriben");
  c.version = mdb::Version::Jet4;
  auto d = t.d;
  d.columns[2].type = ColumnType::Complex;
  EXPECT_EQ(mdb::NotWritableReason(c, d),
            "La tabla 'Clave' solo se lee: la columna 'Edad' es de un tipo que no se escribe");
  d = t.d;
  d.columns[2].extended_flags = mdb::Column::kCalculated;
  EXPECT_EQ(mdb::NotWritableReason(c, d), "La tabla 'Clave' solo se lee: la columna 'Edad' es calculada");
  d = t.d;
  d.columns[1].lcid = 1041;  // a text of an index in an order that is not known
  EXPECT_NE(mdb::NotWritableReason(c, d).find("La tabla 'Clave' solo se lee: "), std::string::npos);
  EXPECT_THROW(mdb::Apply(t.P(), d, {}), base::Error);
  d.reals.clear();  // without its index it does not matter
  EXPECT_EQ(mdb::NotWritableReason(c, d), "");
}

}  // namespace
