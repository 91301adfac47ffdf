#include "app/conector.h"

#include "app/banco.h"

namespace {

class Conector : public prueba::Banco {};

TEST_F(Conector, OpensAnSqliteFileByItsHeader) {
  Demo();
  const app::Conexion c = app::AbrirReferencia(Ruta("Personal.sqlite"), reloj_);
  ASSERT_NE(c.conexion, nullptr) << c.motivo;
  EXPECT_TRUE(c.conexion->Abierta());
}

TEST_F(Conector, ConfBaseNamesTheFileFromItsOwnFolder) {
  Demo();
  Escribir("ConfBase.cfg",
           "[Motor]\r\nsqlite\r\n[/Motor]\r\n[Base]\r\nPersonal.sqlite\r\n[/Base]\r\n[Usuario]\r\n12\r\n[/"
           "Usuario]");
  const app::Conexion c = app::AbrirReferencia(Ruta("ConfBase.cfg"), reloj_);
  ASSERT_NE(c.conexion, nullptr) << c.motivo;
  EXPECT_EQ(c.id_Usuario, 12);
}

// An editor that ends lines with LF alone is no reason to refuse a file of three lines.
TEST_F(Conector, ConfBaseMayEndItsLinesWithLf) {
  Demo();
  Escribir("ConfBase.cfg",
           "[Motor]\nsqlite\n[/Motor]\n[Base]\nPersonal.sqlite\n[/Base]\n[Usuario]\n12\n[/Usuario]\n");
  const app::Conexion c = app::AbrirReferencia(Ruta("ConfBase.cfg"), reloj_);
  ASSERT_NE(c.conexion, nullptr) << c.motivo;
  EXPECT_EQ(c.id_Usuario, 12);
}

TEST_F(Conector, AUserThatIsNoIdentifierIsNone) {
  Demo();
  for (const char* usuario : {"99999999999", "-99999999999", "1e300", "ana", ""}) {
    Escribir("ConfBase.cfg", "[Base]\r\nPersonal.sqlite\r\n[/Base]\r\n[Usuario]\r\n" + std::string(usuario) +
                                 "\r\n[/Usuario]");
    const app::Conexion c = app::AbrirReferencia(Ruta("ConfBase.cfg"), reloj_);
    ASSERT_NE(c.conexion, nullptr) << c.motivo;
    EXPECT_EQ(c.id_Usuario, 0) << usuario;
  }
}

TEST_F(Conector, TheNameOfConfBaseHasNoCase) {
  Demo();
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
  EXPECT_EQ(motivo("Personal.mdb"),
            "'" + Ruta("Personal.mdb") +
                "' es una base de Access: esta versión abre solamente bases del motor propio (sqlite)");
  Escribir("ConfBase.cfg", "[Motor]\r\nnube\r\n[/Motor]\r\n[Base]\r\nx\r\n[/Base]");
  EXPECT_EQ(motivo("ConfBase.cfg"), "'" + Ruta("ConfBase.cfg") + "' pide un motor desconocido: nube");
}

}  // namespace
