// What opening, reading and failing leave of the file.
#include "test_bench.h"

#ifndef _WIN32
#include <sys/resource.h>

#include <csignal>
#endif

namespace {

class MdbFiles : public test::MdbTestBench {
 protected:
  void SetUp() override {
    NewDatabase();
    RunSql("CREATE TABLE t (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(20), m MEMO)");
    for (int i = 0; i < 50; ++i)
      RunSql("INSERT INTO t VALUES (" + std::to_string(i) + ", 'v" + std::to_string(i) +
             "', String(300, 'x'))");
  }
};

TEST_F(MdbFiles, WhatIsSavedComesBack) {
  OpenConnection();
  EXPECT_EQ(RowsOf("SELECT Count(*), Max(k), Min(Len(m)) FROM t"), "50|49|300");
  EXPECT_EQ(RowsOf("SELECT v FROM t WHERE k = 7"), "v7");
  Check();
}

TEST_F(MdbFiles, ReadingDoesNotTouchItNorItsDate) {
  base_.reset();
  const State before = File();
  OpenConnection();
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM t"), "50");
  base_->BeginTrans();
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM t WHERE k > 9"), "40");
  base_->CommitTrans();
  base_->Close();
  EXPECT_EQ(File(), before);
}

// A rolled back transaction: rows, tables, columns, indexes and queries of it.
TEST_F(MdbFiles, ATransactionRolledBackDoesNotTouchIt) {
  base_.reset();
  const State before = File();
  OpenConnection();
  base_->BeginTrans();
  RunSql("UPDATE t SET v = 'z' & k");
  RunSql("DELETE FROM t WHERE k > 20");
  RunSql("INSERT INTO t VALUES (1000, 'mil', Null)");
  RunSql("CREATE TABLE u (x COUNTER, y TEXT(9))");
  RunSql("INSERT INTO u (y) SELECT v FROM t");
  RunSql("ALTER TABLE t ADD COLUMN otra DOUBLE");
  RunSql("CREATE INDEX por_v ON t (v)");
  RunSql("CREATE VIEW w AS SELECT k FROM t");
  EXPECT_EQ(RowsOf("SELECT Count(*), Max(y) FROM u"), "22|z9");
  EXPECT_EQ(RowsOf("SELECT Max(k) FROM w"), "1000");
  base_->RollbackTrans();
  EXPECT_EQ(RowsOf("SELECT Count(*), Max(v) FROM t"), "50|v9");
  EXPECT_EQ(FailureOfSql("SELECT * FROM u"), "No se encuentra la tabla o consulta 'u'");
  EXPECT_EQ(FailureOfSql("SELECT * FROM w"), "No se encuentra la tabla o consulta 'w'");
  EXPECT_EQ(FailureOfSql("SELECT otra FROM t"), "No se encuentra la columna 'otra'");
  base_->Close();
  EXPECT_EQ(File(), before);
}

// Statements that write what is there, and changes that are taken back inside the transaction.
TEST_F(MdbFiles, WhatDoesNotChangeIsNotWritten) {
  base_.reset();
  const State before = File();
  OpenConnection();
  RunSql("UPDATE t SET v = 'v' & k, m = String(300, 'x')");
  EXPECT_EQ(base_->AffectedRows(), 50);
  base_->BeginTrans();
  RunSql("UPDATE t SET v = 'otro'");
  RunSql("INSERT INTO t VALUES (99, 'a', Null)");
  RunSql("UPDATE t SET v = 'v' & k");
  RunSql("DELETE FROM t WHERE k = 99");
  base_->CommitTrans();
  EXPECT_EQ(engine_mdb::CountersOf(*base_)->rows_written, 0);
  base_->Close();
  EXPECT_EQ(File(), before);
}

TEST_F(MdbFiles, AStatementThatFailsDoesNotTouchIt) {
  base_.reset();
  const State before = File();
  OpenConnection();
  EXPECT_EQ(FailureOfSql("INSERT INTO t SELECT k + 25 AS k, v, m FROM t"),
            "Ya existe un registro con el mismo valor en k de la tabla t.");
  EXPECT_EQ(FailureOfSql("UPDATE t SET v = String(k, 'x')"), "El texto es demasiado largo para el campo v.");
  EXPECT_EQ(FailureOfSql("CREATE UNIQUE INDEX u ON t (m)"),
            "Ya existe un registro con el mismo valor en m de la tabla t.");
  EXPECT_EQ(FailureOfSql("CREATE TABLE T (k LONG)"), "[3010] La tabla o consulta 'T' ya existe");
  EXPECT_EQ(RowsOf("SELECT Count(*), Sum(k) FROM t"), "50|1225");
  base_->Close();
  EXPECT_EQ(File(), before);
}

TEST_F(MdbFiles, OpenedForReadingItIsNotWritten) {
  OpenConnection(true);
  const std::string no = "La base se puede leer, no escribir. La base se abrió solo para leer.";
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM t"), "50");
  EXPECT_EQ(FailureOfSql("INSERT INTO t (k) VALUES (99)"), no);
  EXPECT_EQ(FailureOfSql("CREATE TABLE u (k LONG)"), no);
  EXPECT_EQ(FailureOfStep([&] { base_->BeginTrans(); }), no);
  EXPECT_FALSE(base_->InTransaction());
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM t"), "50");
}

// Who came second reads; what the first one commits is seen at the next statement.
TEST_F(MdbFiles, TheSecondReadsWhatTheFirstSaves) {
  OpenConnection();
  const auto other = engine_mdb::Open(path_, Options());
  EXPECT_EQ(support::Rows(other->Execute("SELECT Count(*) FROM t")), "50");
  EXPECT_EQ(FailureOfStep([&] { other->Execute("DELETE FROM t"); }),
            "La base se puede leer, no escribir. Otro programa tiene abierta la base.");
  base_->BeginTrans();
  RunSql("DELETE FROM t WHERE k < 10");
  EXPECT_EQ(support::Rows(other->Execute("SELECT Count(*) FROM t")), "50");
  base_->CommitTrans();
  EXPECT_EQ(support::Rows(other->Execute("SELECT Count(*) FROM t")), "40");
  RunSql("CREATE TABLE u (k LONG)");
  EXPECT_EQ(support::Rows(other->Execute("SELECT Count(*) FROM u")), "0");
  base_.reset();
  // And when the first one has gone, the second writes.
  other->Execute("INSERT INTO t (k) VALUES (500)");
  other->BeginTrans();
  other->Execute("INSERT INTO u VALUES (1)");
  other->CommitTrans();
  EXPECT_EQ(support::Rows(other->Execute("SELECT Count(*) FROM t")), "41");
  other->Close();
  Check();
}

TEST_F(MdbFiles, TheSecondsTransactionBeginsWhenTheFirstLeaves) {
  OpenConnection();
  const auto other = engine_mdb::Open(path_, Options());
  const std::string no = "La base se puede leer, no escribir. Otro programa tiene abierta la base.";
  EXPECT_EQ(FailureOfStep([&] { other->BeginTrans(); }), no);
  EXPECT_EQ(FailureOfStep([&] { other->Execute("CREATE TABLE u (k LONG)"); }), no);
  base_.reset();
  other->BeginTrans();
  other->Execute("DELETE FROM t");
  other->RollbackTrans();
  other->Execute("CREATE TABLE u (k LONG)");
  EXPECT_EQ(support::Rows(other->Execute("SELECT Count(*) FROM t, u")), "0");
}

#ifndef _WIN32
// A disk without room: the commit fails with its reason, and the connection goes on from what the file holds.
TEST_F(MdbFiles, AFullDiskDoesNotTouchIt) {
  OpenConnection();
  const State before = File();
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM t"), "50");
  base_->BeginTrans();
  RunSql("INSERT INTO t SELECT k + 1000 AS k, v, String(2000, 'y') AS m FROM t");
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM t"), "100");
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit free_limit{};
  getrlimit(RLIMIT_FSIZE, &free_limit);
  const rlimit full{8192, free_limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &full);
  const std::string failure = FailureOfStep([&] { base_->CommitTrans(); });
  setrlimit(RLIMIT_FSIZE, &free_limit);
  EXPECT_NE(failure, "no error");
  EXPECT_FALSE(base_->InTransaction());
  EXPECT_EQ(File().bytes, before.bytes);
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM t"), "50") << failure;
  RunSql("INSERT INTO t (k) VALUES (99)");
  OpenConnection();
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM t"), "51");
  Check();
}
#endif

TEST(OpenMdb, SaysItsReason) {
  const support::TempFolder folder;
  const auto reason = [](const std::string& path) -> std::string {
    try {
      engine_mdb::Open(path);
    } catch (const db::Error& e) {
      return e.Description();
    }
    return "no error";
  };
  EXPECT_NE(reason(folder.Path("falta.mdb")), "no error");
  EXPECT_FALSE(base::FileExists(folder.Path("falta.mdb")));
  EXPECT_NE(reason(folder.Write("otro.mdb", std::string(8192, 'x'))), "no error");
  engine_mdb::Create(folder.Path("una.mdb"));
  try {
    engine_mdb::Create(folder.Path("una.mdb"));
    ADD_FAILURE() << "a file was replaced";
  } catch (const db::Error& e) {
    EXPECT_FALSE(e.Description().empty());
  }
}

}  // namespace
