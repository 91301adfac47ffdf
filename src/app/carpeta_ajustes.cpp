#include "app/carpeta_ajustes.h"

#include "base/file.h"

namespace app {

std::string CarpetaDeAjustes() {
  const std::string propia = base::VariableEntorno("IMPORTDEMARCAS_CARPETA");
  if (!propia.empty()) return propia;
  const std::string programa = base::CarpetaDelPrograma();
  return base::CarpetaEscribible(programa) ? programa : base::CarpetaConfiguracionUsuario();
}

}  // namespace app
