// Random changes of the schema and of rows, with fixed seeds, and a model of what the base must then hold.
#include <algorithm>
#include <map>

#include "base/text.h"
#include "mdb/random_rows.h"
#include "mdb/schema_support.h"

namespace {

using namespace mdb_test;
using mdb::ColumnType;

constexpr ColumnType kTypes[] = {
    ColumnType::Boolean, ColumnType::Byte,   ColumnType::Integer, ColumnType::Long,    ColumnType::Currency,
    ColumnType::Single,  ColumnType::Double, ColumnType::Date,    ColumnType::Text,    ColumnType::Text,
    ColumnType::Memo,    ColumnType::Binary, ColumnType::Ole,     ColumnType::Decimal, ColumnType::Guid};
const char* const kNames[] = {"Años",  "Niñez",      "árbol", "Año nuevo",   "CO-OP", "coop",
                              "Ñandú", "Vacaciones", "x",     "El 'quinto'", "_1",    "Legajo de personal"};

// What a table must hold: values by column name, rows by their identity.
struct ModelTable {
  std::vector<std::string> columns;
  std::map<mdb::RowId, std::map<std::string, mdb::Datum>> rows;
  std::vector<std::string> indexes;
};
struct Model {
  std::map<std::string, ModelTable> tables;
  std::map<std::string, std::size_t> queries;  // how many rows each
  std::map<std::string, std::pair<std::string, std::string>> relationships;
};

class Traversal {
 public:
  Traversal(unsigned seed, std::uint16_t order) : random_(seed), b_(order) {}

  void Run(int steps) {
    for (int i = 0; i < steps && !::testing::Test::HasFailure(); ++i) {
      SCOPED_TRACE("paso " + std::to_string(i));
      Step();
      if (i % 10 == 9) CommitOrRollback();
      if (i % 100 == 99) Compare(true);
    }
    Compare(true);
  }
  int done = 0, rejected = 0;

 private:
  void Step() {
    try {
      Make(random_.Below(20));
      ++done;
    } catch (const base::Error&) {
      ++rejected;
      Compare(false);  // a refused step leaves nothing behind
    }
  }

  void Make(unsigned which) {
    if (m_.tables.empty() || which == 0) return CreateTable();
    switch (which) {
      case 1:
        return random_.One(2) ? DropTable() : CreateTable();
      case 2:
      case 3:
        return AddColumn();
      case 4:
        return DropColumn();
      case 5:
      case 6:
        return CreateIndex();
      case 7:
        return DropIndex();
      case 8:
        return CreateQuery();
      case 9:
        return random_.One(2) ? DropQuery() : CreateQuery();
      case 10:
        return CreateRelationship();
      case 11:
        return random_.One(2) ? DropRelationship() : CreateRelationship();
      default:
        return ChangeRows();
    }
  }

  std::string Name() {
    const std::string name = kNames[random_.Below(static_cast<unsigned>(std::size(kNames)))];
    return random_.One(2) ? name : name + " " + std::to_string(random_.Below(20));
  }
  mdb::NewColumn Column() {
    auto c = Col(Name(), kTypes[random_.Below(static_cast<unsigned>(std::size(kTypes)))]);
    if (c.type == ColumnType::Text) c.length = static_cast<std::uint16_t>(1 + random_.Below(255));
    c.required = random_.One(10);
    if (random_.One(5)) c.default_value = "Date()";
    c.precision = 28;
    c.scale = static_cast<std::uint8_t>(random_.Below(5));
    return c;
  }
  auto Table() {
    auto it = m_.tables.begin();
    std::advance(it, random_.Below(static_cast<unsigned>(m_.tables.size())));
    return it;
  }
  std::string ColumnOf(const ModelTable& t) {
    return t.columns[random_.Below(static_cast<unsigned>(t.columns.size()))];
  }
  mdb::NewIndex Index(const std::vector<std::string>& columns) {
    auto i = Ind(Name(), {});
    for (unsigned n = 1 + random_.Below(3); n > 0; --n)
      i.parts.push_back({columns[random_.Below(static_cast<unsigned>(columns.size()))], random_.One(2)});
    i.unique = random_.One(4);
    i.ignores_nulls = random_.One(3);
    i.required = random_.One(8);
    i.primary = random_.One(6);
    return i;
  }

