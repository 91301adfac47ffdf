// Real programs on a real file: one killed while it commits, and readers beside a writer.
#ifndef _WIN32

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <random>
#include <thread>

#include "mdb/bare_file.h"
#include "mdb/pages/disk_pages.h"
#include "support/temp_folder.h"

namespace {

using mdb::DiskPages;
using mdb::PageNumber;
using mdb_test::AsText;
using mdb_test::SampleDatabase;

constexpr PageNumber kPages = 24;

// One commit: every page but the header holds nothing but the number of the commit; the file grows at every
// third.
void Commit(DiskPages& p, std::uint32_t number) {
  if (number % 3 == 0) p.Add();
  for (PageNumber n = 1; n < p.Count(); ++n) {
    mdb::Bytes& page = p.Modify(n);
    for (std::size_t i = 0; i < page.size(); i += 4) mdb::Put32(page, i, number);
  }
  p.Commit();
}

// The number of the commit that the file holds, whole; 0 before the first. Fails the test when pages differ.
std::uint32_t CommitOf(DiskPages& p) {
  const std::uint32_t number = mdb::U32(*p.Read(1), 0);
  if (number == mdb::U32(SampleDatabase(2), 4096)) return 0;
  for (PageNumber n = 1; n < p.Count(); ++n) {
    const auto page = p.Read(n);
    for (std::size_t i = 0; i < page->size(); i += 4) {
      if (mdb::U32(*page, i) != number) {
        ADD_FAILURE() << "page " << n << " at " << i << " is of commit " << mdb::U32(*page, i)
                      << ", page 1 of " << number;
        return number;
      }
    }
  }
  return number;
}

TEST(DiskPages, AProgramKilledAtAnyMomentLeavesAWholeCommit) {
  const support::TempFolder c;
  const std::string path = c.Write("a.mdb", AsText(SampleDatabase(kPages)));
  std::mt19937 random(20261121);
  std::uint32_t last = 3;
  // How long a commit takes here: most kills are to fall into one of the first few.
  const auto started = std::chrono::steady_clock::now();
  {
    const auto p = DiskPages::Open(path);
    for (std::uint32_t n = 1; n <= last; ++n) Commit(*p, n);
  }
  const auto three = std::chrono::steady_clock::now() - started;
  const auto us = static_cast<unsigned>(std::chrono::duration_cast<std::chrono::microseconds>(three).count());
  // With others at work on the machine it may take many times as long: then the wait grows, and there are
  // more rounds.
  unsigned longest = 2 * us + 2000, idle = 0;
  int with_journal = 0, advances = 0;
  for (int round = 0; round < 60 || (round < 300 && (advances <= 5 || with_journal <= 5)); ++round) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      // Only the kill ends it, or a failure that the parent sees.
      try {
        const auto p = DiskPages::Open(path);
        for (std::uint32_t n = last + 1;; ++n) Commit(*p, n);
      } catch (const base::Error&) {
        _exit(3);
      }
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % longest));
    kill(child, SIGKILL);
    int state = 0;
    ASSERT_EQ(waitpid(child, &state, 0), child);
    ASSERT_TRUE(WIFSIGNALED(state)) << "ended by itself: " << WEXITSTATUS(state);
    if (std::filesystem::exists(path + "-diario")) ++with_journal;
    const auto p = DiskPages::Open(path, round % 2 == 0);
    ASSERT_FALSE(std::filesystem::exists(path + "-diario"));
    const std::uint32_t now = CommitOf(*p);
    ASSERT_GE(now, last);
    ASSERT_EQ(p->Count(), kPages + now / 3);
    if (HasFailure()) return;
    if (now > last) ++advances;
    idle = now > last ? 0 : idle + 1;
    if (idle == 4 && longest < 500000) {
      longest *= 2;
      idle = 0;
    }
    last = now;
  }
  EXPECT_GT(advances, 5);
  EXPECT_GT(with_journal, 5);
}

// The system itself says that there is no more room, in the middle of a page.
TEST(DiskPages, ARealLimitOfRoomLeavesTheFileAsItWas) {
  const support::TempFolder c;
  const mdb::Bytes bytes = SampleDatabase(kPages);
  const std::string path = c.Write("a.mdb", AsText(bytes));
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    limit.rlim_cur = limit.rlim_max = bytes.size() + 3 * 4096 + 1000;
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(4);
    try {
      const auto p = DiskPages::Open(path);
      p->Modify(2)[0] ^= 1;
      for (int i = 0; i < 5; ++i) p->Modify(p->Add())[7] = 7;
      p->Commit();
    } catch (const base::Error& e) {
      const bool ok = e.Description() ==
                      "No se pudo guardar en la base, que quedó como estaba. "
                      "No se puede escribir a.mdb: el disco está lleno";
      _exit(ok ? 0 : 3);
    }
    _exit(5);
  }
  int state = 0;
  ASSERT_EQ(waitpid(child, &state, 0), child);
  ASSERT_TRUE(WIFEXITED(state));
  EXPECT_EQ(WEXITSTATUS(state), 0);
  EXPECT_EQ(c.Read("a.mdb"), AsText(bytes));
  EXPECT_FALSE(std::filesystem::exists(path + "-diario"));
}

TEST(DiskPages, ReadersNeverSeeHalfACommit) {
  const support::TempFolder c;
  const std::string path = c.Write("a.mdb", AsText(SampleDatabase(kPages)));
  std::atomic<bool> stop{false};
  std::string writer_error;
  std::thread writer([&] {
    try {
      const auto p = DiskPages::Open(path);
      for (std::uint32_t n = 1; !stop; ++n) {
        Commit(*p, n);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
    } catch (const base::Error& e) {
      writer_error = e.Description();
    }
  });
  int whole = 0;
  std::uint32_t last = 0;
  // Until a good number of commits were seen, however slow the disk is.
  for (int i = 0; i < 1'000'000 && (last < 25 || whole < 25) && !HasFailure(); ++i) {
    try {
      const auto p = DiskPages::Open(path, true);
      const std::uint32_t now = CommitOf(*p);
      EXPECT_GE(now, last);
      EXPECT_EQ(p->Count(), kPages + now / 3);
      last = now;
      ++whole;
    } catch (const mdb::FileChanged&) {
      // Between opening and reading on; nothing mixed was seen.
    }
  }
  stop = true;
  writer.join();
  EXPECT_EQ(writer_error, "");
  EXPECT_GE(whole, 25);
  EXPECT_GE(last, 25U);
}

}  // namespace

#endif
