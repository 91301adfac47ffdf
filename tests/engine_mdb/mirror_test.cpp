// The mirrors: types both ways, what rows they are, and what a table of Access says of its columns.
#include "mdb/rows/table.h"
#include "test_bench.h"

namespace {

using base::Value;
using mdb::ColumnType;

mdb::NewColumn Column(const char* name, ColumnType type) {
  mdb::NewColumn c;
  c.name = name;
  c.type = type;
  return c;
}

class Mirrors : public test::MdbTestBench {
 protected:
  void CreateTable(const mdb::NewTable& table) {
    base_.reset();
    const auto base = mdb::Database::Open(path_);
    base->CreateTable(table, base::MakeDate(2026, 1, 1));
    base->Commit();
  }
  std::vector<mdb::Row> InFile(const std::string& table) {
    base_.reset();
    const auto base = mdb::Database::Open(path_, {true, {}});
    std::vector<mdb::Row> rows;
    mdb::WalkRows(base->Pages(), *base->Catalog().Table(table), [&](mdb::RowId, const mdb::Row& f) {
      rows.push_back(f);
      return true;
    });
    return rows;
  }
};

TEST_F(Mirrors, EachTypeGoesAndComesBack) {
  NewDatabase();
  RunSql(
      "CREATE TABLE t (a YESNO, b BYTE, c SHORT, d LONG, e SINGLE, f DOUBLE, g CURRENCY, h DATETIME, i "
      "TEXT(20), "
      "j MEMO, k DECIMAL(12,3), l GUID, m BINARY(6))");
  RunSql(
      "INSERT INTO t VALUES (True, 255, -32768, -2147483648, 0.1, 1.25, 922337203685.4775, #12/29/1899 "
      "06:00#, 'Ñandú', 'largo', -12.5, '{00112233-4455-6677-8899-aabbccddeeff}', 'abc')");
  RunSql("INSERT INTO t (b) VALUES (0)");
  const auto check = [&] {
    const db::Recordset r = base_->Execute("SELECT * FROM t ORDER BY b DESC");
    EXPECT_EQ(r.At(0, 0), Value(true));
    EXPECT_EQ(r.At(1, 0), Value(255));
    EXPECT_EQ(r.At(2, 0), Value(-32768));
    EXPECT_EQ(r.At(3, 0), Value(std::int64_t{-2147483648LL}));
    EXPECT_EQ(r.At(4, 0), Value(0.1F));
    EXPECT_EQ(r.At(5, 0), Value(1.25));
    EXPECT_EQ(r.At(6, 0).type(), base::Type::Currency);
    EXPECT_EQ(r.At(7, 0), Value(base::Date{-1.25}));
    EXPECT_EQ(r.At(8, 0), Value("Ñandú"));
    EXPECT_EQ(r.At(9, 0), Value("largo"));
    EXPECT_EQ(r.At(10, 0), Value(-12.5));
    EXPECT_EQ(r.At(0, 1), Value(false));
    for (std::size_t i = 2; i < 13; ++i) EXPECT_TRUE(r.At(i, 1).IsNull()) << i;
  };
  check();
  OpenConnection();
  check();
  EXPECT_EQ(RowsOf("SELECT l FROM t WHERE b = 255"), "{00112233-4455-6677-8899-AABBCCDDEEFF}");
  Check();
}

// A decimal has the digits of its column at once, not only when it is read again.
TEST_F(Mirrors, ADecimalIsRoundedWhenItIsSaved) {
  NewDatabase();
  RunSql("CREATE TABLE t (k LONG, d DECIMAL(10,2), g GUID)");
  base_->BeginTrans();
  RunSql("INSERT INTO t VALUES (1, 12.345, '00112233-4455-6677-8899-aabbccddeeff')");
  RunSql("INSERT INTO t VALUES (2, 12.3456, Null)");
  RunSql("UPDATE t SET d = d * 3 WHERE k = 2");
  EXPECT_EQ(RowsOf("SELECT d, g FROM t ORDER BY k"),
            "12.34|{00112233-4455-6677-8899-AABBCCDDEEFF}\n37.05|NULL");
  base_->CommitTrans();
  OpenConnection();
  EXPECT_EQ(RowsOf("SELECT d FROM t ORDER BY k"), "12.34\n37.05");
}

// 28 digits do not go through a double, and a byte of text that is no text is no text: what a statement does
// not change keeps what it was.
TEST_F(Mirrors, WhatIsNotChangedKeepsItsBytes) {
  NewDatabase();
  mdb::NewTable t{"t", {}, {}};
  mdb::NewColumn k = Column("k", ColumnType::Long);
  mdb::NewColumn d = Column("d", ColumnType::Decimal);
  mdb::NewColumn m = Column("m", ColumnType::Memo);
  d.precision = 28;
  d.scale = 4;
  t.columns = {k, d, m};
  CreateTable(t);
  const mdb::Decimal exact = mdb::DecimalFromText("123456789012345678901234.5678", 4);
  {
    const auto base = mdb::Database::Open(path_);
    mdb::Changes c;
    c.inserted.push_back({std::int64_t{1}, exact, std::string(5000, 'a')});
    base->Apply("t", c);
    base->Commit();
  }
  OpenConnection();
  RunSql("UPDATE t SET k = 2");
  EXPECT_EQ(engine_mdb::CountersOf(*base_)->rows_written, 1);
  const auto rows = InFile("t");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(std::get<std::int64_t>(rows[0][0]), 2);
  EXPECT_EQ(std::get<mdb::Decimal>(rows[0][1]), exact);
  EXPECT_EQ(std::get<std::string>(rows[0][2]), std::string(5000, 'a'));
}

// The number of a row that went is given to the next one that comes.
TEST_F(Mirrors, EachRowIsItselfAfterEachCommit) {
  NewDatabase();
  RunSql("CREATE TABLE t (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(10))");
  for (int i = 1; i <= 5; ++i) RunSql("INSERT INTO t VALUES (" + std::to_string(i) + ", 'a')");
  RunSql("DELETE FROM t WHERE k = 5");
  RunSql("INSERT INTO t VALUES (6, 'seis')");
  RunSql("UPDATE t SET v = 'dos' WHERE k = 2");
  RunSql("INSERT INTO t VALUES (7, 'siete')");
  RunSql("DELETE FROM t WHERE k = 1");
  RunSql("UPDATE t SET v = 'SEIS' WHERE k = 6");
  const std::string all = "2|dos\n3|a\n4|a\n6|SEIS\n7|siete";
  EXPECT_EQ(RowsOf("SELECT * FROM t ORDER BY k"), all);
  OpenConnection();
  EXPECT_EQ(RowsOf("SELECT * FROM t ORDER BY k"), all);
  RunSql("DELETE FROM t");
  RunSql("INSERT INTO t VALUES (1, 'otra')");
  OpenConnection();
  EXPECT_EQ(RowsOf("SELECT * FROM t"), "1|otra");
  Check();
}

TEST_F(Mirrors, TwoRowsExchangeTheirKeys) {
  NewDatabase();
  RunSql("CREATE TABLE t (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(10))");
  RunSql("INSERT INTO t VALUES (1, 'uno')");
  RunSql("INSERT INTO t VALUES (2, 'dos')");
  base_->BeginTrans();
  RunSql("UPDATE t SET k = 99 WHERE k = 1");
  RunSql("UPDATE t SET k = 1 WHERE k = 2");
  RunSql("UPDATE t SET k = 2 WHERE k = 99");
  base_->CommitTrans();
  OpenConnection();
  EXPECT_EQ(RowsOf("SELECT * FROM t ORDER BY k"), "1|dos\n2|uno");
  Check();
}

// Properties that only Access itself gives its columns.
TEST_F(Mirrors, WhatTheTableSaysOfItsColumns) {
  NewDatabase();
  mdb::NewTable t{"t", {}, {}};
  mdb::NewColumn id = Column("id", ColumnType::Long);
  mdb::NewColumn a = Column("a", ColumnType::Text);
  mdb::NewColumn b = Column("b", ColumnType::Long);
  mdb::NewColumn c = Column("c", ColumnType::Boolean);
  mdb::NewColumn f = Column("f", ColumnType::Date);
  mdb::NewColumn x = Column("x", ColumnType::Long);
  id.auto_number = true;
  a.length = 10;
  a.allows_empty = false;
  a.default_value = "\"nada\"";
  b.required = true;
  b.default_value = "=1+2";
  c.default_value = "Yes";
  f.default_value = "Date()";
  x.default_value = "DameUno()";
  t.columns = {id, a, b, c, f, x};
  CreateTable(t);
  OpenConnection();
  RunSql("INSERT INTO t (x) VALUES (1)");
  EXPECT_EQ(RowsOf("SELECT * FROM t"), "1|nada|3|-1|2026-10-20|1");
  EXPECT_EQ(FailureOfSql("INSERT INTO t (a, x) VALUES ('', 1)"),
            "El campo a de la tabla t no admite un texto sin caracteres.");
  EXPECT_EQ(FailureOfSql("UPDATE t SET a = ''"),
            "El campo a de la tabla t no admite un texto sin caracteres.");
  EXPECT_EQ(FailureOfSql("UPDATE t SET b = Null"),
            "El campo b de la tabla t es obligatorio: no puede quedar vacío.");
  EXPECT_EQ(FailureOfSql("INSERT INTO t (a) VALUES ('x')"),
            "El valor predeterminado del campo x de la tabla t no se puede calcular: dé un valor.");
  RunSql("UPDATE t SET a = Null");
  EXPECT_EQ(RowsOf("SELECT a, b FROM t"), "NULL|3");
}

// A file may hold what its own conditions do not allow: it is read, and changed elsewhere.
TEST_F(Mirrors, RowsThatDoNotComplyAreRead) {
  NewDatabase();
  mdb::NewTable t{"t", {}, {}};
  mdb::NewColumn a = Column("a", ColumnType::Long);
  mdb::NewColumn b = Column("b", ColumnType::Long);
  b.required = true;
  t.columns = {a, b};
  CreateTable(t);
  {
    const auto base = mdb::Database::Open(path_);
    mdb::Changes c;
    c.inserted.push_back({std::int64_t{1}, base::Null{}});
    base->Apply("t", c);
    base->Commit();
  }
  OpenConnection();
  EXPECT_EQ(RowsOf("SELECT * FROM t"), "1|NULL");
  RunSql("UPDATE t SET a = 2");
  EXPECT_EQ(FailureOfSql("UPDATE t SET b = Null"),
            "El campo b de la tabla t es obligatorio: no puede quedar vacío.");
  EXPECT_EQ(RowsOf("SELECT * FROM t"), "2|NULL");
}

TEST_F(Mirrors, ATableWithTheNamesOfTheRows) {
  NewDatabase();
  RunSql("CREATE TABLE t (rowid LONG, oid TEXT(5), b LONG)");
  RunSql("INSERT INTO t VALUES (7, 'x', 1)");
  RunSql("INSERT INTO t VALUES (7, 'y', 2)");
  RunSql("UPDATE t SET rowid = 8 WHERE oid = 'y'");
  RunSql("DELETE FROM t WHERE rowid = 7");
  OpenConnection();
  EXPECT_EQ(RowsOf("SELECT rowid, oid, b FROM t"), "8|y|2");
}

TEST_F(Mirrors, OnlyWhatIsNamedIsRead) {
  NewDatabase();
  RunSql("CREATE TABLE t (k LONG)");
  RunSql("CREATE TABLE u (k LONG)");
  RunSql("INSERT INTO t VALUES (1)");
  RunSql("INSERT INTO u VALUES (1)");
  OpenConnection();
  EXPECT_EQ(engine_mdb::CountersOf(*base_)->mirrors, 0);
  RunSql("SELECT * FROM t");
  RunSql("SELECT * FROM t WHERE k = 1");
  EXPECT_EQ(engine_mdb::CountersOf(*base_)->mirrors, 1);
  EXPECT_EQ(engine_mdb::CountersOf(*base_)->rows_read, 1);
}

// The tables of the system can be read, and nothing else.
TEST_F(Mirrors, TheSystemTables) {
  NewDatabase();
  RunSql("CREATE TABLE t (k LONG)");
  EXPECT_EQ(RowsOf("SELECT Type FROM MSysObjects WHERE Name = 'T'"), "1");
  EXPECT_EQ(FailureOfSql("DELETE FROM MSysObjects"),
            "La tabla MSysObjects es del sistema: se puede leer, no escribir.");
}

}  // namespace
