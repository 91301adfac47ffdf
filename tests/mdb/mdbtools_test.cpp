// Whole files, read by us and by mdbtools.
#include <gtest/gtest.h>

#include <algorithm>

#include "base/text.h"
#include "mdb/corpus.h"
#include "mdb/exported.h"
#include "mdb/outside.h"
#include "mdb/samples.h"

namespace {

#define SKIP_WITHOUT_MDBTOOLS() \
  if (!mdb_test::HasMdbtools()) GTEST_SKIP() << "mdbtools is not installed"

// It knows neither the types of new_types.accdb nor an order of display that is not that of the numbers.
std::vector<std::string> FilesOfMdbtools() {
  auto paths = mdb_test::EveryFile();
  std::erase_if(paths, [](const std::string& path) { return path.ends_with("new_types.accdb"); });
  return paths;
}

// Once a column of fixed length has been deleted, it looks for a Boolean that is newer than the row behind
// the row's end, where the next row stands. samples_test.cpp says what those are.
std::vector<std::size_t> UnknownToMdbtools(const mdb::Definition& d) {
  std::vector<std::size_t> cells;
  const auto order = d.InOrder();
  for (std::size_t i = 0; i < order.size(); ++i)
    if (d.columns[order[i]].type == mdb::ColumnType::Boolean && d.max_columns > d.columns.size())
      cells.push_back(i);
  return cells;
}

TEST(Mdbtools, EveryTableOfEveryFileIsReadAlike) {
  SKIP_WITHOUT_MDBTOOLS();
  std::size_t tables = 0, rows = 0, cells = 0;
  for (const auto& path : FilesOfMdbtools()) {
    const auto pages = mdb_test::Load(path);
    const mdb::SystemCatalog catalog(*pages);
    for (const auto& o : catalog.Objects()) {
      if (o.type != mdb::Object::Table) continue;
      SCOPED_TRACE(path + " " + o.name);
      auto its_own = mdb_test::Export(path, o.name);
      ASSERT_TRUE(its_own.found);
      auto ours = mdb_test::TableAsRead(*pages, *catalog.Table(o.name));
      EXPECT_EQ(ours.columns, its_own.columns);
      for (const std::size_t cell : UnknownToMdbtools(*catalog.Table(o.name)))
        for (auto* side : {&ours.rows, &its_own.rows})
          for (auto& row : *side) row.at(cell).clear();
      // A row that has moved comes out where it stands now.
      std::sort(ours.rows.begin(), ours.rows.end());
      std::sort(its_own.rows.begin(), its_own.rows.end());
      ASSERT_EQ(ours.rows.size(), its_own.rows.size());
      for (std::size_t i = 0; i < ours.rows.size(); ++i) EXPECT_EQ(ours.rows[i], its_own.rows[i]);
      ++tables;
      rows += ours.rows.size();
      cells += ours.rows.size() * ours.columns.size();
    }
  }
  std::cout << tables << " tables, " << rows << " rows, " << cells << " cells compared\n";
  EXPECT_GT(rows, 1000U);
}

// The type of a column as mdb-schema writes it for Access.
std::string TypeText(const mdb::Column& c) {
  switch (c.type) {
    case mdb::ColumnType::Boolean:
      return "Boolean";
    case mdb::ColumnType::Byte:
      return "Byte";
    case mdb::ColumnType::Integer:
      return "Integer";
    case mdb::ColumnType::Long:
      return "Long Integer";
    case mdb::ColumnType::Currency:
      return "Currency";
    case mdb::ColumnType::Single:
      return "Single";
    case mdb::ColumnType::Double:
      return "Double";
    case mdb::ColumnType::Date:
      return "DateTime";
    case mdb::ColumnType::Binary:
      return "Binary";
    case mdb::ColumnType::Guid:
      return "Replication ID";
    case mdb::ColumnType::Memo:
      return "Memo/Hyperlink (255)";
    case mdb::ColumnType::Ole:
      return "OLE (255)";
    case mdb::ColumnType::Decimal:
      return "Numeric (" + std::to_string(c.precision) + ", " + std::to_string(c.scale) + ")";
    default: {
      char b[32];
      std::snprintf(b, sizeof b, "Unknown_%04x", static_cast<unsigned>(c.type));
      return b;
    }
  }
}

std::string OurSchema(const mdb::SystemCatalog& catalog, const mdb::Definition& d, bool jet3) {
  std::string text;
  for (const auto i : d.InOrder()) {
    const auto& c = d.columns[i];
    text += c.name + ": ";
    if (c.type == mdb::ColumnType::Text) {
      text += "Text (" + std::to_string(jet3 ? c.length : c.length / 2) + ")";
    } else {
      text += TypeText(c);
    }
    const auto* required = mdb::Find(catalog.PropertiesOf(d.name), c.name, "Required");
    const bool is_required = required != nullptr && *required == mdb::Datum(true);
    text += is_required || c.type == mdb::ColumnType::Boolean ? " NOT NULL\n" : "\n";
  }
  return text;
}

// "name: type" of the lines that mdb-schema prints for a table.
std::string TheirSchema(const std::string& path, const std::string& table) {
  std::string text;
  for (std::string line :
       base::Split(mdb_test::Output("mdb-schema --no-default-values -T " + mdb_test::Quoted(table) + " " +
                                    mdb_test::Quoted(path) + " access 2>/dev/null"),
                   "\n")) {
    const auto end = line.find("]\t");
    if (line.compare(0, 2, "\t[") != 0 || end == std::string::npos) continue;
    std::string type = line.substr(line.find_first_not_of('\t', end + 1));
    while (!type.empty() && (type.back() == ' ' || type.back() == ',')) type.pop_back();
    text += line.substr(2, end - 2) + ": " + type + "\n";
  }
  return text;
}

// Calls `look(path, catalog, table, header)` for each table of every file, with a trace.
template <typename Visit>
void ForEachTable(Visit&& look) {
  for (const auto& path : FilesOfMdbtools()) {
    const auto pages = mdb_test::Load(path);
    const mdb::SystemCatalog catalog(*pages);
    for (const auto& o : catalog.Objects()) {
      if (o.type != mdb::Object::Table) continue;
      SCOPED_TRACE(path + " " + o.name);
      look(path, catalog, o.name, pages->Header());
    }
  }
}

TEST(Mdbtools, ColumnsAndTypesAreReadAlike) {
  SKIP_WITHOUT_MDBTOOLS();
  std::size_t tables = 0;
  ForEachTable([&](const std::string& path, const mdb::SystemCatalog& catalog, const std::string& table,
                   const mdb::FileHeader& header) {
    EXPECT_EQ(OurSchema(catalog, *catalog.Table(table), header.Jet3()), TheirSchema(path, table));
    ++tables;
  });
  EXPECT_GT(tables, 100U);
}

// mdb-schema prints at most one relationship of a table, so that each of its own must be among ours.
TEST(Mdbtools, RelationshipsAreReadAlike) {
  SKIP_WITHOUT_MDBTOOLS();
  std::size_t relationships = 0;
  ForEachTable([&](const std::string& path, const mdb::SystemCatalog& catalog, const std::string& table,
                   const mdb::FileHeader&) {
    const std::string theirs =
        mdb_test::Output("mdb-schema --no-indexes --relations -T " + mdb_test::Quoted(table) + " " +
                         mdb_test::Quoted(path) + " mysql 2>/dev/null");
    const auto from = theirs.find(" FOREIGN KEY ");
    if (from == std::string::npos) return;
    const std::string text = theirs.substr(from + 1, theirs.find('\n', from) - from - 1);
    bool found = false;
    for (const auto& r : catalog.Relationships()) {
      std::string ours = "FOREIGN KEY (`" + base::Join(r.columns, "`, `") + "`) REFERENCES `" +
                         r.referenced_table + "`(`" + base::Join(r.referenced_columns, "`, `") + "`)";
      if ((r.flags & mdb::TableRelationship::kCascadesUpdates) != 0) ours += " ON UPDATE CASCADE";
      if ((r.flags & mdb::TableRelationship::kCascadesDeletes) != 0) ours += " ON DELETE CASCADE";
      found = found || (r.table == table && ours + ";" == text);
    }
    EXPECT_TRUE(found) << text;
    ++relationships;
  });
  EXPECT_GE(relationships, mdb_test::CorpusFolder().empty() ? 2U : 6U);
}

TEST(Mdbtools, TablesShownToUsersAreTheSame) {
  SKIP_WITHOUT_MDBTOOLS();
  for (const auto& path : FilesOfMdbtools()) {
    SCOPED_TRACE(path);
    const auto pages = mdb_test::Load(path);
    const mdb::SystemCatalog catalog(*pages);
    const auto list = [&](mdb::Object::Type type) {
      std::vector<std::string> names;
      for (const auto& o : catalog.Objects())
        if (o.type == type && !o.IsSystem()) names.push_back(o.name);
      std::sort(names.begin(), names.end());
      return names;
    };
    const auto theirs = [&](const std::string& order) {
      auto names = base::Split(mdb_test::Output(order + mdb_test::Quoted(path) + " 2>/dev/null"), "\n");
      // It does not know those that Access keeps for itself.
      std::erase_if(names, [](const auto& n) { return n.starts_with("~sq_"); });
      std::sort(names.begin(), names.end());
      names.erase(names.begin(),
                  std::find_if(names.begin(), names.end(), [](const auto& n) { return !n.empty(); }));
      return names;
    };
    EXPECT_EQ(list(mdb::Object::Table), theirs("mdb-tables -1 "));
    EXPECT_EQ(list(mdb::Object::Query), theirs("mdb-queries -L -1 "));
  }
}

}  // namespace
