#include "app/verificar.h"

#include "base/file.h"
#include "mdb/pages/page_file.h"

namespace app {

Verificacion VerificarArchivo(const std::string& ruta) {
  Verificacion v;
  if (!base::ExisteArchivo(ruta)) return {Acceso::NoExiste, "El archivo '" + ruta + "' no existe", {}};
  try {
    const auto paginas = mdb::PaginasDeArchivo::Abrir(ruta, true);
    if (paginas->Cab().cifrado_ajeno)
      return {Acceso::NoSeLee, "La base está cifrada con una contraseña de Access 2007 o posterior", {}};
    v.informe = mdb::Verificar(*paginas);
  } catch (const base::Error& e) {
    v.acceso = Acceso::NoSeLee;
    v.motivo = e.Descripcion();
  }
  return v;
}

}  // namespace app
