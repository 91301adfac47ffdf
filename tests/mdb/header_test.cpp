#include "mdb/pages/header.h"

#include <gtest/gtest.h>

#include "mdb/samples.h"

namespace {

TEST(Cabecera, TellsVersionSortOrderAndPassword) {
  struct Caso {
    const char* archivo;
    mdb::Version version;
    int orden;
    const char* contrasena;
    std::uint32_t clave;
  };
  const Caso casos[] = {{"queries97.mdb", mdb::Version::Jet3, 1033, "", 0},
                        {"queries.mdb", mdb::Version::Jet4, 1033, "", 0},
                        {"queries.accdb", mdb::Version::Ace, 1033, "", 0},
                        {"texts_3082.mdb", mdb::Version::Jet4, 3082, "", 0},
                        {"texts_1034.mdb", mdb::Version::Jet4, 1034, "", 0},
                        {"password.mdb", mdb::Version::Jet4, 1033, "contraseña", 0},
                        {"password97.mdb", mdb::Version::Jet3, 1033, "contraseña", 0},
                        {"encrypted.mdb", mdb::Version::Jet4, 1033, "", 0xA1B2C3D4},
                        {"encrypted97.mdb", mdb::Version::Jet3, 1033, "", 0xA1B2C3D4}};
  for (const auto& c : casos) {
    SCOPED_TRACE(c.archivo);
    const auto paginas = mdb_test::LoadSample(c.archivo);
    EXPECT_EQ(paginas->Cab().version, c.version);
    EXPECT_EQ(paginas->Cab().orden, c.orden);
    EXPECT_EQ(paginas->Cab().contrasena, c.contrasena);
    EXPECT_EQ(paginas->Cab().clave, c.clave);
    EXPECT_EQ(paginas->Cab().objetos, 2U);
    EXPECT_EQ(paginas->Cab().relaciones, 5U);
    EXPECT_EQ(paginas->Cab().pagina_de_codigos, 1252);
  }
}

TEST(Cabecera, RefusesOtherFiles) {
  EXPECT_THROW(mdb::LeerCabecera(mdb::Bytes(10)), base::Error);
  mdb::Bytes bytes(4096);
  EXPECT_THROW(mdb::LeerCabecera(bytes), base::Error);
  const std::string_view nombre{"Standard Jet DB\0", 16};
  std::copy(nombre.begin(), nombre.end(), bytes.begin() + 4);
  bytes[0x14] = 1;
  EXPECT_NO_THROW(mdb::LeerCabecera(bytes));
  bytes[0x14] = 2;  // a .accdb version under the other name
  EXPECT_THROW(mdb::LeerCabecera(bytes), base::Error);
  bytes[0x14] = 1;
  bytes.resize(2000);
  EXPECT_THROW(mdb::LeerCabecera(bytes), base::Error);
}

TEST(Cabecera, EncryptingTwiceGivesThePageBack) {
  mdb::Cabecera c;
  c.clave = 0x12345678;
  mdb::Bytes pagina(4096, 7), otra = pagina;
  mdb::CifrarPagina(c, 3, pagina);
  EXPECT_NE(pagina, otra);
  mdb::CifrarPagina(c, 4, otra);
  EXPECT_NE(pagina, otra);
  mdb::CifrarPagina(c, 3, pagina);
  EXPECT_EQ(pagina, mdb::Bytes(4096, 7));
  mdb::CifrarPagina(c, 0, pagina);
  EXPECT_EQ(pagina, mdb::Bytes(4096, 7));
}

}  // namespace
