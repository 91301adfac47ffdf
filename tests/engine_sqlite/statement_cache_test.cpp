// One translation for all the texts of a shape.
#include <gtest/gtest.h>

#include <string>

#include "engine_sqlite/sqlite_connection.h"
#include "render.h"

namespace {

class Cache : public testing::Test {
 protected:
  void SetUp() override {
    base_ = engine_sqlite::Abrir(":memory:");
    base_->Ejecutar("CREATE TABLE t (k LONG, v TEXT(50), d DATETIME, n DOUBLE)");
  }
  const engine_sqlite::Contadores& Cuentas() { return *engine_sqlite::ContadoresDe(*base_); }
  std::string Filas(const std::string& sql) { return support::Filas(base_->Ejecutar(sql)); }

  std::unique_ptr<db::Connection> base_;
};

TEST_F(Cache, DiezMilSentenciasDeUnaFormaSeTraducenUnaVez) {
  const auto antes = Cuentas();
  base_->BeginTrans();
  for (int i = 0; i < 10000; ++i) {
    const std::string n = std::to_string(i);
    base_->Ejecutar("insert into t (k,v,d,n) Values(" + n + ",'texto " + n + "',#03/01/2024#," + n + ".5)");
  }
  base_->CommitTrans();
  EXPECT_EQ(Cuentas().ejecuciones - antes.ejecuciones, 10000);
  EXPECT_EQ(Cuentas().traducciones - antes.traducciones, 1);
  EXPECT_EQ(Cuentas().preparaciones - antes.preparaciones, 1);
  EXPECT_EQ(Filas("SELECT Count(*), Sum(k), Max(n), v FROM t WHERE k IN (77, 78) GROUP BY v ORDER BY v"),
            "1|77|77.5|texto 77\n1|78|78.5|texto 78");
}

TEST_F(Cache, ElMismoTextoNiSeLee) {
  for (int i = 0; i < 10; ++i) Filas("SELECT Count(*) FROM t");
  EXPECT_EQ(Cuentas().textos_iguales, 9);
  EXPECT_EQ(Cuentas().formas_conocidas, 0);
}

TEST_F(Cache, LosLiteralesDeUnTextoGuardadoSonLosSuyos) {
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(Filas("SELECT 'uno', 1"), "uno|1");
    EXPECT_EQ(Filas("SELECT 'dos', 2"), "dos|2");
    EXPECT_EQ(Filas("SELECT 'dos', 2"), "dos|2");
  }
  EXPECT_EQ(Cuentas().textos_iguales, 6);
}

TEST_F(Cache, LosEspaciosYElCasoNoHacenOtraForma) {
  const auto antes = Cuentas().traducciones;
  Filas("SELECT k FROM t WHERE v = 'a'");
  Filas("select  k\r\nfrom t where V  = 'B c'");
  EXPECT_EQ(Cuentas().traducciones - antes, 1);
}

// A column's position in ORDER BY is no value: each one is translated apart and found again.
TEST_F(Cache, UnLiteralQueDecideLaTraduccionHaceVariantes) {
  base_->Ejecutar("INSERT INTO t (k, n) VALUES (1, 20)");
  base_->Ejecutar("INSERT INTO t (k, n) VALUES (2, 10)");
  const auto antes = Cuentas().traducciones;
  for (int vuelta = 0; vuelta < 3; ++vuelta) {
    EXPECT_EQ(Filas("SELECT k, n FROM t WHERE k < 5 ORDER BY 1"), "1|20\n2|10");
    EXPECT_EQ(Filas("SELECT k, n FROM t WHERE k < 6 ORDER BY 2"), "2|10\n1|20");
  }
  EXPECT_EQ(Cuentas().traducciones - antes, 2);
}

TEST_F(Cache, ElNumeroDeTopCambiaConElTexto) {
  for (int i = 1; i <= 5; ++i) base_->Ejecutar("INSERT INTO t (k) VALUES (" + std::to_string(i) + ")");
  for (int vuelta = 0; vuelta < 2; ++vuelta)
    for (std::size_t n = 1; n < 60; ++n)
      EXPECT_EQ(base_->Ejecutar("SELECT TOP " + std::to_string(n) + " k FROM t ORDER BY k").Cantidad(),
                n < 5 ? n : 5);
}

TEST_F(Cache, UnaDefinicionHaceTraducirDeNuevo) {
  base_->Ejecutar("INSERT INTO t (k) VALUES (1)");
  EXPECT_EQ(support::Cabecera(base_->Ejecutar("SELECT * FROM t")), "k:int|v:text|d:date|n:number");
  EXPECT_EQ(support::Cabecera(base_->Ejecutar("SELECT * FROM t")), "k:int|v:text|d:date|n:number");
  base_->Ejecutar("ALTER TABLE t ADD COLUMN x YESNO");
  EXPECT_EQ(support::Cabecera(base_->Ejecutar("SELECT * FROM t")), "k:int|v:text|d:date|n:number|x:bool");
  base_->Ejecutar("CREATE VIEW q AS SELECT k FROM t");
  EXPECT_EQ(Filas("SELECT * FROM q"), "1");
  base_->Ejecutar("DROP VIEW q");
  base_->Ejecutar("CREATE VIEW q AS SELECT k + 10 AS kk FROM t");
  EXPECT_EQ(Filas("SELECT * FROM q"), "11");
}

TEST_F(Cache, MasFormasDeLasQueSeGuardanSiguenValiendo) {
  base_->Ejecutar("INSERT INTO t (k) VALUES (1)");
  for (int vuelta = 0; vuelta < 2; ++vuelta) {
    for (int i = 0; i < 700; ++i) {
      std::string alias = "c";
      alias += std::to_string(i);
      EXPECT_EQ(support::Cabecera(base_->Ejecutar("SELECT k AS " + alias + " FROM t")), alias + ":int");
    }
  }
}

TEST_F(Cache, UnaFormaConAlgoFaltanteFallaCadaVez) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_THROW(base_->Ejecutar("SELECT nada FROM t"), db::Error);
    EXPECT_THROW(base_->Ejecutar("SELECT k FROM t WHERE v = 'sin cerrar"), db::Error);
  }
}

// The exact text "Null" of a literal's place is another shape, not an old value bound again.
TEST_F(Cache, LosValoresDeUnaCorridaNoQuedanParaLaSiguiente) {
  base_->Ejecutar("INSERT INTO t (k, v) VALUES (1, 'a')");
  base_->Ejecutar("INSERT INTO t (k, v) VALUES (2, Null)");
  base_->Ejecutar("INSERT INTO t (k, v) VALUES (3, 'c')");
  EXPECT_EQ(Filas("SELECT k, v FROM t ORDER BY k"), "1|a\n2|NULL\n3|c");
}

TEST_F(Cache, LosContadoresSonDeEsteMotor) { EXPECT_NE(engine_sqlite::ContadoresDe(*base_), nullptr); }

}  // namespace
