// `consulta` over a data source of ODBC.
#include <gtest/gtest.h>

#include "mesa.h"

namespace {

class ConsultaOdbc : public testing::Test {
 protected:
  void SetUp() override {
    if (std::string(IDM_ODBC_SQLITE).empty()) GTEST_SKIP() << "no SQLite driver for ODBC (libsqliteodbc)";
    mesa_.Escribir("ConfBase.cfg", "[Motor]\r\nodbc\r\n[/Motor]\r\n[Base]\r\nDriver=" IDM_ODBC_SQLITE
                                   ";Database=" +
                                       mesa_.Ruta("otra.db") + "\r\n[/Base]");
  }
  prueba::Salida Correr(const std::string& sql, bool escribir) {
    std::vector<std::string> argumentos = {"consulta", "--base", mesa_.Ruta("ConfBase.cfg"), sql};
    if (escribir) argumentos.push_back("--escribir");
    return mesa_.Correr(argumentos);
  }

  prueba::Mesa mesa_;
};

TEST_F(ConsultaOdbc, WritesAndReadsBack) {
  EXPECT_EQ(Correr("Create Table t (k INTEGER, v VARCHAR(20))", true).codigo, 0);
  const prueba::Salida s = Correr("Insert into t Values (1, 'ñandú'), (2, Null)", true);
  EXPECT_EQ(s.err, "Filas afectadas: 2\n");
  EXPECT_EQ(Correr("Select k, v From t Order by k", false).out, "k,v\n1,ñandú\n2,\n");
}

TEST_F(ConsultaOdbc, WithoutLeaveItDoesNotWrite) {
  EXPECT_EQ(Correr("Create Table t (k INTEGER)", true).codigo, 0);
  const prueba::Salida s = Correr("Insert into t Values (1)", false);
  EXPECT_NE(s.codigo, 0);
  EXPECT_EQ(s.err, "La sentencia no es de consulta: aquí solo se puede leer.\n");
  EXPECT_EQ(Correr("Select Count(*) as n From t", false).out, "n\n0\n");
}

TEST_F(ConsultaOdbc, TheErrorsAreTheDrivers) {
  const prueba::Salida s = Correr("Select * From nada", false);
  EXPECT_NE(s.codigo, 0);
  EXPECT_EQ(s.err, "La base no pudo ejecutar la sentencia: [SQLite]no such table: nada (1)\n");
}

}  // namespace
