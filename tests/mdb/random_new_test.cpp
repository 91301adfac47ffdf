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

using mdb::ColumnType;
using mdb_test::Column;
using mdb_test::ModelledTable;
using mdb_test::NewDatabase;
using mdb_test::Random;

// Every type that is written; an index over each, rising or falling by turns, some over two or three.
mdb::NewTable Everything(const std::string& name, bool descending) {
  mdb::NewTable t{name, {}, {}};
  t.columns = {Column("Id", ColumnType::Long),         Column("Octeto", ColumnType::Byte),
               Column("Corto", ColumnType::Integer),   Column("Dinero", ColumnType::Currency),
               Column("Simple", ColumnType::Single),   Column("Doble", ColumnType::Double),
               Column("Cuando", ColumnType::Date),     Column("Bytes", ColumnType::Binary, 60),
               Column("Nombre", ColumnType::Text, 90), Column("Foto", ColumnType::Ole),
               Column("Nota", ColumnType::Memo),       Column("Guid", ColumnType::Guid),
               Column("Decimal", ColumnType::Decimal), Column("Activo", ColumnType::Boolean),
               Column("Libre", ColumnType::Text, 255)};
  t.columns[12].precision = 14;
  t.columns[12].scale = 3;
  t.indexes.push_back({"PrimaryKey", {{"Id", false}}, true, true, false, true});
  for (const char* c : {"Octeto", "Corto", "Dinero", "Simple", "Doble", "Cuando", "Bytes", "Nombre", "Guid",
                        "Decimal", "Activo"}) {
    t.indexes.push_back({std::string("Por") + c, {{c, descending}}, false, false, false, false});
    descending = !descending;
  }
  t.indexes.push_back({"Junto", {{"Nombre", descending}, {"Corto", !descending}}, true, false, false, false});
  t.indexes.push_back(
      {"Tres", {{"Activo", false}, {"Octeto", descending}, {"Nombre", false}}, false, false, false, false});
  t.indexes.push_back({"SinNulos", {{"Dinero", descending}}, false, false, true, false});
  t.indexes.push_back(
      {"SinNulosJunto", {{"Simple", false}, {"Cuando", descending}}, false, false, true, false});
  return t;
}

mdb::NewTable PlainTable(const std::string& name) {
  mdb::NewTable t{name, {}, {}};
  t.columns = {Column("Id", ColumnType::Long), Column("Nombre", ColumnType::Text, 40),
               Column("Corto", ColumnType::Integer), Column("Activo", ColumnType::Boolean)};
  t.indexes.push_back({"PrimaryKey", {{"Id", false}}, true, true, false, true});
  t.indexes.push_back({"PorNombre", {{"Nombre", false}}, false, false, false, false});
  return t;
}

