// What cannot be read is told from what is not there, and a write that fails leaves the old file.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#ifndef _WIN32
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#endif

#include "base/text.h"
#include "settings/config_file.h"
#include "support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using settings::EstadoAjustes;

class Archivo : public ::testing::Test {
 protected:
  std::string Ruta() const { return settings::RutaDeAjustes(carpeta_.Folder()); }
  void Escribir(std::string_view bytes) const { carpeta_.Write("ImportDeMarcas.ini", bytes); }
  std::string Bytes() const { return carpeta_.Read("ImportDeMarcas.ini"); }
  // Files in the folder: nothing may be left beside the settings.
  std::ptrdiff_t Cuantos() const {
    return std::distance(fs::directory_iterator(carpeta_.Folder()), fs::directory_iterator());
  }
  // Not read, not replaced, and the reason names the file.
  void EsperarIlegible(const std::string& porque) const {
    const settings::Ajustes ajustes = settings::LeerAjustes(Ruta());
    EXPECT_EQ(ajustes.estado, EstadoAjustes::Ilegible);
    EXPECT_EQ(ajustes.texto, "");
    EXPECT_NE(ajustes.motivo.find(porque), std::string::npos) << ajustes.motivo;
    EXPECT_NE(ajustes.motivo.find(" (" + Ruta() + ")"), std::string::npos) << ajustes.motivo;
    EXPECT_EQ(settings::LeerConfig(Ruta(), "*"), "");
    EXPECT_FALSE(settings::GrabarConfig(Ruta(), "Configura", "3"));
    EXPECT_FALSE(settings::GuardarAjustes(Ruta(), "nuevo"));
  }

  support::TempFolder carpeta_;
};

TEST_F(Archivo, NoneIsNoFailureAndReadingMakesNone) {
  const settings::Ajustes ajustes = settings::LeerAjustes(Ruta());
  EXPECT_EQ(ajustes.estado, EstadoAjustes::Falta);
  EXPECT_EQ(ajustes.motivo, "");
  EXPECT_EQ(ajustes.texto, "");
  EXPECT_EQ(Cuantos(), 0);
  EXPECT_EQ(settings::LeerAjustes(carpeta_.Path("no_hay/ImportDeMarcas.ini")).estado, EstadoAjustes::Falta);
}

TEST_F(Archivo, OneIsReadAsTextWithCrLf) {
  Escribir("");
  EXPECT_EQ(settings::LeerAjustes(Ruta()).estado, EstadoAjustes::Leido);
  Escribir("[K]\na\xF1o\r[/K]");
  const settings::Ajustes ajustes = settings::LeerAjustes(Ruta());
  EXPECT_EQ(ajustes.estado, EstadoAjustes::Leido);
  EXPECT_EQ(ajustes.texto, "[K]\r\naño\r\n[/K]");
  EXPECT_EQ(ajustes.motivo, "");
  ASSERT_TRUE(settings::GuardarAjustes(Ruta(), "[K]\naño\n[/K]"));
  EXPECT_EQ(Bytes(), "[K]\r\na\xF1o\r\n[/K]");
  EXPECT_EQ(Cuantos(), 1);
}

TEST(ConCrLf, EveryLineEndIsCrLf) {
  EXPECT_EQ(settings::ConCrLf(""), "");
  EXPECT_EQ(settings::ConCrLf("\r"), "\r\n");
  EXPECT_EQ(settings::ConCrLf("a\nb\r"), "a\r\nb\r\n");
  EXPECT_EQ(settings::ConCrLf("\r\n\r\r\n\n"), "\r\n\r\n\r\n\r\n");
}

