// A whole import over ODBC gives what it gives without. The driver of the tests has the embedded engine
// behind it here.
#include <gtest/gtest.h>

#include "demo/demo_base.h"
#include "engine_odbc/embedded_engine.h"
#include "mesa.h"

namespace {

class ImportarOdbc : public testing::Test {
 protected:
  // A demo of its own, under the name that the table's reader knows.
  static void Llenar(const prueba::Mesa& mesa, const std::string& motor, const std::string& base) {
    const base::Date mes = base::MakeDate(2026, 10, 1);
    engine_sqlite::Options opciones;
    opciones.create = true;
    demo::LlenarBase(*engine_sqlite::Open(mesa.Ruta("Personal.sqlite"), opciones), mes);
    for (const demo::ArchivoDemo& a : demo::ArchivosDemo(mes)) mesa.Escribir(a.nombre, a.bytes);
    mesa.Escribir("ConfBase.cfg", "[Motor]\r\n" + motor + "\r\n[/Motor]\r\n[Base]\r\n" + base +
                                      "\r\n[/Base]\r\n[Usuario]\r\n6\r\n[/Usuario]");
  }
  static prueba::Salida Importar(const prueba::Mesa& mesa, const std::string& archivo) {
    return mesa.Correr({"importar", "--base", mesa.Ruta("ConfBase.cfg"), "--archivo", mesa.Ruta(archivo),
                        "--mes", "2026-10", "--hoy", "2026-10-20"});
  }
};

TEST_F(ImportarOdbc, GivesTheSameAsWithoutOdbc) {
  prueba::Mesa directa{"sqlite"}, por_odbc{"sqlite"};
  Llenar(directa, "sqlite", "Personal.sqlite");
  Llenar(por_odbc, "odbc", "Driver=" IDM_ODBC_TEST ";Motor=" + por_odbc.Ruta("Personal.sqlite"));
  const std::string antes = por_odbc.Filas();
  EXPECT_EQ(directa.Filas(), antes);
  const prueba::Salida a = Importar(directa, "horas.txt"), b = Importar(por_odbc, "horas.txt");
  EXPECT_EQ(a.codigo, b.codigo);
  EXPECT_EQ(a.out, b.out);
  EXPECT_EQ(a.err, b.err);
  EXPECT_NE(b.out.find("importadas: 48 "), std::string::npos) << b.out << b.err;
  EXPECT_NE(por_odbc.Filas(), antes);
  EXPECT_EQ(directa.Filas(), por_odbc.Filas());
}

// The same file again replaces and sums what is there.
TEST_F(ImportarOdbc, ASecondTimeToo) {
  prueba::Mesa directa{"sqlite"}, por_odbc{"sqlite"};
  Llenar(directa, "sqlite", "Personal.sqlite");
  Llenar(por_odbc, "odbc", "Driver=" IDM_ODBC_TEST ";Motor=" + por_odbc.Ruta("Personal.sqlite"));
  for (int vez = 0; vez < 2; ++vez)
    EXPECT_EQ(Importar(directa, "horas.txt").out, Importar(por_odbc, "horas.txt").out);
  EXPECT_EQ(directa.Filas(), por_odbc.Filas());
}

TEST_F(ImportarOdbc, WithoutTransactionsItImportsNothing) {
  prueba::Mesa mesa{"sqlite"};
  Llenar(mesa, "odbc", "Driver=" IDM_ODBC_TEST ";Txn=0;Motor=" + mesa.Ruta("Personal.sqlite"));
  const std::string antes = mesa.Filas();
  const prueba::Salida s = Importar(mesa, "horas.txt");
  EXPECT_NE(s.codigo, 0);
  EXPECT_EQ(mesa.Filas(), antes);
}

TEST_F(ImportarOdbc, ACommitThatFailsLeavesNothing) {
  prueba::Mesa mesa{"sqlite"};
  Llenar(mesa, "odbc", "Driver=" IDM_ODBC_TEST ";Commit=falla;Motor=" + mesa.Ruta("Personal.sqlite"));
  const std::string antes = mesa.Filas();
  const prueba::Salida s = Importar(mesa, "horas.txt");
  EXPECT_NE(s.codigo, 0);
  EXPECT_NE((s.out + s.err).find("La base no pudo guardar la transacción: [Prueba]The disk is full"),
            std::string::npos)
      << s.out << s.err;
  EXPECT_EQ(mesa.Filas(), antes);
}

}  // namespace

extern "C" fake::Engine* CreateTestEngine(const char16_t* nombre) {
  return new fake::EmbeddedEngine(base::FromUtf16(nombre));
}
