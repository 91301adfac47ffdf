#include "mdb/verify/verify.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <random>

#include "base/date.h"
#include "mdb/corpus.h"
#include "mdb/definitions/definition.h"
#include "mdb/outside.h"
#include "mdb/pages/page_map.h"
#include "mdb/samples.h"
#include "mdb/schema/new_file.h"

namespace {

using Severity = mdb::Finding::Severity;

mdb::MemoryPages MakeNew() {
  mdb::Bytes bytes = mdb::MakeDatabase(3082, base::MakeDate(2026, 11, 21));
  const mdb::FileHeader header = mdb::ReadHeader(bytes);
  return {header, std::move(bytes)};
}

std::string Texts(const mdb::Report& report) {
  std::string t;
  for (const auto& h : report.findings) t += h.text + "\n";
  return t;
}

TEST(Verify, FindsNothingInANewFile) {
  auto pages = MakeNew();
  const mdb::Report report = mdb::Verify(pages);
  EXPECT_EQ(Texts(report), "");
  EXPECT_TRUE(report.IsSound());
  EXPECT_EQ(report.tables, 4U);
  EXPECT_EQ(report.indexes, 7U);
  EXPECT_EQ(report.pages, 16U);
}

// Both checkers accept every file that is as it should be.
TEST(Verify, AcceptsEveryFileAsTheOtherCheckerDoes) {
  std::size_t entries = 0, files = 0;
  for (const std::string& path : mdb_test::EveryFile()) {
    SCOPED_TRACE(path);
    const auto pages = mdb_test::Load(path);
    const mdb::Report report = mdb::Verify(*pages);
    EXPECT_TRUE(report.IsSound()) << Texts(report);
    if (pages->Header().key == 0) {  // the other one does not decrypt
      EXPECT_EQ(mdb_test::RunChecker(pages->Stored(), false), "");
    }
    EXPECT_GE(report.tables, 4U);
    EXPECT_GE(report.rows, 16U);  // an empty base of ours has so many
    entries += report.entries;
    ++files;
  }
  std::cout << files << " files, " << entries << " entries\n";
  EXPECT_GE(files, 20U);
}

TEST(Verify, TellsWhatOnlyDriftsAsANote) {
  auto pages = MakeNew();
  auto d = mdb::ReadDefinition(pages, 3);
  mdb::Put32(pages.Modify(3), 16, d.rows + 5);
  mdb::ReservePage(pages);  // and nobody uses it
  const mdb::Report report = mdb::Verify(pages);
  EXPECT_TRUE(report.IsSound());
  ASSERT_EQ(report.findings.size(), 2U) << Texts(report);
  EXPECT_EQ(report.findings[0].text, "Página 3, tabla 'MSysACEs': la definición cuenta " +
                                         std::to_string(d.rows + 5) + " filas y hay " +
                                         std::to_string(d.rows));
  EXPECT_EQ(report.findings[0].page, 3U);
  EXPECT_EQ(report.findings[1].text,
            "Una página no está libre ni la usa nadie (16); compactar la base recupera su lugar");
}

TEST(Verify, TheListEndsAtItsLimitAndErrorsComeBeforeNotes) {
  auto pages = MakeNew();
  mdb::Put32(pages.Modify(2), 16, 99);
  mdb::Put32(pages.Modify(3), 16, 99);
  pages.Modify(15)[2] ^= 1;
  for (const std::size_t limit : {0U, 1U, 2U, 3U}) {
    const mdb::Report report = mdb::Verify(pages, limit);
    EXPECT_EQ(report.findings.size(), std::max<std::size_t>(limit, 1)) << limit;
    EXPECT_FALSE(report.IsSound()) << limit;
  }
}

TEST(Verify, AFileWithoutPagesIsAFinding) {
  mdb::MemoryPages pages(mdb::FileHeader{}, mdb::Bytes(4096));
  EXPECT_FALSE(mdb::Verify(pages).IsSound());
}

// Whatever the bytes, the check ends and throws nothing. Each round changes some bytes of a file, or moves
// pages about, and checks it.
TEST(Verify, EndsOnAnythingThatWasAFile) {
  std::size_t rounds = 0, bad = 0;
  for (const char* file : {"empty.mdb", "compound.mdb", "compound97.mdb", "relations.mdb", "relations97.mdb",
                           "moved.mdb", "queries.mdb", "queries97.mdb", "types.accdb", "long.mdb"}) {
    SCOPED_TRACE(file);
    const auto good = mdb_test::LoadSample(file);
    std::mt19937 random(41);
    const auto one = [&](std::size_t to) { return static_cast<std::size_t>(random()) % to; };
    for (int round = 0; round < 150; ++round, ++rounds) {
      mdb::Bytes bytes = good->Stored();
      const std::size_t page = good->PageSize(), count = bytes.size() / page - 1;
      const std::size_t how_many = 1 + one(round % 3 == 0 ? 200 : 4);
      for (std::size_t k = 0; k < how_many; ++k) {
        const std::size_t base = page * (1 + one(count));
        // Half of the changes hit the first bytes of a page, where its structure is.
        const std::size_t pos = base + one(one(2) == 0 ? 64 : page);
        bytes[pos] = one(3) == 0 ? 0xFF : static_cast<std::uint8_t>(random());
      }
      if (round % 5 == 4) {
        const auto a = static_cast<std::ptrdiff_t>(page * (1 + one(count)));
        const auto b = static_cast<std::ptrdiff_t>(page * (1 + one(count)));
        std::copy_n(bytes.begin() + a, page, bytes.begin() + b);
      }
      if (round % 10 == 9) bytes.resize(page * (1 + one(count)));
      mdb::MemoryPages pages(good->Header(), std::move(bytes));
      mdb::Report report;
      EXPECT_NO_THROW(report = mdb::Verify(pages)) << round;
      bad += report.IsSound() ? 0 : 1;
      EXPECT_FALSE(pages.HasChanges());
    }
  }
  std::cout << rounds << " rounds, " << bad << " with errors\n";
  EXPECT_GT(bad * 2, rounds);
}

}  // namespace
