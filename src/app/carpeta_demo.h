// A folder with a demo base and its files.
#pragma once

#include <string>

#include "base/date.h"
#include "demo/demo_base.h"
#include "ports/clock.h"

namespace app {

struct CarpetaDemo {
  std::string referencia;  // path of ConfBase.cfg
  std::string archivo;     // path of the delimited file of hours
  std::string ajustes;     // path of ImportDeMarcas.ini
};

// Makes the folder (if missing), the base and its files for the month. Throws base::Error when the folder
// already holds a base, which is never overwritten, or when something cannot be written.
CarpetaDemo CrearCarpetaDemo(const std::string& carpeta, base::Date mes, const ports::Clock& reloj,
                             demo::Motor motor = demo::Motor::Mdb);

}  // namespace app
