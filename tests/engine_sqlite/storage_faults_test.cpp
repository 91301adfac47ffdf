// A disk that fails at each of its calls, in turn, while a transaction runs: the failure is one of the
// storage, and nothing of the transaction is kept.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/file.h"
#include "engine_sqlite/sqlite_connection.h"
#include "engine_sqlite/sqlite_internal.h"
#include "failing_vfs.h"
#include "render.h"
#include "support/temp_folder.h"

namespace {

using base::ErrorKind;

class SqliteFaults : public testing::Test {
 protected:
  SqliteFaults() : path_(folder_.Path("base.sqlite")) {}

  std::unique_ptr<db::Connection> Open(bool create = false) const {
    engine_sqlite::Options o;
    o.create = create;
    o.wait_ms = 10;
    return engine_sqlite::Open(path_, o);
  }
  void SetUp() override {
    const auto base = Open(true);
    base->Execute("CREATE TABLE t (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(250))");
    base->Execute("CREATE TABLE u (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(250))");
    base->BeginTrans();
    for (int i = 0; i < 200; ++i) {
      const std::string row = std::to_string(i) + ", '" + std::string(200, static_cast<char>('a' + i % 20));
      base->Execute("INSERT INTO t VALUES (" + row + "')");
      base->Execute("INSERT INTO u VALUES (" + row + "')");
    }
    base->CommitTrans();
  }
  std::string Rows() const {
    const auto base = Open();
    return support::Rows(base->Execute("SELECT * FROM t ORDER BY k")) + "\n" +
           support::Rows(base->Execute("SELECT * FROM u ORDER BY k"));
  }

  // As an import does: a statement that fails is passed over, and only its kind tells whether to go on.
  // Returns whether the transaction was committed.
  bool Run() {
    committing_ = false;
    const auto base = Open();
    const auto passing_over = [&](const char* sql) {
      base::PassOverError("", nullptr, [&] { base->Execute(sql); });
    };
    base->BeginTrans();
    passing_over("SELECT Max(k) FROM t");
    passing_over("INSERT INTO t VALUES (1000, 'x')");
    passing_over("SELECT Count(*) FROM u WHERE v > 'f'");
    base->SetSavepoint();
    passing_over("DELETE FROM u WHERE k > 100");
    passing_over("INSERT INTO t SELECT k, v FROM t");  // refused
    base->RollbackToSavepoint();
    passing_over("UPDATE u SET v = 'y' & k WHERE k < 150");
    passing_over("DELETE FROM t WHERE k < 20");
    committing_ = true;
    base->CommitTrans();
    return true;
  }

  void FailEach(bool always) {
    const std::string before = Rows();
    const auto bytes = base::ReadWholeFile(path_);
    ASSERT_TRUE(Run());
    const std::string after = Rows();
    ASSERT_NE(before, after);
    int faults = 0, unnoticed = 0, call = 1;
    for (bool reached = true; reached; ++call) {
      ASSERT_TRUE(base::WriteWholeFile(path_, *bytes));
      test::FailingVfs vfs;
      vfs.FailAt(call, always);
      bool done = false;
      try {
        done = Run();
        ++unnoticed;
      } catch (const db::Error& e) {
        ++faults;
        EXPECT_TRUE(e.IsStorageFault()) << call << " " << vfs.What() << ": " << e.Description();
      }
      reached = vfs.Failed() > 0;
      vfs.Heal();
      // A commit whose sync failed may be found whole in the log, where a dead disk did not let it be put
      // away: then the operator was told of an error, and the month is as after.
      const std::string now = Rows();
      ASSERT_TRUE(now == (done ? after : before) || (committing_ && now == after))
          << call << " " << vfs.What();
    }
    EXPECT_GT(faults, 30);
    EXPECT_LT(unnoticed, call / 2);  // those of the end, when the log is put away
  }

