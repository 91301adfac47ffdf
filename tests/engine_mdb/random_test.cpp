// The same random statements on this engine and on the embedded one: the same rows, the same refusals, and a
// sound file at the end.
#include <random>

#include "engine_sqlite/sqlite_connection.h"
#include "mesa.h"

namespace {

class AlAzar : public prueba::MesaMdb {
 protected:
  void SetUp() override {
    Nueva();
    modelo_ = engine_sqlite::Abrir(":memory:");
    for (const char* sql :
         {"CREATE TABLE grupo (g LONG CONSTRAINT pk PRIMARY KEY, n TEXT(12))",
          "CREATE TABLE pieza (p LONG CONSTRAINT pk PRIMARY KEY, g LONG CONSTRAINT de REFERENCES grupo (g) "
          "ON UPDATE "
          "CASCADE ON DELETE CASCADE, t TEXT(30), m MEMO, d DOUBLE, f DATETIME, b YESNO)",
          "CREATE UNIQUE INDEX por_t ON pieza (t, b)", "CREATE INDEX por_f ON pieza (f DESC)"}) {
      base_->Ejecutar(sql);
      modelo_->Ejecutar(sql);
    }
  }

  int N(int hasta) { return static_cast<int>(azar_() % static_cast<unsigned>(hasta)); }
  std::string Texto() {
    static const char* const kTextos[] = {"Ñandú", "ñandu", "coté", "CÔTE", "O''Neil",
                                          "co-op", "",      "zz",   "Äther"};
    return "'" + std::string(kTextos[N(9)]) + std::to_string(N(40)) + "'";
  }
  std::string Memo() { return "String(" + std::to_string(N(4) == 0 ? N(9000) : N(60)) + ", 'mñ')"; }
  std::string Sentencia() {
    const std::string p = std::to_string(N(300)), g = std::to_string(N(12));
    switch (N(9)) {
      case 0:
        return "INSERT INTO grupo VALUES (" + g + ", " + Texto() + ")";
      case 1:
        return "UPDATE grupo SET g = " + std::to_string(N(14)) + " WHERE g = " + g;
      case 2:
        return N(4) == 0 ? "DELETE FROM grupo WHERE g = " + g
                         : "UPDATE grupo SET n = " + Texto() + " WHERE g < " + g;
      case 3:
        return "UPDATE pieza SET t = " + Texto() + ", m = " + Memo() + " WHERE p = " + p;
      case 4:
        return "UPDATE pieza SET d = Iif(d Is Null, 0, d) + 1.5, b = Not b WHERE p < " + p;
      case 5:
        return "DELETE FROM pieza WHERE p = " + p;
      case 6:
        return "UPDATE pieza SET g = " + (N(3) == 0 ? std::string("Null") : g) + " WHERE p = " + p;
      default:
        return "INSERT INTO pieza VALUES (" + p + ", " + (N(5) == 0 ? std::string("Null") : g) + ", " +
               Texto() + ", " + Memo() + ", " + std::to_string(N(1000)) + ".25, #01/" +
               std::to_string(N(28) + 1) + "/2024#, " + (N(2) == 0 ? "True" : "False") + ")";
    }
  }
  void UnaEnLosDos(const std::string& sql) {
    const std::string a = FallaDe([&] { base_->Ejecutar(sql); });
    const std::string b = FallaDe([&] { modelo_->Ejecutar(sql); });
    ASSERT_EQ(a == "no error", b == "no error") << sql << "\n" << a << "\n" << b;
    if (a == "no error") ++hechas_;
    ASSERT_EQ(base_->FilasAfectadas(), modelo_->FilasAfectadas()) << sql;
  }
  void Comparar() {
    for (const char* sql :
         {"SELECT * FROM grupo ORDER BY g", "SELECT * FROM pieza ORDER BY p",
          "SELECT Count(*) FROM pieza WHERE f > #01/14/2024#", "SELECT t, p FROM pieza ORDER BY t, p"})
      ASSERT_EQ(support::Filas(base_->Ejecutar(sql)), support::Filas(modelo_->Ejecutar(sql))) << sql;
  }

  std::mt19937 azar_{20261120};
  std::unique_ptr<db::Connection> modelo_;
  int hechas_ = 0;
};

TEST_F(AlAzar, DanLoMismoQueElOtroMotor) {
  constexpr int kVueltas = 120, kPorVuelta = 40;
  for (int vuelta = 0; vuelta < kVueltas; ++vuelta) {
    const bool transaccion = N(3) != 0;
    if (transaccion) {
      base_->BeginTrans();
      modelo_->BeginTrans();
    }
    for (int i = 0; i < (transaccion ? kPorVuelta : 4); ++i)
      ASSERT_NO_FATAL_FAILURE(UnaEnLosDos(Sentencia()));
    if (transaccion) {
      const bool queda = N(4) != 0;
      queda ? base_->CommitTrans() : base_->RollbackTrans();
      queda ? modelo_->CommitTrans() : modelo_->RollbackTrans();
    }
    if (N(5) == 0) Abrir();
    ASSERT_NO_FATAL_FAILURE(Comparar()) << vuelta;
  }
  EXPECT_GT(hechas_, 1000);
  Abrir();
  ASSERT_NO_FATAL_FAILURE(Comparar());
  Revisar();
}

}  // namespace