// The lines that mdb-export prints of a table of the shape of PlainTable, sorted.
std::vector<std::string> ModelLines(const ModelledTable& table) {
  std::vector<std::string> lines;
  for (const auto& [id, row] : table.Rows()) {
    std::string line;
    for (const auto& datum : row) {
      if (!line.empty()) line += '|';
      if (const auto* n = std::get_if<std::int64_t>(&datum)) line += std::to_string(*n);
      if (const auto* s = std::get_if<std::string>(&datum)) line += *s;
      if (const auto* b = std::get_if<bool>(&datum)) line += *b ? "1" : "0";
    }
    lines.push_back(line);
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}
std::vector<std::string> OutsideLines(const mdb::Bytes& file, const std::string& table) {
  std::istringstream output(mdb_test::Mdbtools("mdb-export", "-H -Q -d '|'", file, table));
  std::vector<std::string> lines;
  for (std::string line; std::getline(output, line);) lines.push_back(line);
  std::sort(lines.begin(), lines.end());
  return lines;
}

class ChangesInANewFile : public testing::TestWithParam<std::uint16_t> {};

TEST_P(ChangesInANewFile, LeaveASoundFileThatOthersReadAlike) {
  NewDatabase base(GetParam());
  const auto a = base.Create(Everything("Todo", false)), b = base.Create(Everything("TodoAlReves", true)),
             c = base.Create(PlainTable("Llana"));
  Random random(GetParam());
  ModelledTable tables[] = {{base.Pages(), a.Page(), "Todo"},
                            {base.Pages(), b.Page(), "TodoAlReves"},
                            {base.Pages(), c.Page(), "Llana"}};
  for (auto& t : tables) t.many_rows = 100;
  for (unsigned batch = 0; batch < 60; ++batch) {
    for (auto& t : tables) {
      SCOPED_TRACE(t.Def().name);
      ASSERT_NO_FATAL_FAILURE(t.Change(random, batch % 15 == 0 ? 150 : 30));
      if (batch % 5 == 0) {
        ASSERT_NO_FATAL_FAILURE(t.Compare());
      }
    }
    if (batch % 20 == 7) {
      ASSERT_EQ(base.Control(), "");
    }
  }
  mdb_test::Counts all;
  for (auto& t : tables) {
    SCOPED_TRACE(t.Def().name);
    ASSERT_NO_FATAL_FAILURE(t.Rotate());
    ASSERT_NO_FATAL_FAILURE(t.Compare());
    all.inserted += t.counts.inserted;
    all.changed += t.counts.changed;
    all.deleted += t.counts.deleted;
    all.rejected += t.counts.rejected;
  }
  EXPECT_EQ(base.Control(), "");
  if (mdb_test::HasMdbtools()) {
    EXPECT_EQ(OutsideLines(base.Saved(), "Llana"), ModelLines(tables[2]));
  }
  std::cout << "order " << GetParam() << ": " << all.inserted << " inserts, " << all.changed << " updates, "
            << all.deleted << " deletes, " << all.rejected << " batches refused\n";
  for (auto& t : tables) ASSERT_NO_FATAL_FAILURE(t.DeleteAll());
  for (auto& t : tables) ASSERT_NO_FATAL_FAILURE(t.Compare());
  EXPECT_EQ(base.Control(), "");
}

INSTANTIATE_TEST_SUITE_P(InEachOrder, ChangesInANewFile, testing::Values(3082, 1034, 1033));

TEST(Grow, ATableOfThousandsOfPagesShrinksAndTakesTheSamePagesAgain) {
  NewDatabase base;
  mdb::NewTable wide = PlainTable("Ancha");
  for (const char* name : {"A", "B", "C"}) {
    wide.columns.push_back(Column(name, ColumnType::Text));
    wide.columns.back().compress = false;
  }
  wide.columns.push_back(Column("Nota", ColumnType::Memo));
  auto d = base.Create(wide);
  const auto control = [&] { return base.Control(false); };
  const std::string length(255, 'x'), memo(3000, 'm');
  const auto fill = [&](int from, int to) {
    mdb::Changes c;
    for (int i = from; i < to; ++i)
      c.inserted.push_back({std::int64_t{i}, std::string("n") + std::to_string(i % 100), std::int64_t{i % 7},
                            i % 2 == 0, length, length, length,
                            i % 4 == 0 ? mdb::Datum(memo) : mdb::Datum(base::Null{})});
    return mdb::Apply(base.Pages(), d, c);
  };
  std::vector<mdb::RowId> ids;
  for (int i = 0; i < 6000; i += 500) {
    const auto inserted = fill(i, i + 500);
    ids.insert(ids.end(), inserted.begin(), inserted.end());
    base->Commit();
  }
  const auto pages = base.Pages().Count();
  EXPECT_GT(pages, 5000U);  // two rows a page; 6000 bytes of memo for each fourth row
  EXPECT_EQ(control(), "");

  // Every other row away: each page keeps one, and takes one again.
  mdb::Changes c;
  for (std::size_t i = 0; i < ids.size(); i += 2) c.deleted.push_back(ids[i]);
  mdb::Apply(base.Pages(), d, c);
  EXPECT_EQ(control(), "");
  fill(6000, 9000);
  EXPECT_EQ(control(), "");
  EXPECT_LE(base.Pages().Count(), pages + 20);

  // All away: the table has no page left, and the file takes the free ones before it grows.
  c = {};
  mdb::WalkRows(base.Pages(), d,
                [&](mdb::RowId id, const mdb::Row&) {
                  c.deleted.push_back(id);
                  return true;
                },
                {0});
  ASSERT_EQ(c.deleted.size(), 6000U);
  mdb::Apply(base.Pages(), d, c);
  EXPECT_TRUE(mdb::ReadMap(base.Pages(), d.owned_pages).empty());
  EXPECT_TRUE(mdb::ReadMap(base.Pages(), d.free_pages).empty());
  EXPECT_EQ(control(), "");
  const auto free_pages = mdb::ReadMap(base.Pages(), {1, 0}).size();
  EXPECT_GT(free_pages, 5000U);
  const auto before = base.Pages().Count();
  fill(0, 5000);
  EXPECT_EQ(base.Pages().Count(), before);
  EXPECT_EQ(control(), "");
}

}  // namespace