  void CreateTable() {
    if (m_.tables.size() > 8) return DropTable();
    mdb::NewTable t{Name(), {}, {}};
    ModelTable model;
    for (unsigned n = 1 + random_.Below(random_.One(6) ? 60 : 8); n > 0; --n) {
      auto c = Column();
      if (random_.One(2)) c.name += "_" + std::to_string(n);
      t.columns.push_back(c);
      model.columns.push_back(c.name);
    }
    for (unsigned n = random_.Below(3); n > 0; --n) t.indexes.push_back(Index(model.columns));
    for (const auto& i : t.indexes) model.indexes.push_back(i.name);
    b_->CreateTable(t, Today());
    m_.tables[t.name] = model;
  }
  void DropTable() {
    const auto it = Table();
    b_->DropTable(base::UpperCase(it->first));
    m_.tables.erase(it);
  }
  void AddColumn() {
    const auto it = Table();
    const auto c = Column();
    b_->AddColumn(it->first, c);
    it->second.columns.push_back(c.name);
    for (auto& [id, row] : it->second.rows)
      row[c.name] = c.type == ColumnType::Boolean ? mdb::Datum(false) : Nothing();
  }
  void DropColumn() {
    const auto it = Table();
    const std::string c = ColumnOf(it->second);
    b_->DropColumn(it->first, c);
    std::erase(it->second.columns, c);
    for (auto& [id, row] : it->second.rows) row.erase(c);
  }
  void CreateIndex() {
    const auto it = Table();
    const auto i = Index(it->second.columns);
    b_->CreateIndex(it->first, i);
    it->second.indexes.push_back(i.name);
  }
  void DropIndex() {
    const auto it = Table();
    if (it->second.indexes.empty()) return;
    const std::string i = it->second.indexes[random_.Below(static_cast<unsigned>(it->second.indexes.size()))];
    b_->DropIndex(it->first, i);
    std::erase(it->second.indexes, i);
  }
  void CreateQuery() {
    mdb::SavedQuery c;
    c.name = Name();
    for (unsigned n = 1 + random_.Below(30); n > 0; --n) {
      mdb::QueryRow f;
      f.attribute = random_.One(3) ? 5 : 6;
      if (random_.One(2)) f.name1 = Name();
      f.expression = std::string(random_.One(10) ? random_.Below(9000) : random_.Below(40), 'e');
      c.rows.push_back(f);
    }
    b_->CreateQuery(c, Today());
    m_.queries[c.name] = c.rows.size() + 2;
  }
  void DropQuery() {
    if (m_.queries.empty()) return;
    const auto it = m_.queries.begin();
    b_->DropQuery(it->first);
    m_.queries.erase(it);
  }
  void CreateRelationship() {
    const auto parent = Table(), child = Table();
    mdb::TableRelationship r{Name(),
                             child->first,
                             {ColumnOf(child->second)},
                             parent->first,
                             {ColumnOf(parent->second)},
                             random_.One(2) ? 0U : mdb::TableRelationship::kNotEnforced};
    b_->CreateRelationship(r, Today());
    m_.relationships[r.name] = {child->first, parent->first};
  }
  void DropRelationship() {
    if (m_.relationships.empty()) return;
    const auto it = m_.relationships.begin();
    b_->DropRelationship(it->first);
    m_.relationships.erase(it);
  }

  // Relationships are for the caller of Apply to keep; tables that stand in an enforced one stay as they
  // are.
  bool IsInRelationship(const std::string& table) {
    return std::any_of(
        b_->Catalog().Relationships().begin(), b_->Catalog().Relationships().end(),
        [&](const auto& r) { return r.IsEnforced() && (r.table == table || r.referenced_table == table); });
  }

