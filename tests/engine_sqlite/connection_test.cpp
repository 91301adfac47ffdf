// What a connection promises beyond the rows: all or nothing, transactions, reading only, texts of any size.
#include <gtest/gtest.h>

#include <string>

#include "engine_sqlite/sqlite_connection.h"
#include "render.h"

namespace {

using base::Type;
using base::Value;

class Connections : public testing::Test {
 protected:
  void SetUp() override { base_ = engine_sqlite::Open(":memory:"); }

  db::Recordset Run(std::string_view sql) { return base_->Execute(sql); }
  std::string Rows(std::string_view sql) { return support::Rows(base_->Execute(sql)); }
  // The description of the failure, or "no error".
  std::string Error(std::string_view sql) {
    try {
      base_->Execute(sql);
    } catch (const db::Error& e) {
      return support::ErrorText(e);
    }
    return "no error";
  }
  void FillTexts() {
    Run("CREATE TABLE t (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(20), n LONG)");
    Run("INSERT INTO t VALUES (1, '10', 0)");
    Run("INSERT INTO t VALUES (2, '20', 0)");
    Run("INSERT INTO t VALUES (3, 'x', 0)");
  }

  std::unique_ptr<db::Connection> base_;
};

TEST_F(Connections, AStatementThatFailsHalfWayChangesNothing) {
  FillTexts();
  EXPECT_EQ(Error("UPDATE t SET n = CLng(v)"), "[13] No coinciden los tipos");
  EXPECT_EQ(Rows("SELECT k, n FROM t ORDER BY k"), "1|0\n2|0\n3|0");
  EXPECT_EQ(Error("INSERT INTO t (k, n) SELECT k + 10, CLng(v) FROM t ORDER BY k"),
            "[13] No coinciden los tipos");
  EXPECT_EQ(Rows("SELECT Count(*) FROM t"), "3");
  EXPECT_EQ(Error("UPDATE t SET k = 3 - k"),  // 1 becomes 2, which is there; 3 would become 0
            "Ya existe un registro con el mismo valor en k de la tabla t.");
  EXPECT_EQ(Rows("SELECT k FROM t ORDER BY k"), "1\n2\n3");
  EXPECT_EQ(Error("DELETE FROM t WHERE CLng(v) > 0"), "[13] No coinciden los tipos");
  EXPECT_EQ(Rows("SELECT Count(*) FROM t"), "3");
}

TEST_F(Connections, InATransactionWhatWentBeforeStaysAndItGoesOn) {
  FillTexts();
  base_->BeginTrans();
  EXPECT_TRUE(base_->InTransaction());
  Run("INSERT INTO t VALUES (4, '40', 7)");
  EXPECT_EQ(Error("UPDATE t SET n = CLng(v)"), "[13] No coinciden los tipos");
  EXPECT_EQ(Error("INSERT INTO t VALUES (4, 'otra', 0)"),
            "Ya existe un registro con el mismo valor en k de la tabla t.");
  EXPECT_EQ(Rows("SELECT k, n FROM t ORDER BY k"), "1|0\n2|0\n3|0\n4|7");
  Run("UPDATE t SET n = 5 WHERE k = 1");
  base_->CommitTrans();
  EXPECT_FALSE(base_->InTransaction());
  EXPECT_EQ(Rows("SELECT k, n FROM t ORDER BY k"), "1|5\n2|0\n3|0\n4|7");
}

// An UPDATE over a join runs in several steps; one that fails leaves nothing of the others.
TEST_F(Connections, AStatementOfSeveralStepsIsAllOrNothing) {
  FillTexts();
  Run("CREATE TABLE u (k LONG, w TEXT(20))");
  Run("INSERT INTO u SELECT k, v AS w FROM t");
  for (const bool in_transaction : {false, true}) {
    if (in_transaction) base_->BeginTrans();
    EXPECT_EQ(Error("UPDATE t INNER JOIN u ON t.k = u.k SET t.n = CLng(u.w), u.w = 'cambiado'"),
              "[13] No coinciden los tipos");
    EXPECT_EQ(Rows("SELECT t.n, u.w FROM t INNER JOIN u ON t.k = u.k ORDER BY t.k"), "0|10\n0|20\n0|x");
    EXPECT_EQ(base_->InTransaction(), in_transaction);
  }
  base_->RollbackTrans();
}

TEST_F(Connections, TransactionsHaveOneLevel) {
  const auto error = [](auto&& step) -> std::string {
    try {
      step();
    } catch (const db::Error& e) {
      return e.Description();
    }
    return "no error";
  };
  EXPECT_EQ(error([&] { base_->CommitTrans(); }), "No hay ninguna transacción abierta.");
  EXPECT_EQ(error([&] { base_->RollbackTrans(); }), "No hay ninguna transacción abierta.");
  base_->BeginTrans();
  EXPECT_EQ(error([&] { base_->BeginTrans(); }), "Ya hay una transacción abierta.");
  EXPECT_TRUE(base_->InTransaction());
  base_->RollbackTrans();
  EXPECT_FALSE(base_->InTransaction());
}

TEST_F(Connections, RollingBackUndoesDefinitionsToo) {
  base_->BeginTrans();
  Run("CREATE TABLE nueva (k LONG)");
  Run("INSERT INTO nueva VALUES (1)");
  Run("CREATE VIEW vista AS SELECT k FROM nueva");
  EXPECT_EQ(Rows("SELECT k FROM vista"), "1");
  base_->RollbackTrans();
  EXPECT_NE(Error("SELECT k FROM nueva"), "no error");
  EXPECT_NE(Error("SELECT k FROM vista"), "no error");
  Run("CREATE TABLE nueva (otra TEXT(5))");
  EXPECT_EQ(Rows("SELECT Count(otra) FROM nueva"), "0");
}

TEST_F(Connections, ClosedItServesNothing) {
  base_->BeginTrans();
  base_->Close();
  EXPECT_FALSE(base_->IsOpen());
  EXPECT_FALSE(base_->InTransaction());
  EXPECT_EQ(Error("SELECT 1"), "La base no está abierta.");
  base_->Close();
  EXPECT_THROW(base_->BeginTrans(), db::Error);
}

TEST_F(Connections, QueryingOnlyReads) {
  FillTexts();
  for (const char* sql :
       {"DELETE FROM t", "UPDATE t SET n = 1", "INSERT INTO t VALUES (9, '', 0)", "SELECT * INTO c FROM t",
        "DROP TABLE t", "CREATE TABLE z (k LONG)", "CREATE VIEW z AS SELECT 1 AS x",
        "ALTER TABLE t ADD COLUMN z LONG", "CREATE INDEX i ON t (n)"}) {
    try {
      base_->Query(sql);
      ADD_FAILURE() << sql;
    } catch (const db::Error& e) {
      EXPECT_EQ(e.Description(), "La sentencia no es de consulta: aquí solo se puede leer.") << sql;
    }
  }
  EXPECT_EQ(support::Rows(base_->Query("SELECT Sum(n), Count(*) FROM t")), "0|3");
}

TEST_F(Connections, ValuesComeWithTheirType) {
  Run("CREATE TABLE v (b YESNO, e BYTE, i SHORT, l LONG, s SINGLE, d DOUBLE, c CURRENCY, f DATETIME, t "
      "TEXT(9), m MEMO)");
  Run("INSERT INTO v VALUES (True, 255, -32768, 2147483647, 0.1, 0.1, 1234.5678, #03/05/2024 06:00#, 'ñ', "
      "'m')");
  Run("INSERT INTO v (t) VALUES (Null)");
  const db::Recordset rows = Run("SELECT * FROM v");
  EXPECT_EQ(rows.At(0, 0), Value(true));
  EXPECT_EQ(rows.At(1, 0), Value(255));
  EXPECT_EQ(rows.At(2, 0), Value(-32768));
  EXPECT_EQ(rows.At(3, 0), Value(2147483647));
  EXPECT_EQ(rows.At(4, 0), Value(0.1F));
  EXPECT_EQ(rows.At(5, 0), Value(0.1));
  EXPECT_EQ(rows.At(6, 0), Value(base::Currency{12345678}));
  EXPECT_EQ(rows.At(7, 0), Value(base::Date{base::MakeDate(2024, 3, 5).serial + 0.25}));
  EXPECT_EQ(rows.At(8, 0), Value("ñ"));
  EXPECT_EQ(rows.At(9, 0), Value("m"));
  EXPECT_EQ(rows.At(0, 1), Value(false));  // a YESNO is never Null
  for (std::size_t c = 1; c < rows.Fields().size(); ++c) EXPECT_TRUE(rows.At(c, 1).IsNull()) << c;
  EXPECT_EQ(rows.Source(), "SELECT * FROM v");
}

// An expression keeps its type even where SQLite computes with plain numbers.
TEST_F(Connections, ExpressionsHaveAType) {
  const db::Recordset f = Run(
      "SELECT 1 = 1, 7 / 2, 6 / 2, 7 \\ 2, CCur(2), CSng(0.1), CDate(0.5), 'a' & 1, Null, IIf(True, 1, 2.5)");
  EXPECT_EQ(f.At(0, 0), Value(true));
  EXPECT_EQ(f.At(1, 0), Value(3.5));
  EXPECT_EQ(f.At(2, 0), Value(3.0));
  EXPECT_EQ(f.At(3, 0), Value(3));
  EXPECT_EQ(f.At(4, 0), Value(base::Currency{20000}));
  EXPECT_EQ(f.At(5, 0), Value(0.1F));
  EXPECT_EQ(f.At(6, 0), Value(base::Date{0.5}));
  EXPECT_EQ(f.At(7, 0), Value("a1"));
  EXPECT_TRUE(f.At(8, 0).IsNull());
  EXPECT_EQ(f.At(9, 0), Value(1.0));
}

// Each reading of this clock is a second later.
class RunningClock final : public ports::Clock {
 public:
  base::Date Now() const override {
    ++readings;
    return {base::MakeDate(2024, 3, 5).serial + readings / 86400.0};
  }
  mutable int readings = 0;
};

TEST(ConnectionClock, StandsStillDuringAStatement) {
  const RunningClock clock;
  engine_sqlite::Options options;
  options.clock = &clock;
  const auto base = engine_sqlite::Open(":memory:", options);
  base->Execute("CREATE TABLE t (k LONG, f DATETIME)");
  for (int i = 0; i < 3; ++i) base->Execute("INSERT INTO t VALUES (" + std::to_string(i) + ", Null)");
  EXPECT_EQ(clock.readings, 0);
  base->Execute("UPDATE t SET f = IIf(k = 1, Now(), DateAdd('s', 0, Now()))");
  EXPECT_EQ(support::Rows(base->Execute("SELECT f FROM t")),
            "2024-03-05 00:00:01\n2024-03-05 00:00:01\n2024-03-05 00:00:01");
  EXPECT_EQ(support::Rows(base->Execute("SELECT Now()")), "2024-03-05 00:00:02");
  EXPECT_EQ(support::Rows(base->Execute("SELECT Now()")), "2024-03-05 00:00:03");
}

TEST_F(Connections, TheAffectedRowsAreTheLastStatements) {
  FillTexts();
  EXPECT_EQ(base_->AffectedRows(), 1);
  Run("UPDATE t SET n = 1 WHERE k < 3");
  EXPECT_EQ(base_->AffectedRows(), 2);
  Run("SELECT * FROM t");
  EXPECT_EQ(base_->AffectedRows(), 0);
  Run("DELETE FROM t WHERE k = 99");
  EXPECT_EQ(base_->AffectedRows(), 0);
  EXPECT_NE(Error("DELETE FROM nada"), "no error");
  EXPECT_EQ(base_->AffectedRows(), 0);
  Run("DELETE FROM t");
  EXPECT_EQ(base_->AffectedRows(), 3);
}

std::string Repeat(const std::string& piece, int times) {
  std::string output;
  output.reserve(piece.size() * static_cast<std::size_t>(times));
  for (int i = 0; i < times; ++i) output += piece;
  return output;
}

// A month's calendar becomes a long chain of OR; every length that an office can have must work.
TEST_F(Connections, LongConditionsHold) {
  FillTexts();
  for (const int terms : {100, 1500}) {
    std::string sql = "SELECT Count(*) FROM t WHERE k = 1";
    for (int i = 0; i < terms; ++i) {
      sql += " or (k = 2 and n in (";
      sql += std::to_string(i + 1);
      sql += ",0))";
    }
    EXPECT_EQ(Rows(sql), "2") << terms;
  }
  std::string list = "SELECT Count(*) FROM t WHERE k In (0";
  for (int i = 3; i < 5000; ++i) {
    list += ',';
    list += std::to_string(i);
  }
  EXPECT_EQ(Rows(list + ")"), "1");
  EXPECT_EQ(Error("SELECT Count(*) FROM t WHERE k In (0" + Repeat(",1", 40000) + ")"),
            "La lista de IN no puede tener más de 20000 (línea 1, columna 40037)");
  EXPECT_EQ(Rows("SELECT 1" + Repeat(" + 1", 300)), "301");
  EXPECT_EQ(Rows("SELECT Len('a'" + Repeat(" & 'b'", 900) + ")"), "901");
}

TEST_F(Connections, NoTextBringsItDown) {
  FillTexts();
  const std::string deep[] = {
      "SELECT " + Repeat("(", 100000) + "1" + Repeat(")", 100000),
      "SELECT " + Repeat("Not ", 100000) + "True",
      "SELECT " + Repeat("-", 100000) + "1",
      "SELECT " + Repeat("Len(", 100000) + "1" + Repeat(")", 100000),
      "SELECT * FROM " + Repeat("(", 100000) + "t" + Repeat(")", 100000),
      "SELECT 1" + Repeat(" + 1", 100000),
      "SELECT Count(*) FROM t WHERE k = 1" + Repeat(" or k = 2", 100000),
      "SELECT 1" + Repeat(" UNION ALL SELECT 1", 20000),
      Repeat("SELECT * FROM (", 5000) + "t" + Repeat(")", 5000),
      Repeat("\x01\xFF[", 1000),
      std::string("SELECT 'a\0b'", 12),
      "SELECT '" + Repeat("x", 1000) + "' LIKE '" + Repeat("%x", 500) + "y'",
      "SELECT String(2000000000, 'x')",
      "SELECT Replace(String(60000000, 'x'), 'x', 'yyyyyyyyyy')",
      "",
      ";",
  };
  for (const std::string& sql : deep) {
    try {
      base_->Execute(sql);  // rows or an error, both are answers
    } catch (const db::Error& e) {
      EXPECT_FALSE(e.Description().empty());
    }
  }
  EXPECT_EQ(Rows("SELECT Count(*) FROM t"), "3");
}

TEST_F(Connections, ALongTextComesBackWhole) {
  Run("CREATE TABLE l (m MEMO)");
  const std::string length = Repeat("ñandú ", 200000);
  Run("INSERT INTO l VALUES ('" + length + "')");
  EXPECT_EQ(Run("SELECT m FROM l").At(0, 0), Value(length));
}

}  // namespace
