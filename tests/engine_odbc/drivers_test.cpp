// Connection strings, and real drivers: Debian's for SQLite and mdbtools' for Access files.
#include <filesystem>

#include "base/text.h"
#include "mdb/samples.h"
#include "odbc_settings.h"

#ifdef __SANITIZE_ADDRESS__
// mdbtools' driver loses what it has of a date that it cannot say.
extern "C" const char* __lsan_default_suppressions() { return "leak:libglib-2.0\n"; }
#endif

namespace {

using base::Value;

TEST(ConnectionString, ComesFromTheKeyBase) {
  EXPECT_EQ(engine_odbc::ConnectionStringOf("Sueldos"), "DSN=Sueldos");
  EXPECT_EQ(engine_odbc::ConnectionStringOf("  Sueldos 2026 "), "DSN=Sueldos 2026");
  EXPECT_EQ(engine_odbc::ConnectionStringOf("DSN=Sueldos"), "DSN=Sueldos");
  EXPECT_EQ(engine_odbc::ConnectionStringOf("DSN=Sueldos", "x"), "DSN=Sueldos;PWD=x");
  EXPECT_EQ(engine_odbc::ConnectionStringOf("DSN=Sueldos;", "x y"), "DSN=Sueldos;PWD=x y");
  EXPECT_EQ(engine_odbc::ConnectionStringOf("DSN=Sueldos", "a;b}c"), "DSN=Sueldos;PWD={a;b}}c}");
  EXPECT_EQ(engine_odbc::ConnectionStringOf("DSN=Sueldos", " a"), "DSN=Sueldos;PWD={ a}");
  EXPECT_EQ(engine_odbc::ConnectionStringOf("DSN=Sueldos; pwd=suya", "x"), "DSN=Sueldos; pwd=suya");
}

TEST(ConnectionString, OfAFileWithTheNamedDriver) {
  EXPECT_EQ(engine_odbc::ConnectionStringForFile("C:\\Datos (x86)\\Personal.mdb", {}, "MDBTools"),
            "Driver={MDBTools};DBQ=C:\\Datos (x86)\\Personal.mdb");
  EXPECT_EQ(engine_odbc::ConnectionStringForFile("C:\\a;b\\P.mdb", "clave", "MDBTools"),
            "Driver={MDBTools};DBQ={C:\\a;b\\P.mdb};PWD=clave");
}

TEST(ConnectionString, OfAFileWithTheAccessDriverThatIsThere) {
  {
    tests::Configure("[MDBTools]\nDriver=/x.so\n");
    EXPECT_FALSE(engine_odbc::HasAccessDriver());
    EXPECT_EQ(tests::FailureOf([] { engine_odbc::ConnectionStringForFile("P.mdb"); }),
              "No hay un driver ODBC de Access instalado que abra 'P.mdb'.");
  }
  {
    tests::Configure("[MDBTools]\nDriver=/x.so\n[Microsoft Access Driver (*.mdb)]\nDriver=/y.so\n");
    EXPECT_TRUE(engine_odbc::HasAccessDriver());
    EXPECT_EQ(engine_odbc::ConnectionStringForFile("P.mdb", "a"),
              "Driver={Microsoft Access Driver (*.mdb)};DBQ=P.mdb;PWD=a");
  }
  tests::Configure(
      "[Microsoft Access Driver (*.mdb)]\nDriver=/y.so\n[Microsoft Access Driver (*.mdb, "
      "*.accdb)]\nDriver=/y.so\n");
  EXPECT_EQ(engine_odbc::ConnectionStringForFile("P.mdb"),
            "Driver={Microsoft Access Driver (*.mdb, *.accdb)};DBQ=P.mdb");
}

TEST(DataSources, TheNameOfADataSource) {
  tests::Configure("[De prueba]\nDriver=" IDM_ODBC_TEST "\n", "[Sueldos 2026]\nDriver=De prueba\n");
  const auto base = engine_odbc::Open(engine_odbc::ConnectionStringOf("Sueldos 2026"));
  EXPECT_EQ(base->Execute("Select 1").Field(0), Value("Select 1"));
}

class Sqlite : public testing::Test {
 protected:
  void SetUp() override {
    if (std::string(IDM_ODBC_SQLITE).empty()) GTEST_SKIP() << "no SQLite driver for ODBC (libsqliteodbc)";
    Open();
  }
  void Open() {
    base_.reset();
    base_ = engine_odbc::Open("Driver=" IDM_ODBC_SQLITE ";Database=" + folder_.Path("ñandú.db"));
  }
  std::string Rows(const std::string& sql) { return support::Rows(base_->Execute(sql)); }

