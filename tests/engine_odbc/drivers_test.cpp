// Connection strings, and real drivers: Debian's for SQLite and mdbtools' for Access files.
#include <filesystem>

#include "base/text.h"
#include "entorno.h"
#include "mdb/samples.h"

namespace {

using base::Valor;

TEST(Cadena, SaleDeLaClaveBase) {
  EXPECT_EQ(engine_odbc::CadenaDe("Sueldos"), "DSN=Sueldos");
  EXPECT_EQ(engine_odbc::CadenaDe("  Sueldos 2026 "), "DSN=Sueldos 2026");
  EXPECT_EQ(engine_odbc::CadenaDe("DSN=Sueldos"), "DSN=Sueldos");
  EXPECT_EQ(engine_odbc::CadenaDe("DSN=Sueldos", "x"), "DSN=Sueldos;PWD=x");
  EXPECT_EQ(engine_odbc::CadenaDe("DSN=Sueldos;", "x y"), "DSN=Sueldos;PWD=x y");
  EXPECT_EQ(engine_odbc::CadenaDe("DSN=Sueldos", "a;b}c"), "DSN=Sueldos;PWD={a;b}}c}");
  EXPECT_EQ(engine_odbc::CadenaDe("DSN=Sueldos", " a"), "DSN=Sueldos;PWD={ a}");
  EXPECT_EQ(engine_odbc::CadenaDe("DSN=Sueldos; pwd=suya", "x"), "DSN=Sueldos; pwd=suya");
}

TEST(Cadena, DeUnArchivoConElDriverNombrado) {
  EXPECT_EQ(engine_odbc::CadenaParaArchivo("C:\\Datos (x86)\\Personal.mdb", {}, "MDBTools"),
            "Driver={MDBTools};DBQ=C:\\Datos (x86)\\Personal.mdb");
  EXPECT_EQ(engine_odbc::CadenaParaArchivo("C:\\a;b\\P.mdb", "clave", "MDBTools"),
            "Driver={MDBTools};DBQ={C:\\a;b\\P.mdb};PWD=clave");
}

TEST(Cadena, DeUnArchivoConElDriverDeAccessQueHaya) {
  {
    pruebas::Configurar("[MDBTools]\nDriver=/x.so\n");
    EXPECT_FALSE(engine_odbc::HayDriverDeAccess());
    EXPECT_EQ(pruebas::Falla([] { engine_odbc::CadenaParaArchivo("P.mdb"); }),
              "No hay un driver ODBC de Access instalado que abra 'P.mdb'.");
  }
  {
    pruebas::Configurar("[MDBTools]\nDriver=/x.so\n[Microsoft Access Driver (*.mdb)]\nDriver=/y.so\n");
    EXPECT_TRUE(engine_odbc::HayDriverDeAccess());
    EXPECT_EQ(engine_odbc::CadenaParaArchivo("P.mdb", "a"),
              "Driver={Microsoft Access Driver (*.mdb)};DBQ=P.mdb;PWD=a");
  }
  pruebas::Configurar(
      "[Microsoft Access Driver (*.mdb)]\nDriver=/y.so\n[Microsoft Access Driver (*.mdb, "
      "*.accdb)]\nDriver=/y.so\n");
  EXPECT_EQ(engine_odbc::CadenaParaArchivo("P.mdb"),
            "Driver={Microsoft Access Driver (*.mdb, *.accdb)};DBQ=P.mdb");
}

TEST(Origen, UnNombreDeOrigenDeDatos) {
  pruebas::Configurar("[De prueba]\nDriver=" IDM_ODBC_PRUEBA "\n", "[Sueldos 2026]\nDriver=De prueba\n");
  const auto base = engine_odbc::Abrir(engine_odbc::CadenaDe("Sueldos 2026"));
  EXPECT_EQ(base->Ejecutar("Select 1").Campo(0), Valor("Select 1"));
}

class Sqlite : public testing::Test {
 protected:
  void SetUp() override {
    if (std::string(IDM_ODBC_SQLITE).empty()) GTEST_SKIP() << "no SQLite driver for ODBC (libsqliteodbc)";
    Abrir();
  }
  void Abrir() {
    base_.reset();
    base_ = engine_odbc::Abrir("Driver=" IDM_ODBC_SQLITE ";Database=" + carpeta_.Ruta("ñandú.db"));
  }
  std::string Filas(const std::string& sql) { return support::Filas(base_->Ejecutar(sql)); }

