// The ways of opening a base, apart from the finding out which.
#pragma once

#include <string>

#include "app/conector.h"

namespace app {

Conexion Fallo(std::string motivo);

struct OrigenOdbc {
  std::string base;        // a connection string, the name of a data source, or a file
  std::string en_disco;    // the same as a path, in case there is such a file
  std::string contrasena;  // of the database; may be empty
  std::string driver;      // to open a file with; the Access driver when empty
};
Conexion AbrirOdbc(const OrigenOdbc& origen);

}  // namespace app
