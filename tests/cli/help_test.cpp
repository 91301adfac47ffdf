// The help texts: Spanish, and complete.
#include <gtest/gtest.h>

#include "cli/codigos.h"
#include "mesa.h"

namespace {

struct Ayuda {
  std::vector<std::string> argumentos;
  std::vector<std::string> dice;
};

const std::vector<std::string> kImportar = {
    "--base",   "--archivo", "--mes", "--liquidacion", "--cc",         "--ajustes", "--opcion", "CLAVE=VALOR",
    "--filtro", "--salida",  "--hoy", "AAAA-MM",       "--rechazadas", "--informe", "--cambios"};

const std::vector<Ayuda> kAyudas = {
    {{"--help"}, {"importar", "revisar", "formula", "consulta", "demo"}},
    {{"-h"}, {"importar", "revisar", "formula", "consulta", "demo"}},
    {{"importar", "--help"}, kImportar},
    {{"revisar", "-h"}, kImportar},
    {{"codigos", "--help"}, {"--base", "--archivo", "--mes", "--salida"}},
    {{"explicar", "--help"}, {"--base", "--archivo", "--mes", "--linea"}},
    {{"probar", "--help"}, {"--base", "--archivo", "--mes", "--formula", "--condicion", "--cuantas"}},
    {{"relaciones", "--help"}, {"exportar", "importar", "ARCHIVO", "--base", "--ajustes"}},
    {{"formula", "--help"}, {"EXPRESION", "--base", "--hoy"}},
    {{"consulta", "--help"}, {"SQL", "--base", "--escribir", "--hoy"}},
    {{"demo", "--help"}, {"CARPETA", "--mes", "--hoy"}},
};

TEST(Help, NamesEveryArgumentAndExitCode) {
  const prueba::Mesa mesa;
  for (const Ayuda& ayuda : kAyudas) {
    const prueba::Salida s = mesa.Correr(ayuda.argumentos);
    SCOPED_TRACE(ayuda.argumentos.front());
    EXPECT_EQ(s.codigo, cli::kTodo);
    EXPECT_EQ(s.err, "");
    for (const std::string& texto : ayuda.dice) EXPECT_NE(s.out.find(texto), std::string::npos) << texto;
    for (const char* codigo :
         {"\n  0  ", "\n  1  ", "\n  2  ", "\n  64 ", "\n  65 ", "\n  66 ", "\n  69 ", "\n  74 "})
      EXPECT_NE(s.out.find(codigo), std::string::npos) << codigo;
  }
}

// The words of the library's own help, whole.
TEST(Help, HasNoEnglish) {
  const prueba::Mesa mesa;
  for (const Ayuda& ayuda : kAyudas) {
    std::string texto = mesa.Correr(ayuda.argumentos).out;
    for (char& c : texto)
      if (std::string_view("[](),.:;").find(c) != std::string_view::npos) c = ' ';
    std::istringstream palabras(texto);
    for (std::string palabra; palabras >> palabra;)
      for (const char* inglesa :
           {"Usage", "OPTIONS", "Options", "Positionals", "SUBCOMMAND", "SUBCOMMANDS", "Subcommands",
            "REQUIRED", "TEXT", "INT", "FLOAT", "Print", "help", "message", "Needs", "Excludes", "Env"})
        EXPECT_NE(palabra, inglesa) << ayuda.argumentos.front();
  }
}

// Help asked for among wrong arguments is help all the same.
TEST(Help, GoesBeforeWhatIsMissing) {
  const prueba::Mesa mesa;
  EXPECT_EQ(mesa.Correr({"importar", "--base", "x", "--help"}).codigo, cli::kTodo);
}

}  // namespace
