// The command line of the program: verbs, options and their help, in Spanish.
#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace cli {

struct Flujos {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
};

// Runs one command (arguments without the program's name, UTF-8) and returns its exit code. `carpeta` is
// where ImportDeMarcas.ini is looked for when no --ajustes names it; `programa` is how the program was
// called.
int Ejecutar(const std::vector<std::string>& argumentos, const std::string& programa,
             const std::string& carpeta, Flujos flujos);

}  // namespace cli
