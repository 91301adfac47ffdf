// A disk that fails at each of its calls, and a file of which each page is damaged, in turn, while a
// transaction runs: the failure is one of the storage, and nothing of the transaction is kept.
#include <random>

#include "db/next_id.h"
#include "engine_mdb/connection_internal.h"
#include "mdb/simulated_disk.h"
#include "test_bench.h"

namespace {

using mdb::Bytes;
using mdb_test::SimulatedDisk;
using Disk = std::shared_ptr<SimulatedDisk>;

const std::string kPath = "a.mdb";

class MdbFaults : public test::MdbTestBench {
 protected:
  void SetUp() override {
    NewDatabase();
    RunSql("CREATE TABLE t (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(250))");
    RunSql("CREATE TABLE u (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(250), m MEMO)");
    RunSql(
        "CREATE TABLE h (k LONG, d DATETIME DEFAULT Date(), CONSTRAINT f FOREIGN KEY (k) REFERENCES t (k))");
    RunSql("CREATE VIEW w AS SELECT Max(k) AS mayor FROM t");
    base_->BeginTrans();
    for (int i = 0; i < 60; ++i) {
      const std::string row =
          std::to_string(i) + ", '" + std::string(200, static_cast<char>('a' + i % 20)) + "'";
      RunSql("INSERT INTO t VALUES (" + row + ")");
      RunSql("INSERT INTO u VALUES (" + row + ", String(300, 'm'))");
    }
    base_->CommitTrans();
    base_.reset();
    const std::string bytes = *base::ReadWholeFile(path_);
    before_.assign(bytes.begin(), bytes.end());
  }
  static Disk DiskOf(const Bytes& bytes) {
    auto disk = std::make_shared<SimulatedDisk>();
    disk->Put(kPath, bytes);
    disk->RestartCount();
    return disk;
  }
  std::unique_ptr<engine_mdb::MdbConnection> Open(const Disk& disk) const {
    return db::AsConnectionErrors([&] {
      return std::make_unique<engine_mdb::MdbConnection>(
          std::make_unique<mdb::Database>(mdb::DiskPages::Open(kPath, false, disk)), kPath, Options());
    });
  }
  // As an import does: a statement that fails is passed over, and only its kind tells whether to go on.
  void Run(db::Connection& base) const {
    const auto passing_over = [&](const char* sql) {
      base::PassOverError("", nullptr, [&] { base.Execute(sql); });
    };
    base.BeginTrans();
    passing_over("SELECT mayor FROM w");
    passing_over("INSERT INTO t VALUES (1000, 'x')");
    base.SetSavepoint();
    passing_over("DELETE FROM u WHERE k > 40");
    passing_over("INSERT INTO t SELECT k, v FROM t");  // refused
    base.RollbackToSavepoint();
    passing_over("INSERT INTO h (k) SELECT k FROM u WHERE k < 10");
    passing_over("UPDATE u SET v = 'y' & k, m = String(5000, 'z') WHERE k < 30");
    passing_over("DELETE FROM t WHERE k > 50");
    base.CommitTrans();
  }
  static Bytes WhenOpened(const Disk& disk) {
    mdb::DiskPages::Open(kPath, false, disk);
    return disk->Contents(kPath);
  }
  void Compute() {
    const Disk disk = DiskOf(before_);
    const auto base = Open(disk);
    Run(*base);
    after_ = disk->Contents(kPath);
    EXPECT_NE(before_, after_);
    EXPECT_TRUE(mdb::Verify(*mdb::DiskPages::Open(kPath, true, disk)).IsSound());
  }
  // The calls that look fail, or those that change something.
  void FailEach(bool looks, bool always) {
    Compute();
    int faults = 0;
    for (int call = 1;; ++call) {
      const Disk disk = DiskOf(before_);
      looks ? disk->FailLookAt(call, always) : disk->FailAt(call, always);
      bool done = false;
      try {
        const auto base = Open(disk);
        Run(*base);
        done = true;
      } catch (const db::Error& e) {
        ++faults;
        EXPECT_TRUE(e.IsStorageFault()) << call << ": " << e.Description();
      }
      const bool reached = looks ? disk->FailedLooks() > 0 : disk->Calls() >= call;
      disk->Heal();
      ASSERT_TRUE(WhenOpened(disk) == (done ? after_ : before_)) << call << (done ? " done" : " not done");
      if (!reached) break;
    }
    EXPECT_GT(faults, 10);
  }

