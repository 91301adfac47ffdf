// What opening, reading and failing leave of the file.
#include "mesa.h"

#ifndef _WIN32
#include <sys/resource.h>

#include <csignal>
#endif

namespace {

class ArchivosMdb : public prueba::MesaMdb {
 protected:
  void SetUp() override {
    Nueva();
    Correr("CREATE TABLE t (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(20), m MEMO)");
    for (int i = 0; i < 50; ++i)
      Correr("INSERT INTO t VALUES (" + std::to_string(i) + ", 'v" + std::to_string(i) +
             "', String(300, 'x'))");
  }
};

TEST_F(ArchivosMdb, LoGuardadoVuelve) {
  Abrir();
  EXPECT_EQ(Filas("SELECT Count(*), Max(k), Min(Len(m)) FROM t"), "50|49|300");
  EXPECT_EQ(Filas("SELECT v FROM t WHERE k = 7"), "v7");
  Revisar();
}

TEST_F(ArchivosMdb, LeerNoLoTocaNiEnSuFecha) {
  base_.reset();
  const Estado antes = Archivo();
  Abrir();
  EXPECT_EQ(Filas("SELECT Count(*) FROM t"), "50");
  base_->BeginTrans();
  EXPECT_EQ(Filas("SELECT Count(*) FROM t WHERE k > 9"), "40");
  base_->CommitTrans();
  base_->Cerrar();
  EXPECT_EQ(Archivo(), antes);
}

// A rolled back transaction: rows, tables, columns, indexes and queries of it.
TEST_F(ArchivosMdb, UnaTransaccionDeshechaNoLoToca) {
  base_.reset();
  const Estado antes = Archivo();
  Abrir();
  base_->BeginTrans();
  Correr("UPDATE t SET v = 'z' & k");
  Correr("DELETE FROM t WHERE k > 20");
  Correr("INSERT INTO t VALUES (1000, 'mil', Null)");
  Correr("CREATE TABLE u (x COUNTER, y TEXT(9))");
  Correr("INSERT INTO u (y) SELECT v FROM t");
  Correr("ALTER TABLE t ADD COLUMN otra DOUBLE");
  Correr("CREATE INDEX por_v ON t (v)");
  Correr("CREATE VIEW w AS SELECT k FROM t");
  EXPECT_EQ(Filas("SELECT Count(*), Max(y) FROM u"), "22|z9");
  EXPECT_EQ(Filas("SELECT Max(k) FROM w"), "1000");
  base_->RollbackTrans();
  EXPECT_EQ(Filas("SELECT Count(*), Max(v) FROM t"), "50|v9");
  EXPECT_EQ(Falla("SELECT * FROM u"), "No se encuentra la tabla o consulta 'u'");
  EXPECT_EQ(Falla("SELECT * FROM w"), "No se encuentra la tabla o consulta 'w'");
  EXPECT_EQ(Falla("SELECT otra FROM t"), "No se encuentra la columna 'otra'");
  base_->Cerrar();
  EXPECT_EQ(Archivo(), antes);
}

// Statements that write what is there, and changes that are taken back inside the transaction.
TEST_F(ArchivosMdb, LoQueNoCambiaNoSeEscribe) {
  base_.reset();
  const Estado antes = Archivo();
  Abrir();
  Correr("UPDATE t SET v = 'v' & k, m = String(300, 'x')");
  EXPECT_EQ(base_->FilasAfectadas(), 50);
  base_->BeginTrans();
  Correr("UPDATE t SET v = 'otro'");
  Correr("INSERT INTO t VALUES (99, 'a', Null)");
  Correr("UPDATE t SET v = 'v' & k");
  Correr("DELETE FROM t WHERE k = 99");
  base_->CommitTrans();
  EXPECT_EQ(engine_mdb::ContadoresDe(*base_)->filas_escritas, 0);
  base_->Cerrar();
  EXPECT_EQ(Archivo(), antes);
}

TEST_F(ArchivosMdb, UnaSentenciaQueFallaNoLoToca) {
  base_.reset();
  const Estado antes = Archivo();
  Abrir();
  EXPECT_EQ(Falla("INSERT INTO t SELECT k + 25 AS k, v, m FROM t"),
            "Ya existe un registro con el mismo valor en k de la tabla t.");
  EXPECT_EQ(Falla("UPDATE t SET v = String(k, 'x')"), "El texto es demasiado largo para el campo v.");
  EXPECT_EQ(Falla("CREATE UNIQUE INDEX u ON t (m)"),
            "Ya existe un registro con el mismo valor en m de la tabla t.");
  EXPECT_EQ(Falla("CREATE TABLE T (k LONG)"), "[3010] La tabla o consulta 'T' ya existe");
  EXPECT_EQ(Filas("SELECT Count(*), Sum(k) FROM t"), "50|1225");
  base_->Cerrar();
  EXPECT_EQ(Archivo(), antes);
}

TEST_F(ArchivosMdb, AbiertoParaLeerNoSeEscribe) {
  Abrir(true);
  const std::string no = "La base se puede leer, no escribir. La base se abrió solo para leer.";
  EXPECT_EQ(Filas("SELECT Count(*) FROM t"), "50");
  EXPECT_EQ(Falla("INSERT INTO t (k) VALUES (99)"), no);
  EXPECT_EQ(Falla("CREATE TABLE u (k LONG)"), no);
  EXPECT_EQ(FallaDe([&] { base_->BeginTrans(); }), no);
  EXPECT_FALSE(base_->EnTransaccion());
  EXPECT_EQ(Filas("SELECT Count(*) FROM t"), "50");
}

// Who came second reads; what the first one commits is seen at the next statement.
TEST_F(ArchivosMdb, ElSegundoLeeLoQueElPrimeroGuarda) {
  Abrir();
  const auto otro = engine_mdb::Abrir(ruta_, Opciones());
  EXPECT_EQ(support::Filas(otro->Ejecutar("SELECT Count(*) FROM t")), "50");
  EXPECT_EQ(FallaDe([&] { otro->Ejecutar("DELETE FROM t"); }),
            "La base se puede leer, no escribir. Otro programa tiene abierta la base.");
  base_->BeginTrans();
  Correr("DELETE FROM t WHERE k < 10");
  EXPECT_EQ(support::Filas(otro->Ejecutar("SELECT Count(*) FROM t")), "50");
  base_->CommitTrans();
  EXPECT_EQ(support::Filas(otro->Ejecutar("SELECT Count(*) FROM t")), "40");
  Correr("CREATE TABLE u (k LONG)");
  EXPECT_EQ(support::Filas(otro->Ejecutar("SELECT Count(*) FROM u")), "0");
  base_.reset();
  // And when the first one has gone, the second writes.
  otro->Ejecutar("INSERT INTO t (k) VALUES (500)");
  otro->BeginTrans();
  otro->Ejecutar("INSERT INTO u VALUES (1)");
  otro->CommitTrans();
  EXPECT_EQ(support::Filas(otro->Ejecutar("SELECT Count(*) FROM t")), "41");
  otro->Cerrar();
  Revisar();
}

TEST_F(ArchivosMdb, LaTransaccionDelSegundoEmpiezaCuandoElPrimeroSeVa) {
  Abrir();
  const auto otro = engine_mdb::Abrir(ruta_, Opciones());
  const std::string no = "La base se puede leer, no escribir. Otro programa tiene abierta la base.";
  EXPECT_EQ(FallaDe([&] { otro->BeginTrans(); }), no);
  EXPECT_EQ(FallaDe([&] { otro->Ejecutar("CREATE TABLE u (k LONG)"); }), no);
  base_.reset();
  otro->BeginTrans();
  otro->Ejecutar("DELETE FROM t");
  otro->RollbackTrans();
  otro->Ejecutar("CREATE TABLE u (k LONG)");
  EXPECT_EQ(support::Filas(otro->Ejecutar("SELECT Count(*) FROM t, u")), "0");
}

#ifndef _WIN32
// A disk without room: the commit fails with its reason, and the connection goes on from what the file holds.
TEST_F(ArchivosMdb, UnDiscoLlenoNoLoToca) {
  Abrir();
  const Estado antes = Archivo();
  EXPECT_EQ(Filas("SELECT Count(*) FROM t"), "50");
  base_->BeginTrans();
  Correr("INSERT INTO t SELECT k + 1000 AS k, v, String(2000, 'y') AS m FROM t");
  EXPECT_EQ(Filas("SELECT Count(*) FROM t"), "100");
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit libre{};
  getrlimit(RLIMIT_FSIZE, &libre);
  const rlimit lleno{8192, libre.rlim_max};
  setrlimit(RLIMIT_FSIZE, &lleno);
  const std::string falla = FallaDe([&] { base_->CommitTrans(); });
  setrlimit(RLIMIT_FSIZE, &libre);
  EXPECT_NE(falla, "no error");
  EXPECT_FALSE(base_->EnTransaccion());
  EXPECT_EQ(Archivo().bytes, antes.bytes);
  EXPECT_EQ(Filas("SELECT Count(*) FROM t"), "50") << falla;
  Correr("INSERT INTO t (k) VALUES (99)");
  Abrir();
  EXPECT_EQ(Filas("SELECT Count(*) FROM t"), "51");
  Revisar();
}
#endif

TEST(AbrirMdb, DiceSuRazon) {
  const support::CarpetaTemporal carpeta;
  const auto razon = [](const std::string& ruta) -> std::string {
    try {
      engine_mdb::Abrir(ruta);
    } catch (const db::Error& e) {
      return e.Descripcion();
    }
    return "no error";
  };
  EXPECT_NE(razon(carpeta.Ruta("falta.mdb")), "no error");
  EXPECT_FALSE(base::ExisteArchivo(carpeta.Ruta("falta.mdb")));
  EXPECT_NE(razon(carpeta.Escribir("otro.mdb", std::string(8192, 'x'))), "no error");
  engine_mdb::Crear(carpeta.Ruta("una.mdb"));
  try {
    engine_mdb::Crear(carpeta.Ruta("una.mdb"));
    ADD_FAILURE() << "a file was replaced";
  } catch (const db::Error& e) {
    EXPECT_FALSE(e.Descripcion().empty());
  }
}

}  // namespace
