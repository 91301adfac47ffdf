// Damaged files: whatever a byte says, reading ends, soon, with rows or with base::Error.
#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "engine_mdb/query_text.h"
#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/pages/page_map.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"

namespace {

struct Tally {
  std::size_t read_count = 0, errors = 0, rows = 0;
};

template <typename Step>
void Try(Tally& tally, Step&& step) {
  try {
    step();
    ++tally.read_count;
  } catch (const base::Error& e) {
    EXPECT_FALSE(e.Description().empty());
    ++tally.errors;
  }
}

void ReadTable(mdb::PageFile& pages, const mdb::Object& o, Tally& tally) {
  const auto definition = mdb::ReadDefinition(pages, static_cast<mdb::PageNumber>(o.id));
  std::vector<mdb::RowId> rows;
  Try(tally, [&] {
    mdb::WalkRows(pages, definition, [&](mdb::RowId id, const mdb::Row&) {
      rows.push_back(id);
      ++tally.rows;
      return rows.size() < 3000;
    });
  });
  for (std::size_t i = 0; i < rows.size(); i += 7)
    Try(tally, [&] { mdb::ReadRow(pages, definition, rows[i]); });
  for (const auto map : {definition.owned_pages, definition.free_pages}) {
    Try(tally, [&] { mdb::PagesOfMap(pages, map); });
    Try(tally, [&] { mdb::IsInMap(pages, map, 40); });
  }
  for (const auto& index : definition.reals) Try(tally, [&] { mdb::ReadMap(pages, index.map); });
}

// All that this side of the module reads.
Tally ReadAll(const mdb::Bytes& bytes) {
  Tally tally;
  Try(tally, [&] {
    const auto header = mdb::ReadHeader(bytes);
    mdb::MemoryPages pages(header, bytes);
    Try(tally, [&] { mdb::ReadMap(pages, {1, 0}); });
    const mdb::SystemCatalog catalog(pages);
    Try(tally, [&] { catalog.Relationships(); });
    for (const auto& o : catalog.Objects()) {
      Try(tally, [&] { mdb::ReadProperties(header, o.properties); });
      if (o.type == mdb::Object::Table) Try(tally, [&] { ReadTable(pages, o, tally); });
      if (o.type == mdb::Object::Query) Try(tally, [&] { engine_mdb::QueryText(catalog.QueryOf(o.name)); });
    }
  });
  return tally;
}

class Corrupter {
 public:
  explicit Corrupter(unsigned seed) : random_(seed) {}

  // A few bytes changed: mostly those that say where things are, at the start and the end of a page.
  void Corrupt(mdb::Bytes& bytes, std::size_t page) {
    for (unsigned i = 0, times = 1 + random_() % 8; i < times; ++i) {
      const std::size_t base = random_() % (bytes.size() / page) * page;
      std::size_t place = random_() % page;
      if (const unsigned which = random_() % 4; which == 0) {
        place = random_() % 128;
      } else if (which == 1) {
        place = page - 1 - random_() % 256;
      }
      Change(bytes, base + place);
    }
  }

 private:
  void Change(mdb::Bytes& bytes, std::size_t place) {
    constexpr std::uint32_t kNotables[] = {0,    1,      2,          0x7F,       0x80,
                                           0xFF, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    switch (random_() % 4) {
      case 0:
        bytes[place] ^= static_cast<std::uint8_t>(1U << random_() % 8);
        break;
      case 1:
        bytes[place] = static_cast<std::uint8_t>(random_());
        break;
      default: {
        const std::uint32_t n = kNotables[random_() % std::size(kNotables)];
        const std::size_t width =
            std::min<std::size_t>(std::size_t{1} << random_() % 3, bytes.size() - place);
        for (std::size_t i = 0; i < width; ++i) bytes[place + i] = static_cast<std::uint8_t>(n >> (8 * i));
      }
    }
  }
  std::mt19937 random_;
};

class Damaged : public testing::TestWithParam<std::string> {};

TEST_P(Damaged, AreReadToTheirEndOrRefused) {
  const auto integer = mdb_test::Load(GetParam());
  const mdb::Bytes bytes = integer->Stored();
  const auto sound = ReadAll(bytes);
  ASSERT_EQ(sound.errors, 0U);
  ASSERT_GT(sound.read_count, 30U);
  std::size_t corrupted = 0;
  for (unsigned seed = 0; seed < 700; ++seed) {
    SCOPED_TRACE(seed);
    mdb::Bytes copy = bytes;
    Corrupter(seed).Corrupt(copy, integer->PageSize());
    const auto before = std::chrono::steady_clock::now();
    corrupted += ReadAll(copy).errors > 0 ? 1 : 0;
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(10));
  }
  // Most changes hit free space; enough of them must have been noticed for the test to mean anything.
  EXPECT_GT(corrupted, 30U);
}

// A file cut short must never pass for one with fewer rows.
TEST_P(Damaged, CutShortLoseNoRowInSilence) {
  const auto integer = mdb_test::Load(GetParam());
  const mdb::Bytes& bytes = integer->Stored();
  const auto sound = ReadAll(bytes);
  for (std::size_t length = 0; length < bytes.size(); length += integer->PageSize() / 2 + 100) {
    const auto cut = ReadAll({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)});
    EXPECT_TRUE(cut.errors > 0 || cut.rows == sound.rows) << length;
  }
}

std::vector<std::string> Files() {
  std::vector<std::string> paths;
  for (const char* name :
       {"empty.mdb", "types97.mdb", "types.mdb", "types.accdb", "texts_3082.mdb", "long.mdb", "moved97.mdb",
        "moved.mdb", "compound.mdb", "relations97.mdb", "relations.mdb", "queries.mdb", "names.mdb"})
    paths.push_back(mdb_test::SamplePath(name));
  for (const std::string& path : mdb_test::CorpusFiles()) paths.push_back(path);
  return paths;
}

INSTANTIATE_TEST_SUITE_P(Files, Damaged, testing::ValuesIn(Files()),
                         [](const auto& c) { return mdb_test::CaseName(c.param); });

}  // namespace
