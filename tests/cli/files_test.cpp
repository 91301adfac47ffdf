// Files that fail, bases that are held, and what a run leaves of the files it reads.
#include <gtest/gtest.h>

#include <streambuf>

#include "base/text.h"
#include "cli/codigos.h"
#include "mesa.h"

namespace {

// Where nothing can be written: a full disk, a closed pipe.
class Lleno final : public std::streambuf {
 protected:
  int_type overflow(int_type) override { return traits_type::eof(); }
  std::streamsize xsputn(const char*, std::streamsize) override { return 0; }
};

class Archivos : public ::testing::Test {
 protected:
  Archivos() { EXPECT_EQ(mesa_.Demo().codigo, cli::kTodo); }

  prueba::Salida Importar(const std::string& archivo, std::vector<std::string> mas = {},
                          const std::string& verbo = "importar") const {
    std::vector<std::string> argumentos = {
        verbo, "--base", mesa_.Ruta("ConfBase.cfg"), "--archivo", archivo, "--mes", "2026-10"};
    argumentos.insert(argumentos.end(), mas.begin(), mas.end());
    return mesa_.Correr(argumentos);
  }

  int CorrerSinSalida(const std::vector<std::string>& argumentos) const {
    Lleno lleno;
    std::istringstream in("1\n2\n");
    std::ostream out(&lleno);
    std::ostringstream err;
    return cli::Ejecutar(argumentos, "importdemarcas-cli", mesa_.Carpeta(), {in, out, err});
  }

