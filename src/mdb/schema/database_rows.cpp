#include "mdb/schema/database.h"

namespace mdb {

std::vector<IdFila> Base::Aplicar(std::string_view tabla, const Cambios& cambios) {
  const auto conocida = catalogo_.Tabla(tabla);
  if (!conocida) throw base::Error("No existe la tabla \"" + std::string(tabla) + "\"", 3078);
  // The catalog's definition is of when it was read: counters and maps have gone on since.
  Definicion definicion = LeerDefinicion(*paginas_, conocida->Pagina());
  definicion.nombre = conocida->nombre;
  auto punto = paginas_->Guardar();
  try {
    return mdb::Aplicar(*paginas_, definicion, cambios);
  } catch (const base::Error&) {
    paginas_->Volver(std::move(punto));
    throw;
  }
}

}  // namespace mdb