// Thousands of relations: more than is read at once.
TEST_F(Archivo, ALongOneIsReadWhole) {
  std::string bytes;
  for (int i = 0; bytes.size() < 300'000; ++i) bytes.append("[K").append(std::to_string(i)).append("]\r\n");
  Escribir(bytes);
  EXPECT_EQ(settings::LeerAjustes(Ruta()).texto, bytes);
}

TEST(Keys, ATagOfAnyOfThemIsNamed) {
  std::vector<std::string> claves{"Conceptos", "TomaConceptosDeBD"};
  for (const auto clave : settings::ClavesDeOpciones()) claves.emplace_back(clave);
  for (const std::string& clave : claves) {
    EXPECT_TRUE(settings::NombraUnaClave("[" + clave + "]"));
    EXPECT_TRUE(settings::NombraUnaClave("a [/" + base::LowerCase(clave) + "] b")) << clave;
  }
  for (const char* texto : {"", "Separador", "[Separador", "Separador]", "[Otra]", "[x]", "[]"})
    EXPECT_FALSE(settings::NombraUnaClave(texto)) << texto;
}

// The two that are texts and no options.
TEST(Keys, WhatIsNoOptionHasNoValue) {
  for (const char* clave : {"Conceptos", "TomaConceptosDeBD", "Nada", ""}) {
    settings::Settings opciones;
    EXPECT_FALSE(settings::AplicarValor(opciones, clave, "SI")) << clave;
    EXPECT_EQ(settings::ValorDeClave(opciones, clave), "") << clave;
  }
}

TEST_F(Archivo, AFolderInItsPlaceIsNoEmptyFile) {
  fs::create_directory(Ruta());
#ifdef _WIN32
  EsperarIlegible("");
#else
  EsperarIlegible("no es un archivo");
#endif
  EXPECT_TRUE(fs::is_directory(Ruta()));
}

TEST_F(Archivo, AWriteThatCannotBeginLeavesTheOldOne) {
#ifndef _WIN32
  Escribir("[K]\r\n1\r\n[/K]");
  // What is written goes beside the file first; a folder of that name is in the way.
  const fs::path estorbo = Ruta() + "." + std::to_string(getpid()) + ".tmp";
  fs::create_directories(estorbo / "algo");
  EXPECT_FALSE(settings::GrabarConfig(Ruta(), "K", "2"));
  EXPECT_FALSE(settings::GuardarAjustes(Ruta(), "nuevo"));
  EXPECT_EQ(Bytes(), "[K]\r\n1\r\n[/K]");
  fs::remove_all(estorbo);
  EXPECT_TRUE(settings::GrabarConfig(Ruta(), "K", "2"));
  EXPECT_EQ(Bytes(), "[K]\r\n2\r\n[/K]");
#endif
}

#ifdef __linux__

TEST_F(Archivo, AnErrorOfTheDiskIsTold) {
  fs::create_symlink("/proc/self/mem", Ruta());
  EsperarIlegible("No se puede leer ImportDeMarcas.ini");
}

// A folder that everybody may write in would let the file be replaced. Root may read everything: somebody
// else asks.
TEST_F(Archivo, WithoutPermissionItIsNeitherReadNorReplaced) {
  Escribir("[K]\r\n1\r\n[/K]");
  fs::permissions(carpeta_.Folder(), fs::perms::all);
  fs::permissions(Ruta(), fs::perms::none);
  constexpr uid_t kNadie = 65534;
  const uid_t yo = geteuid();
  ASSERT_EQ(seteuid(yo == 0 ? kNadie : yo), 0);
  EsperarIlegible("no hay permiso");
  ASSERT_EQ(seteuid(yo), 0);
  fs::permissions(Ruta(), fs::perms::owner_all);
  EXPECT_EQ(Bytes(), "[K]\r\n1\r\n[/K]");
  EXPECT_EQ(Cuantos(), 1);
}

TEST_F(Archivo, ALinkThatLeadsRoundIsTold) {
  fs::create_symlink(Ruta() + ".otro", Ruta());
  fs::create_symlink(Ruta(), Ruta() + ".otro");
  EsperarIlegible("ImportDeMarcas.ini");
  EXPECT_TRUE(fs::is_symlink(Ruta()));
}

// No file may grow past a few bytes: the write fails in its middle.
TEST_F(Archivo, AWriteThatFailsInItsMiddleLeavesTheOldOne) {
  Escribir("[K]\r\n1\r\n[/K]");
  rlimit antes{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &antes), 0);
  const auto senal = std::signal(SIGXFSZ, SIG_IGN);
  rlimit corto = antes;
  corto.rlim_cur = 5;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &corto), 0);
  const bool escrito = settings::GrabarConfig(Ruta(), "K", "2");
  setrlimit(RLIMIT_FSIZE, &antes);
  std::signal(SIGXFSZ, senal);
  EXPECT_FALSE(escrito);
  EXPECT_EQ(Bytes(), "[K]\r\n1\r\n[/K]");
  EXPECT_EQ(Cuantos(), 1);
}

TEST_F(Archivo, WritingKeepsThePermissionsAndTheLink) {
  const std::string real = carpeta_.Write("de_verdad.ini", "[K]\r\n1\r\n[/K]");
  const fs::perms permisos = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
  fs::permissions(real, permisos);
  fs::create_symlink(real, Ruta());
  ASSERT_TRUE(settings::GrabarConfig(Ruta(), "K", "2"));
  EXPECT_TRUE(fs::is_symlink(Ruta()));
  EXPECT_EQ(carpeta_.Read("de_verdad.ini"), "[K]\r\n2\r\n[/K]");
  EXPECT_EQ(fs::status(real).permissions(), permisos);
}

#endif

}  // namespace
