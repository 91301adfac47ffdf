#include "app/carpeta_ajustes.h"

#include "base/file.h"

namespace app {

std::string CarpetaDeAjustes() {
  const std::string propia = base::EnvironmentValue("IMPORTDEMARCAS_CARPETA");
  if (!propia.empty()) return propia;
  const std::string programa = base::ProgramFolder();
  return base::IsWritableFolder(programa) ? programa : base::UserConfigFolder();
}

}  // namespace app
