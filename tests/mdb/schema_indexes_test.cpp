#include <algorithm>

#include "mdb/indexes/index_tree.h"
#include "mdb/pages/page_map.h"
#include "mdb/schema_support.h"

namespace {

using namespace mdb_test;
using mdb::ColumnType;

// Values in index order with one Null, a text with an accent, a hyphen and trailing blanks among them.
TestDatabase WithRows() {
  TestDatabase b;
  b->CreateTable({"T",
                  {Col("n", ColumnType::Long), Col("Texto", ColumnType::Text, 50), Col("f", ColumnType::Date),
                   Col("ok", ColumnType::Boolean), Col("dec", ColumnType::Decimal),
                   Col("g", ColumnType::Guid), Col("m", ColumnType::Currency), Col("memo", ColumnType::Memo),
                   Col("bin", ColumnType::Binary), Col("d", ColumnType::Double)},
                  {}},
                 Today());
  std::vector<mdb::Row> rows;
  const char* texts[] = {"cañón", "canon", "co-op", "coop", "Ñandú", "zapato  ", "árbol", "arbol"};
  for (int i = 0; i < 400; ++i) {
    const bool null = i % 40 == 39;
    rows.push_back(
        RowOf(N(400 - i), null ? Nothing() : S(texts[i % 8] + std::to_string(i / 8)),
              mdb::Datum(base::Date{i * 1.25 - 200}), i % 2 == 0,
              mdb::Datum(mdb::DecimalFromText(std::to_string(i - 200), 0)),
              mdb::Datum(mdb::Guid{{static_cast<std::uint8_t>(i), 1, 2, static_cast<std::uint8_t>(i / 256)}}),
              mdb::Datum(base::Currency{(i - 100) * 12345}), S("memo " + std::to_string(i * 7 % 400)),
              mdb::Datum(mdb::Bytes(static_cast<std::size_t>(1 + i % 20), static_cast<std::uint8_t>(i))),
              mdb::Datum(i * 0.5 - 77)));
  }
  b.Insert("T", std::move(rows));
  return b;
}

std::size_t Entries(TestDatabase& b, const std::string& table, const std::string& index) {
  const auto d = b.Def(table);
  std::size_t count = 0;
  for (const auto& l : d.logicals)
    if (l.name == index)
      mdb::IndexTree(b->Pages(), d.Page(), d.reals[l.real]).Walk([&](const mdb::Entry&) {
        return ++count > 0;
      });
  return count;
}

TEST(CreateIndex, TakesInTheRowsThatAreThere) {
  auto b = WithRows();
  int n = 0;
  for (const char* column : {"n", "Texto", "f", "ok", "dec", "g", "m", "memo", "bin", "d"}) {
    for (const std::string sign : {"", "-"}) {
      const std::string name = "Índice " + std::to_string(++n);
      b->CreateIndex("t", Ind(name, {sign + column}));
      EXPECT_EQ(Entries(b, "T", name), 400U) << column;
    }
  }
  b->CreateIndex("T", Ind("Compuesto", {"ok", "-Texto", "f"}));
  b->CreateIndex("T", Key({"n"}));
  EXPECT_EQ(b.Def("T").logicals.size(), 22U);
  EXPECT_EQ(b.Def("T").PrimaryKey()->name, "PrimaryKey");
  b.ExpectSound();
  // They are kept from then on.
  b.Insert("T", {RowOf(N(1000), S("último"), mdb::Datum(base::Date{1}), true,
                       mdb::Datum(mdb::DecimalFromText("5", 0)), mdb::Datum(mdb::Guid{}),
                       mdb::Datum(base::Currency{1}), S("m"), mdb::Datum(mdb::Bytes{1}), mdb::Datum(0.5))});
  EXPECT_EQ(Entries(b, "T", "Compuesto"), 401U);
  b.ExpectSound();
  if (HasMdbtools()) {
    EXPECT_NE(b.Schema("--indexes", "postgres").find("PRIMARY KEY (\"n\")"), std::string::npos);
  }
}

TEST(CreateIndex, MarksWhatItIs) {
  TestDatabase b;
  b->CreateTable({"T", {Col("a", ColumnType::Long), Col("b", ColumnType::Text)}, {Key({"a"})}}, Today());
  auto ignoring = Ind("Ignora", {"b"});
  ignoring.ignores_nulls = true;
  auto required = Ind("Requerido", {"b"});
  required.required = true;
  b->CreateIndex("T", ignoring);
  b->CreateIndex("T", required);
  b->CreateIndex("T", UniqueIndex("Sin repetidos", {"-b", "a"}));
  const auto d = b.Def("T");
  EXPECT_EQ(d.reals[0].flags, 0x89);
  EXPECT_EQ(d.reals[1].flags, 0x82);
  EXPECT_EQ(d.reals[2].flags, 0x88);
  EXPECT_EQ(d.reals[3].flags, 0x81);
  EXPECT_TRUE(d.reals[3].parts[0].descending);
  EXPECT_FALSE(d.reals[3].parts[1].descending);
  std::vector<std::string> names;  // kept by name
  for (const auto& l : d.logicals) names.push_back(l.name);
  EXPECT_EQ(names, (std::vector<std::string>{"Ignora", "PrimaryKey", "Requerido", "Sin repetidos"}));
  b.ExpectSound();
}

TEST(CreateIndex, RefusesRowsThatDoNotObey) {
  TestDatabase b;
  b->CreateTable(
      {"T", {Col("a", ColumnType::Long), Col("b", ColumnType::Text), Col("c", ColumnType::Long)}, {}},
      Today());
  b.Insert("T", {RowOf(N(1), S("Ana"), N(1)), RowOf(N(2), S("ANA "), N(1)), RowOf(N(3), Nothing(), Nothing()),
                 RowOf(N(4), Nothing(), Nothing())});
  // Case and trailing blanks make no difference to a key.
  b.ExpectRejected("no admite repetidos", [&] { b->CreateIndex("T", UniqueIndex("u", {"b"})); });
  b.ExpectRejected("no admite repetidos", [&] { b->CreateIndex("T", UniqueIndex("u", {"c", "b"})); });
  b.ExpectRejected("no admite nulos", [&] { b->CreateIndex("T", Key({"b"})); });
  try {
    b->CreateIndex("T", UniqueIndex("u", {"b"}));
  } catch (const mdb::KeyError& e) {
    EXPECT_EQ(e.Number(), 3022);
    EXPECT_EQ(e.index, "u");
  }
  // Keys of Nulls alone may repeat, and an index that ignores them does not list them.
  auto ignoring = Ind("i", {"b"});
  ignoring.ignores_nulls = true;
  b->CreateIndex("T", ignoring);
  EXPECT_EQ(Entries(b, "T", "i"), 2U);
  b->CreateIndex("T", UniqueIndex("u", {"a", "b"}));
  EXPECT_EQ(Entries(b, "T", "u"), 4U);
  b.ExpectSound();
}

TEST(CreateIndex, RepeatedNullsAreNoRepetition) {
  TestDatabase b;
  b->CreateTable({"T", {Col("a", ColumnType::Long), Col("b", ColumnType::Text)}, {}}, Today());
  b.Insert("T", {RowOf(Nothing(), Nothing()), RowOf(Nothing(), Nothing()), RowOf(N(1), Nothing())});
  b->CreateIndex("T", UniqueIndex("u", {"a", "b"}));
  EXPECT_EQ(Entries(b, "T", "u"), 3U);
  b.ExpectSound();
  b.Insert("T", {RowOf(N(2), S("x")), RowOf(N(2), S("y"))});
  b.ExpectRejected("no admite repetidos", [&] { b->CreateIndex("T", UniqueIndex("v", {"a"})); });
}

TEST(CreateIndex, RefusesWhatCannotBe) {
  TestDatabase b;
  std::vector<mdb::NewColumn> columns;
  for (int i = 0; i < 12; ++i) columns.push_back(Col("c" + std::to_string(i), ColumnType::Long));
  columns.push_back(Col("o", ColumnType::Ole));
  b->CreateTable({"T", columns, {Key({"c0"})}}, Today());
  const auto create = [&](mdb::NewIndex i) { return [&b, i] { b->CreateIndex("T", i); }; };
  b.ExpectRejected("ya tiene una clave principal", [&] {
    auto other = Key({"c1"});
    other.name = "Otra";
    b->CreateIndex("T", other);
  });
  b.ExpectRejected("ya tiene un índice 'primarykey'", create(Ind("primarykey", {"c1"})));
  b.ExpectRejected("no tiene una columna 'zz'", create(Ind("i", {"zz"})));
  b.ExpectRejected("dos veces la columna 'c1'", create(Ind("i", {"c1", "c2", "C1"})));
  b.ExpectRejected("no puede estar en un índice", create(Ind("i", {"o"})));
  b.ExpectRejected("de 1 a 10 columnas", create(Ind("i", {})));
  b.ExpectRejected("de 1 a 10 columnas",
                   create(Ind("i", {"c0", "c1", "c2", "c3", "c4", "c5", "c6", "c7", "c8", "c9", "c10"})));
  b.ExpectRejected("Falta el nombre de un índice", create(Ind("", {"c1"})));
  b.ExpectRejected("no tiene una tabla 'X'", [&] { b->CreateIndex("X", Ind("i", {"c1"})); });
  b->CreateIndex("T", Ind("diez", {"c0", "c1", "c2", "c3", "c4", "c5", "c6", "c7", "c8", "-c9"}));
  for (int i = 0; i < 30; ++i)
    b->CreateIndex("T", Ind("i" + std::to_string(i), {(i % 2 ? "-c" : "c") + std::to_string(i % 12)}));
  EXPECT_EQ(b.Def("T").logicals.size(), 32U);
  b.ExpectRejected("ya tiene 32 índices", create(Ind("uno más", {"c1"})));
  mdb::Row row(13);
  for (int i = 0; i < 12; ++i) row[static_cast<std::size_t>(i)] = N(i);
  b.Insert("T", {row});
  b.ExpectSound();
}

TEST(DropIndex, GivesItsPagesBack) {
  auto b = WithRows();
  const auto before = b.Saved().size();
  b->CreateIndex("T", Ind("Uno", {"Texto", "memo"}));
  b->CreateIndex("T", Ind("Dos", {"f"}));
  b->CreateIndex("T", Ind("Tres", {"g"}));
  b.ExpectSound();
  const auto with = b.Saved().size();
  EXPECT_GT(with, before);
  b->DropIndex("T", "DOS");
  EXPECT_EQ(Entries(b, "T", "Uno"), 400U);
  EXPECT_EQ(Entries(b, "T", "Tres"), 400U);
  b.ExpectSound();
  b->DropIndex("T", "Uno");
  EXPECT_EQ(Entries(b, "T", "Tres"), 400U);
  b->DropIndex("T", "Tres");
  EXPECT_TRUE(b.Def("T").reals.empty());
  b.ExpectSound();
  b->CreateIndex("T", Ind("Uno", {"Texto", "memo"}));
  b->CreateIndex("T", Ind("Dos", {"f"}));
  b->CreateIndex("T", Ind("Tres", {"g"}));
  EXPECT_EQ(b.Saved().size(), with);
  b.ExpectSound();
  b.ExpectRejected("no tiene un índice 'Nada'", [&] { b->DropIndex("T", "Nada"); });
}

}  // namespace
