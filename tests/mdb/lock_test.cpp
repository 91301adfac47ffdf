#include "mdb/pages/lock.h"

#include <gtest/gtest.h>

#include "mdb/bare_file.h"
#include "mdb/pages/disk_pages.h"
#include "mdb/simulated_disk.h"
#include "support/temp_folder.h"

namespace {

using base::FileMode;
using mdb::DiskPages;
using mdb_test::AsText;
using mdb_test::SampleDatabase;
using support::TempFolder;

std::string Slot(std::string machine, std::string user) {
  machine += '\0';
  machine.resize(32, ' ');
  user += '\0';
  user.resize(32, ' ');
  return machine + user;
}

TEST(HeldLock, OneWritesAndTheNextOnlyReads) {
  const TempFolder c;
  const std::string path = c.Write("a.mdb", AsText(SampleDatabase(4)));
  auto first = DiskPages::Open(path);
  EXPECT_EQ(first->ReadOnlyReason(), "");
  const auto second = DiskPages::Open(path);
  EXPECT_EQ(second->ReadOnlyReason(), "Otro programa tiene abierta la base");
  EXPECT_THROW(second->Modify(1), base::Error);
  EXPECT_EQ(*second->Read(2), *first->Read(2));
  first.reset();
  EXPECT_EQ(DiskPages::Open(path)->ReadOnlyReason(), "");
}

TEST(HeldLock, ClosingAReaderDoesNotDropTheWritersLock) {
  const TempFolder c;
  const std::string path = c.Write("a.mdb", AsText(SampleDatabase(4)));
  const auto first = DiskPages::Open(path);
  DiskPages::Open(path, true)->Read(1);
  EXPECT_NE(DiskPages::Open(path)->ReadOnlyReason(), "");
}

TEST(HeldLock, WhoReadsDoesNotHinderWhoWritesAndIsToldOfTheChange) {
  const TempFolder c;
  const std::string path = c.Write("a.mdb", AsText(SampleDatabase(60)));
  const auto reader = DiskPages::Open(path, true);
  const auto view = reader->Read(1);
  const auto writer = DiskPages::Open(path);
  ASSERT_EQ(writer->ReadOnlyReason(), "");
  EXPECT_NO_THROW(reader->Read(2));
  // At once: in the same tick of the disk's clock.
  writer->Modify(1)[0] ^= 1;
  writer->Commit();
  EXPECT_EQ(*reader->Read(1), *view);  // read before: as it was
  EXPECT_THROW(reader->Read(50), mdb::FileChanged);
  EXPECT_EQ(*DiskPages::Open(path, true)->Read(1), *writer->Read(1));
}

TEST(HeldLock, AFailedCommitDoesNotDisturbWhoReads) {
  const auto disk = std::make_shared<mdb_test::SimulatedDisk>();
  disk->Put("a.mdb", SampleDatabase(4));
  const auto reader = DiskPages::Open("a.mdb", true, disk);
  const auto writer = DiskPages::Open("a.mdb", false, disk);
  disk->RestartCount();
  disk->FailAt(7);  // crear, escribir, sincronizar, escribir, carpeta: the first page
  writer->Modify(1)[0] ^= 1;
  EXPECT_THROW(writer->Commit(), base::Error);
  ASSERT_EQ(disk->Log()[6], "escribir a.mdb 4096");
  EXPECT_EQ(*reader->Read(1), *writer->Read(1));
}

TEST(HeldLock, ALiveLockFileOfAnotherProgramIsNamed) {
  const TempFolder c;
  base::SystemDisk disk;
  for (const auto& [base, lock_file] : std::vector<std::pair<std::string, std::string>>{
           {"Personal.mdb", "Personal.ldb"}, {"Otra.MDB", "Otra.LDB"}, {"Sin", "Sin.ldb"}}) {
    const std::string path = c.Write(base, AsText(SampleDatabase(4)));
    // A slot of somebody who has gone, and one of somebody who is there.
    const std::string ldb = c.Write(lock_file, Slot("VIEJA", "admin") + Slot("SUELDOS-2", "Admin"));
    EXPECT_EQ(DiskPages::Open(path)->ReadOnlyReason(), "");
    const auto foreign = disk.Open(ldb, FileMode::Write);
    ASSERT_TRUE(foreign->Lock(0x10000002, 1, true));
    EXPECT_EQ(DiskPages::Open(path)->ReadOnlyReason(),
              "No se puede escribir en la base: está abierta en el equipo SUELDOS-2 (usuario Admin)");
    // Asked only to read, there is nothing to say about it.
    EXPECT_EQ(DiskPages::Open(path, true)->ReadOnlyReason(), "La base se abrió solo para leer");
    EXPECT_EQ(DiskPages::Open(path, true)->WhyReadOnly(), mdb::ReadOnlyCause::Asked);
  }
}

TEST(HeldLock, NothingIsWrittenOnceAnotherProgramOpensTheBase) {
  const TempFolder c;
  base::SystemDisk disk;
  const std::string bytes(AsText(SampleDatabase(4))), path = c.Write("a.mdb", bytes);
  const auto p = DiskPages::Open(path);
  auto foreign = disk.Open(c.Write("a.ldb", Slot("CAJA", "ana")), FileMode::Write);
  ASSERT_TRUE(foreign->Lock(0x10000001, 1, true));
  p->Modify(1)[0] ^= 1;
  try {
    p->Commit();
    FAIL() << "no error";
  } catch (const base::Error& e) {
    EXPECT_EQ(e.Description(), "No se guardó nada en la base: está abierta en el equipo CAJA (usuario ana)");
  }
  EXPECT_EQ(c.Read("a.mdb"), bytes);
  foreign.reset();
  p->Modify(1)[0] ^= 1;
  EXPECT_NO_THROW(p->Commit());
}

TEST(HeldLock, ALockFileWithoutReadableSlotIsStillOne) {
  const TempFolder c;
  base::SystemDisk disk;
  const std::string path = c.Write("a.mdb", AsText(SampleDatabase(4)));
  const auto foreign = disk.Open(c.Write("a.ldb", "x"), FileMode::Write);
  ASSERT_TRUE(foreign->Lock(0x10000001, 255, false));  // whatever kind of lock
  EXPECT_EQ(DiskPages::Open(path)->ReadOnlyReason(),
            "No se puede escribir en la base: otro programa la tiene abierta");
}

TEST(HeldLock, OtherLocksOfTheLockFileAreNoUsers) {
  const TempFolder c;
  base::SystemDisk disk;
  const std::string path = c.Write("a.mdb", AsText(SampleDatabase(4)));
  const auto foreign = disk.Open(c.Write("a.ldb", Slot("X", "Y")), FileMode::Write);
  ASSERT_TRUE(foreign->Lock(0x10000100, 16, true));
  EXPECT_EQ(DiskPages::Open(path)->ReadOnlyReason(), "");
}

TEST(HeldLock, AnyLockOfAnotherProgramOnTheBaseKeepsFromWriting) {
  const TempFolder c;
  base::SystemDisk disk;
  const std::string path = c.Write("a.mdb", AsText(SampleDatabase(4)));
  if (disk.LocksAreMandatory()) GTEST_SKIP() << "here the sharing of files does this";
  const auto foreign = disk.Open(path, FileMode::Read);
  ASSERT_TRUE(foreign->Lock(4096, 512, false));
  EXPECT_EQ(DiskPages::Open(path)->ReadOnlyReason(), "Otro programa tiene abierta la base");
}

// A disk whose waits are counted instead of waited.
class DiskWithoutWait : public mdb_test::SimulatedDisk {
 public:
  void Wait(int ms) override {
    waited += ms;
    if (to_release != nullptr && waited >= 500) to_release->Unlock(mdb::kByteCommit, 1);
  }
  int waited = 0;
  base::OpenFile* to_release = nullptr;
};

TEST(HeldLock, AReaderWaitsForACommitButNotForEver) {
  const auto disk = std::make_shared<DiskWithoutWait>();
  disk->Put("a.mdb", SampleDatabase(4));
  const auto other = disk->Open("a.mdb", FileMode::Write);
  ASSERT_TRUE(other->Lock(mdb::kByteCommit, 1, true));
  EXPECT_THROW(DiskPages::Open("a.mdb", true, disk), base::Error);
  EXPECT_EQ(disk->waited, 10'000);
  disk->waited = 0;
  disk->to_release = other.get();
  EXPECT_EQ(DiskPages::Open("a.mdb", true, disk)->Count(), 4U);
  EXPECT_EQ(disk->waited, 500);
}

TEST(HeldLock, WhoHasItOpenForReadingWaitsForACommitToo) {
  const auto disk = std::make_shared<DiskWithoutWait>();
  disk->Put("a.mdb", SampleDatabase(4));
  const auto reader = DiskPages::Open("a.mdb", true, disk);
  const auto other = disk->Open("a.mdb", FileMode::Write);
  ASSERT_TRUE(other->Lock(mdb::kByteCommit, 1, true));
  EXPECT_THROW(reader->Read(1), base::Error);
  disk->waited = 0;
  disk->to_release = other.get();
  EXPECT_NO_THROW(reader->Read(1));
  EXPECT_EQ(disk->waited, 500);
  // And gives the lock back.
  EXPECT_TRUE(other->Lock(mdb::kByteCommit, 1, true));
}

TEST(HeldLock, ACommitWaitsForWhoReads) {
  const auto disk = std::make_shared<DiskWithoutWait>();
  disk->Put("a.mdb", SampleDatabase(4));
  const auto writer = DiskPages::Open("a.mdb", false, disk);
  const auto other = disk->Open("a.mdb", FileMode::Read);
  ASSERT_TRUE(other->Lock(mdb::kByteCommit, 1, false));
  disk->RestartCount();
  writer->Modify(1)[0] ^= 1;
  EXPECT_THROW(writer->Commit(), base::Error);
  EXPECT_EQ(disk->Calls(), 0);  // not even a journal
  disk->waited = 0;
  disk->to_release = other.get();
  writer->Modify(1)[0] ^= 1;
  EXPECT_NO_THROW(writer->Commit());
  EXPECT_EQ(disk->waited, 500);
  EXPECT_TRUE(other->Lock(mdb::kByteCommit, 1, false));
}

TEST(HeldLock, ACommitIsNoticedThoughTheClockStandsStill) {
  const auto disk = std::make_shared<mdb_test::SimulatedDisk>();
  disk->Put("a.mdb", SampleDatabase(4));
  disk->StopClock();
  const auto writer = DiskPages::Open("a.mdb", false, disk);
  for (int i = 0; i < 3; ++i) {
    const auto reader = DiskPages::Open("a.mdb", true, disk);
    writer->Modify(1)[0] ^= 1;
    writer->Commit();
    EXPECT_THROW(reader->Read(2), mdb::FileChanged);
  }
}

TEST(HeldLock, ADiskWithoutLocksIsOnlyRead) {
  const auto disk = std::make_shared<mdb_test::SimulatedDisk>();
  disk->Put("a.mdb", SampleDatabase(4));
  disk->Put("a.ldb", mdb::Bytes(64));
  disk->RemoveLocks();
  const auto p = DiskPages::Open("a.mdb", false, disk);
  EXPECT_EQ(p->ReadOnlyReason(), "No se puede escribir en la base: su disco no permite bloquear archivos");
  EXPECT_EQ(p->WhyReadOnly(), mdb::ReadOnlyCause::Denied);
  EXPECT_EQ((*p->Read(2))[0], 14);
}

class DiskWithoutFolder : public mdb_test::SimulatedDisk {
 public:
  bool FolderAllowsNewFiles(std::string_view) override { return false; }
};

TEST(HeldLock, AFolderThatTakesNoJournalIsToldAtOnce) {
  const auto disk = std::make_shared<DiskWithoutFolder>();
  disk->Put("a.mdb", SampleDatabase(4));
  EXPECT_EQ(DiskPages::Open("a.mdb", false, disk)->ReadOnlyReason(),
            "No se puede escribir en la base: no hay permiso para crear archivos en su carpeta");
}

TEST(HeldLock, AReaderIsToldOfAnotherFileInItsPlace) {
  const TempFolder c;
  const std::string path = c.Write("a.mdb", AsText(SampleDatabase(60)));
  const auto reader = DiskPages::Open(path, true);
  EXPECT_FALSE(reader->ChangedOutside());
  std::filesystem::rename(c.Write("b.mdb", AsText(SampleDatabase(4))), path);
  EXPECT_TRUE(reader->ChangedOutside());
  EXPECT_NO_THROW(reader->Read(50));  // of the one that was opened
}

TEST(HeldLock, NothingIsWrittenOverWhatAnotherProgramDidMeanwhile) {
  const TempFolder c;
  const mdb::Bytes bytes = SampleDatabase(4);
  const std::string path = c.Write("a.mdb", AsText(bytes));
  // Written into by one that asks for no lock.
  auto p = DiskPages::Open(path);
  mdb::Bytes others = bytes;
  others[9000] ^= 1;
  c.Write("a.mdb", AsText(others));
  std::filesystem::last_write_time(path, std::filesystem::last_write_time(path) + std::chrono::seconds(2));
  p->Modify(1)[0] ^= 1;
  EXPECT_THROW(p->Commit(), base::Error);
  EXPECT_EQ(c.Read("a.mdb"), AsText(others));
  // Another file put in its place.
  p.reset();
  p = DiskPages::Open(path);
  std::filesystem::rename(c.Write("b.mdb", AsText(bytes)), path);
  p->Modify(1)[0] ^= 1;
  EXPECT_THROW(p->Commit(), base::Error);
  EXPECT_EQ(c.Read("a.mdb"), AsText(bytes));
  EXPECT_FALSE(std::filesystem::exists(path + "-diario"));
}

}  // namespace