  Bytes before_, after_;
};

TEST_F(MdbFaults, EachLookOnce) { FailEach(true, false); }
TEST_F(MdbFaults, EachLookAndAllAfterIt) { FailEach(true, true); }
TEST_F(MdbFaults, EachWriteOnce) { FailEach(false, false); }
TEST_F(MdbFaults, EachWriteAndAllAfterIt) { FailEach(false, true); }

// Pages of which nothing is as it was, and pages of zeros.
TEST_F(MdbFaults, EachDamagedPage) {
  Compute();
  int faults = 0, survived = 0;
  for (const int filling : {0xA5, 0, 0xFF}) {
    for (std::size_t page = 0; page * 4096 < before_.size(); ++page) {
      Bytes damaged = before_;
      std::fill_n(damaged.begin() + static_cast<std::ptrdiff_t>(page * 4096), 4096,
                  static_cast<std::uint8_t>(filling));
      const Disk disk = DiskOf(damaged);
      try {
        const auto base = Open(disk);
        Run(*base);
        // Nothing of this page was needed, or the commit wrote it anew.
        const Bytes now = disk->Contents(kPath);
        for (std::size_t p = 0; p * 4096 < now.size(); ++p) {
          const auto at = static_cast<std::ptrdiff_t>(p * 4096);
          const bool same = std::equal(now.begin() + at, now.begin() + at + 4096, after_.begin() + at);
          EXPECT_TRUE(same || p == page) << "damage in page " << page << " changed page " << p;
        }
        ++survived;
      } catch (const db::Error& e) {
        ++faults;
        EXPECT_TRUE(e.IsStorageFault()) << page << ": " << e.Description();
        EXPECT_TRUE(disk->Contents(kPath) == damaged) << page;
      }
    }
  }
  EXPECT_GT(faults, 20);
  EXPECT_GT(survived, 0);
}

// A table that cannot be read is named in a statement that has an answer without it.
TEST_F(MdbFaults, ADamagedTableIsNoTableWithoutRows) {
  OpenConnection();
  db::NextId(*base_, "t", "k");
  base_.reset();
  Bytes damaged = before_;
  const auto pages = mdb::DiskPages::Open(path_, true);
  const mdb::SystemCatalog catalog(*pages);
  const mdb::PageNumber page = catalog.Table("t")->Page();
  damaged[page * 4096] = 0;
  base::WriteWholeFile(path_, std::string(damaged.begin(), damaged.end()));
  OpenConnection();
  EXPECT_THROW(db::NextId(*base_, "t", "k"), db::Error);
}

// What the statement asks for cannot be done, and nothing else is touched.
TEST_F(MdbFaults, WhatSqlRefusesIsNone) {
  OpenConnection();
  for (const char* sql :
       {"SELEC 1", "SELECT * FROM nadie", "SELECT nada FROM t", "INSERT INTO t VALUES (1, 'x')",
        "INSERT INTO t VALUES ('x', 'x')", "UPDATE t SET v = String(300, 'x')", "SELECT 1/0 FROM t",
        "INSERT INTO h (k) VALUES (999)", "DELETE FROM MSysObjects", "CREATE TABLE t (k LONG)",
        "DROP TABLE nadie", "CREATE UNIQUE INDEX i ON u (m)"}) {
    try {
      base_->Execute(sql);
      ADD_FAILURE() << sql;
    } catch (const db::Error& e) {
      EXPECT_FALSE(e.IsStorageFault()) << sql << ": " << e.Description();
    }
  }
}

// Opened for reading it refuses what writes, and can be read all the same.
TEST_F(MdbFaults, ARefusalToWriteIsNone) {
  OpenConnection(true);
  for (const auto& write : {std::function([&] { base_->Execute("DELETE FROM t"); }),
                            std::function([&] { base_->BeginTrans(); })}) {
    try {
      write();
      ADD_FAILURE();
    } catch (const db::Error& e) {
      EXPECT_FALSE(e.IsStorageFault()) << e.Description();
    }
  }
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM t"), "60");
}

}  // namespace
