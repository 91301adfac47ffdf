// Running a statement of the reference data on a session that may have no connection yet.
#pragma once

#include <string_view>

#include "db/db_session.h"

namespace refdata {

// Throws db::Error, for a closed or missing connection too: to the loaders that pass over failing statements
// it is one more of them.
inline db::Recordset Ejecutar(const db::DbSession& sesion, std::string_view sql) {
  if (!sesion.Abierta()) throw db::Error("La Base no está Abierta");
  return sesion.conexion->Ejecutar(sql);
}

}  // namespace refdata
