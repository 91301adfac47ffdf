// The lines of a file that were not imported, as they stand in it, ready to be corrected and imported again.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "importfile/archivo_leido.h"
#include "informe/lineas.h"

namespace informe {

struct Rechazadas {
  // The mark of the file and its refused and malformed lines, in its order, byte by byte.
  std::string bytes;
  // One a line of `bytes`: "17: the reason", UTF-8, ended by CR LF. The number is that of the whole file.
  std::string motivos;
  std::size_t cuantas = 0;
  // Read by itself the text is the same as in the whole file. Not so where few lines of a CP1252 file happen
  // to be valid UTF-8.
  bool se_leen_igual = true;
};

Rechazadas ReunirRechazadas(const importfile::ArchivoLeido& archivo, const std::vector<Linea>& lineas);

}  // namespace informe