  prueba::Mesa mesa_;
};

TEST_F(Archivos, AnOutputThatFails) {
  const std::string base = mesa_.Ruta("ConfBase.cfg");
  EXPECT_EQ(CorrerSinSalida({"formula", "1"}), cli::kEntradaSalida);
  EXPECT_EQ(CorrerSinSalida({"formula", "-"}), cli::kEntradaSalida);
  EXPECT_EQ(CorrerSinSalida({"consulta", "--base", base, "Select 1"}), cli::kEntradaSalida);
  EXPECT_EQ(CorrerSinSalida({"demo", mesa_.Ruta("otra")}), cli::kEntradaSalida);
  for (const char* salida : {"tabla", "csv"})
    EXPECT_EQ(CorrerSinSalida({"revisar", "--base", base, "--archivo", mesa_.Ruta("horas.txt"), "--mes",
                               "2026-10", "--salida", salida}),
              cli::kEntradaSalida);
}

// A file that is there and cannot be read: this one cannot, whoever asks.
TEST_F(Archivos, WhatCannotBeReadIsNotTakenForEmpty) {
  const std::string ilegible = "/proc/self/mem";
  if (!base::FileExists(ilegible) || base::ReadWholeFile(ilegible)) GTEST_SKIP() << "no unreadable file here";
  const std::string antes = mesa_.Filas();
  prueba::Salida s = Importar(ilegible);
  EXPECT_EQ(s.codigo, cli::kEntradaSalida);
  EXPECT_EQ(s.err, "El Archivo '/proc/self/mem' no se puede leer\n");
  s = Importar(mesa_.Ruta("horas.txt"), {"--ajustes", ilegible});
  EXPECT_EQ(s.codigo, cli::kEntradaSalida);
  EXPECT_TRUE(base::StartsWith(s.err, "No se pueden leer los ajustes. ")) << s.err;
  EXPECT_TRUE(base::Contains(s.err, ilegible)) << s.err;
  EXPECT_EQ(s.out, "");
  EXPECT_EQ(mesa_.Filas(), antes);
}

// Another program is writing: without a transaction of its own a run would leave the month parameter behind.
TEST_F(Archivos, ABaseThatIsHeldIsNotOpened) {
  const std::string antes = mesa_.Filas();
  const auto otro = mesa_.Abrir();
  otro->BeginTrans();
  const prueba::Salida s = Importar(mesa_.Ruta("horas.txt"), {}, "importar");
  otro->RollbackTrans();
  otro->Close();
  EXPECT_EQ(s.codigo, cli::kSinBase);
  EXPECT_EQ(s.out, "");
  EXPECT_EQ(s.err, "Error al abrir la base ubicada en " + mesa_.Ruta("ConfBase.cfg") +
                       "\nLa base se puede leer, no escribir. Otro programa tiene abierta la base.\n");
  EXPECT_EQ(mesa_.Filas(), antes);
}

TEST_F(Archivos, TheFilesReadAreNeverWritten) {
  const std::vector<std::string> nombres = {"ImportDeMarcas.ini", "ConfBase.cfg", "horas.txt"};
  std::vector<std::string> antes;
  for (const auto& nombre : nombres) antes.push_back(*base::ReadWholeFile(mesa_.Ruta(nombre)));
  EXPECT_EQ(Importar(mesa_.Ruta("horas.txt"), {"--opcion", "TotalizarConc=NO"}).codigo, cli::kAlgunaNo);
  for (std::size_t i = 0; i < nombres.size(); ++i)
    EXPECT_EQ(*base::ReadWholeFile(mesa_.Ruta(nombres[i])), antes[i]) << nombres[i];
}

// Without --ajustes the file of the program's folder counts; with no file there, the defaults, and none is
// made.
TEST_F(Archivos, TheSettingsOfTheProgramFolder) {
  const std::string horas = mesa_.Ruta("horas.txt"), referencia = mesa_.Ruta("ConfBase.cfg");
  const std::string vacia = mesa_.Ruta("sin ajustes");
  ASSERT_TRUE(base::CreateFolder(vacia));
  std::istringstream in;
  std::ostringstream out, err;
  const std::vector<std::string> argumentos = {"revisar",     "--base",   referencia,   "--archivo",
                                               horas,         "--mes",    "2026-10",    "--opcion",
                                               "Separador=;", "--opcion", "Configura=2"};
  // The codes of a new installation are numbers, and the file's are not: no relation has any of its lines.
  EXPECT_EQ(cli::Ejecutar(argumentos, "x", vacia, {in, out, err}), cli::kNada);
  EXPECT_NE(out.str().find("filtradas: 54 "), std::string::npos) << out.str();
  EXPECT_FALSE(base::FileExists(base::JoinPath(vacia, "ImportDeMarcas.ini")));
  EXPECT_EQ(
      Importar(horas, {"--salida", "csv"}, "revisar").out,
      Importar(horas, {"--salida", "csv", "--ajustes", mesa_.Ruta("ImportDeMarcas.ini")}, "revisar").out);
}

// A sound base, before and after an import; one in which a page of rows has lost its first byte.
TEST_F(Archivos, TheCheckOfABase) {
  const auto verificar = [&] { return mesa_.Correr({"verificar", mesa_.Base()}); };
  prueba::Salida s = verificar();
  EXPECT_EQ(s.codigo, cli::kTodo);
  EXPECT_NE(s.out.find("Tablas: 24. Filas: 649. Índices: 35 (998 entradas)."), std::string::npos) << s.out;
  EXPECT_TRUE(base::EndsWith(s.out, "\nSin errores.\n"));
  EXPECT_EQ(Importar(mesa_.Ruta("horas.txt")).codigo, cli::kAlgunaNo);
  s = verificar();
  EXPECT_EQ(s.codigo, cli::kTodo);
  EXPECT_NE(s.out.find("Filas: 710."), std::string::npos) << s.out;

  std::string bytes = *base::ReadWholeFile(mesa_.Base());
  constexpr std::size_t kPagina = 4096;
  std::size_t pagina = 20;  // behind the system's
  while (bytes[pagina * kPagina] != 1) ++pagina;
  bytes[pagina * kPagina] = 9;
  ASSERT_TRUE(base::WriteWholeFile(mesa_.Base(), bytes));
  s = verificar();
  EXPECT_EQ(s.codigo, cli::kAlgunaNo);
  EXPECT_NE(s.out.find("Error (página " + std::to_string(pagina) + "): "), std::string::npos) << s.out;
  EXPECT_NE(s.out.find("\nErrores: "), std::string::npos) << s.out;
}

}  // namespace