  support::TempFolder folder_;
  std::string path_;
  bool committing_ = false;
};

TEST_F(SqliteFaults, EachCallOnce) { FailEach(false); }
TEST_F(SqliteFaults, EachCallAndAllAfterIt) { FailEach(true); }

TEST_F(SqliteFaults, ADamagedPageIsAFault) {
  const auto bytes = base::ReadWholeFile(path_);
  int faults = 0;
  for (std::size_t page = 1; page * 4096 < bytes->size(); ++page) {
    std::string damaged = *bytes;
    for (std::size_t i = 0; i < 4096; ++i) damaged[page * 4096 + i] = static_cast<char>(0xA5);
    ASSERT_TRUE(base::WriteWholeFile(path_, damaged));
    try {
      Run();
    } catch (const db::Error& e) {
      ++faults;
      EXPECT_TRUE(e.IsStorageFault()) << page << ": " << e.Description();
    }
  }
  EXPECT_GT(faults, 10);
}

TEST_F(SqliteFaults, WhatSqlRefusesIsNone) {
  const auto base = Open();
  for (const char* sql :
       {"SELEC 1", "SELECT * FROM nadie", "SELECT nada FROM t", "INSERT INTO t VALUES (1, 'x')",
        "INSERT INTO t VALUES ('x', 'x')", "UPDATE t SET v = String(300, 'x')", "SELECT 1/0 FROM t",
        "INSERT INTO t VALUES (1)", "CREATE TABLE t (k LONG)", "SELECT CInt(100000)"}) {
    try {
      base->Execute(sql);
    } catch (const db::Error& e) {
      EXPECT_FALSE(e.IsStorageFault()) << sql << ": " << e.Description();
    }
  }
}

TEST_F(SqliteFaults, KindsByResultCode) {
  for (const int code :
       {SQLITE_BUSY, SQLITE_LOCKED, SQLITE_NOMEM, SQLITE_IOERR, SQLITE_IOERR_READ, SQLITE_CORRUPT,
        SQLITE_CORRUPT_VTAB, SQLITE_NOTADB, SQLITE_FULL, SQLITE_CANTOPEN, SQLITE_PERM, SQLITE_PROTOCOL,
        SQLITE_ABORT_ROLLBACK, SQLITE_BUSY_SNAPSHOT, SQLITE_READONLY_DBMOVED})
    EXPECT_EQ(engine_sqlite::KindOf(code, false), ErrorKind::Storage) << code;
  for (const int code : {SQLITE_ERROR, SQLITE_CONSTRAINT_UNIQUE, SQLITE_MISMATCH, SQLITE_TOOBIG,
                         SQLITE_INTERRUPT, SQLITE_RANGE, SQLITE_AUTH})
    EXPECT_EQ(engine_sqlite::KindOf(code, true), ErrorKind::Statement) << code;
  EXPECT_EQ(engine_sqlite::KindOf(SQLITE_READONLY, false), ErrorKind::Statement);
  EXPECT_EQ(engine_sqlite::KindOf(SQLITE_READONLY, true), ErrorKind::Storage);
}

TEST_F(SqliteFaults, ABaseThatAnotherProgramWritesIsAFault) {
  const auto other = Open();
  other->BeginTrans();
  const auto base = Open();
  try {
    base->BeginTrans();
    ADD_FAILURE();
  } catch (const db::Error& e) {
    EXPECT_TRUE(e.IsStorageFault());
  }
  EXPECT_FALSE(base->InTransaction());
}

// Opened for reading it refuses what writes, and can be read all the same.
TEST_F(SqliteFaults, ARefusalToWriteIsNone) {
  engine_sqlite::Options o;
  o.read_only = true;
  const auto base = engine_sqlite::Open(path_, o);
  try {
    base->Execute("DELETE FROM t");
    ADD_FAILURE();
  } catch (const db::Error& e) {
    EXPECT_FALSE(e.IsStorageFault()) << e.Description();
  }
  EXPECT_EQ(support::Rows(base->Execute("SELECT Count(*) FROM t")), "200");
}

}  // namespace
