#include "app/verificar.h"

#include "base/file.h"
#include "mdb/pages/disk_pages.h"

namespace app {

Verificacion VerificarArchivo(const std::string& ruta) {
  Verificacion v;
  if (!base::FileExists(ruta)) return {Acceso::NoExiste, "El archivo '" + ruta + "' no existe", {}};
  try {
    const auto paginas = mdb::DiskPages::Open(ruta, true);
    if (paginas->Header().foreign_encryption)
      return {Acceso::NoSeLee, "La base está cifrada con una contraseña de Access 2007 o posterior", {}};
    v.informe = mdb::Verify(*paginas);
  } catch (const base::Error& e) {
    v.acceso = Acceso::NoSeLee;
    v.motivo = e.Description();
  }
  return v;
}

}  // namespace app
