// What the file cannot hold fails in its statement, not in the commit of what others did; and what fails
// half-way leaves nothing to be written twice.
#include <fstream>

#include "mdb/rows/table.h"
#include "test_bench.h"

namespace {

class Refusals : public test::MdbTestBench {
 protected:
  void SetUp() override { NewDatabase(); }
  // Each statement in one transaction between two that are kept.
  void FailsAlone(const std::string& sql, const std::string& text) {
    base_->BeginTrans();
    RunSql("INSERT INTO bueno VALUES (1)");
    EXPECT_EQ(FailureOfSql(sql), text) << sql;
    RunSql("INSERT INTO bueno VALUES (2)");
    base_->CommitTrans();
    EXPECT_EQ(RowsOf("SELECT Count(*) FROM bueno"), "2") << sql;
    RunSql("DELETE FROM bueno");
  }
};

TEST_F(Refusals, AtTheStatementAndNotAtTheCommit) {
  RunSql("CREATE TABLE bueno (k LONG)");
  RunSql("CREATE TABLE t (k LONG, x TEXT(4), i TEXT(20), d DATETIME, n DOUBLE, b BINARY(4))");
  RunSql("CREATE INDEX por_i ON t (i)");
  const std::string length = "El texto es demasiado largo para el campo x.";
  const std::string nul(1, '\0');
  // The file counts in units of UTF-16, two for a character outside the first 65,536.
  RunSql("INSERT INTO t (k, x) VALUES (1, '😀😀')");
  FailsAlone("INSERT INTO t (k, x) VALUES (2, '😀😀a')", length);
  FailsAlone("UPDATE t SET x = '😀😀😀'", length);
  // A NUL ends no text.
  FailsAlone("INSERT INTO t (k, x) VALUES (2, 'a" + nul + "bcd')", length);
  RunSql("INSERT INTO t (k, x) VALUES (2, 'a" + nul + "bc')");
  FailsAlone(
      "INSERT INTO t (k, i) VALUES (3, 'a漢')",
      "El texto 'a漢' de la columna 'i', que está en un índice, tiene el carácter '漢', cuyo lugar en el "
      "orden de Access no se conoce");
  RunSql("INSERT INTO t (k, i) VALUES (3, 'Ñandú’')");
  const std::string date = "La fecha del campo d de la tabla t está fuera de los años 100 a 9999.";
  FailsAlone("INSERT INTO t (k, d) VALUES (4, 2958466)", date);
  FailsAlone("INSERT INTO t (k, d) VALUES (4, -657435)", date);
  RunSql("INSERT INTO t (k, d) VALUES (4, 2958465.5)");
  FailsAlone("INSERT INTO t (k, n) VALUES (5, 1e308 * 10)", "El número no cabe en el campo n.");
  FailsAlone("INSERT INTO t (k, b) VALUES (6, 'abc')", "El valor es demasiado largo para el campo b.");
  // Text in bytes is what it will be when it is read again.
  RunSql("INSERT INTO t (k, b) VALUES (6, 'ab')");
  const std::string all = RowsOf("SELECT * FROM t ORDER BY k");
  EXPECT_EQ(RowsOf("SELECT b FROM t WHERE k = 6"), "a\\x00b\\x00");
  OpenConnection();
  EXPECT_EQ(RowsOf("SELECT * FROM t ORDER BY k"), all);
  Check();
}

// SELECT … INTO is found wherever its words stand: in the mirror alone its table would be lost.
TEST_F(Refusals, ANewTableIsInTheFile) {
  RunSql("CREATE TABLE t (k LONG)");
  RunSql("INSERT INTO t VALUES (1)");
  RunSql("(SELECT k INTO u FROM t)");
  RunSql("PARAMETERS p LONG; SELECT k INTO v FROM t");
  RunSql("SELECT k INTO w FROM t UNION SELECT k + 1 AS k FROM t");
  OpenConnection();
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM u"), "1");
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM v"), "1");
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM w"), "2");
  Check();
}

// A definition first puts the rows of its transaction into the pages. When one table's are refused, those of
// the others must not stay there: the commit writes them.
TEST_F(Refusals, PendingRowsAreWrittenAtOneTime) {
  constexpr int kTables = 12;
  for (int i = 0; i < kTables; ++i) RunSql("CREATE TABLE t" + std::to_string(i) + " (k LONG)");
  std::string columns, values;
  for (int i = 0; i < 9; ++i) {
    columns += ", c" + std::to_string(i) + " TEXT(255)";
    values += ", String(255, 'ж') AS c" + std::to_string(i);
  }
  RunSql("CREATE TABLE ancha (k LONG" + columns + ")");
  base_->BeginTrans();
  for (int i = 0; i < kTables; ++i) RunSql("INSERT INTO t" + std::to_string(i) + " VALUES (1)");
  RunSql("INSERT INTO ancha SELECT 1 AS k" + values);
  EXPECT_NE(FailureOfSql("CREATE TABLE otra (k LONG)"), "no error");
  RunSql("DELETE FROM ancha");
  base_->CommitTrans();
  OpenConnection();
  for (int i = 0; i < kTables; ++i) EXPECT_EQ(RowsOf("SELECT * FROM t" + std::to_string(i)), "1") << i;
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM ancha"), "0");
  Check();
}

// A table that cannot be read says why each time it is named, and the others go on.
TEST_F(Refusals, ADamagedTableAlwaysSaysTheSame) {
  RunSql("CREATE TABLE t (k LONG)");
  RunSql("CREATE TABLE u (k LONG)");
  RunSql("INSERT INTO t VALUES (1)");
  RunSql("INSERT INTO u VALUES (2)");
  base_.reset();
  mdb::PageNumber page = 0;
  {
    const auto base = mdb::Database::Open(path_, {true, {}});
    mdb::WalkRows(base->Pages(), *base->Catalog().Table("t"), [&](mdb::RowId id, const mdb::Row&) {
      page = id.page;
      return false;
    });
  }
  ASSERT_GT(page, 0U);
  {
    std::fstream f(std::filesystem::u8path(path_), std::ios::in | std::ios::out | std::ios::binary);
    f.seekp(static_cast<std::streamoff>(page) * 4096 + 12);
    f.write("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 8);
  }
  OpenConnection();
  const std::string failure = FailureOfSql("SELECT * FROM t");
  EXPECT_NE(failure.find(std::to_string(page)), std::string::npos) << failure;
  EXPECT_EQ(FailureOfSql("SELECT * FROM t"), failure);
  EXPECT_EQ(FailureOfSql("UPDATE t SET k = 3"), failure);
  EXPECT_EQ(FailureOfSql("UPDATE t SET k = 3"), failure);
  EXPECT_EQ(RowsOf("SELECT * FROM u"), "2");
}

}  // namespace
