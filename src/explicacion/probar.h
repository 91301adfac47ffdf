// A formula or a filter tried on the lines of a file before it is used.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "importfile/import_grid.h"

namespace explicacion {

struct LineaProbada {
  std::size_t linea = 0;
  std::string antes;      // the quantity without the formula
  std::string expresion;  // what was evaluated: of the formula, or of the filter when there is none
  std::string despues;    // the quantity in the end
  bool pasa = true;
};
struct ErrorDePrueba {
  std::string texto;  // of the message box, in one line
  std::size_t lineas = 0;
  std::vector<std::size_t> primeras;
};
struct Prueba {
  importfile::FinDeCarga fin = importfile::FinDeCarga::Completa;
  std::size_t lineas = 0, probadas = 0, pasan = 0, sin_valor = 0;  // probadas: not malformed
  std::vector<LineaProbada> primeras;
  std::vector<ErrorDePrueba> errores;  // those of most lines first
};

// Loads the lines as an import would, with the formula and the filter of the entry's options, and keeps
// nothing. The entry's evaluator is copied; no box is shown. `cuantas`: of the first results, and of the
// lines named by error. A fault of the storage travels out as base::Error.
Prueba Probar(importfile::EntradaCarga entrada, std::size_t cuantas);

}  // namespace explicacion
