// Thousands of random inserts, updates and deletes on copies of the samples, read back after each batch, and
// the file looked at by programs that share no code with ours.
#include "mdb/random_rows.h"

#include <gtest/gtest.h>

#include <iostream>
#include <map>
#include <sstream>

#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/exported.h"
#include "mdb/new_base.h"
#include "mdb/samples.h"

namespace {

using mdb_test::ModelledTable;
using mdb_test::Random;

struct Case {
  std::string file;  // its path
  unsigned seed, batches, length;
};
void PrintTo(const Case& c, std::ostream* output) { *output << mdb_test::CaseName(c.file); }

// Random rows do not obey relationships, which are not the concern of whoever writes rows.
std::string WithoutRelationships(const std::string& findings) {
  std::istringstream entry(findings);
  std::string remaining;
  for (std::string line; std::getline(entry, line);)
    if (line.find("elación '") == std::string::npos) remaining += line + "\n";
  return remaining;
}

// How many rows mdb-export prints. Real texts have line ends, so rows are told apart by another mark.
std::size_t OutsideRows(const mdb::Bytes& file, const std::string& table) {
  const std::string mark = "<=fila=>";
  const std::string output =
      mdb_test::Mdbtools("mdb-export", "-H -b strip -R '" + mark + "'", file, mdb_test::Quoted(table));
  std::size_t rows = 0;
  for (auto p = output.find(mark); p != std::string::npos; p = output.find(mark, p + 1)) ++rows;
  return rows;
}

class RandomChanges : public testing::TestWithParam<Case> {};

TEST_P(RandomChanges, LeaveTheRowsAndIndexesOfTheModel) {
  const Case& test_case = GetParam();
  const auto pages = mdb_test::Load(test_case.file);
  const mdb::SystemCatalog catalog(*pages);
  Random random(test_case.seed);
  mdb_test::Counts all;
  unsigned tables = 0;
  std::map<std::string, std::size_t> rows;  // by table
  for (const auto& object : catalog.Objects()) {
    if (object.type != mdb::Object::Table || object.IsSystem() || object.name.starts_with("MSys")) continue;
    SCOPED_TRACE(object.name);
    ModelledTable table(*pages, static_cast<mdb::PageNumber>(object.id), object.name);
    ASSERT_EQ(mdb::NotWritableReason(pages->Header(), table.Def()), "");
    for (unsigned batch = 0; batch < test_case.batches; ++batch) {
      ASSERT_NO_FATAL_FAILURE(
          table.Change(random, batch % 10 == 0 ? test_case.length * 5 : test_case.length));
      if (batch % 4 == 0) {
        ASSERT_NO_FATAL_FAILURE(table.Compare());
      }
      if (batch % 16 == 5) pages->Commit();
    }
    ASSERT_NO_FATAL_FAILURE(table.Rotate());
    ASSERT_NO_FATAL_FAILURE(table.Compare());
    if (tables % 5 == 2) {
      ASSERT_NO_FATAL_FAILURE(table.DeleteAll());
      ASSERT_NO_FATAL_FAILURE(table.Compare());
      ASSERT_NO_FATAL_FAILURE(table.Change(random, test_case.length));
    }
    ++tables;
    rows[object.name] = table.Rows().size();
    all.inserted += table.counts.inserted;
    all.changed += table.counts.changed;
    all.deleted += table.counts.deleted;
    all.rejected += table.counts.rejected;
  }
  ASSERT_GT(tables, 0U);
  pages->Commit();
  EXPECT_EQ(mdb_test::RunChecker(pages->Stored(), false), "");
  for (const auto& [name, count] : rows) {
    if (mdb_test::HasMdbtools()) {
      EXPECT_EQ(OutsideRows(pages->Stored(), name), count) << name;
    }
  }
  EXPECT_EQ(WithoutRelationships(mdb_test::Findings(*pages, false)), "");
  std::cout << test_case.file << ": " << tables << " tables, " << all.inserted << " inserts, " << all.changed
            << " updates, " << all.deleted << " deletes, " << all.rejected << " batches refused\n";
  EXPECT_GT(all.Done(), 1000U);
}

std::vector<Case> Cases() {
  std::vector<Case> cases;
  const auto add = [&](const std::string& path, unsigned batches, unsigned length) {
    cases.push_back({path, static_cast<unsigned>(cases.size() + 1), batches, length});
  };
  struct Given {
    const char* name;
    unsigned batches, length;
  };
  for (const Given& g :
       {Given{"compound.mdb", 120, 40}, Given{"types.mdb", 40, 20}, Given{"moved.mdb", 120, 30},
        Given{"relations.mdb", 120, 30}, Given{"long.mdb", 60, 12}, Given{"texts.mdb", 60, 40},
        Given{"texts_3082.mdb", 60, 40}, Given{"texts_1034.mdb", 60, 40}, Given{"names.mdb", 80, 20},
        Given{"queries.mdb", 80, 20}})
    add(mdb_test::SamplePath(g.name), g.batches, g.length);
  if (mdb_test::CorpusFolder().empty()) return cases;
  for (const Given& g :
       {Given{"compIndexTestV2000.mdb", 120, 40}, Given{"compIndexTestV2003.mdb", 120, 40},
        Given{"delTestV2000.mdb", 120, 40}, Given{"delColTestV2000.mdb", 120, 40},
        Given{"fixedNumericTestV2000.mdb", 80, 20}, Given{"indexTestV2000.mdb", 120, 30},
        Given{"indexTestV2003.mdb", 120, 30}, Given{"overflowTestV2000.mdb", 120, 40},
        Given{"pivot.mdb", 120, 30}, Given{"test2V2000.mdb", 60, 12},
        Given{"testIndexCodes_7c04f9e8.mdb", 24, 20}, Given{"testIndexPropertiesV2000.mdb", 80, 20},
        Given{"weirdObjectNames.mdb", 80, 20}})
    add(mdb_test::CorpusFolder() + "/" + g.name, g.batches, g.length);
  return cases;
}
INSTANTIATE_TEST_SUITE_P(Files, RandomChanges, testing::ValuesIn(Cases()),
                         [](const auto& c) { return mdb_test::CaseName(c.param.file); });

}  // namespace
