#include "base/disk_file.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

#ifndef _WIN32
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "support/temp_folder.h"

namespace {

using base::DiskError;
using base::DiskFault;
using base::FileMode;
using base::SystemDisk;
using support::TempFolder;

using Three = std::array<std::uint8_t, 3>;

// The failure of an action, and its text.
template <typename Action>
std::pair<DiskFault, std::string> FailureOf(Action&& action) {
  try {
    action();
  } catch (const DiskError& e) {
    return {e.Fault(), e.Description()};
  }
  ADD_FAILURE() << "no error";
  return {};
}

TEST(SystemDisk, ReadsAndWritesInPlace) {
  const TempFolder c;
  SystemDisk disk;
  const auto a = disk.Open(c.Write("ñandú.bin", "0123456789"), FileMode::Write);
  a->Write(4, Three{'a', 'b', 'c'});
  a->Write(11, Three{'x', 'y', 'z'});
  EXPECT_EQ(a->Length(), 14U);
  EXPECT_EQ(c.Read("ñandú.bin"), std::string("0123abc789\0xyz", 14));
  Three read{};
  EXPECT_EQ(a->Read(5, read), 3U);
  EXPECT_EQ(read, (Three{'b', 'c', '7'}));
  EXPECT_EQ(a->Read(13, read), 1U);
  EXPECT_EQ(a->Read(14, read), 0U);
  EXPECT_EQ(a->Read(std::uint64_t{1} << 40, read), 0U);
  a->Resize(2);
  a->Resize(4);
  a->Sync();
  EXPECT_EQ(c.Read("ñandú.bin"), std::string("01\0\0", 4));
}

TEST(SystemDisk, PositionsAre64BitsWide) {
  const TempFolder c;
  SystemDisk disk;
  const auto a = disk.Open(c.Path("grande"), FileMode::New);
  const std::uint64_t far_away = (std::uint64_t{1} << 32) + 5;
  a->Write(far_away, Three{1, 2, 3});
  EXPECT_EQ(a->Length(), far_away + 3);
  Three read{};
  EXPECT_EQ(a->Read(5, read), 3U);
  EXPECT_EQ(read, Three{});
  EXPECT_EQ(a->Read(far_away, read), 3U);
  EXPECT_EQ(read, (Three{1, 2, 3}));
}

TEST(SystemDisk, OpeningAndReadingLeaveTheDateAndSettingItWorks) {
  const TempFolder c;
  SystemDisk disk;
  const std::string path = c.Write("a", "abc");
  const auto yesterday = std::filesystem::last_write_time(path) - std::chrono::hours(24);
  std::filesystem::last_write_time(path, yesterday);
  {
    const auto a = disk.Open(path, FileMode::Write);
    Three read{};
    a->Read(0, read);
    a->Sync();
  }
  EXPECT_EQ(std::filesystem::last_write_time(path), yesterday);
  const auto a = disk.Open(path, FileMode::Write);
  const std::int64_t before = a->Date();
  a->Write(0, Three{1, 2, 3});
  EXPECT_GT(a->Date(), before);
  // A second, in either direction, and a microsecond that is told apart.
  for (const std::int64_t date :
       {disk.Now(), disk.Now() - 1'000'000 * disk.Microsecond(), disk.Now() + disk.Microsecond()}) {
    a->SetDate(date);
    EXPECT_LT(std::abs(a->Date() - date), disk.Microsecond()) << "a disk whose dates are coarse";
  }
}

TEST(SystemDisk, ErrorsTellTheReason) {
  const TempFolder c;
  SystemDisk disk;
  const std::string found = c.Write("hay.bin", "x"), missing = c.Path("falta.bin");
  EXPECT_EQ(FailureOf([&] { disk.Open(missing, FileMode::Read); }),
            std::pair(DiskFault::NotFound, std::string("No se puede abrir falta.bin: no existe")));
  EXPECT_EQ(FailureOf([&] { disk.Open(c.Path("no/hay"), FileMode::Write); }).first, DiskFault::NotFound);
  EXPECT_EQ(FailureOf([&] { disk.Open(found, FileMode::New); }),
            std::pair(DiskFault::AlreadyExists, std::string("No se puede crear hay.bin: ya existe")));
  EXPECT_EQ(FailureOf([&] { disk.Delete(missing); }).first, DiskFault::NotFound);
  EXPECT_EQ(FailureOf([&] { disk.Move(found, c.Write("otro.bin", "y")); }).first, DiskFault::AlreadyExists);
  EXPECT_EQ(c.Read("otro.bin"), "y");
  // A folder is no file, however it is asked for.
  for (const auto mode : {FileMode::Read, FileMode::Write})
    EXPECT_THROW(disk.Open(c.Folder(), mode), DiskError);
  EXPECT_EQ(DiskError("No se puede escribir", "/x/a.mdb", DiskFault::DiskFull, {}).Description(),
            "No se puede escribir a.mdb: el disco está lleno");
  EXPECT_EQ(DiskError("No se puede leer", "a.mdb", DiskFault::Other, "EIO").Description(),
            "No se puede leer a.mdb: falló el disco (EIO)");
}

#ifndef _WIN32
TEST(SystemDisk, OnlyRegularFilesAreOpened) {
  SystemDisk disk;
  EXPECT_THROW(disk.Open("/dev/null", FileMode::Write), DiskError);
  const TempFolder c;
  ASSERT_EQ(mkfifo(c.Path("tubo").c_str(), 0600), 0);
  EXPECT_THROW(disk.Open(c.Path("tubo"), FileMode::Read), DiskError);  // and does not wait
}

// The administrator may write whatever the permissions say, so a child that gives up that right asks. Its
// exit code tells which step was not as it should be.
int AskedWithoutRights(const std::string& path) {
  const pid_t child = fork();
  if (child == 0) {
    constexpr unsigned kNobody = 65534;
    if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) _exit(1);
    SystemDisk disk;
    if (FailureOf([&] { disk.Open(path, FileMode::Write); }).first != DiskFault::NoPermission) _exit(2);
    std::array<std::uint8_t, 1> byte{};
    try {
      _exit(disk.Open(path, FileMode::Read)->Read(0, byte) == 1 && byte[0] == 'x' ? 0 : 3);
    } catch (const DiskError&) {
      _exit(4);
    }
  }
  int status = -1;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

TEST(SystemDisk, AFileThatMayNotBeWrittenIsTold) {
  const TempFolder c;
  const std::string path = c.Write("a", "x");
  using enum std::filesystem::perms;
  std::filesystem::permissions(c.Folder(), owner_all | group_read | group_exec | others_read | others_exec);
  std::filesystem::permissions(path, owner_read | group_read | others_read);
  EXPECT_EQ(AskedWithoutRights(path), 0);
}
#endif

TEST(SystemDisk, LocksBelongToOneOpening) {
  const TempFolder c;
  SystemDisk disk;
  const std::string path = c.Write("a", "x");
  auto one = disk.Open(path, FileMode::Write);
  const auto other = disk.Open(path, FileMode::Read);
  const std::uint64_t far_away = 0x90000000;
  EXPECT_TRUE(one->Lock(far_away, 1, true));
  EXPECT_FALSE(other->Lock(far_away, 1, false));
  EXPECT_TRUE(other->Lock(far_away + 1, 1, false));
  EXPECT_TRUE(one->Lock(far_away + 1, 1, false));
  EXPECT_EQ(other->FirstLocked(far_away, 1), far_away);
  EXPECT_EQ(other->FirstLocked(far_away - 10, 10), std::nullopt);
  // A third opening that is closed leaves the locks of the others alone.
  disk.Open(path, FileMode::Read).reset();
  EXPECT_FALSE(other->Lock(far_away, 1, false));
  one->Unlock(far_away, 1);
  EXPECT_TRUE(other->Lock(far_away, 1, false));
  other->Unlock(far_away, 1);
  EXPECT_TRUE(one->Lock(far_away, 1, true));
  one.reset();
  EXPECT_EQ(other->FirstLocked(far_away, 1), std::nullopt);
}

TEST(SystemDisk, TheFirstOfManyLocksIsFound) {
  const TempFolder c;
  SystemDisk disk;
  const std::string path = c.Write("a", "x");
  const auto one = disk.Open(path, FileMode::Write), two = disk.Open(path, FileMode::Write),
             three = disk.Open(path, FileMode::Write);
  ASSERT_TRUE(one->Lock(0x10000050, 1, true));
  ASSERT_TRUE(two->Lock(0x10000010, 1, true));
  ASSERT_TRUE(one->Lock(0x10000030, 1, true));
  EXPECT_EQ(three->FirstLocked(0x10000001, 255), 0x10000010U);
  EXPECT_EQ(two->FirstLocked(0x10000001, 255), 0x10000030U);  // one's own do not count
  EXPECT_EQ(three->FirstLocked(0x10000031, 255), 0x10000050U);
}

TEST(SystemDisk, MovesAndTellsWhatStandsInAFilesPlace) {
  const TempFolder c;
  SystemDisk disk;
  const std::string a = c.Write("a", "1"), b = c.Path("b");
  const auto opened = disk.Open(a, FileMode::Read);
  EXPECT_TRUE(opened->IsStillInPlace());
  disk.Move(a, b);
  EXPECT_FALSE(disk.Exists(a));
  EXPECT_EQ(c.Read("b"), "1");
  EXPECT_FALSE(opened->IsStillInPlace());
  c.Write("a", "2");
  EXPECT_FALSE(opened->IsStillInPlace());
  disk.SyncFolderOf(a);
  EXPECT_TRUE(disk.FolderAllowsNewFiles(a));
}

}  // namespace
