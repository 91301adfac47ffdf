#include "app/conector.h"

#include "app/banco.h"
#include "base/file.h"
#include "mdb/samples.h"

namespace {

class Conector : public prueba::Banco {};

TEST_F(Conector, OpensAnSqliteFileByItsHeader) {
  Demo(demo::Motor::Sqlite);
  const app::Conexion c = app::AbrirReferencia(Ruta("Personal.sqlite"), reloj_);
  ASSERT_NE(c.conexion, nullptr) << c.motivo;
  EXPECT_TRUE(c.conexion->IsOpen());
}

TEST_F(Conector, OpensAnAccessFileByItsHeader) {
  Demo();
  std::filesystem::rename(Ruta("Personal.mdb"), Ruta("sueldos.dat"));
  const app::Conexion c = app::AbrirReferencia(Ruta("sueldos.dat"), reloj_);
  ASSERT_NE(c.conexion, nullptr) << c.motivo;
  EXPECT_EQ(c.conexion->Query("Select Count(*) From Empresa").At(0, 0).CsvText(), "2");
}

// An engine that is named must be that of the file.
TEST_F(Conector, TheEngineNamedIsHeldToTheFile) {
  Demo();
  const auto motivo = [&](const std::string& motor, const std::string& base) {
    Escribir("ConfBase.cfg", "[Motor]\r\n" + motor + "\r\n[/Motor]\r\n[Base]\r\n" + base + "\r\n[/Base]");
    return app::AbrirReferencia(Ruta("ConfBase.cfg"), reloj_).motivo;
  };
  EXPECT_EQ(motivo("mdb", "Personal.mdb"), "");
  EXPECT_EQ(motivo("sqlite", "Personal.mdb"),
            "'" + Ruta("Personal.mdb") + "' es una base de Access: pide el motor mdb");
  std::filesystem::remove(Ruta("Personal.mdb"));
  Demo(demo::Motor::Sqlite);
  EXPECT_EQ(motivo("MDB", "Personal.sqlite"),
            "'" + Ruta("Personal.sqlite") + "' no es una base de Access: pide el motor sqlite");
}

// "Contrasena" for an editor without ñ; the settings are in the code page 1252.
TEST_F(Conector, ThePasswordOfADatabase) {
  const mdb::Bytes bytes = mdb_test::SampleBytes("password.mdb");
  Escribir("con clave.mdb", {bytes.begin(), bytes.end()});
  EXPECT_EQ(app::AbrirReferencia(Ruta("con clave.mdb"), reloj_).motivo,
            "La base tiene contraseña y no se dio ninguna");
  for (const char* clave : {"Contrase\xF1"
                            "a",
                            "Contrasena"}) {
    const std::string c(clave);
    const std::string cabeza = "[Base]\r\ncon clave.mdb\r\n[/Base]\r\n[" + c + "]\r\n";
    Escribir("ConfBase.cfg", cabeza +
                                 "contrase\xF1"
                                 "a\r\n[/" +
                                 c + "]");
    EXPECT_EQ(app::AbrirReferencia(Ruta("ConfBase.cfg"), reloj_).motivo, "") << clave;
    Escribir("ConfBase.cfg", cabeza + "otra\r\n[/" + c + "]");
    EXPECT_EQ(app::AbrirReferencia(Ruta("ConfBase.cfg"), reloj_).motivo,
              "La contraseña de la base no es la que se dio");
  }
}

TEST_F(Conector, ConfBaseNamesTheFileFromItsOwnFolder) {
  Demo(demo::Motor::Sqlite);
  Escribir("ConfBase.cfg",
           "[Motor]\r\nsqlite\r\n[/Motor]\r\n[Base]\r\nPersonal.sqlite\r\n[/Base]\r\n[Usuario]\r\n12\r\n[/"
           "Usuario]");
  const app::Conexion c = app::AbrirReferencia(Ruta("ConfBase.cfg"), reloj_);
  ASSERT_NE(c.conexion, nullptr) << c.motivo;
  EXPECT_EQ(c.id_Usuario, 12);
}

// An editor that ends lines with LF alone is no reason to refuse a file of three lines.
TEST_F(Conector, ConfBaseMayEndItsLinesWithLf) {
  Demo(demo::Motor::Sqlite);
  Escribir("ConfBase.cfg",
           "[Motor]\nsqlite\n[/Motor]\n[Base]\nPersonal.sqlite\n[/Base]\n[Usuario]\n12\n[/Usuario]\n");
  const app::Conexion c = app::AbrirReferencia(Ruta("ConfBase.cfg"), reloj_);
  ASSERT_NE(c.conexion, nullptr) << c.motivo;
  EXPECT_EQ(c.id_Usuario, 12);
}

TEST_F(Conector, AUserThatIsNoIdentifierIsNone) {
  Demo(demo::Motor::Sqlite);
  for (const char* usuario : {"99999999999", "-99999999999", "1e300", "ana", ""}) {
    Escribir("ConfBase.cfg", "[Base]\r\nPersonal.sqlite\r\n[/Base]\r\n[Usuario]\r\n" + std::string(usuario) +
                                 "\r\n[/Usuario]");
    const app::Conexion c = app::AbrirReferencia(Ruta("ConfBase.cfg"), reloj_);
    ASSERT_NE(c.conexion, nullptr) << c.motivo;
    EXPECT_EQ(c.id_Usuario, 0) << usuario;
  }
}

TEST_F(Conector, TheNameOfConfBaseHasNoCase) {
  Demo(demo::Motor::Sqlite);
  Escribir("CONFBASE.CFG", "[Base]\r\nPersonal.sqlite\r\n[/Base]");
  EXPECT_NE(app::AbrirReferencia(Ruta("CONFBASE.CFG"), reloj_).conexion, nullptr);
}

TEST_F(Conector, SaysWhyItCannotOpen) {
  Escribir("vacia.cfg", "");
  Escribir("ConfBase.cfg", "[Motor]\r\nsqlite\r\n[/Motor]");
  Escribir("texto.txt", "esto no es una base");
  Escribir("Personal.mdb", std::string("\0\1\0\0Standard Jet DB\0", 20) + std::string(100, '\0'));
  const auto motivo = [&](const std::string& nombre) {
    const app::Conexion c = app::AbrirReferencia(Ruta(nombre), reloj_);
    EXPECT_EQ(c.conexion, nullptr);
    return c.motivo;
  };
  EXPECT_EQ(motivo("no_esta.db"), "El archivo '" + Ruta("no_esta.db") + "' no existe");
  EXPECT_EQ(motivo("texto.txt"), "'" + Ruta("texto.txt") + "' no es una base de datos conocida");
  EXPECT_EQ(motivo("ConfBase.cfg"),
            "'" + Ruta("ConfBase.cfg") + "' no dice qué base abrir (falta la clave Base)");
  // A header without a base behind it.
  EXPECT_NE(motivo("Personal.mdb"), "");
  Escribir("ConfBase.cfg", "[Motor]\r\nnube\r\n[/Motor]\r\n[Base]\r\nx\r\n[/Base]");
  EXPECT_EQ(motivo("ConfBase.cfg"), "'" + Ruta("ConfBase.cfg") + "' pide un motor desconocido: nube");
}

}  // namespace
