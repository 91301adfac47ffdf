// Running a statement of the reference data on a session that may have no connection yet.
#pragma once

#include <string>
#include <string_view>

#include "db/db_session.h"

namespace refdata {

// Throws db::Error, for a closed or missing connection too: to the loaders that pass over failing statements
// it is one more of them.
inline db::Recordset Ejecutar(const db::DbSession& sesion, std::string_view sql) {
  if (!sesion.Abierta()) throw db::Error("La Base no está Abierta");
  return sesion.conexion->Ejecutar(sql);
}

// Notes why a list could not be filled under the step that wanted it.
inline void AnotarLista(std::string_view paso, const base::SumideroErrores& motivos,
                        base::SumideroErrores* errores) {
  if (errores == nullptr) return;
  for (const base::ErrorAnotado& motivo : motivos)
    errores->push_back({std::string(paso), motivo.descripcion});
}

}  // namespace refdata
