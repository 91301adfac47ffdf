// A commit cut, failing or out of room at each of its calls: the file is as before or as after.
#include <gtest/gtest.h>

#include "mdb/bare_file.h"
#include "mdb/pages/disk_pages.h"
#include "mdb/simulated_disk.h"

namespace {

using mdb::Bytes;
using mdb::DiskPages;
using mdb_test::Cut;
using mdb_test::SampleDatabase;
using mdb_test::SimulatedDisk;
using Loss = SimulatedDisk::Loss;
using Disk = std::shared_ptr<SimulatedDisk>;

const std::string kPath = "a.mdb", kJournal = "a.mdb-diario";
constexpr mdb::PageNumber kPages = 7;
constexpr std::uint32_t kKeys[] = {0, 0x4D2B11A7};

Disk DiskWithDatabase(std::uint32_t key) {
  auto disk = std::make_shared<SimulatedDisk>();
  disk->Put(kPath, SampleDatabase(kPages, key));
  return disk;
}

// Changes whole pages, single sectors and the header's page, and grows the file by three pages.
void Change(DiskPages& p) {
  p.Modify(0)[0xE00] ^= 0x40;
  for (auto& b : p.Modify(1)) b = static_cast<std::uint8_t>(b + 1);
  p.Modify(3)[10] ^= 0xFF;
  p.Modify(4)[4095] ^= 0xFF;
  p.Modify(5);  // and not changed after all
  for (int i = 0; i < 3; ++i) {
    Bytes& fresh = p.Modify(p.Add());
    for (std::size_t k = 0; k < fresh.size(); ++k) fresh[k] = static_cast<std::uint8_t>(k * 3 + i);
  }
}

struct States {
  Bytes before, after;
  int calls = 0;  // of a commit that nothing disturbs
};

States Compute(std::uint32_t key) {
  States e;
  const Disk disk = DiskWithDatabase(key);
  e.before = disk->Contents(kPath);
  const auto p = DiskPages::Open(kPath, false, disk);
  Change(*p);
  p->Commit();
  e.after = disk->Contents(kPath);
  e.calls = disk->Calls();
  EXPECT_NE(e.before, e.after);
  EXPECT_EQ(e.after.size(), (kPages + 3U) * 4096);
  EXPECT_FALSE(disk->Exists(kJournal));
  return e;
}

// True when the commit came back to its caller; false when it was cut.
bool CommitUntilCut(const Disk& disk) {
  try {
    const auto p = DiskPages::Open(kPath, false, disk);
    Change(*p);
    p->Commit();
    return true;
  } catch (const Cut&) {
    return false;
  }
}

// Opens and closes; false when cut.
bool OpenUntilCut(const Disk& disk) {
  try {
    const auto p = DiskPages::Open(kPath, false, disk);
    EXPECT_EQ(p->ReadOnlyReason(), "");
    return true;
  } catch (const Cut&) {
    return false;
  }
}

std::vector<std::pair<Loss, int>> Losses() {
  std::vector<std::pair<Loss, int>> v{{Loss::Nothing, 0}, {Loss::All, 0}};
  for (int i = 1; i <= 12; ++i) v.emplace_back(Loss::Random, i);
  return v;
}

TEST(Journal, ACutAtAnyCallLeavesTheFileAsBeforeOrAsAfter) {
  int cases = 0, before = 0, after = 0;
  for (const auto key : kKeys) {
    const States e = Compute(key);
    ASSERT_GT(e.calls, 10);
    for (int cut = 1; cut <= e.calls + 1; ++cut) {
      for (const auto& [loss, seed] : Losses()) {
        SCOPED_TRACE("cut at " + std::to_string(cut) + ", loss " + std::to_string(seed));
        const Disk disk = DiskWithDatabase(key);
        disk->CutAt(cut);
        const bool committed = CommitUntilCut(disk);
        EXPECT_EQ(committed, cut > e.calls);
        std::mt19937 random(static_cast<unsigned>(cut * 100 + seed));
        const Disk later = disk->After(loss, random);
        ASSERT_TRUE(OpenUntilCut(later));
        const Bytes left = later->Contents(kPath);
        ASSERT_TRUE(left == e.before || left == e.after) << disk->Log().back();
        ASSERT_TRUE(!committed || left == e.after);
        EXPECT_FALSE(later->Exists(kJournal));
        ++(left == e.before ? before : after);
        ++cases;
      }
    }
  }
  EXPECT_GT(cases, 300);
  EXPECT_GT(before, 100);
  EXPECT_GT(after, 10);
}

TEST(Journal, ARollbackThatIsCutIsDoneAgain) {
  int cut_count = 0;
  const States e = Compute(0);
  for (int cut = 1; cut <= e.calls; ++cut) {
    for (const auto& [loss, seed] : Losses()) {
      std::mt19937 random(static_cast<unsigned>(cut * 100 + seed));
      const Disk disk = DiskWithDatabase(0);
      disk->CutAt(cut);
      ASSERT_FALSE(CommitUntilCut(disk));
      for (int other = 1;; ++other) {
        SCOPED_TRACE("cut at " + std::to_string(cut) + ", again at " + std::to_string(other) + ", loss " +
                     std::to_string(seed));
        Disk later = disk->After(loss, random);
        const bool had_journal = later->Exists(kJournal);
        later->CutAt(other);
        if (OpenUntilCut(later)) break;
        ++cut_count;
        EXPECT_TRUE(had_journal);  // without one, opening changes nothing
        later = later->After(seed % 2 == 0 ? Loss::Random : Loss::Nothing, random);
        ASSERT_TRUE(OpenUntilCut(later));
        const Bytes left = later->Contents(kPath);
        ASSERT_TRUE(left == e.before || left == e.after);
      }
    }
  }
  EXPECT_GT(cut_count, 500);
}

TEST(Journal, AReaderOfAReadOnlyDiskSeesTheFileRolledBack) {
  int with_overlay = 0;
  for (const auto key : kKeys) {
    const States e = Compute(key);
    for (int cut = 1; cut <= e.calls; ++cut) {
      for (const auto& [loss, seed] : Losses()) {
        SCOPED_TRACE("cut at " + std::to_string(cut) + ", loss " + std::to_string(seed));
        const Disk disk = DiskWithDatabase(key);
        disk->CutAt(cut);
        ASSERT_FALSE(CommitUntilCut(disk));
        std::mt19937 random(static_cast<unsigned>(cut * 100 + seed));
        const Disk later = disk->After(loss, random);
        later->SetReadOnly(true);
        const Bytes on_disk = later->Contents(kPath);
        const auto p = DiskPages::Open(kPath, false, later);
        EXPECT_NE(p->ReadOnlyReason().find("disco es de solo lectura"), std::string::npos);
        Bytes seen;
        for (mdb::PageNumber n = 0; n < p->Count(); ++n) {
          Bytes page = *p->Read(n);
          mdb::EncryptPage(p->Header(), n, page);
          mdb::AppendBytes(seen, page);
        }
        ASSERT_TRUE(seen == e.before || seen == e.after);
        EXPECT_EQ(later->Contents(kPath), on_disk);
        if (seen != on_disk) ++with_overlay;
      }
    }
  }
  EXPECT_GT(with_overlay, 50);
}

TEST(Journal, AFailingCallIsAnErrorAndTheFileAsItWas) {
  for (const auto key : kKeys) {
    const States e = Compute(key);
    for (int failure = 1; failure <= e.calls; ++failure) {
      const Disk disk = DiskWithDatabase(key);
      const auto p = DiskPages::Open(kPath, false, disk);
      disk->FailAt(failure);
      Change(*p);
      std::string error;
      try {
        p->Commit();
      } catch (const base::Error& x) {
        error = x.Description();
      }
      SCOPED_TRACE("failing: " + disk->Log()[static_cast<std::size_t>(failure) - 1] + ": " + error);
      if (error.empty()) {
        // The date, the removal's name and the journal's removal (it is emptied instead) may fail.
        EXPECT_EQ(disk->Contents(kPath), e.after);
        continue;
      }
      EXPECT_NE(error.find("quedó como estaba"), std::string::npos);
      EXPECT_EQ(disk->Contents(kPath), e.before);
      // Also should the current go now.
      std::mt19937 random(static_cast<unsigned>(failure));
      for (int i = 0; i < 20; ++i) {
        const Disk later = disk->After(i == 0 ? Loss::All : Loss::Random, random);
        ASSERT_TRUE(OpenUntilCut(later));
        ASSERT_TRUE(later->Contents(kPath) == e.before);
      }
      EXPECT_EQ(p->Count(), kPages);
      EXPECT_EQ(p->ReadOnlyReason(), "");
      disk->Heal();
      Change(*p);
      p->Commit();
      EXPECT_EQ(disk->Contents(kPath), e.after);
      EXPECT_FALSE(disk->Exists(kJournal));
    }
  }
}

TEST(Journal, ADiskThatStaysBrokenLeavesTheJournalForTheNextOpening) {
  const States e = Compute(0);
  int broken = 0;
  for (int failure = 1; failure <= e.calls; ++failure) {
    const Disk disk = DiskWithDatabase(0);
    auto p = DiskPages::Open(kPath, false, disk);
    disk->FailAt(failure, true);
    Change(*p);
    std::string error;
    try {
      p->Commit();
    } catch (const base::Error& x) {
      error = x.Description();
    }
    SCOPED_TRACE("failing from: " + disk->Log()[static_cast<std::size_t>(failure) - 1] + ": " + error);
    if (error.find("a medio escribir") != std::string::npos) {
      ++broken;
      EXPECT_NE(error.find("No borre a.mdb-diario"), std::string::npos);
      EXPECT_TRUE(disk->Exists(kJournal));
      EXPECT_NE(p->ReadOnlyReason(), "");
      EXPECT_THROW(p->Modify(2), base::Error);
      EXPECT_THROW(p->Read(2), base::Error);  // not read before
      disk->Heal();
      // While that program lives, another one reads the base as it was, and cannot write.
      const auto reader = DiskPages::Open(kPath, false, disk);
      EXPECT_NE(reader->ReadOnlyReason(), "");
      EXPECT_EQ(*reader->Read(1), Bytes(e.before.begin() + 4096, e.before.begin() + 8192));
      EXPECT_EQ(reader->Count(), kPages);
    }
    p.reset();
    disk->Heal();
    ASSERT_TRUE(OpenUntilCut(disk));
    const Bytes left = disk->Contents(kPath);
    EXPECT_EQ(left, error.empty() ? e.after : e.before);
    EXPECT_FALSE(disk->Exists(kJournal));
  }
  EXPECT_GT(broken, 3);
}

TEST(Journal, AFullDiskIsAnErrorAndTheFileAsItWas) {
  const States e = Compute(0);
  const std::uint64_t base = e.before.size();
  // The journal (four pages and its own bytes) and three more pages of the base fit from here on.
  const std::uint64_t enough = base + 64 + 4 * (4096 + 32 + 16) + 24 + 3 * 4096;
  int errors = 0;
  for (std::uint64_t place = base; place <= enough; place += place + 1000 < enough ? 1000 : 1) {
    SCOPED_TRACE(place);
    const Disk disk = DiskWithDatabase(0);
    const auto p = DiskPages::Open(kPath, false, disk);
    disk->Fill(place);
    Change(*p);
    if (place >= enough) {
      p->Commit();
      EXPECT_EQ(disk->Contents(kPath), e.after);
      break;
    }
    try {
      p->Commit();
      FAIL() << "no error";
    } catch (const base::Error& x) {
      EXPECT_NE(x.Description().find("el disco está lleno"), std::string::npos) << x.Description();
      ++errors;
    }
    EXPECT_EQ(disk->Contents(kPath), e.before);
    EXPECT_FALSE(disk->Exists(kJournal));
  }
  EXPECT_GT(errors, 20);
}

}  // namespace
