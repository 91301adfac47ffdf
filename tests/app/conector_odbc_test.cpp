// ConfBase.cfg with Motor=odbc.
#include "app/banco.h"
#include "app/conector.h"
#include "engine_odbc/odbc_settings.h"

namespace {

class ConectorOdbc : public prueba::Banco {
 protected:
  void SetUp() override {
    prueba::Banco::SetUp();
    tests::Configure("[De prueba]\nDriver=" IDM_ODBC_TEST "\n",
                     "[Sueldos]\nDriver=De prueba\n[Personal]\nDriver=De prueba\n");
  }
  // Other tests of this program are to find no driver.
  void TearDown() override {
    tests::Configure({});
    prueba::Banco::TearDown();
  }
  app::Conexion Abrir(const std::string& claves) {
    Escribir("ConfBase.cfg", claves);
    return app::AbrirReferencia(Ruta("ConfBase.cfg"), reloj_);
  }
  static std::string Clave(const std::string& clave, const std::string& valor) {
    return "[" + clave + "]\r\n" + valor + "\r\n[/" + clave + "]\r\n";
  }
};

TEST_F(ConectorOdbc, BaseIsAConnectionString) {
  const app::Conexion c =
      Abrir(Clave("Motor", "ODBC") + Clave("Base", "Driver=" IDM_ODBC_TEST ";x=1") + Clave("Usuario", "12"));
  ASSERT_NE(c.conexion, nullptr) << c.motivo;
  EXPECT_EQ(c.conexion->Execute("Select 1").Field("texto").Text(), "Select 1");
  EXPECT_EQ(c.id_Usuario, 12);
}

TEST_F(ConectorOdbc, BaseIsADataSource) {
  const app::Conexion c = Abrir(Clave("Motor", "odbc") + Clave("Base", "Sueldos"));
  ASSERT_NE(c.conexion, nullptr) << c.motivo;
  EXPECT_TRUE(c.conexion->IsOpen());
}

TEST_F(ConectorOdbc, ThePasswordGoesToTheConnection) {
  const std::string base = Clave("Motor", "odbc") + Clave("Base", "Driver=" IDM_ODBC_TEST ";Clave=ñ 1");
  EXPECT_EQ(Abrir(base).motivo, "La base no acepta el usuario o la contraseña: [Prueba]Not a valid password");
  EXPECT_NE(Abrir(base + Clave("Contraseña", "ñ 1")).conexion, nullptr);
  EXPECT_NE(Abrir(base + Clave("Contrasena", "ñ 1")).conexion, nullptr);
  EXPECT_EQ(Abrir(base + Clave("Contraseña", "otra") + Clave("Contrasena", "ñ 1")).conexion, nullptr);
}

TEST_F(ConectorOdbc, BaseIsAFileAndDriverSaysWhatOpensIt) {
  Escribir("Personal.mdb", "x");
  const std::string base = Clave("Motor", "odbc") + Clave("Base", "Personal.mdb");
  EXPECT_EQ(Abrir(base).motivo,
            "No hay un driver ODBC de Access instalado que abra '" + Ruta("Personal.mdb") + "'.");
  const app::Conexion c = Abrir(base + Clave("Driver", "De prueba"));
  ASSERT_NE(c.conexion, nullptr) << c.motivo;
}

// A file of that name in the folder comes before a data source.
TEST_F(ConectorOdbc, TheFileComesBeforeTheDataSource) {
  const std::string base = Clave("Motor", "odbc") + Clave("Base", "Personal");
  EXPECT_NE(Abrir(base).conexion, nullptr);
  Escribir("Personal", "x");
  EXPECT_EQ(Abrir(base).motivo,
            "No hay un driver ODBC de Access instalado que abra '" + Ruta("Personal") + "'.");
}

TEST_F(ConectorOdbc, TheDriversReasonIsTold) {
  const app::Conexion c = Abrir(Clave("Motor", "odbc") + Clave("Base", "Otros sueldos"));
  EXPECT_EQ(c.conexion, nullptr);
  EXPECT_EQ(c.motivo.rfind("No existe ese origen de datos ODBC, o no dice qué driver usar: [unixODBC]", 0),
            0U)
      << c.motivo;
}

// Without Motor a data source is no file.
TEST_F(ConectorOdbc, WithoutTheEngineThereAreNoSources) {
  EXPECT_EQ(Abrir(Clave("Base", "Sueldos")).motivo, "El archivo '" + Ruta("Sueldos") + "' no existe");
}

// Other programs may have an Access file open: where their driver is installed, it opens the file.
TEST_F(ConectorOdbc, AnAccessFileIsOpenedByItsDriverWhenThereIsOne) {
  Escribir("Personal.mdb", std::string("\0\1\0\0Standard Jet DB\0", 20) + std::string(100, '\0'));
  tests::Configure("[Microsoft Access Driver (*.mdb, *.accdb)]\nDriver=" IDM_ODBC_TEST "\n");
  const app::Conexion c = app::AbrirReferencia(Ruta("Personal.mdb"), reloj_);
  ASSERT_NE(c.conexion, nullptr) << c.motivo;
  EXPECT_EQ(c.conexion->Execute("Select 1").Field("texto").Text(), "Select 1");
}

}  // namespace
