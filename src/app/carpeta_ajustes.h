// Where the program keeps ImportDeMarcas.ini.
#pragma once

#include <string>

namespace app {

// IMPORTDEMARCAS_CARPETA, else the executable's folder when it can be written, else (an installed program)
// the user's configuration folder.
std::string CarpetaDeAjustes();

}  // namespace app
