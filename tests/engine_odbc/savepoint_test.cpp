// The mark inside a transaction, with a driver that has savepoints and with one that has none, and what kind
// of failure each state is.
#include "embedded_engine.h"
#include "odbc_settings.h"

namespace {

class OdbcSavepoints : public tests::TestDriver {
 protected:
  // autocommit, commits, rollbacks
  std::string Counts() { return Rows("CUENTAS"); }
  bool Faults(const std::string& sql) {
    try {
      Run(sql);
    } catch (const db::Error& e) {
      return e.IsStorageFault();
    }
    ADD_FAILURE() << "no error: " << sql;
    return false;
  }
};

TEST_F(OdbcSavepoints, TheDriversOwn) {
  Open("Savepoints=si");
  base_->BeginTrans();
  Run("CAMBIA 1");
  base_->SetSavepoint();
  Run("CAMBIA 2");
  base_->RollbackToSavepoint();
  base_->SetSavepoint();
  base_->ReleaseSavepoint();
  EXPECT_EQ(Rows("MARCAS"), "SARORESARE");
  base_->CommitTrans();
  EXPECT_EQ(Counts(), "1 1 0");
}

TEST_F(OdbcSavepoints, WithoutAnyNothingToUndoCostsNothing) {
  Open();
  base_->BeginTrans();
  Run("CAMBIA 1");
  base_->SetSavepoint();
  Run("FILAS k:integer\n1");
  Run("NADA");
  EXPECT_NE(ErrorOf("FALLA 23000 x"), "no error");
  base_->RollbackToSavepoint();
  EXPECT_EQ(Counts(), "0 0 0");
  Run("CAMBIA 1");
  base_->RollbackToSavepoint();
  EXPECT_EQ(Counts(), "0 0 1");
  base_->CommitTrans();
  EXPECT_EQ(Counts(), "1 1 1");
}

TEST_F(OdbcSavepoints, TheLossOfTheConnectionIsAFault) {
  Open();
  EXPECT_TRUE(Faults("PIERDE"));
  EXPECT_TRUE(Faults("Select 1"));
  Open();
  EXPECT_TRUE(Faults("MUERE"));
  Open();
  EXPECT_TRUE(Faults("PIERDE_LEYENDO"));
}

TEST_F(OdbcSavepoints, KindsByState) {
  Open();
  for (const char* state : {"HY001", "HYT00", "HYT01", "S1T00", "S1001", "40001", "40003", "57014", "58030",
                            "53100", "55P03", "XX001", "25P02", "HY013"})
    EXPECT_TRUE(Faults(std::string("FALLA ") + state + " x")) << state;
  for (const char* state : {"42000", "42S02", "S0002", "22003", "22012", "22018", "23000", "07002", "HYC00",
                            "IM001", "HY000", "S1000", "HY008", "21S01"})
    EXPECT_FALSE(Faults(std::string("FALLA ") + state + " x")) << state;
  // A state that says nothing: the driver's own number, also in the records behind the first.
  EXPECT_TRUE(Faults("FALLA HY000/-1022 Disk or network error"));
  EXPECT_TRUE(Faults("FALLA S1000/-1206 Unrecognized"));
  EXPECT_FALSE(Faults("FALLA HY000/-3100 Syntax error"));
  EXPECT_TRUE(Faults("FALLA HY000 General error;HY000/-1808 Full"));
}

TEST_F(OdbcSavepoints, ACommitOrRollbackThatFailsIsAFault) {
  Open("Commit=falla");
  base_->BeginTrans();
  try {
    base_->CommitTrans();
    ADD_FAILURE();
  } catch (const db::Error& e) {
    EXPECT_TRUE(e.IsStorageFault());
  }
  Open("Rollback=falla");
  base_->BeginTrans();
  base_->SetSavepoint();
  Run("CAMBIA 1");
  try {
    base_->RollbackToSavepoint();
    ADD_FAILURE();
  } catch (const db::Error& e) {
    EXPECT_TRUE(e.IsStorageFault());
  }
  EXPECT_FALSE(base_->IsOpen());
}

// Over a driver without savepoints and a base that another program writes: from the rollback to the last
// statement run again it has its chance.
class OdbcReplay : public testing::Test {
 protected:
  void SetUp() override {
    base_ = engine_odbc::Open("Driver=" IDM_ODBC_TEST ";Motor=" + path_);
    base_->Execute("CREATE TABLE t (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(10))");
    base_->Execute("INSERT INTO t VALUES (1, 'a')");
    base_->BeginTrans();
  }
  std::string Rows() { return support::Rows(base_->Execute("SELECT * FROM t ORDER BY k")); }

  support::TempFolder folder_;
  std::string path_ = folder_.Path("base.sqlite");
  std::unique_ptr<db::Connection> base_;
};

TEST_F(OdbcReplay, WhatStoodBeforeTheMarkIsRunAgain) {
  base_->Execute("INSERT INTO t VALUES (2, 'b')");
  base_->Execute("UPDATE t SET v = 'x' WHERE k = 1");
  EXPECT_THROW(base_->Execute("INSERT INTO t VALUES (2, 'c')"), db::Error);
  base_->SetSavepoint();
  base_->Execute("DELETE FROM t");
  base_->Execute("INSERT INTO t VALUES (3, 'd')");
  base_->RollbackToSavepoint();
  EXPECT_EQ(Rows(), "1|x\n2|b");
  base_->Execute("INSERT INTO t VALUES (4, 'e')");
  base_->RollbackToSavepoint();
  base_->Execute("INSERT INTO t VALUES (5, 'f')");
  base_->CommitTrans();
  EXPECT_EQ(Rows(), "1|x\n2|b\n5|f");
}

// Rnd gives another number of rows the second time.
TEST_F(OdbcReplay, ARepetitionThatDoesSomethingElseIsAFault) {
  for (int i = 10; i < 500; ++i) base_->Execute("INSERT INTO t VALUES (" + std::to_string(i) + ", 'z')");
  base_->Execute("DELETE FROM t WHERE k > 9 AND Rnd(k) < 0.5");
  base_->SetSavepoint();
  base_->Execute("INSERT INTO t VALUES (3, 'd')");
  try {
    base_->RollbackToSavepoint();
    ADD_FAILURE();
  } catch (const db::Error& e) {
    EXPECT_TRUE(e.IsStorageFault()) << e.Description();
  }
  // Nothing more is written into it, and what it had done is gone.
  EXPECT_THROW(base_->Execute("INSERT INTO t VALUES (6, 'g')"), db::Error);
  EXPECT_THROW(base_->CommitTrans(), db::Error);
  EXPECT_FALSE(base_->InTransaction());
  EXPECT_EQ(Rows(), "1|a");
}

}  // namespace

extern "C" fake::Engine* CreateTestEngine(const char16_t* name) {
  engine_sqlite::Options options;
  options.create = true;
  return new fake::EmbeddedEngine(base::FromUtf16(name), options);
}
