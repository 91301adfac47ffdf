// What an opening does with the journals that it may find.
#include "mdb/pages/journal.h"

#include <gtest/gtest.h>

#include <functional>

#include "mdb/bare_file.h"
#include "mdb/pages/disk_pages.h"
#include "mdb/pages/lock.h"
#include "mdb/simulated_disk.h"

namespace {

using mdb::Bytes;
using mdb::DiskPages;
using mdb_test::SampleDatabase;
using mdb_test::SimulatedDisk;

const std::string kPath = "Personal.mdb", kJournal = "Personal.mdb-diario";
constexpr std::size_t kRecord = 16 + 8 * 4 + 4096;

// A commit of pages 2 and 3 that grows the base from 4 pages to 5, cut when page 2 was written by half and
// the rest not at all.
struct CutCommit {
  Bytes before = SampleDatabase(4), halfway, journal;

  CutCommit() {
    SimulatedDisk disk;
    mdb::JournalData d;
    d.before = 4;
    d.after = 5;
    d.count = 2;
    d.mark = 77;
    d.first_checksum = mdb::Checksum(mdb::View(before).first(4096));
    mdb::JournalWriter writer(disk, kPath, d);
    const Bytes fresh(4096, 0xEE);
    halfway = before;
    for (const std::size_t n : {2U, 3U})
      writer.Add(static_cast<mdb::PageNumber>(n), mdb::View(before).subspan(n * 4096, 4096), fresh);
    writer.Seal();
    std::copy(fresh.begin(), fresh.begin() + 2048, halfway.begin() + 2 * 4096);
    journal = disk.Contents(kJournal);
  }
};

struct Result {
  std::string error;
  Bytes base;
  bool has_journal = false;
};

Result Open(const Bytes& base, const Bytes& journal) {
  const auto disk = std::make_shared<SimulatedDisk>();
  disk->Put(kPath, base);
  disk->Put(kJournal, journal);
  Result r;
  try {
    EXPECT_EQ(DiskPages::Open(kPath, false, disk)->ReadOnlyReason(), "");
  } catch (const base::Error& e) {
    r.error = e.Description();
  }
  r.base = disk->Contents(kPath);
  r.has_journal = disk->Exists(kJournal);
  return r;
}

TEST(Journal, HasTheLayoutThatIsWritten) {
  const CutCommit c;
  ASSERT_EQ(c.journal.size(), 64 + 2 * kRecord + 24);
  EXPECT_EQ(std::string(c.journal.begin(), c.journal.begin() + 7), "IDMDIAR");
  EXPECT_EQ(mdb::U32(c.journal, 8), 1U);
  EXPECT_EQ(mdb::U32(c.journal, 12), 4096U);
  EXPECT_EQ(mdb::U32(c.journal, 16), 4U);
  EXPECT_EQ(mdb::U32(c.journal, 20), 5U);
  EXPECT_EQ(mdb::U32(c.journal, 24), 2U);
  EXPECT_EQ(mdb::U64(c.journal, 32), 77U);
  EXPECT_EQ(mdb::U32(c.journal, 64), 2U);
  EXPECT_EQ(mdb::U32(c.journal, 64 + kRecord), 3U);
  EXPECT_TRUE(
      std::equal(c.before.begin() + 2 * 4096, c.before.begin() + 3 * 4096, c.journal.begin() + 64 + 48));
  EXPECT_EQ(std::string(c.journal.end() - 24, c.journal.end() - 17), "IDMFIN!");
}

TEST(Journal, ACompleteOneIsRolledBackAndRemoved) {
  const CutCommit c;
  const Result r = Open(c.halfway, c.journal);
  EXPECT_EQ(r.error, "");
  EXPECT_EQ(r.base, c.before);
  EXPECT_FALSE(r.has_journal);
  // Also when the file had grown, whole or in part, and when not a byte had been written.
  for (const std::size_t more : {4096U, 1000U, 0U}) {
    Bytes base = c.halfway;
    base.resize(base.size() + more);
    EXPECT_EQ(Open(base, c.journal).base, c.before);
  }
  EXPECT_EQ(Open(c.before, c.journal).base, c.before);
}

TEST(Journal, OneWithoutItsEndIsIgnoredAndRemoved) {
  const CutCommit c;
  std::vector<Bytes> journals;
  for (const std::size_t length :
       {0UL, 1UL, 63UL, 64UL, 64 + kRecord, c.journal.size() - 24, c.journal.size() - 1})
    journals.emplace_back(c.journal.begin(), c.journal.begin() + static_cast<std::ptrdiff_t>(length));
  // An end of which any piece did not reach the disk.
  for (const std::size_t rest : {24U, 16U, 8U})
    for (const std::size_t how_many : {1U, 8U}) {
      journals.push_back(c.journal);
      std::fill_n(journals.back().end() - static_cast<std::ptrdiff_t>(rest), how_many, std::uint8_t{0});
    }
  // A header that did not: its count would ask for more than the file has.
  journals.push_back(c.journal);
  mdb::Put32(journals.back(), 24, 0xFFFFFFFF);
  for (const auto& journal : journals) {
    SCOPED_TRACE(journal.size());
    const Result r = Open(c.before, journal);
    EXPECT_EQ(r.error, "");
    EXPECT_EQ(r.base, c.before);
    EXPECT_FALSE(r.has_journal);
  }
}

TEST(Journal, AFalseCountWithItsSumRightAsksForNoMemory) {
  CutCommit c;
  mdb::Put32(c.journal, 24, 0xFFFFFFFF);
  mdb::Put64(c.journal, 56, mdb::Checksum(mdb::View(c.journal).first(56)));
  const Result r = Open(c.before, c.journal);
  EXPECT_EQ(r.error, "");
  EXPECT_FALSE(r.has_journal);
}

TEST(Journal, DamageBehindASealIsRefusedAndNothingTouched) {
  const CutCommit c;
  const std::size_t end = c.journal.size() - 24;
  for (const std::size_t pos : {64UL, 72UL, 80UL, 64UL + 48, 64 + kRecord, 64 + kRecord + 8, end - 1}) {
    SCOPED_TRACE(pos);
    Bytes journal = c.journal;
    journal[pos] ^= 1;
    const Result r = Open(c.halfway, journal);
    EXPECT_NE(r.error.find("está dañado"), std::string::npos) << r.error;
    EXPECT_EQ(r.base, c.halfway);
    EXPECT_TRUE(r.has_journal);
  }
}

TEST(Journal, OneOfAnotherVersionIsLeftToIt) {
  CutCommit c;
  mdb::Put32(c.journal, 8, 2);
  mdb::Put64(c.journal, 56, mdb::Checksum(mdb::View(c.journal).first(56)));
  const Result r = Open(c.halfway, c.journal);
  EXPECT_NE(r.error.find("otra versión del programa"), std::string::npos) << r.error;
  EXPECT_EQ(r.base, c.halfway);
  EXPECT_TRUE(r.has_journal);
}

TEST(Journal, ABaseThatWasReplacedOrChangedSinceIsNotTouched) {
  const CutCommit c;
  const std::vector<std::pair<const char*, std::function<void(Bytes&)>>> changes{
      {"another header", [](Bytes& b) { b[0xE02] ^= 1; }},
      {"a journalled page that is neither old nor new", [](Bytes& b) { b[3 * 4096 + 600] ^= 1; }},
      {"a sector that mixes old and new", [](Bytes& b) { b[2 * 4096 + 2048] = 0xEE; }},
      {"shorter", [](Bytes& b) { b.resize(3 * 4096); }},
      {"longer than the commit made it", [](Bytes& b) { b.resize(5 * 4096 + 1); }}};
  for (const auto& [what, change] : changes) {
    SCOPED_TRACE(what);
    Bytes base = c.halfway;
    change(base);
    const Result r = Open(base, c.journal);
    EXPECT_NE(r.error.find("no es la que ese diario conoce"), std::string::npos) << r.error;
    EXPECT_EQ(r.base, base);
    EXPECT_TRUE(r.has_journal);
  }
}

TEST(Journal, IsNotRolledBackWhileItsWriterLives) {
  const CutCommit c;
  const auto disk = std::make_shared<SimulatedDisk>();
  disk->Put(kPath, c.halfway);
  disk->Put(kJournal, c.journal);
  const auto writer = disk->Open(kJournal, base::FileMode::Write);
  ASSERT_TRUE(writer->Lock(mdb::kWriterByte, 1, true));
  EXPECT_THROW(DiskPages::Open(kPath, false, disk), base::Error);
  EXPECT_THROW(DiskPages::Open(kPath, true, disk), base::Error);
  EXPECT_EQ(disk->Contents(kPath), c.halfway);
  EXPECT_EQ(disk->Contents(kJournal), c.journal);
}

TEST(Journal, OpeningForReadingRollsBackToo) {
  const CutCommit c;
  const auto disk = std::make_shared<SimulatedDisk>();
  disk->Put(kPath, c.halfway);
  disk->Put(kJournal, c.journal);
  const auto p = DiskPages::Open(kPath, true, disk);
  EXPECT_EQ(p->ReadOnlyReason(), "La base se abrió solo para leer");
  EXPECT_EQ(disk->Contents(kPath), c.before);
  EXPECT_FALSE(disk->Exists(kJournal));
}

// A reader that could not roll back keeps seeing the base as it was after somebody else did.
TEST(Journal, AReaderOverTheJournalOutlivesTheRollback) {
  const CutCommit c;
  const auto disk = std::make_shared<SimulatedDisk>();
  disk->Put(kPath, c.before);  // nothing was written: the date will be the same
  disk->Put(kJournal, c.journal);
  disk->SetReadOnly(true);
  const auto p = DiskPages::Open(kPath, true, disk);
  EXPECT_EQ(*p->Read(2), Bytes(c.before.begin() + 8192, c.before.begin() + 12288));
  disk->SetReadOnly(false);
  disk->Delete(kJournal);
  EXPECT_EQ(*p->Read(3), Bytes(c.before.begin() + 12288, c.before.end()));
}

}  // namespace