  support::TempFolder folder_;
  std::unique_ptr<db::Connection> base_;
};

TEST_F(Sqlite, ClosingRollsBackWhatWasNotCommitted) {
  base_->Execute("CREATE TABLE t (k INTEGER)");
  base_->BeginTrans();
  base_->Execute("INSERT INTO t VALUES (1)");
  EXPECT_EQ(Rows("SELECT k FROM t"), "1");
  Open();  // the first one goes with its transaction open
  EXPECT_EQ(Rows("SELECT k FROM t"), "");
  base_->BeginTrans();
  base_->Execute("INSERT INTO t VALUES (2)");
  base_->CommitTrans();
  base_->Execute("INSERT INTO t VALUES (3)");
  Open();
  EXPECT_EQ(Rows("SELECT k FROM t ORDER BY k"), "2\n3");
}

TEST_F(Sqlite, APathWithAccentsIsThatPath) {
  base_->Execute("CREATE TABLE t (k INTEGER)");
  EXPECT_TRUE(std::filesystem::exists(folder_.Path("ñandú.db")));
}

// With a connection string of plain letters the texts travel another way.
TEST_F(Sqlite, TheTextsOfAConnectionWithoutAccents) {
  const auto base = engine_odbc::Open("Driver=" IDM_ODBC_SQLITE ";Database=" + folder_.Path("b.db"));
  const db::Recordset rows = base->Execute("SELECT 'ñandú €' AS [año], hex('ñ€'), '😀'");
  EXPECT_EQ(rows.Fields()[0].name, "año");
  EXPECT_EQ(support::Rows(rows), "ñandú €|C3B1E282AC|😀");
}

TEST_F(Sqlite, TextsComeBackAsTheyWent) {
  base_->Execute("CREATE TABLE t (k INTEGER, v VARCHAR(50), m TEXT)");
  const std::string texts[] = {"ñandú €", "😀", "a😀ñ", "", " x ", "{d 'x'}", "a\nb", "%_", "Ω 漢字"};
  int k = 0;
  for (const std::string& t : texts) {
    const std::string literal = "'" + base::EscapeQuotes(t) + "'";
    base_->Execute("INSERT INTO t VALUES (" + std::to_string(++k) + "," + literal + "," + literal + ")");
    const db::Recordset rows =
        base_->Execute("SELECT v, m FROM t WHERE v=" + literal + " AND k=" + std::to_string(k));
    ASSERT_EQ(rows.Count(), 1U) << t;
    EXPECT_EQ(rows.At(0, 0), Value(t));
    EXPECT_EQ(rows.At(1, 0), Value(t));
  }
  const db::Recordset rows = base_->Execute("SELECT 1 AS [año €], '😀' AS [número]");
  EXPECT_EQ(rows.Fields()[0].name, "año €");
  EXPECT_EQ(rows.Fields()[1].name, "número");
  try {
    base_->Execute("SELECT ñandú FROM t");
    ADD_FAILURE();
  } catch (const db::Error& e) {
    EXPECT_NE(e.Description().find("[SQLite]no such column: ñandú"), std::string::npos) << e.Description();
  }
}

TEST_F(Sqlite, ALongTextComesBackWhole) {
  base_->Execute("CREATE TABLE t (m TEXT, b BLOB)");
  std::string length;
  for (int i = 0; i < 50000; ++i) length += "ñandú ";
  base_->Execute("INSERT INTO t VALUES ('" + length + "', x'00FF0041')");
  const db::Recordset rows = base_->Execute("SELECT m, b FROM t");
  EXPECT_EQ(rows.At(0, 0), Value(length));
  EXPECT_EQ(rows.At(1, 0), Value(std::string("\0\xFF\0A", 4)));
}

TEST_F(Sqlite, TheTypesOfATable) {
  base_->Execute(
      "CREATE TABLE t (b BIT, i INTEGER, s SMALLINT, g BIGINT, d DOUBLE, f FLOAT, n NUMERIC(10,2), ts "
      "TIMESTAMP, da "
      "DATE, ti TIME, v VARCHAR(20), bl BLOB)");
  base_->Execute(
      "INSERT INTO t VALUES (1, -5, 3, 5000000000, 0.1, 1.5, 12.34, '2024-03-05 06:00:00', '2024-03-05', "
      "'06:00:00', 'x', x'41')");
  base_->Execute("INSERT INTO t (i) VALUES (NULL)");
  const db::Recordset rows = base_->Execute("SELECT * FROM t");
  EXPECT_EQ(support::Header(rows),
            "b:bool|i:int|s:int|g:int|d:number|f:number|n:number|ts:date|da:date|ti:date|v:text|bl:text");
  const double day = base::MakeDate(2024, 3, 5).serial;
  const Value expected[] = {true,
                            -5,
                            3,
                            std::int64_t{5000000000},
                            0.1,
                            1.5,
                            12.34,
                            base::Date{day + 0.25},
                            base::Date{day},
                            base::Date{0.25},
                            "x",
                            "A"};
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    EXPECT_EQ(rows.At(i, 0), expected[i]) << i;
    EXPECT_TRUE(rows.At(i, 1).IsNull()) << i;
  }
}

TEST_F(Sqlite, TheCatalogIsTheDrivers) {
  base_->Execute("CREATE TABLE Tipos (id INTEGER, nombre VARCHAR(9))");
  base_->Execute("INSERT INTO Tipos VALUES (4, 'x')");
  // SQLite itself knows no Tipos here; both derived tables read it and only the second has the column.
  const std::string sql =
      "SELECT Tipos.nombre FROM (SELECT id FROM Tipos) AS A, (SELECT * FROM Tipos) AS B ORDER BY "
      "tipos.nombre";
  EXPECT_EQ(Rows(sql), "x");
  EXPECT_EQ(support::Rows(base_->Query(sql)), "x");
  base_->Execute("ALTER TABLE Tipos ADD COLUMN otra INTEGER");
  EXPECT_EQ(Rows("SELECT Tipos.otra FROM (SELECT * FROM Tipos) AS B"), "NULL");
}