  void ChangeRows() {
    const auto it = Table();
    if (IsInRelationship(it->first)) return;
    const auto d = b_.Def(it->first);
    ModelTable after = it->second;
    mdb::Changes changes;
    for (const auto& [id, row] : it->second.rows) {
      if (random_.One(6)) {
        changes.deleted.push_back(id);
        after.rows.erase(id);
      } else if (random_.One(6)) {
        mdb::RowChange change;
        change.row = id;
        const std::size_t c = random_.Below(static_cast<unsigned>(d.columns.size()));
        change.values.emplace_back(c, RandomDatum(random_, d.columns[c], true));
        after.rows[id][d.columns[c].name] = change.values[0].second;
        changes.changed.push_back(std::move(change));
      }
    }
    std::vector<std::map<std::string, mdb::Datum>> inserted;
    for (unsigned n = random_.Below(it->second.rows.size() > 60 ? 5 : 25); n > 0; --n) {
      mdb::Row row;
      auto& model = inserted.emplace_back();
      for (const auto& c : d.columns) {
        row.push_back(RandomDatum(random_, c, true));
        model[c.name] = row.back();
      }
      changes.inserted.push_back(std::move(row));
    }
    const auto ids = b_->Apply(it->first, changes);
    for (std::size_t i = 0; i < ids.size(); ++i) after.rows[ids[i]] = inserted[i];
    it->second = std::move(after);
  }

  void CommitOrRollback() {
    if (random_.One(4)) {
      b_->Rollback();
      m_ = committed_;
    } else {
      b_->Commit();
      committed_ = m_;
    }
  }

  void Compare(bool outside) {
    std::map<std::string, ModelTable> tables;
    for (const auto& o : b_->Catalog().Objects()) {
      if (o.type != mdb::Object::Table || o.IsSystem()) continue;
      const auto d = b_.Def(o.name);
      ModelTable& t = tables[o.name];
      for (const std::size_t c : d.InOrder()) t.columns.push_back(d.columns[c].name);
      mdb::WalkRows(b_->Pages(), d, [&](mdb::RowId id, const mdb::Row& row) {
        auto& values = t.rows[id];
        for (std::size_t c = 0; c < row.size(); ++c) values[d.columns[c].name] = row[c];
        return true;
      });
      std::vector<std::string> indexes;
      for (const auto& l : d.logicals)
        if (l.kind != mdb::LogicalIndex::Foreign) indexes.push_back(l.name);
      const auto model = m_.tables.find(o.name);
      ASSERT_TRUE(model != m_.tables.end()) << o.name;
      auto expected = model->second.indexes;
      std::sort(indexes.begin(), indexes.end());
      std::sort(expected.begin(), expected.end());
      EXPECT_EQ(indexes, expected) << o.name;
      EXPECT_EQ(t.columns, model->second.columns) << o.name;
      EXPECT_TRUE(t.rows == model->second.rows) << o.name;
    }
    EXPECT_EQ(tables.size(), m_.tables.size());
    CompareTheRest();
    if (outside) {
      b_.ExpectSound();
      committed_ = m_;
    }
  }
  void CompareTheRest() {
    for (const auto& [name, rows] : m_.queries)
      EXPECT_EQ(b_->Catalog().QueryOf(name).rows.size(), rows) << name;
    // A table that goes takes along the relationships that are not enforced.
    std::erase_if(m_.relationships, [&](const auto& r) {
      return !m_.tables.contains(r.second.first) || !m_.tables.contains(r.second.second);
    });
    std::vector<std::string> found, expected_names;
    for (const auto& r : b_->Catalog().Relationships()) found.push_back(r.name);
    for (const auto& [name, r] : m_.relationships) expected_names.push_back(name);
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, expected_names);
  }

  Random random_;
  TestDatabase b_;
  Model m_, committed_;
};

TEST(RandomSchemas, HoldsWhatItsModelHolds) {
  int done = 0, rejected = 0;
  for (unsigned seed = 1; seed <= 6 && !HasFailure(); ++seed) {
    SCOPED_TRACE("semilla " + std::to_string(seed));
    Traversal r(seed, seed % 3 == 0 ? 1033 : seed % 3 == 1 ? 3082 : 1034);
    r.Run(300);
    done += r.done;
    rejected += r.rejected;
  }
  EXPECT_GT(done, 1000);
  EXPECT_GT(rejected, 100);
}

}  // namespace
