// The mark inside a transaction, with a driver that has savepoints and with one that has none, and what kind
// of failure each state is.
#include "embedded_motor.h"
#include "entorno.h"

namespace {

class OdbcSavepoints : public pruebas::DriverDePrueba {
 protected:
  // autocommit, commits, rollbacks
  std::string Counts() { return Filas("CUENTAS"); }
  bool Faults(const std::string& sql) {
    try {
      Correr(sql);
    } catch (const db::Error& e) {
      return e.IsStorageFault();
    }
    ADD_FAILURE() << "no error: " << sql;
    return false;
  }
};

TEST_F(OdbcSavepoints, TheDriversOwn) {
  Abrir("Savepoints=si");
  base_->BeginTrans();
  Correr("CAMBIA 1");
  base_->SetSavepoint();
  Correr("CAMBIA 2");
  base_->RollbackToSavepoint();
  base_->SetSavepoint();
  base_->ReleaseSavepoint();
  EXPECT_EQ(Filas("MARCAS"), "SARORESARE");
  base_->CommitTrans();
  EXPECT_EQ(Counts(), "1 1 0");
}

TEST_F(OdbcSavepoints, WithoutAnyNothingToUndoCostsNothing) {
  Abrir();
  base_->BeginTrans();
  Correr("CAMBIA 1");
  base_->SetSavepoint();
  Correr("FILAS k:integer\n1");
  Correr("NADA");
  EXPECT_NE(ErrorDe("FALLA 23000 x"), "no error");
  base_->RollbackToSavepoint();
  EXPECT_EQ(Counts(), "0 0 0");
  Correr("CAMBIA 1");
  base_->RollbackToSavepoint();
  EXPECT_EQ(Counts(), "0 0 1");
  base_->CommitTrans();
  EXPECT_EQ(Counts(), "1 1 1");
}

TEST_F(OdbcSavepoints, TheLossOfTheConnectionIsAFault) {
  Abrir();
  EXPECT_TRUE(Faults("PIERDE"));
  EXPECT_TRUE(Faults("Select 1"));
  Abrir();
  EXPECT_TRUE(Faults("MUERE"));
  Abrir();
  EXPECT_TRUE(Faults("PIERDE_LEYENDO"));
}

TEST_F(OdbcSavepoints, KindsByState) {
  Abrir();
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
  Abrir("Commit=falla");
  base_->BeginTrans();
  try {
    base_->CommitTrans();
    ADD_FAILURE();
  } catch (const db::Error& e) {
    EXPECT_TRUE(e.IsStorageFault());
  }
  Abrir("Rollback=falla");
  base_->BeginTrans();
  base_->SetSavepoint();
  Correr("CAMBIA 1");
  try {
    base_->RollbackToSavepoint();
    ADD_FAILURE();
  } catch (const db::Error& e) {
    EXPECT_TRUE(e.IsStorageFault());
  }
  EXPECT_FALSE(base_->Abierta());
}

// Over a driver without savepoints and a base that another program writes: from the rollback to the last
// statement run again it has its chance.
class OdbcReplay : public testing::Test {
 protected:
  void SetUp() override {
    base_ = engine_odbc::Abrir("Driver=" IDM_ODBC_PRUEBA ";Motor=" + path_);
    base_->Ejecutar("CREATE TABLE t (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(10))");
    base_->Ejecutar("INSERT INTO t VALUES (1, 'a')");
    base_->BeginTrans();
  }
  std::string Rows() { return support::Filas(base_->Ejecutar("SELECT * FROM t ORDER BY k")); }

  support::CarpetaTemporal folder_;
  std::string path_ = folder_.Ruta("base.sqlite");
  std::unique_ptr<db::Connection> base_;
};

TEST_F(OdbcReplay, WhatStoodBeforeTheMarkIsRunAgain) {
  base_->Ejecutar("INSERT INTO t VALUES (2, 'b')");
  base_->Ejecutar("UPDATE t SET v = 'x' WHERE k = 1");
  EXPECT_THROW(base_->Ejecutar("INSERT INTO t VALUES (2, 'c')"), db::Error);
  base_->SetSavepoint();
  base_->Ejecutar("DELETE FROM t");
  base_->Ejecutar("INSERT INTO t VALUES (3, 'd')");
  base_->RollbackToSavepoint();
  EXPECT_EQ(Rows(), "1|x\n2|b");
  base_->Ejecutar("INSERT INTO t VALUES (4, 'e')");
  base_->RollbackToSavepoint();
  base_->Ejecutar("INSERT INTO t VALUES (5, 'f')");
  base_->CommitTrans();
  EXPECT_EQ(Rows(), "1|x\n2|b\n5|f");
}

// Rnd gives another number of rows the second time.
TEST_F(OdbcReplay, ARepetitionThatDoesSomethingElseIsAFault) {
  for (int i = 10; i < 500; ++i) base_->Ejecutar("INSERT INTO t VALUES (" + std::to_string(i) + ", 'z')");
  base_->Ejecutar("DELETE FROM t WHERE k > 9 AND Rnd(k) < 0.5");
  base_->SetSavepoint();
  base_->Ejecutar("INSERT INTO t VALUES (3, 'd')");
  try {
    base_->RollbackToSavepoint();
    ADD_FAILURE();
  } catch (const db::Error& e) {
    EXPECT_TRUE(e.IsStorageFault()) << e.Descripcion();
  }
  // Nothing more is written into it, and what it had done is gone.
  EXPECT_THROW(base_->Ejecutar("INSERT INTO t VALUES (6, 'g')"), db::Error);
  EXPECT_THROW(base_->CommitTrans(), db::Error);
  EXPECT_FALSE(base_->EnTransaccion());
  EXPECT_EQ(Rows(), "1|a");
}

}  // namespace

extern "C" falso::Motor* CrearMotorDePrueba(const char16_t* name) {
  engine_sqlite::Opciones options;
  options.crear = true;
  return new falso::MotorEmbebido(base::DeUtf16(name), options);
}
