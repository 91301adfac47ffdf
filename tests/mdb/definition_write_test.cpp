#include <gtest/gtest.h>

#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/definitions/definition_internal.h"
#include "mdb/outside.h"
#include "mdb/pages/page_map.h"
#include "mdb/samples.h"
#include "mdb/schema/new_file.h"

namespace {

mdb::MemoryPages MakeNew() {
  mdb::Bytes bytes = mdb::MakeDatabase(3082, base::MakeDate(2026, 11, 21));
  const mdb::FileHeader header = mdb::ReadHeader(bytes);
  return {header, std::move(bytes)};
}

// What is read from the pages, serialized: two definitions are alike exactly when these bytes are.
mdb::Bytes PageBytes(mdb::PageFile& pages, mdb::PageNumber number) {
  return mdb::SerializeDefinition(mdb::ReadDefinition(pages, number));
}

mdb::Column Text(std::uint16_t number, std::size_t letters) {
  mdb::Column c;
  c.name = std::to_string(number);
  c.name.resize(letters, 'x');
  c.type = mdb::ColumnType::Text;
  c.number = c.variable = number;
  c.lcid = 3082;
  c.length = 510;
  return c;
}

mdb::Definition TableOfTexts(std::uint16_t count, std::size_t letters) {
  mdb::Definition d;
  for (std::uint16_t i = 0; i < count; ++i) d.columns.push_back(Text(i, letters));
  d.max_columns = d.variables = count;
  return d;
}

// Every table of every file, written again in place: the same pages, the same definition, a sound file.
TEST(WriteDefinition, WritesTheTablesOfOthersAsTheyWere) {
  int tables = 0;
  for (const auto& path : mdb_test::EveryFile()) {
    SCOPED_TRACE(path);
    const auto pages = mdb_test::Load(path);
    if (pages->Header().version != mdb::Version::Jet4) continue;
    const mdb::SystemCatalog catalog(*pages);
    for (const auto& o : catalog.Objects()) {
      if (o.type != mdb::Object::Table) continue;
      SCOPED_TRACE(o.name);
      auto d = mdb::ReadDefinition(*pages, static_cast<mdb::PageNumber>(o.id));
      const auto before = mdb::SerializeDefinition(d);
      // The whole length is what the original program wrote too.
      EXPECT_EQ(before.size(), mdb::U32(*pages->Read(d.Page()), 8));
      const auto its = d.pages;
      const auto free_bytes = mdb::U16(*pages->Read(d.Page()), 2);
      mdb::WriteDefinition(*pages, d);
      EXPECT_EQ(d.pages, its);
      EXPECT_EQ(mdb::U16(*pages->Read(d.Page()), 2), free_bytes);
      EXPECT_EQ(PageBytes(*pages, d.Page()), before);
      ++tables;
    }
    pages->Commit();
    if (pages->Header().key == 0) {  // the checker does not decrypt
      EXPECT_EQ(mdb_test::RunChecker(pages->Stored(), false), "");
    }
  }
  EXPECT_GT(tables, 50);
}

TEST(WriteDefinition, GrowsOverPagesAndShrinksBackKeepingTheFirst) {
  auto pages = MakeNew();
  auto d = TableOfTexts(3, 10);
  mdb::WriteDefinition(pages, d);
  ASSERT_EQ(d.pages.size(), 1U);
  const auto first = d.Page();
  d = TableOfTexts(255, 60);
  d.pages = {first};
  mdb::WriteDefinition(pages, d);
  // 63 + 255 * (25 + 2 + 120) + 2 bytes: 4096 on the first page, 4088 on each other.
  ASSERT_EQ(d.pages.size(), 10U);
  EXPECT_EQ(d.Page(), first);
  EXPECT_EQ(PageBytes(pages, first), mdb::SerializeDefinition(d));
  EXPECT_EQ(mdb::ReadDefinition(pages, first).pages, d.pages);
  const auto all = pages.Count();
  auto shorter = TableOfTexts(100, 10);
  shorter.pages = d.pages;
  mdb::WriteDefinition(pages, shorter);
  EXPECT_EQ(shorter.pages.size(), 2U);
  EXPECT_EQ(PageBytes(pages, first), mdb::SerializeDefinition(shorter));
  // The pages that it gave back serve the next one.
  auto other = TableOfTexts(200, 60);
  mdb::WriteDefinition(pages, other);
  EXPECT_EQ(pages.Count(), all);
}

// A definition that ends exactly with its page has no second one; one byte more has.
TEST(WriteDefinition, FillsAPageToItsLastByte) {
  // Names have whole characters of two bytes: 65 bytes and 27 a column are odd or even with the columns.
  for (const std::size_t surplus : {0U, 1U}) {
    auto pages = MakeNew();
    const std::uint16_t columns = 31;
    std::size_t missing = 4096 + surplus - (63 + columns * 27 + 2);
    ASSERT_EQ(missing % 2, surplus == 0 ? 0U : 1U);
    if (surplus != 0) missing += 1;
    auto d = TableOfTexts(columns, 2);
    missing -= columns * 4;
    for (auto& c : d.columns) {
      const std::size_t letters = std::min<std::size_t>(missing / 2, 62);
      c.name.resize(2 + letters, 'y');
      missing -= letters * 2;
    }
    ASSERT_EQ(missing, 0U);
    mdb::WriteDefinition(pages, d);
    EXPECT_EQ(d.pages.size(), surplus == 0 ? 1U : 2U);
    EXPECT_EQ(mdb::U16(*pages.Read(d.Page()), 2), 0);
    EXPECT_EQ(PageBytes(pages, d.Page()), mdb::SerializeDefinition(d));
  }
}

TEST(WriteDefinition, RefusesWhatTheFormatCannotHold) {
  auto pages = MakeNew();
  auto d = TableOfTexts(256, 5);
  EXPECT_THROW(mdb::WriteDefinition(pages, d), base::Error);
  d = TableOfTexts(3, 5);
  d.reals.emplace_back().parts.resize(11);
  EXPECT_THROW(mdb::WriteDefinition(pages, d), base::Error);
  EXPECT_FALSE(pages.HasChanges());
}

TEST(WriteDefinition, OtherFormatsAreOnlyRead) {
  const auto pages = mdb_test::LoadSample("queries97.mdb");
  auto d = mdb::ReadDefinition(*pages, 2);
  EXPECT_THROW(mdb::WriteDefinition(*pages, d), base::Error);
}

}  // namespace