class Files : public testing::Test {
 protected:
  void SetUp() override {
    if (std::string(IDM_ODBC_MDB).empty()) GTEST_SKIP() << "no mdbtools driver for ODBC (odbc-mdbtools)";
  }
  static std::unique_ptr<db::Connection> Open(const std::string& path) {
    return engine_odbc::Open("Driver=" IDM_ODBC_MDB ";DBQ=" + path);
  }
  static std::unique_ptr<db::Connection> OpenSample(const std::string& name) {
    return Open(mdb_test::SamplePath(name));
  }
};

// The driver gives a currency as a number.
TEST_F(Files, EachType) {
  const auto base = OpenSample("types.mdb");
  const auto column = [&](const std::string& name) { return base->Query("Select " + name + " From Tipos"); };
  EXPECT_EQ(support::Header(base->Query("Select Logico, Pequeno, Largo, Dinero, Texto From Tipos")),
            "Logico:bool|Pequeno:int|Largo:int|Dinero:number|Texto:text");
  EXPECT_EQ(support::Rows(base->Query("Select cuando From Cambiada Where id = 3")), "2009-07-09");
  // Days before the first of 1900 come as the 0th of January.
  EXPECT_THROW(column("Fecha"), db::Error);
  EXPECT_EQ(column("Largo").At(0, 0), Value(2147483647));
  EXPECT_EQ(column("Doble").At(0, 3), Value(8.25));
  EXPECT_EQ(column("Simple").At(0, 0), Value(3.25));
  EXPECT_TRUE(column("Simple").At(0, 2).IsNull());
  EXPECT_EQ(column("Pequeno").At(0, 0), Value(255));  // a byte has no sign
  EXPECT_EQ(column("Logico").At(0, 0), Value(true));
  EXPECT_EQ(column("Texto").At(0, 3), Value("Ñandú"));
  EXPECT_TRUE(column("Texto").At(0, 2).IsNull());
}

TEST_F(Files, EachTableGivesAllItsRows) {
  for (const char* name :
       {"types97.mdb", "types.mdb", "types.accdb", "moved.mdb", "compound97.mdb", "compound.mdb",
        "relations97.mdb", "relations.mdb", "queries97.mdb", "queries.accdb", "texts_3082.mdb"}) {
    const auto base = OpenSample(name);
    for (const assembler::Table& t : mdb_test::SampleNamed(name).file.tables) {
      const std::size_t rows = mdb_test::RowsPutIn(t).size();
      std::string first;
      std::size_t columns = 0;
      for (const assembler::Column& c : t.columns) {
        if (c.gone) continue;
        if (columns++ == 0) first = c.name;
      }
      const auto count = [&](const std::string& what) {
        const db::Recordset found = base->Execute("Select " + what + " From [" + t.name + "]");
        return std::pair(found.Count(), found.Fields().size());
      };
      SCOPED_TRACE(std::string(name) + ' ' + t.name);
      EXPECT_EQ(count("[" + first + "]"), std::pair(rows, std::size_t{1}));
      // It holds days that the driver has no date for (see EachType).
      if (t.name != "Tipos") {
        EXPECT_EQ(count("*"), std::pair(rows, columns));
      }
    }
  }
}

TEST_F(Files, ALongTextAndALongBinary) {
  const db::Recordset rows = OpenSample("types.mdb")->Execute("Select Nota, Cosa From Tipos");
  const auto put = mdb_test::RowsPutIn(mdb_test::SampleNamed("types.mdb").file.tables.front());
  EXPECT_EQ(rows.At(0, 3).Text(), std::get<std::string>(put[3][10]));
  const auto& bytes = std::get<mdb::Bytes>(put[3][11]);
  EXPECT_EQ(rows.At(1, 3).Text(), std::string(bytes.begin(), bytes.end()));
}

TEST_F(Files, APathWithAccents) {
  const support::TempFolder folder;
  std::filesystem::copy(mdb_test::SamplePath("types.mdb"), folder.Path("año.mdb"));
  EXPECT_EQ(Open(folder.Path("año.mdb"))->Execute("Select Texto From Tipos").At(0, 3), Value("Ñandú"));
}

TEST_F(Files, WithoutTransactions) {
  const auto base = OpenSample("queries.mdb");
  EXPECT_THROW(base->BeginTrans(), db::Error);
  EXPECT_FALSE(base->InTransaction());
  EXPECT_EQ(support::Rows(base->Execute("Select Nombre From Personas")), "Ana\nBruno\nÑata");
}

TEST_F(Files, TheFileThatIsNotThere) {
  EXPECT_THROW(Open(mdb_test::SamplePath("queries.mdb") + ".no"), db::Error);
}

}  // namespace
