// Running a statement of the reference data on a session that may have no connection yet.
#pragma once

#include <string>
#include <string_view>

#include "db/connection.h"
#include "sesion/db_session.h"

namespace refdata {

inline constexpr std::string_view kBaseCerrada = "La Base no está Abierta";

// Throws db::Error, for a closed or missing connection too: to the loaders that pass over failing statements
// it is one more of them.
inline db::Recordset Ejecutar(const sesion::DbSession& sesion, std::string_view sql) {
  if (!sesion.Abierta()) throw db::Error(std::string(kBaseCerrada));
  return sesion.conexion->Execute(sql);
}

// Runs the step that fills a table. Its failure is noted, becomes the reason why the table is not read, and
// is passed over; a fault of the storage travels on. A step that ended well leaves `motivo` alone.
template <typename Paso>
bool Cargar(std::string_view donde, base::ErrorSink* errores, std::string& motivo, Paso&& paso) {
  return base::PassOverError(donde, errores, [&] {
    try {
      paso();
    } catch (const base::Error& e) {
      motivo = e.Description();
      throw;
    }
  });
}

// Notes why a list could not be filled under the step that wanted it.
inline void AnotarLista(std::string_view paso, const base::ErrorSink& motivos, base::ErrorSink* errores) {
  if (errores == nullptr) return;
  for (const base::NotedError& motivo : motivos) errores->push_back({std::string(paso), motivo.description});
}

}  // namespace refdata
