// What the first lines of a file look like: how they are cut, what names the person, and what the codes are.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "importfile/causas.h"
#include "importfile/import_grid.h"

namespace importfile {

struct PropuestaDeFormato {
  bool hay = false;
  std::string motivo;           // why there is none, in Spanish; "" when there is
  settings::Settings opciones;  // the current ones with what is proposed put into them
  // What is proposed and by what it is held up, a sentence each, without a final point.
  std::vector<std::string> razones;
  std::vector<std::vector<std::string>> cortadas;  // the first lines, cut so: at most five fields each
  bool primera_es_titulo = false;                  // its quantity is no number, and all the others are
};

// Looks at the first lines of the bytes (the caller may hand over the beginning of the file alone) and at
// what the base holds: no I/O, the same answer every time. A proposal cuts nine lines of ten into a key, a
// code and a number. The kind of key is the one that most of the keys match, the current one where none does.
// Codes are numeric when all are; relations by code are proposed where the current relations know none of the
// codes and the concepts' own codes do.
PropuestaDeFormato ProponerFormato(std::string_view bytes, const EntradaCarga& actual);

// Whether the current options make something of the first lines: half of them are cut into a key, a code and
// a number, some key names a contract, and the filter keeps some line.
bool ElFormatoSirve(std::string_view bytes, const EntradaCarga& actual);

}  // namespace importfile