  support::CarpetaTemporal carpeta_;
  std::unique_ptr<db::Connection> base_;
};

TEST_F(Sqlite, CerrarDeshaceLoQueNoSeConfirmo) {
  base_->Ejecutar("CREATE TABLE t (k INTEGER)");
  base_->BeginTrans();
  base_->Ejecutar("INSERT INTO t VALUES (1)");
  EXPECT_EQ(Filas("SELECT k FROM t"), "1");
  Abrir();  // the first one goes with its transaction open
  EXPECT_EQ(Filas("SELECT k FROM t"), "");
  base_->BeginTrans();
  base_->Ejecutar("INSERT INTO t VALUES (2)");
  base_->CommitTrans();
  base_->Ejecutar("INSERT INTO t VALUES (3)");
  Abrir();
  EXPECT_EQ(Filas("SELECT k FROM t ORDER BY k"), "2\n3");
}

TEST_F(Sqlite, UnaRutaConAcentosEsEsaRuta) {
  base_->Ejecutar("CREATE TABLE t (k INTEGER)");
  EXPECT_TRUE(std::filesystem::exists(carpeta_.Ruta("ñandú.db")));
}

// With a connection string of plain letters the texts travel another way.
TEST_F(Sqlite, LosTextosDeUnaConexionSinAcentos) {
  const auto base = engine_odbc::Abrir("Driver=" IDM_ODBC_SQLITE ";Database=" + carpeta_.Ruta("b.db"));
  const db::Recordset filas = base->Ejecutar("SELECT 'ñandú €' AS [año], hex('ñ€'), '😀'");
  EXPECT_EQ(filas.Campos()[0].nombre, "año");
  EXPECT_EQ(support::Filas(filas), "ñandú €|C3B1E282AC|😀");
}

TEST_F(Sqlite, LosTextosVuelvenComoFueron) {
  base_->Ejecutar("CREATE TABLE t (k INTEGER, v VARCHAR(50), m TEXT)");
  const std::string textos[] = {"ñandú €", "😀", "a😀ñ", "", " x ", "{d 'x'}", "a\nb", "%_", "Ω 漢字"};
  int k = 0;
  for (const std::string& t : textos) {
    const std::string literal = "'" + base::DoblarComillas(t) + "'";
    base_->Ejecutar("INSERT INTO t VALUES (" + std::to_string(++k) + "," + literal + "," + literal + ")");
    const db::Recordset filas =
        base_->Ejecutar("SELECT v, m FROM t WHERE v=" + literal + " AND k=" + std::to_string(k));
    ASSERT_EQ(filas.Cantidad(), 1U) << t;
    EXPECT_EQ(filas.En(0, 0), Valor(t));
    EXPECT_EQ(filas.En(1, 0), Valor(t));
  }
  const db::Recordset filas = base_->Ejecutar("SELECT 1 AS [año €], '😀' AS [número]");
  EXPECT_EQ(filas.Campos()[0].nombre, "año €");
  EXPECT_EQ(filas.Campos()[1].nombre, "número");
  try {
    base_->Ejecutar("SELECT ñandú FROM t");
    ADD_FAILURE();
  } catch (const db::Error& e) {
    EXPECT_NE(e.Descripcion().find("[SQLite]no such column: ñandú"), std::string::npos) << e.Descripcion();
  }
}

TEST_F(Sqlite, UnTextoLargoVuelveEntero) {
  base_->Ejecutar("CREATE TABLE t (m TEXT, b BLOB)");
  std::string largo;
  for (int i = 0; i < 50000; ++i) largo += "ñandú ";
  base_->Ejecutar("INSERT INTO t VALUES ('" + largo + "', x'00FF0041')");
  const db::Recordset filas = base_->Ejecutar("SELECT m, b FROM t");
  EXPECT_EQ(filas.En(0, 0), Valor(largo));
  EXPECT_EQ(filas.En(1, 0), Valor(std::string("\0\xFF\0A", 4)));
}

TEST_F(Sqlite, LosTiposDeUnaTabla) {
  base_->Ejecutar(
      "CREATE TABLE t (b BIT, i INTEGER, s SMALLINT, g BIGINT, d DOUBLE, f FLOAT, n NUMERIC(10,2), ts "
      "TIMESTAMP, da "
      "DATE, ti TIME, v VARCHAR(20), bl BLOB)");
  base_->Ejecutar(
      "INSERT INTO t VALUES (1, -5, 3, 5000000000, 0.1, 1.5, 12.34, '2024-03-05 06:00:00', '2024-03-05', "
      "'06:00:00', 'x', x'41')");
  base_->Ejecutar("INSERT INTO t (i) VALUES (NULL)");
  const db::Recordset filas = base_->Ejecutar("SELECT * FROM t");
  EXPECT_EQ(support::Cabecera(filas),
            "b:bool|i:int|s:int|g:int|d:number|f:number|n:number|ts:date|da:date|ti:date|v:text|bl:text");
  const double dia = base::FechaDe(2024, 3, 5).serie;
  const Valor esperados[] = {true,
                             -5,
                             3,
                             std::int64_t{5000000000},
                             0.1,
                             1.5,
                             12.34,
                             base::Fecha{dia + 0.25},
                             base::Fecha{dia},
                             base::Fecha{0.25},
                             "x",
                             "A"};
  for (std::size_t i = 0; i < std::size(esperados); ++i) {
    EXPECT_EQ(filas.En(i, 0), esperados[i]) << i;
    EXPECT_TRUE(filas.En(i, 1).EsNulo()) << i;
  }
}

TEST_F(Sqlite, ElCatalogoEsElDelDriver) {
  base_->Ejecutar("CREATE TABLE Tipos (id INTEGER, nombre VARCHAR(9))");
  base_->Ejecutar("INSERT INTO Tipos VALUES (4, 'x')");
  // SQLite itself knows no Tipos here; both derived tables read it and only the second has the column.
  const std::string sql =
      "SELECT Tipos.nombre FROM (SELECT id FROM Tipos) AS A, (SELECT * FROM Tipos) AS B ORDER BY "
      "tipos.nombre";
  EXPECT_EQ(Filas(sql), "x");
  EXPECT_EQ(support::Filas(base_->Consultar(sql)), "x");
  base_->Ejecutar("ALTER TABLE Tipos ADD COLUMN otra INTEGER");
  EXPECT_EQ(Filas("SELECT Tipos.otra FROM (SELECT * FROM Tipos) AS B"), "NULL");
}

class Archivos : public testing::Test {
 protected:
  void SetUp() override {
    if (std::string(IDM_ODBC_MDB).empty()) GTEST_SKIP() << "no mdbtools driver for ODBC (odbc-mdbtools)";
  }
  static std::unique_ptr<db::Connection> Open(const std::string& path) {
    return engine_odbc::Abrir("Driver=" IDM_ODBC_MDB ";DBQ=" + path);
  }
  static std::unique_ptr<db::Connection> OpenSample(const std::string& name) {
    return Open(mdb_test::SamplePath(name));
  }
};

// The driver gives a currency as a number.
TEST_F(Archivos, CadaTipo) {
  const auto base = OpenSample("types.mdb");
  const auto column = [&](const std::string& name) {
    return base->Consultar("Select " + name + " From Tipos");
  };
  EXPECT_EQ(support::Cabecera(base->Consultar("Select Logico, Pequeno, Largo, Dinero, Texto From Tipos")),
            "Logico:bool|Pequeno:int|Largo:int|Dinero:number|Texto:text");
  EXPECT_EQ(support::Filas(base->Consultar("Select cuando From Cambiada Where id = 3")), "2009-07-09");
  // Days before the first of 1900 come as the 0th of January.
  EXPECT_THROW(column("Fecha"), db::Error);
  EXPECT_EQ(column("Largo").En(0, 0), Valor(2147483647));
  EXPECT_EQ(column("Doble").En(0, 3), Valor(8.25));
  EXPECT_EQ(column("Simple").En(0, 0), Valor(3.25));
  EXPECT_TRUE(column("Simple").En(0, 2).EsNulo());
  EXPECT_EQ(column("Pequeno").En(0, 0), Valor(255));  // a byte has no sign
  EXPECT_EQ(column("Logico").En(0, 0), Valor(true));
  EXPECT_EQ(column("Texto").En(0, 3), Valor("Ñandú"));
  EXPECT_TRUE(column("Texto").En(0, 2).EsNulo());
}

TEST_F(Archivos, CadaTablaDaTodasSusFilas) {
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
        const db::Recordset found = base->Ejecutar("Select " + what + " From [" + t.name + "]");
        return std::pair(found.Cantidad(), found.Campos().size());
      };
      SCOPED_TRACE(std::string(name) + ' ' + t.name);
      EXPECT_EQ(count("[" + first + "]"), std::pair(rows, std::size_t{1}));
      // It holds days that the driver has no date for (see CadaTipo).
      if (t.name != "Tipos") {
        EXPECT_EQ(count("*"), std::pair(rows, columns));
      }
    }
  }
}

