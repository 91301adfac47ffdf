// Errors, transactions and lost connections.
#include "base/text.h"
#include "odbc_settings.h"

namespace {

class Failures : public tests::TestDriver {
 protected:
  std::string Commit() {
    return tests::FailureOf([&] { base_->CommitTrans(); });
  }
  std::string Rollback() {
    return tests::FailureOf([&] { base_->RollbackTrans(); });
  }
  std::string Begin() {
    return tests::FailureOf([&] { base_->BeginTrans(); });
  }
  // autocommit, commits, rollbacks
  std::string Counts() { return Rows("CUENTAS"); }

  static constexpr const char* kLost =
      "Se perdió la conexión con la base: hay que volver a abrirla. Lo que no estaba confirmado no quedó "
      "guardado.";
};

TEST_F(Failures, TheErrorBringsAllThatTheDriverSaid) {
  Open();
  EXPECT_EQ(ErrorOf("FALLA 42S02 [Driver]No such table 'ñandú';01000 [Driver]Look again"),
            "No existe la tabla o consulta que la sentencia nombra: [Driver]No such table 'ñandú' / "
            "[Driver]Look again");
  try {
    Run("FALLA 23000 [Driver]Duplicate");
    ADD_FAILURE();
  } catch (const db::Error& e) {
    EXPECT_EQ(e.Source(), "ODBC 23000");
    EXPECT_EQ(e.Number(), 0);
  }
  const std::string length(5000, 'x');
  EXPECT_EQ(ErrorOf("FALLA HY000 " + length), "La base no pudo ejecutar la sentencia: " + length);
}

TEST_F(Failures, TheErrorIsOneLine) {
  Open();
  EXPECT_EQ(ErrorOf("FALLA HY000 Could not parse\n\tthe text\r\n"),
            "La base no pudo ejecutar la sentencia: Could not parse  the text");
}

TEST_F(Failures, EachStateHasItsPhrase) {
  Open();
  const std::pair<const char*, const char*> cases[] = {
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
  for (const auto& [state, phrase] : cases)
    EXPECT_EQ(ErrorOf(std::string("FALLA ") + state + " dice"), std::string(phrase) + ": dice");
}

TEST_F(Failures, AStatementThatFailsLeavesTheConnectionSound) {
  Open();
  EXPECT_NE(ErrorOf("FALLA HY000 x"), "no error");
  EXPECT_TRUE(base_->IsOpen());
  EXPECT_EQ(Arrives("Select 1"), "Select 1");
}

TEST_F(Failures, ATextThatTheDriverWouldMisreadIsNotSent) {
  Open();
  EXPECT_EQ(ErrorOf(std::string("DELETE FROM t\0 WHERE k = 1", 26)),
            "La sentencia tiene un carácter nulo, que la base no admite.");
  EXPECT_EQ(ErrorOf(""), "La sentencia está vacía.");
  EXPECT_EQ(ErrorOf("  "), "La sentencia está vacía.");
}

std::string Repeat(const std::string& piece, int times) {
  std::string output;
  for (int i = 0; i < times; ++i) output += piece;
  return output;
}

TEST_F(Failures, NoTextBringsItDown) {
  Open();
  const std::string deep[] = {"SELECT " + Repeat("(", 100000) + "1" + Repeat(")", 100000),
                              "SELECT " + Repeat("Not ", 100000) + "True",
                              "SELECT " + Repeat("Len(", 100000) + "1" + Repeat(")", 100000),
                              "SELECT * FROM " + Repeat("(", 100000) + "t" + Repeat(")", 100000),
                              "SELECT t.a FROM u WHERE k = 1" + Repeat(" or t.k = 2", 100000),
                              "SELECT 1" + Repeat(" UNION ALL SELECT t.a FROM t AS x", 5000),
                              Repeat("SELECT t.a FROM (", 5000) + "t" + Repeat(")", 5000),
                              Repeat("\x01\xFF[", 1000),
                              "[",
                              "'",
                              "#",
                              "{",
                              ";",
                              "SELECT \xFF\xFE\xF0\x9F"};
  for (const std::string& sql : deep) {
    EXPECT_EQ(ErrorOf(sql), "no error");
    tests::FailureOf([&] { base_->Query(sql); });  // rows or an error, both are answers
  }
  EXPECT_EQ(Arrives("Select 1"), "Select 1");
}

TEST_F(Failures, ATransactionAndTheNext) {
  Open();
  EXPECT_EQ(Counts(), "1 0 0");
  EXPECT_EQ(Commit(), "No hay ninguna transacción abierta.");
  EXPECT_EQ(Rollback(), "No hay ninguna transacción abierta.");
  EXPECT_EQ(Begin(), "no error");
  EXPECT_TRUE(base_->InTransaction());
  EXPECT_EQ(Begin(), "Ya hay una transacción abierta.");
  EXPECT_EQ(Counts(), "0 0 0");
  EXPECT_EQ(Commit(), "no error");
  EXPECT_FALSE(base_->InTransaction());
  EXPECT_EQ(Counts(), "1 1 0");
  EXPECT_EQ(Begin(), "no error");
  EXPECT_EQ(Rollback(), "no error");
  EXPECT_EQ(Counts(), "1 1 1");
}

TEST_F(Failures, WithoutTransactionsNoneBegins) {
  Open("Txn=0");
  EXPECT_EQ(
      Begin(),
      "El driver ODBC de esta base no admite transacciones: no se puede escribir en ella sin riesgo de que "
      "quede a medias.");
  EXPECT_FALSE(base_->InTransaction());
  EXPECT_EQ(Counts(), "1 0 0");
}

TEST_F(Failures, ACommitThatFailsCanBeRolledBack) {
  Open("Commit=falla");
  base_->BeginTrans();
  EXPECT_EQ(Commit(), "La base no pudo guardar la transacción: [Prueba]The disk is full");
  EXPECT_TRUE(base_->InTransaction());
  EXPECT_EQ(Counts(), "0 0 0");  // to go back to autocommit would keep what was written
  EXPECT_EQ(Rollback(), "no error");
  EXPECT_EQ(Counts(), "1 0 1");
}

// Going on, the next commit would keep what could not be undone.
TEST_F(Failures, ARollbackThatFailsCloses) {
  Open("Rollback=falla");
  base_->BeginTrans();
  EXPECT_EQ(Rollback(), "La base no pudo deshacer la transacción: [Prueba]The disk is full");
  EXPECT_FALSE(base_->IsOpen());
  EXPECT_FALSE(base_->InTransaction());
  EXPECT_EQ(ErrorOf("Select 1"), kLost);
}

TEST_F(Failures, AConnectionThatIsLostIsClosed) {
  for (const char* how : {"PIERDE", "PIERDE_LEYENDO", "MUERE"}) {
    Open();
    base_->BeginTrans();
    const std::string error = ErrorOf(how);
    EXPECT_TRUE(base::StartsWith(error, "Se perdió la conexión con la base: [Prueba]")) << how << error;
    EXPECT_FALSE(base_->IsOpen()) << how;
    EXPECT_FALSE(base_->InTransaction()) << how;
    EXPECT_EQ(ErrorOf("Select 1"), kLost);
    EXPECT_EQ(Commit(), kLost);
    EXPECT_EQ(Rollback(), kLost);
    EXPECT_EQ(Begin(), kLost);
    base_->Close();
  }
}

TEST_F(Failures, ClosedItServesNothing) {
  Open();
  base_->BeginTrans();
  base_->Close();
  EXPECT_FALSE(base_->IsOpen());
  EXPECT_FALSE(base_->InTransaction());
  EXPECT_EQ(ErrorOf("Select 1"), "La base no está abierta.");
  EXPECT_EQ(Begin(), "La base no está abierta.");
  EXPECT_EQ(Commit(), "No hay ninguna transacción abierta.");
  base_->Close();
}

TEST_F(Failures, DoesNotConnect) {
  const auto open = [](const std::string& connection_string) {
    return tests::FailureOf([&] { engine_odbc::Open(connection_string); });
  };
  EXPECT_EQ(open(ConnectionString("Clave=secreta;PWD=otra")),
            "La base no acepta el usuario o la contraseña: [Prueba]Not a valid password");
  EXPECT_EQ(open(ConnectionString("Clave=secreta;PWD=secreta")), "no error");
  EXPECT_EQ(open(""), "Falta la cadena de conexión ODBC.");
  EXPECT_EQ(open(std::string("DSN=a\0b", 7)), "La cadena de conexión ODBC no es válida.");
  EXPECT_TRUE(base::StartsWith(open("Driver=/no/hay.so"), "No se pudo cargar el driver ODBC: [unixODBC]"));
  EXPECT_TRUE(base::StartsWith(open("DSN=no hay tal origen"),
                               "No existe ese origen de datos ODBC, o no dice qué driver usar: [unixODBC]"));
}

// Time stands for the work that nobody can count; only what is asked for with a budget has one.
TEST_F(Failures, ABoundedQueryIsInterruptedByItsTimeOrItsSize) {
  Open();
  const std::string work = "La consulta se interrumpió: da demasiado trabajo";
  const auto bounded = [&](const std::string& sql, db::QueryBudget budget) {
    try {
      return support::Rows(base_->QueryBounded(sql, budget));
    } catch (const db::QueryInterrupted& e) {
      return e.Description();
    }
  };
  EXPECT_EQ(bounded("SELECT 'TARDA'", {}), work);
  EXPECT_EQ(Rows("SELECT 'TARDA'"), "SELECT 'TARDA'");  // the operator's own statement, on the same cursor
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
  EXPECT_EQ(ErrorOf("FALLA HYT00 x"), "La base no respondió a tiempo: x");
}

}  // namespace
