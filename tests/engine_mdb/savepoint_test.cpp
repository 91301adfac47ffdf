// The mark inside a transaction over an Access file: random lines, some of them undone, against the embedded
// engine; what lands in the file; and what an undone line costs.
#include <random>

#include "engine_sqlite/sqlite_connection.h"
#include "test_bench.h"

namespace {

class MdbSavepoints : public test::MdbTestBench {
 protected:
  static constexpr const char* kTables[] = {"a", "b", "c"};

  static void Make(db::Connection& c) {
    c.Execute("CREATE TABLE a (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(20), d DOUBLE)");
    c.Execute("CREATE TABLE b (id COUNTER CONSTRAINT pk PRIMARY KEY, k LONG, v TEXT(20))");
    c.Execute("CREATE TABLE c (k LONG, m MEMO, CONSTRAINT pk PRIMARY KEY (k))");
    c.Execute("CREATE INDEX por_v ON a (v)");
    for (int i = 0; i < 30; ++i) {
      const std::string n = std::to_string(i);
      c.Execute("INSERT INTO a VALUES (" + n + ", 'a" + n + "', " + n + ")");
      c.Execute("INSERT INTO b (k, v) VALUES (" + n + ", 'b')");
      c.Execute("INSERT INTO c VALUES (" + n + ", String(" + n + "0, 'm'))");
    }
  }
  static std::string Rows(db::Connection& c) {
    std::string all;
    for (const char* t : kTables)
      all += support::Rows(c.Execute("SELECT * FROM " + std::string(t)), true) + "\n--\n";
    return all;
  }
};

// One statement of a line.
std::string Statement(std::mt19937& random, bool definitions) {
  const auto upto = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
  const std::string k = std::to_string(upto(80)), other = std::to_string(upto(80));
  switch (upto(definitions ? 13 : 10)) {
    case 0:
      return "INSERT INTO a VALUES (" + k + ", 'n" + other + "', 1.5)";
    case 1:
      return "INSERT INTO b (k, v) VALUES (" + k + ", 'n" + other + "')";
    case 2:
      return "INSERT INTO c VALUES (" + k + ", String(" + other + ", 'z'))";
    case 3:
      return "UPDATE a SET k = " + other + " WHERE k = " + k;
    case 4:
      return "UPDATE b SET v = 'x' & id WHERE k < " + k;
    case 5:
      return "UPDATE c SET m = m & 'y' WHERE k > " + k;
    case 6:
      return "DELETE FROM a WHERE k = " + k;
    case 7:
      return "DELETE FROM b WHERE k BETWEEN " + k + " AND " + k + " + 3";
    case 8:
      return "INSERT INTO b (k, v) SELECT k, v FROM a WHERE k > " + k;
    case 9:
      return "INSERT INTO a SELECT k + 1 AS k, v, d FROM a";  // refused
    case 10:
      return "ALTER TABLE a ADD COLUMN n" + std::to_string(upto(3)) + " LONG";
    case 11:
      return "ALTER TABLE a DROP COLUMN n" + std::to_string(upto(3));
    default:
      return upto(2) == 0 ? "CREATE INDEX i ON c (k)" : "DROP INDEX i ON c";
  }
}

TEST_F(MdbSavepoints, RandomLinesSomeOfThemUndone) {
  for (unsigned seed = 0; seed < 16; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::filesystem::remove(std::filesystem::u8path(path_));
    NewDatabase();
    engine_sqlite::Options o;
    o.clock = &clock_;
    const auto model = engine_sqlite::Open(":memory:", o);
    Make(*base_);
    Make(*model);
    for (int run = 0; run < 3; ++run) {
      if (random() % 2 == 0) OpenConnection();
      for (db::Connection* c : {base_.get(), model.get()}) c->BeginTrans();
      for (int line = 0; line < 12; ++line) {
        const bool mark = random() % 5 != 0;
        if (mark)
          for (db::Connection* c : {base_.get(), model.get()}) c->SetSavepoint();
        for (auto n = random() % 5; n > 0; --n) {
          const std::string sql = Statement(random, seed % 2 == 1);
          std::string told[2];
          for (int i = 0; i < 2; ++i)
            told[i] = FailureOfStep([&] { (i == 0 ? base_ : model)->Execute(sql); });
          ASSERT_EQ(told[0] == "no error", told[1] == "no error")
              << sql << ": " << told[0] << " / " << told[1];
        }
        if (mark && random() % 2 == 0)
          for (db::Connection* c : {base_.get(), model.get()}) c->RollbackToSavepoint();
        if (line % 4 == 0) {
          ASSERT_EQ(Rows(*base_), Rows(*model));
        }
      }
      const bool keep = random() % 4 != 0;
      for (db::Connection* c : {base_.get(), model.get()}) keep ? c->CommitTrans() : c->RollbackTrans();
      ASSERT_EQ(Rows(*base_), Rows(*model));
    }
    OpenConnection();
    ASSERT_EQ(Rows(*base_), Rows(*model));
    Check();
  }
}

// What an undone line had read, indexed or made ready is there for the next one.
TEST_F(MdbSavepoints, UndoneLinesDoNotReadTheirTablesAgain) {
  NewDatabase();
  Make(*base_);
  OpenConnection();
  base_->BeginTrans();
  RunSql("UPDATE a SET d = 0 WHERE k = 1");
  for (int line = 0; line < 50; ++line) {
    base_->SetSavepoint();
    RunSql("INSERT INTO a VALUES (" + std::to_string(1000 + line) + ", 'x', 0)");
    EXPECT_EQ(RowsOf("SELECT Count(*) FROM b"), "30");
    RunSql("INSERT INTO c VALUES (1000, 'x')");
    base_->RollbackToSavepoint();
  }
  const engine_mdb::Counters& counts = *engine_mdb::CountersOf(*base_);
  EXPECT_LE(counts.mirrors, 6);
  base_->CommitTrans();
  EXPECT_EQ(counts.rows_written, 1);
  Check();
}

// An undone definition leaves the file as if it had not been.
TEST_F(MdbSavepoints, WhatIsUndoneIsNotInTheFile) {
  NewDatabase();
  Make(*base_);
  base_.reset();
  const State before = File();
  OpenConnection();
  base_->BeginTrans();
  base_->SetSavepoint();
  RunSql("INSERT INTO a VALUES (500, 'x', 0)");
  RunSql("CREATE TABLE x (k LONG)");
  RunSql("DROP TABLE c");
  RunSql("ALTER TABLE b ADD COLUMN n LONG");
  base_->RollbackToSavepoint();
  base_->CommitTrans();
  base_->Close();
  EXPECT_EQ(File(), before);
}

TEST_F(MdbSavepoints, NoMarkOutsideATransaction) {
  NewDatabase();
  EXPECT_EQ(FailureOfStep([&] { base_->SetSavepoint(); }), "No hay ninguna transacción abierta.");
  EXPECT_EQ(FailureOfStep([&] { base_->RollbackToSavepoint(); }), "No hay ninguna marca en la transacción.");
  OpenConnection(true);
  EXPECT_EQ(FailureOfStep([&] { base_->SetSavepoint(); }), "No hay ninguna transacción abierta.");
}

}  // namespace
