#include "base/file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

class Archivos : public testing::Test {
 protected:
  std::string Ruta(const std::string& nombre) const { return base::UnirRuta(carpeta_.string(), nombre); }
  std::size_t Cuantos() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(carpeta_), fs::directory_iterator()));
  }

  support::CarpetaTemporal temporal_;
  fs::path carpeta_ = temporal_.Carpeta();
};

TEST_F(Archivos, BytesComeBackAsTheyWereWritten) {
  std::string bytes("a\r\nb\n\0\xFF\x1A", 8);
  bytes += std::string(200000, 'x');
  ASSERT_TRUE(base::EscribirArchivo(Ruta("año.ini"), bytes));
  EXPECT_EQ(base::LeerArchivo(Ruta("año.ini")), bytes);
  ASSERT_TRUE(base::EscribirArchivo(Ruta("año.ini"), ""));
  EXPECT_EQ(base::LeerArchivo(Ruta("año.ini")), "");
  EXPECT_EQ(Cuantos(), 1U);  // nothing is left beside it
}

TEST_F(Archivos, WhatIsNotThereIsNotRead) {
  EXPECT_EQ(base::LeerArchivo(Ruta("falta")), std::nullopt);
  EXPECT_EQ(base::LeerArchivo(carpeta_.string()), std::nullopt);
  EXPECT_EQ(base::LeerArchivo(""), std::nullopt);
  EXPECT_FALSE(base::ExisteArchivo(Ruta("falta")));
  EXPECT_FALSE(base::ExisteArchivo(carpeta_.string()));
}

TEST_F(Archivos, AFailedWriteLeavesTheOldFile) {
  EXPECT_FALSE(base::EscribirArchivo(Ruta("no/existe.ini"), "x"));
  // A folder of that name cannot be replaced.
  fs::create_directories(carpeta_ / "ocupado" / "dentro");
  EXPECT_FALSE(base::EscribirArchivo(Ruta("ocupado"), "x"));
  EXPECT_EQ(Cuantos(), 1U);
}

TEST_F(Archivos, AWriteReplacesTheFileAndNotItsContents) {
  ASSERT_TRUE(base::EscribirArchivo(Ruta("a.ini"), "viejo"));
  std::ifstream abierto(carpeta_ / "a.ini", std::ios::binary);
  ASSERT_TRUE(base::EscribirArchivo(Ruta("a.ini"), "nuevo texto"));
  // Who had it open still reads the old one, whole.
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(abierto), {}), "viejo");
  EXPECT_EQ(base::LeerArchivo(Ruta("a.ini")), "nuevo texto");
}

TEST_F(Archivos, RightsAndLinksAreKept) {
  ASSERT_TRUE(base::EscribirArchivo(Ruta("real.ini"), "viejo"));
  const auto derechos = fs::perms::owner_read | fs::perms::owner_write;
  fs::permissions(carpeta_ / "real.ini", derechos);
  fs::create_symlink("real.ini", carpeta_ / "enlace.ini");
  ASSERT_TRUE(base::EscribirArchivo(Ruta("enlace.ini"), "nuevo"));
  EXPECT_TRUE(fs::is_symlink(carpeta_ / "enlace.ini"));
  EXPECT_EQ(base::LeerArchivo(Ruta("real.ini")), "nuevo");
  EXPECT_EQ(fs::status(carpeta_ / "real.ini").permissions(), derechos);
}

TEST_F(Archivos, CreatingNeverTouchesWhatExists) {
  EXPECT_TRUE(base::CrearSiFalta(Ruta("a.ini")));
  EXPECT_EQ(base::LeerArchivo(Ruta("a.ini")), "");
  ASSERT_TRUE(base::EscribirArchivo(Ruta("a.ini"), "x"));
  EXPECT_TRUE(base::CrearSiFalta(Ruta("a.ini")));
  EXPECT_EQ(base::LeerArchivo(Ruta("a.ini")), "x");
  EXPECT_FALSE(base::CrearSiFalta(Ruta("no/existe.ini")));
  EXPECT_FALSE(base::CrearSiFalta(carpeta_.string()));
}

TEST_F(Archivos, Folders) {
  EXPECT_TRUE(base::CrearCarpeta(Ruta("una/dos")));
  EXPECT_TRUE(base::CrearCarpeta(Ruta("una/dos")));
  EXPECT_TRUE(base::CarpetaEscribible(Ruta("una/dos")));
  EXPECT_TRUE(fs::is_empty(carpeta_ / "una" / "dos"));  // the trial leaves nothing
  EXPECT_FALSE(base::CarpetaEscribible(Ruta("tres")));
  ASSERT_TRUE(base::EscribirArchivo(Ruta("archivo"), ""));
  EXPECT_FALSE(base::CrearCarpeta(Ruta("archivo")));
  EXPECT_FALSE(base::CarpetaEscribible(Ruta("archivo")));
}

TEST(Rutas, Parts) {
  EXPECT_EQ(base::NombreDe("/una/carpeta/año.mdb"), "año.mdb");
  EXPECT_EQ(base::CarpetaDe("/una/carpeta/año.mdb"), "/una/carpeta");
  EXPECT_EQ(base::CarpetaDe("solo.txt"), "");
  EXPECT_EQ(base::UnirRuta("", "solo.txt"), "solo.txt");
  EXPECT_EQ(base::NombreDe(base::UnirRuta("/una", "dos")), "dos");
}

TEST(Rutas, TheProgramsOwnFolderHoldsIt) {
  const std::string carpeta = base::CarpetaDelPrograma();
  ASSERT_FALSE(carpeta.empty());
  EXPECT_TRUE(fs::is_directory(carpeta));
}

TEST(Rutas, Environment) {
  EXPECT_EQ(base::VariableEntorno("IDM_NO_SUCH_VARIABLE_AT_ALL"), "");
  EXPECT_FALSE(base::VariableEntorno("PATH").empty());
}

}  // namespace