TEST_F(Archivos, UnTextoYUnBinarioLargos) {
  const db::Recordset rows = OpenSample("types.mdb")->Ejecutar("Select Nota, Cosa From Tipos");
  const auto put = mdb_test::RowsPutIn(mdb_test::SampleNamed("types.mdb").file.tables.front());
  EXPECT_EQ(rows.En(0, 3).Texto(), std::get<std::string>(put[3][10]));
  const auto& bytes = std::get<mdb::Bytes>(put[3][11]);
  EXPECT_EQ(rows.En(1, 3).Texto(), std::string(bytes.begin(), bytes.end()));
}

TEST_F(Archivos, UnaRutaConAcentos) {
  const support::CarpetaTemporal carpeta;
  std::filesystem::copy(mdb_test::SamplePath("types.mdb"), carpeta.Ruta("año.mdb"));
  EXPECT_EQ(Open(carpeta.Ruta("año.mdb"))->Ejecutar("Select Texto From Tipos").En(0, 3), Valor("Ñandú"));
}

TEST_F(Archivos, SinTransacciones) {
  const auto base = OpenSample("queries.mdb");
  EXPECT_THROW(base->BeginTrans(), db::Error);
  EXPECT_FALSE(base->EnTransaccion());
  EXPECT_EQ(support::Filas(base->Ejecutar("Select Nombre From Personas")), "Ana\nBruno\nÑata");
}

TEST_F(Archivos, ElArchivoQueNoEsta) {
  EXPECT_THROW(Open(mdb_test::SamplePath("queries.mdb") + ".no"), db::Error);
}

}  // namespace
