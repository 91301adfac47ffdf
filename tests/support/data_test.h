// Runs one file of cases:
//
//   # comment
//   verb option key=value …
//   input lines
//   ----
//   expected lines
//   <blank line>
//
// Blocks are parted by a blank line; input or expected text holding a blank line writes it as "\". A "#"
// starts a comment only between blocks. A verb turns a block into a text that is compared with what is
// expected.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace support {

struct Bloque {
  std::string verbo;
  std::vector<std::string> opciones;  // the words after the verb, in order
  std::string entrada;                // lines joined with LF, without a last LF
  int linea = 0;                      // of the verb, from 1

  bool Tiene(const std::string& palabra) const;
  // The value of an option "clave=valor", or `si_falta`.
  std::string Opcion(const std::string& clave, const std::string& si_falta = {}) const;
};

using Verbo = std::function<std::string(const Bloque&)>;
using Verbos = std::map<std::string, Verbo>;

// main() of a data test program: `preparar` makes the verbs anew for each file, so that a file starts fresh.
// Exit 1 when a block failed, 2 when no block ran. UPDATE_EXPECTED=1 rewrites the expected blocks instead.
int EjecutarArchivos(int argc, char** argv, const std::function<Verbos()>& preparar);

}  // namespace support
