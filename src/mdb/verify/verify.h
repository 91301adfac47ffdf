// A check of a whole file: everything that a reader, or Access, may trip over.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mdb/pages/pages.h"

namespace mdb {

struct Hallazgo {
  enum class Grado { Error, Nota };  // a note is what files of Access itself show
  Grado grado = Grado::Error;
  NumPagina pagina = 0;  // 0: none
  std::string texto;     // Spanish, for an operator: what, where
};

struct Informe {
  std::vector<Hallazgo> hallazgos;
  std::uint64_t tablas = 0, filas = 0, indices = 0, entradas = 0, valores_largos = 0, paginas = 0, libres = 0;
  bool Sano() const;  // no error
};

// Never throws for what the file holds: damage becomes findings. `tope` ends the list.
Informe Verificar(Paginas& paginas, std::size_t tope = 200);

}  // namespace mdb
