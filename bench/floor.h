// The least that any program must do for the same result: read the file, split it, find each line's contract
// and concept, and insert the final rows, with nothing but SQLite and prepared statements.
#pragma once

#include <cstddef>
#include <string>

namespace bench {

struct Suelo {
  double personas = 0;  // seconds: the contracts read and hashed
  double carga = 0;     // the file read, split and matched
  double filas = 0;     // the final rows inserted
  double commit = 0;
  double Total() const { return personas + carga + filas + commit; }
  std::size_t lineas = 0, halladas = 0, insertadas = 0;
};

// `base_final`: the base after the import. It is changed: the month's rows are taken out, which is not timed,
// and put back, which is.
Suelo MedirSuelo(const std::string& base_final, const std::string& archivo, double mes);

}  // namespace bench
