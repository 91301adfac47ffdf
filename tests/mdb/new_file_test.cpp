#include "mdb/schema/new_file.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/outside.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"
#include "mdb/verify/verify.h"

namespace {

constexpr std::uint16_t kOrders[] = {1033, 1034, 3082};

mdb::MemoryPages MakeNew(std::uint16_t order) {
  mdb::Bytes bytes = mdb::MakeDatabase(order, base::MakeDate(2026, 11, 21));
  const mdb::FileHeader header = mdb::ReadHeader(bytes);
  return {header, std::move(bytes)};
}

TEST(MakeDatabase, HasTheHeaderOfItsSortOrder) {
  for (const std::uint16_t order : kOrders) {
    const auto pages = MakeNew(order);
    EXPECT_EQ(pages.Header().version, mdb::Version::Jet4);
    EXPECT_EQ(pages.Header().order, order);
    EXPECT_EQ(pages.Header().order_version, 0);
    EXPECT_EQ(pages.Header().code_page, 1252);
    EXPECT_EQ(pages.Header().key, 0U);
    EXPECT_EQ(pages.Header().password, "");
    EXPECT_EQ(pages.Count(), 16U);
  }
  EXPECT_THROW(mdb::MakeDatabase(1036, base::Date{}), base::Error);
}

TEST(MakeDatabase, HoldsItsSystemTables) {
  auto pages = MakeNew(3082);
  const mdb::SystemCatalog catalog(pages);
  std::vector<std::string> names;
  for (const auto& o : catalog.Objects()) {
    EXPECT_TRUE(o.IsSystem()) << o.name;
    names.push_back(o.name);
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"Databases", "MSysACEs", "MSysDb", "MSysObjects", "MSysQueries",
                                             "MSysRelationships", "Relationships", "Tables"}));
  EXPECT_TRUE(catalog.Relationships().empty());
}

TEST(MakeDatabase, DatesItsObjects) {
  auto pages = MakeNew(3082);
  const auto objects = mdb::ReadDefinition(pages, 2);
  const auto created = objects.ByName("DateCreate");
  ASSERT_TRUE(created);
  int rows = 0;
  mdb::WalkRows(pages, objects, [&](mdb::RowId, const mdb::Row& row) {
    EXPECT_EQ(row[*created], mdb::Datum(base::MakeDate(2026, 11, 21)));
    return ++rows > 0;
  });
  EXPECT_EQ(rows, 8);
}

// Neither do we, nor the independent checker where it is here.
TEST(MakeDatabase, NobodyFindsAnything) {
  for (const std::uint16_t order : kOrders) {
    auto pages = MakeNew(order);
    for (const auto& finding : mdb::Verify(pages).findings) ADD_FAILURE() << order << ": " << finding.text;
    EXPECT_EQ(mdb_test::RunChecker(pages.Stored(), true), "") << order;
  }
}

TEST(MakeDatabase, MdbtoolsListsItsTables) {
  if (!mdb_test::HasMdbtools()) GTEST_SKIP() << "no mdbtools";
  const auto bytes = MakeNew(3082).Stored();
  EXPECT_EQ(mdb_test::Mdbtools("mdb-tables", "-S -1", bytes),
            "MSysObjects\nMSysACEs\nMSysQueries\nMSysRelationships\n");
  EXPECT_EQ(mdb_test::Mdbtools("mdb-export", "-H -b strip", bytes, "MSysACEs").substr(0, 2), "2,");
}

// Password and header fields come back from the stored bytes.
TEST(MakeHeader, ComesBackWithItsPassword) {
  mdb::FileHeader c;
  c.order = 1034;
  c.created = 46347.25;
  c.stamp = 0x12345678;
  c.password = "Ñandú 12345678901234";  // 20 characters, the most that there is room for
  const mdb::FileHeader loaded = mdb::ReadHeader(mdb::MakeHeader(c));
  EXPECT_EQ(loaded.password, c.password);
  EXPECT_EQ(loaded.created, c.created);
  EXPECT_EQ(loaded.stamp, c.stamp);
  EXPECT_EQ(loaded.order, 1034);
  c.password += "5";
  EXPECT_THROW(mdb::MakeHeader(c), base::Error);
  c.password.clear();
  c.key = 1;
  EXPECT_THROW(mdb::MakeHeader(c), base::Error);
}

// A file that nobody has opened since it was made is the same, byte by byte: one put together apart from us
// and, where it is here, one of the original program.
TEST(MakeHeader, IsThatOfAFileOfOthers) {
  const auto sample = mdb_test::LoadSample("empty.mdb");
  EXPECT_EQ(mdb::MakeHeader(sample->Header()), *sample->Read(0));
  for (const std::string& path : mdb_test::CorpusFiles()) {
    if (path.find("adox_jet4.mdb") == std::string::npos) continue;
    const auto original = mdb_test::Load(path);
    EXPECT_EQ(mdb::MakeHeader(original->Header()), *original->Read(0));
  }
}

}  // namespace
