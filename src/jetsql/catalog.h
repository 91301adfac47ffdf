// What the translator asks of a database: its tables with typed columns, and its saved queries.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/valor.h"

namespace jetsql {

struct ColumnaTabla {
  std::string nombre;  // as it was created
  base::Tipo tipo = base::Tipo::Nulo;
};

struct TablaInfo {
  std::string nombre;  // as it was created
  std::vector<ColumnaTabla> columnas;
};

class Catalogo {
 public:
  virtual ~Catalogo() = default;
  // By name whatever its case; null when there is none. Asking may read the database. Pointers stay valid
  // until the next definition statement.
  virtual const TablaInfo* Tabla(std::string_view nombre) = 0;
  // The dialect text of a saved query, or null.
  virtual const std::string* Consulta(std::string_view nombre) = 0;
};

}  // namespace jetsql
