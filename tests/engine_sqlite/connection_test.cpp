// What a connection promises beyond the rows: all or nothing, transactions, reading only, texts of any size.
#include <gtest/gtest.h>

#include <string>

#include "engine_sqlite/sqlite_connection.h"
#include "render.h"

namespace {

using base::Tipo;
using base::Valor;

class Conexion : public testing::Test {
 protected:
  void SetUp() override { base_ = engine_sqlite::Abrir(":memory:"); }

  db::Recordset Correr(std::string_view sql) { return base_->Ejecutar(sql); }
  std::string Filas(std::string_view sql) { return support::Filas(base_->Ejecutar(sql)); }
  // The description of the failure, or "no error".
  std::string Error(std::string_view sql) {
    try {
      base_->Ejecutar(sql);
    } catch (const db::Error& e) {
      return support::TextoDeError(e);
    }
    return "no error";
  }
  void LlenarTextos() {
    Correr("CREATE TABLE t (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(20), n LONG)");
    Correr("INSERT INTO t VALUES (1, '10', 0)");
    Correr("INSERT INTO t VALUES (2, '20', 0)");
    Correr("INSERT INTO t VALUES (3, 'x', 0)");
  }

  std::unique_ptr<db::Connection> base_;
};

TEST_F(Conexion, UnaSentenciaQueFallaAMediasNoCambiaNada) {
  LlenarTextos();
  EXPECT_EQ(Error("UPDATE t SET n = CLng(v)"), "[13] No coinciden los tipos");
  EXPECT_EQ(Filas("SELECT k, n FROM t ORDER BY k"), "1|0\n2|0\n3|0");
  EXPECT_EQ(Error("INSERT INTO t (k, n) SELECT k + 10, CLng(v) FROM t ORDER BY k"),
            "[13] No coinciden los tipos");
  EXPECT_EQ(Filas("SELECT Count(*) FROM t"), "3");
  EXPECT_EQ(Error("UPDATE t SET k = 3 - k"),  // 1 becomes 2, which is there; 3 would become 0
            "Ya existe un registro con el mismo valor en k de la tabla t.");
  EXPECT_EQ(Filas("SELECT k FROM t ORDER BY k"), "1\n2\n3");
  EXPECT_EQ(Error("DELETE FROM t WHERE CLng(v) > 0"), "[13] No coinciden los tipos");
  EXPECT_EQ(Filas("SELECT Count(*) FROM t"), "3");
}

TEST_F(Conexion, EnUnaTransaccionLoAnteriorSigueYLaTransaccionSirve) {
  LlenarTextos();
  base_->BeginTrans();
  EXPECT_TRUE(base_->EnTransaccion());
  Correr("INSERT INTO t VALUES (4, '40', 7)");
  EXPECT_EQ(Error("UPDATE t SET n = CLng(v)"), "[13] No coinciden los tipos");
  EXPECT_EQ(Error("INSERT INTO t VALUES (4, 'otra', 0)"),
            "Ya existe un registro con el mismo valor en k de la tabla t.");
  EXPECT_EQ(Filas("SELECT k, n FROM t ORDER BY k"), "1|0\n2|0\n3|0\n4|7");
  Correr("UPDATE t SET n = 5 WHERE k = 1");
  base_->CommitTrans();
  EXPECT_FALSE(base_->EnTransaccion());
  EXPECT_EQ(Filas("SELECT k, n FROM t ORDER BY k"), "1|5\n2|0\n3|0\n4|7");
}

// An UPDATE over a join runs in several steps; one that fails leaves nothing of the others.
TEST_F(Conexion, UnaSentenciaDeVariosPasosEsTodaONada) {
  LlenarTextos();
  Correr("CREATE TABLE u (k LONG, w TEXT(20))");
  Correr("INSERT INTO u SELECT k, v AS w FROM t");
  for (const bool en_transaccion : {false, true}) {
    if (en_transaccion) base_->BeginTrans();
    EXPECT_EQ(Error("UPDATE t INNER JOIN u ON t.k = u.k SET t.n = CLng(u.w), u.w = 'cambiado'"),
              "[13] No coinciden los tipos");
    EXPECT_EQ(Filas("SELECT t.n, u.w FROM t INNER JOIN u ON t.k = u.k ORDER BY t.k"), "0|10\n0|20\n0|x");
    EXPECT_EQ(base_->EnTransaccion(), en_transaccion);
  }
  base_->RollbackTrans();
}

TEST_F(Conexion, LasTransaccionesTienenUnSoloNivel) {
  const auto error = [](auto&& paso) -> std::string {
    try {
      paso();
    } catch (const db::Error& e) {
      return e.Descripcion();
    }
    return "no error";
  };
  EXPECT_EQ(error([&] { base_->CommitTrans(); }), "No hay ninguna transacción abierta.");
  EXPECT_EQ(error([&] { base_->RollbackTrans(); }), "No hay ninguna transacción abierta.");
  base_->BeginTrans();
  EXPECT_EQ(error([&] { base_->BeginTrans(); }), "Ya hay una transacción abierta.");
  EXPECT_TRUE(base_->EnTransaccion());
  base_->RollbackTrans();
  EXPECT_FALSE(base_->EnTransaccion());
}

TEST_F(Conexion, DeshacerTambienDeshaceLasDefiniciones) {
  base_->BeginTrans();
  Correr("CREATE TABLE nueva (k LONG)");
  Correr("INSERT INTO nueva VALUES (1)");
  Correr("CREATE VIEW vista AS SELECT k FROM nueva");
  EXPECT_EQ(Filas("SELECT k FROM vista"), "1");
  base_->RollbackTrans();
  EXPECT_NE(Error("SELECT k FROM nueva"), "no error");
  EXPECT_NE(Error("SELECT k FROM vista"), "no error");
  Correr("CREATE TABLE nueva (otra TEXT(5))");
  EXPECT_EQ(Filas("SELECT Count(otra) FROM nueva"), "0");
}

TEST_F(Conexion, CerradaNoSirve) {
  base_->BeginTrans();
  base_->Cerrar();
  EXPECT_FALSE(base_->Abierta());
  EXPECT_FALSE(base_->EnTransaccion());
  EXPECT_EQ(Error("SELECT 1"), "La base no está abierta.");
  base_->Cerrar();
  EXPECT_THROW(base_->BeginTrans(), db::Error);
}

TEST_F(Conexion, ConsultarSoloLee) {
  LlenarTextos();
  for (const char* sql :
       {"DELETE FROM t", "UPDATE t SET n = 1", "INSERT INTO t VALUES (9, '', 0)", "SELECT * INTO c FROM t",
        "DROP TABLE t", "CREATE TABLE z (k LONG)", "CREATE VIEW z AS SELECT 1 AS x",
        "ALTER TABLE t ADD COLUMN z LONG", "CREATE INDEX i ON t (n)"}) {
    try {
      base_->Consultar(sql);
      ADD_FAILURE() << sql;
    } catch (const db::Error& e) {
      EXPECT_EQ(e.Descripcion(), "La sentencia no es de consulta: aquí solo se puede leer.") << sql;
    }
  }
  EXPECT_EQ(support::Filas(base_->Consultar("SELECT Sum(n), Count(*) FROM t")), "0|3");
}

TEST_F(Conexion, LosValoresVienenConSuTipo) {
  Correr(
      "CREATE TABLE v (b YESNO, e BYTE, i SHORT, l LONG, s SINGLE, d DOUBLE, c CURRENCY, f DATETIME, t "
      "TEXT(9), m MEMO)");
  Correr(
      "INSERT INTO v VALUES (True, 255, -32768, 2147483647, 0.1, 0.1, 1234.5678, #03/05/2024 06:00#, 'ñ', "
      "'m')");
  Correr("INSERT INTO v (t) VALUES (Null)");
  const db::Recordset filas = Correr("SELECT * FROM v");
  EXPECT_EQ(filas.En(0, 0), Valor(true));
  EXPECT_EQ(filas.En(1, 0), Valor(255));
  EXPECT_EQ(filas.En(2, 0), Valor(-32768));
  EXPECT_EQ(filas.En(3, 0), Valor(2147483647));
  EXPECT_EQ(filas.En(4, 0), Valor(0.1F));
  EXPECT_EQ(filas.En(5, 0), Valor(0.1));
  EXPECT_EQ(filas.En(6, 0), Valor(base::Moneda{12345678}));
  EXPECT_EQ(filas.En(7, 0), Valor(base::Fecha{base::FechaDe(2024, 3, 5).serie + 0.25}));
  EXPECT_EQ(filas.En(8, 0), Valor("ñ"));
  EXPECT_EQ(filas.En(9, 0), Valor("m"));
  EXPECT_EQ(filas.En(0, 1), Valor(false));  // a YESNO is never Null
  for (std::size_t c = 1; c < filas.Campos().size(); ++c) EXPECT_TRUE(filas.En(c, 1).EsNulo()) << c;
  EXPECT_EQ(filas.Fuente(), "SELECT * FROM v");
}

// An expression keeps its type even where SQLite computes with plain numbers.
TEST_F(Conexion, LasExpresionesTienenTipo) {
  const db::Recordset f = Correr(
      "SELECT 1 = 1, 7 / 2, 6 / 2, 7 \\ 2, CCur(2), CSng(0.1), CDate(0.5), 'a' & 1, Null, IIf(True, 1, 2.5)");
  EXPECT_EQ(f.En(0, 0), Valor(true));
  EXPECT_EQ(f.En(1, 0), Valor(3.5));
  EXPECT_EQ(f.En(2, 0), Valor(3.0));
  EXPECT_EQ(f.En(3, 0), Valor(3));
  EXPECT_EQ(f.En(4, 0), Valor(base::Moneda{20000}));
  EXPECT_EQ(f.En(5, 0), Valor(0.1F));
  EXPECT_EQ(f.En(6, 0), Valor(base::Fecha{0.5}));
  EXPECT_EQ(f.En(7, 0), Valor("a1"));
  EXPECT_TRUE(f.En(8, 0).EsNulo());
  EXPECT_EQ(f.En(9, 0), Valor(1.0));
}

// Each reading of this clock is a second later.
class RelojQueAnda final : public ports::Clock {
 public:
  base::Fecha Ahora() const override {
    ++lecturas;
    return {base::FechaDe(2024, 3, 5).serie + lecturas / 86400.0};
  }
  mutable int lecturas = 0;
};

TEST(RelojDeLaConexion, EstaQuietoDuranteUnaSentencia) {
  const RelojQueAnda reloj;
  engine_sqlite::Opciones opciones;
  opciones.reloj = &reloj;
  const auto base = engine_sqlite::Abrir(":memory:", opciones);
  base->Ejecutar("CREATE TABLE t (k LONG, f DATETIME)");
  for (int i = 0; i < 3; ++i) base->Ejecutar("INSERT INTO t VALUES (" + std::to_string(i) + ", Null)");
  EXPECT_EQ(reloj.lecturas, 0);
  base->Ejecutar("UPDATE t SET f = IIf(k = 1, Now(), DateAdd('s', 0, Now()))");
  EXPECT_EQ(support::Filas(base->Ejecutar("SELECT f FROM t")),
            "2024-03-05 00:00:01\n2024-03-05 00:00:01\n2024-03-05 00:00:01");
  EXPECT_EQ(support::Filas(base->Ejecutar("SELECT Now()")), "2024-03-05 00:00:02");
  EXPECT_EQ(support::Filas(base->Ejecutar("SELECT Now()")), "2024-03-05 00:00:03");
}

TEST_F(Conexion, LasFilasAfectadasSonDeLaUltimaSentencia) {
  LlenarTextos();
  EXPECT_EQ(base_->FilasAfectadas(), 1);
  Correr("UPDATE t SET n = 1 WHERE k < 3");
  EXPECT_EQ(base_->FilasAfectadas(), 2);
  Correr("SELECT * FROM t");
  EXPECT_EQ(base_->FilasAfectadas(), 0);
  Correr("DELETE FROM t WHERE k = 99");
  EXPECT_EQ(base_->FilasAfectadas(), 0);
  EXPECT_NE(Error("DELETE FROM nada"), "no error");
  EXPECT_EQ(base_->FilasAfectadas(), 0);
  Correr("DELETE FROM t");
  EXPECT_EQ(base_->FilasAfectadas(), 3);
}

std::string Repetir(const std::string& pieza, int veces) {
  std::string salida;
  salida.reserve(pieza.size() * static_cast<std::size_t>(veces));
  for (int i = 0; i < veces; ++i) salida += pieza;
  return salida;
}

// A month's calendar becomes a long chain of OR; every length that an office can have must work.
TEST_F(Conexion, LasCondicionesLargasValen) {
  LlenarTextos();
  for (const int terminos : {100, 1500}) {
    std::string sql = "SELECT Count(*) FROM t WHERE k = 1";
    for (int i = 0; i < terminos; ++i) {
      sql += " or (k = 2 and n in (";
      sql += std::to_string(i + 1);
      sql += ",0))";
    }
    EXPECT_EQ(Filas(sql), "2") << terminos;
  }
  std::string lista = "SELECT Count(*) FROM t WHERE k In (0";
  for (int i = 3; i < 5000; ++i) {
    lista += ',';
    lista += std::to_string(i);
  }
  EXPECT_EQ(Filas(lista + ")"), "1");
  EXPECT_EQ(Error("SELECT Count(*) FROM t WHERE k In (0" + Repetir(",1", 40000) + ")"),
            "La lista de IN no puede tener más de 20000 (línea 1, columna 40037)");
  EXPECT_EQ(Filas("SELECT 1" + Repetir(" + 1", 300)), "301");
  EXPECT_EQ(Filas("SELECT Len('a'" + Repetir(" & 'b'", 900) + ")"), "901");
}

TEST_F(Conexion, NingunTextoLaHaceCaer) {
  LlenarTextos();
  const std::string hondos[] = {
      "SELECT " + Repetir("(", 100000) + "1" + Repetir(")", 100000),
      "SELECT " + Repetir("Not ", 100000) + "True",
      "SELECT " + Repetir("-", 100000) + "1",
      "SELECT " + Repetir("Len(", 100000) + "1" + Repetir(")", 100000),
      "SELECT * FROM " + Repetir("(", 100000) + "t" + Repetir(")", 100000),
      "SELECT 1" + Repetir(" + 1", 100000),
      "SELECT Count(*) FROM t WHERE k = 1" + Repetir(" or k = 2", 100000),
      "SELECT 1" + Repetir(" UNION ALL SELECT 1", 20000),
      Repetir("SELECT * FROM (", 5000) + "t" + Repetir(")", 5000),
      Repetir("\x01\xFF[", 1000),
      std::string("SELECT 'a\0b'", 12),
      "SELECT '" + Repetir("x", 1000) + "' LIKE '" + Repetir("%x", 500) + "y'",
      "SELECT String(2000000000, 'x')",
      "SELECT Replace(String(60000000, 'x'), 'x', 'yyyyyyyyyy')",
      "",
      ";",
  };
  for (const std::string& sql : hondos) {
    try {
      base_->Ejecutar(sql);  // rows or an error, both are answers
    } catch (const db::Error& e) {
      EXPECT_FALSE(e.Descripcion().empty());
    }
  }
  EXPECT_EQ(Filas("SELECT Count(*) FROM t"), "3");
}

TEST_F(Conexion, UnTextoLargoVuelveEntero) {
  Correr("CREATE TABLE l (m MEMO)");
  const std::string largo = Repetir("ñandú ", 200000);
  Correr("INSERT INTO l VALUES ('" + largo + "')");
  EXPECT_EQ(Correr("SELECT m FROM l").En(0, 0), Valor(largo));
}

}  // namespace
