// Errors, transactions and lost connections.
#include "base/text.h"
#include "entorno.h"

namespace {

class Fallos : public pruebas::DriverDePrueba {
 protected:
  std::string Commit() {
    return pruebas::Falla([&] { base_->CommitTrans(); });
  }
  std::string Rollback() {
    return pruebas::Falla([&] { base_->RollbackTrans(); });
  }
  std::string Begin() {
    return pruebas::Falla([&] { base_->BeginTrans(); });
  }
  // autocommit, commits, rollbacks
  std::string Cuentas() { return Filas("CUENTAS"); }

  static constexpr const char* kPerdida =
      "Se perdió la conexión con la base: hay que volver a abrirla. Lo que no estaba confirmado no quedó "
      "guardado.";
};

TEST_F(Fallos, ElErrorTraeTodoLoQueDijoElDriver) {
  Abrir();
  EXPECT_EQ(ErrorDe("FALLA 42S02 [Driver]No such table 'ñandú';01000 [Driver]Look again"),
            "No existe la tabla o consulta que la sentencia nombra: [Driver]No such table 'ñandú' / "
            "[Driver]Look again");
  try {
    Correr("FALLA 23000 [Driver]Duplicate");
    ADD_FAILURE();
  } catch (const db::Error& e) {
    EXPECT_EQ(e.Fuente(), "ODBC 23000");
    EXPECT_EQ(e.Numero(), 0);
  }
  const std::string largo(5000, 'x');
  EXPECT_EQ(ErrorDe("FALLA HY000 " + largo), "La base no pudo ejecutar la sentencia: " + largo);
}

TEST_F(Fallos, ElErrorVaEnUnaLinea) {
  Abrir();
  EXPECT_EQ(ErrorDe("FALLA HY000 Could not parse\n\tthe text\r\n"),
            "La base no pudo ejecutar la sentencia: Could not parse  the text");
}

TEST_F(Fallos, CadaEstadoTieneSuFrase) {
  Abrir();
  const std::pair<const char*, const char*> casos[] = {
      {"07002", "La sentencia nombra un campo que no existe, o le faltan valores"},
      {"22001", "Un texto es demasiado largo para su campo"},
      {"22003", "[6] Un número no cabe en su campo"},
      {"22007", "Un valor no es una fecha que la base entienda"},
      {"22012", "[11] División por cero"},
      {"22018", "[13] El tipo de un valor no es el de su campo"},
      {"22025", "Un valor no es válido para la sentencia"},
      {"23000",
       "El cambio no cumple una condición de la tabla (un valor repetido, obligatorio o relacionado)"},
      {"25006", "La base es de solo lectura: no se puede modificar"},
      {"40001", "Otro programa está usando los mismos datos y la transacción no pudo seguir"},
      {"42000", "La base no entiende la sentencia, o no la permite"},
      {"37000", "La base no entiende la sentencia, o no la permite"},
      {"42S01", "Ya existe una tabla o consulta con ese nombre"},
      {"S0002", "No existe la tabla o consulta que la sentencia nombra"},
      {"42S22", "No existe un campo que la sentencia nombra"},
      {"HYT00", "La base no respondió a tiempo"},
      {"HYC00", "El driver ODBC no admite lo que se le pide"},
      {"HY000", "La base no pudo ejecutar la sentencia"},
      {"XX999", "La base no pudo ejecutar la sentencia"}};
  for (const auto& [estado, frase] : casos)
    EXPECT_EQ(ErrorDe(std::string("FALLA ") + estado + " dice"), std::string(frase) + ": dice");
}

TEST_F(Fallos, LaSentenciaQueFallaDejaLaConexionBien) {
  Abrir();
  EXPECT_NE(ErrorDe("FALLA HY000 x"), "no error");
  EXPECT_TRUE(base_->Abierta());
  EXPECT_EQ(Llega("Select 1"), "Select 1");
}

TEST_F(Fallos, UnTextoQueElDriverLeeriaMalNoSeManda) {
  Abrir();
  EXPECT_EQ(ErrorDe(std::string("DELETE FROM t\0 WHERE k = 1", 26)),
            "La sentencia tiene un carácter nulo, que la base no admite.");
  EXPECT_EQ(ErrorDe(""), "La sentencia está vacía.");
  EXPECT_EQ(ErrorDe("  "), "La sentencia está vacía.");
}

std::string Repetir(const std::string& pieza, int veces) {
  std::string salida;
  for (int i = 0; i < veces; ++i) salida += pieza;
  return salida;
}

TEST_F(Fallos, NingunTextoLaHaceCaer) {
  Abrir();
  const std::string hondos[] = {"SELECT " + Repetir("(", 100000) + "1" + Repetir(")", 100000),
                                "SELECT " + Repetir("Not ", 100000) + "True",
                                "SELECT " + Repetir("Len(", 100000) + "1" + Repetir(")", 100000),
                                "SELECT * FROM " + Repetir("(", 100000) + "t" + Repetir(")", 100000),
                                "SELECT t.a FROM u WHERE k = 1" + Repetir(" or t.k = 2", 100000),
                                "SELECT 1" + Repetir(" UNION ALL SELECT t.a FROM t AS x", 5000),
                                Repetir("SELECT t.a FROM (", 5000) + "t" + Repetir(")", 5000),
                                Repetir("\x01\xFF[", 1000),
                                "[",
                                "'",
                                "#",
                                "{",
                                ";",
                                "SELECT \xFF\xFE\xF0\x9F"};
  for (const std::string& sql : hondos) {
    EXPECT_EQ(ErrorDe(sql), "no error");
    pruebas::Falla([&] { base_->Consultar(sql); });  // rows or an error, both are answers
  }
  EXPECT_EQ(Llega("Select 1"), "Select 1");
}

TEST_F(Fallos, UnaTransaccionYLaSiguiente) {
  Abrir();
  EXPECT_EQ(Cuentas(), "1 0 0");
  EXPECT_EQ(Commit(), "No hay ninguna transacción abierta.");
  EXPECT_EQ(Rollback(), "No hay ninguna transacción abierta.");
  EXPECT_EQ(Begin(), "no error");
  EXPECT_TRUE(base_->EnTransaccion());
  EXPECT_EQ(Begin(), "Ya hay una transacción abierta.");
  EXPECT_EQ(Cuentas(), "0 0 0");
  EXPECT_EQ(Commit(), "no error");
  EXPECT_FALSE(base_->EnTransaccion());
  EXPECT_EQ(Cuentas(), "1 1 0");
  EXPECT_EQ(Begin(), "no error");
  EXPECT_EQ(Rollback(), "no error");
  EXPECT_EQ(Cuentas(), "1 1 1");
}

TEST_F(Fallos, SinTransaccionesNoSeEmpiezaNinguna) {
  Abrir("Txn=0");
  EXPECT_EQ(
      Begin(),
      "El driver ODBC de esta base no admite transacciones: no se puede escribir en ella sin riesgo de que "
      "quede a medias.");
  EXPECT_FALSE(base_->EnTransaccion());
  EXPECT_EQ(Cuentas(), "1 0 0");
}

TEST_F(Fallos, UnCommitQueFallaDejaDeshacer) {
  Abrir("Commit=falla");
  base_->BeginTrans();
  EXPECT_EQ(Commit(), "La base no pudo guardar la transacción: [Prueba]The disk is full");
  EXPECT_TRUE(base_->EnTransaccion());
  EXPECT_EQ(Cuentas(), "0 0 0");  // to go back to autocommit would keep what was written
  EXPECT_EQ(Rollback(), "no error");
  EXPECT_EQ(Cuentas(), "1 0 1");
}

// Going on, the next commit would keep what could not be undone.
TEST_F(Fallos, UnRollbackQueFallaCierra) {
  Abrir("Rollback=falla");
  base_->BeginTrans();
  EXPECT_EQ(Rollback(), "La base no pudo deshacer la transacción: [Prueba]The disk is full");
  EXPECT_FALSE(base_->Abierta());
  EXPECT_FALSE(base_->EnTransaccion());
  EXPECT_EQ(ErrorDe("Select 1"), kPerdida);
}

TEST_F(Fallos, LaConexionQueSePierdeSeCierra) {
  for (const char* como : {"PIERDE", "PIERDE_LEYENDO", "MUERE"}) {
    Abrir();
    base_->BeginTrans();
    const std::string error = ErrorDe(como);
    EXPECT_TRUE(base::EmpiezaCon(error, "Se perdió la conexión con la base: [Prueba]")) << como << error;
    EXPECT_FALSE(base_->Abierta()) << como;
    EXPECT_FALSE(base_->EnTransaccion()) << como;
    EXPECT_EQ(ErrorDe("Select 1"), kPerdida);
    EXPECT_EQ(Commit(), kPerdida);
    EXPECT_EQ(Rollback(), kPerdida);
    EXPECT_EQ(Begin(), kPerdida);
    base_->Cerrar();
  }
}

TEST_F(Fallos, CerradaNoSirve) {
  Abrir();
  base_->BeginTrans();
  base_->Cerrar();
  EXPECT_FALSE(base_->Abierta());
  EXPECT_FALSE(base_->EnTransaccion());
  EXPECT_EQ(ErrorDe("Select 1"), "La base no está abierta.");
  EXPECT_EQ(Begin(), "La base no está abierta.");
  EXPECT_EQ(Commit(), "No hay ninguna transacción abierta.");
  base_->Cerrar();
}

TEST_F(Fallos, NoSeConecta) {
  const auto abrir = [](const std::string& cadena) {
    return pruebas::Falla([&] { engine_odbc::Abrir(cadena); });
  };
  EXPECT_EQ(abrir(Cadena("Clave=secreta;PWD=otra")),
            "La base no acepta el usuario o la contraseña: [Prueba]Not a valid password");
  EXPECT_EQ(abrir(Cadena("Clave=secreta;PWD=secreta")), "no error");
  EXPECT_EQ(abrir(""), "Falta la cadena de conexión ODBC.");
  EXPECT_EQ(abrir(std::string("DSN=a\0b", 7)), "La cadena de conexión ODBC no es válida.");
  EXPECT_TRUE(base::EmpiezaCon(abrir("Driver=/no/hay.so"), "No se pudo cargar el driver ODBC: [unixODBC]"));
  EXPECT_TRUE(base::EmpiezaCon(abrir("DSN=no hay tal origen"),
                               "No existe ese origen de datos ODBC, o no dice qué driver usar: [unixODBC]"));
}

// Time stands for the work that nobody can count; only what is asked for with a budget has one.
TEST_F(Fallos, ABoundedQueryIsInterruptedByItsTimeOrItsSize) {
  Abrir();
  const std::string work = "La consulta se interrumpió: da demasiado trabajo";
  const auto bounded = [&](const std::string& sql, db::QueryBudget budget) {
    try {
      return support::Filas(base_->QueryBounded(sql, budget));
    } catch (const db::QueryInterrupted& e) {
      return e.Descripcion();
    }
  };
  EXPECT_EQ(bounded("SELECT 'TARDA'", {}), work);
  EXPECT_EQ(Filas("SELECT 'TARDA'"), "SELECT 'TARDA'");  // the operator's own statement, on the same cursor
  EXPECT_EQ(bounded("SELECT 1", {}), "SELECT 1");
  db::QueryBudget none;
  none.steps = 0;
  EXPECT_EQ(bounded("SELECT 1", none), work);
  none = {};
  none.bytes = 3;
  EXPECT_EQ(bounded("SELECT 1", none), "La consulta se interrumpió: su resultado es demasiado grande");
  none = {};
  none.rows = 0;
  EXPECT_EQ(bounded("SELECT 1", none), "La consulta se interrumpió: su resultado es demasiado grande");
  EXPECT_EQ(ErrorDe("FALLA HYT00 x"), "La base no respondió a tiempo: x");
}

}  // namespace
