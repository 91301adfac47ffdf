// The schema of files that another wrote, changed on copies in memory: nothing that was there is lost, and
// what the checker finds is what it found before.
#include <map>

#include "mdb/samples.h"
#include "mdb/schema_support.h"

namespace {

using namespace mdb_test;
using mdb::ColumnType;

using Contents = std::map<std::string, std::vector<mdb::Row>>;

Contents UserContents(TestDatabase& b) {
  Contents all;
  for (const auto& o : b->Catalog().Objects())
    if (o.type == mdb::Object::Table && !o.IsSystem()) all[o.name] = b.Rows(o.name);
  return all;
}

// The checker's notes are what Access itself leaves: only errors count here.
class Copies : public ::testing::TestWithParam<std::string> {};

mdb::NewTable MakeTable() {
  mdb::NewTable t{
      "Días trabajados",
      {Col("Id", ColumnType::Long), Col("Año", ColumnType::Text, 20), Col("Nota", ColumnType::Memo)},
      {Key({"Id"}), Ind("Por año", {"-Año", "Id"})}};
  t.columns[0].auto_number = true;
  t.columns[1].default_value = "\"2026\"";
  return t;
}

TEST_P(Copies, TakesATableAndGivesItBack) {
  TestDatabase b(Load(GetParam()));
  const Contents before = UserContents(b);
  b->CreateTable(MakeTable(), Today());
  std::vector<mdb::Row> rows;
  for (int i = 1; i <= 300; ++i)
    rows.push_back(RowOf(N(i), S("año " + std::to_string(i % 50)),
                         S(std::string(static_cast<std::size_t>(i) * 11, 'n'))));
  b.Insert("Días trabajados", rows);
  b->AddColumn("Días trabajados", Col("Más", ColumnType::Double));
  b->DropColumn("Días trabajados", "Nota");
  b->CreateTable({"Hijos de días", {Col("Día", ColumnType::Long)}, {}}, Today());
  b->CreateRelationship({"Días e hijos", "Hijos de días", {"Día"}, "Días trabajados", {"Id"}, 0}, Today());
  mdb::SavedQuery query;
  query.name = "Días, la vista";
  query.rows.resize(1);
  query.rows[0].attribute = 5;
  query.rows[0].name1 = "Días trabajados";
  b->CreateQuery(query, Today());
  b.ExpectSound(false);
  EXPECT_EQ(b.Rows("Días trabajados").size(), 300U);
  if (HasMdbtools()) {
    EXPECT_NE(Mdbtools("mdb-tables", "-1", b.Saved()).find("Días trabajados\n"), std::string::npos);
    EXPECT_NE(Mdbtools("mdb-queries", "-L -1", b.Saved()).find("Días, la vista"), std::string::npos);
  }
  b->DropQuery("Días, la vista");
  b->DropRelationship("Días e hijos");
  b->DropTable("Hijos de días");
  b->DropTable("Días trabajados");
  EXPECT_TRUE(UserContents(b) == before);
  b.ExpectSound(false);
}

// Each of its own tables gets a column, an index over it and rows, and loses them again.
TEST_P(Copies, ItsOwnTablesChange) {
  TestDatabase b(Load(GetParam()));
  const Contents before = UserContents(b);
  for (const auto& [table, rows] : before) {
    SCOPED_TRACE(table);
    const std::string reason = mdb::NotWritableReason(b->Header(), b.Def(table));
    auto properties = b->Catalog().PropertiesOf(table);
    auto column = Col("Columna añadida", ColumnType::Text, 30);
    b->AddColumn(table, column);
    b->CreateIndex(table, Ind("Índice añadido", {"Columna añadida"}));
    EXPECT_EQ(b.Rows(table).size(), rows.size());
    if (reason.empty() && !rows.empty()) {
      mdb::Changes changes;
      mdb::WalkRows(b->Pages(), b.Def(table), [&](mdb::RowId id, const mdb::Row& row) {
        mdb::RowChange change;
        change.row = id;
        change.values.emplace_back(row.size() - 1, S("ñ" + std::to_string(changes.changed.size())));
        changes.changed.push_back(change);
        return changes.changed.size() < 100;
      });
      b->Apply(table, changes);
    }
    b->DropIndex(table, "Índice añadido");
    b->DropColumn(table, "Columna añadida");
    const auto& after = b->Catalog().PropertiesOf(table);
    EXPECT_EQ(after.size(), properties.size());
    for (const auto& [owner, list] : properties) {
      ASSERT_TRUE(after.contains(owner)) << owner;
      ASSERT_EQ(after.at(owner).size(), list.size()) << owner;
      for (std::size_t i = 0; i < list.size(); ++i) EXPECT_TRUE(after.at(owner)[i].value == list[i].value);
    }
  }
  EXPECT_TRUE(UserContents(b) == before);
  b.ExpectSound(false);
}

std::vector<std::string> Files() {
  std::vector<std::string> paths;
  for (const char* name :
       {"empty.mdb", "types.mdb", "texts.mdb", "texts_3082.mdb", "texts_1034.mdb", "moved.mdb",
        "compound.mdb", "relations.mdb", "queries.mdb", "names.mdb", "password.mdb"})
    paths.push_back(SamplePath(name));
  for (const std::string& path : CorpusFiles())
    if (Load(path)->Header().version == mdb::Version::Jet4) paths.push_back(path);
  return paths;
}

INSTANTIATE_TEST_SUITE_P(Files, Copies, ::testing::ValuesIn(Files()),
                         [](const auto& c) { return CaseName(c.param); });

}  // namespace
