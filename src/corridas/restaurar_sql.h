// Statements that put rows back, each with values that read back as they were.
#pragma once

#include <string>

#include "corridas/cambios.h"

namespace corridas::sql {

// A literal of the dialect. Throws base::Error for a number that has none.
std::string Literal(const base::Value& valor);
std::string Borrar(const CambiosDeTabla& tabla, const Fila& fila);    // the row of that key
std::string Insertar(const CambiosDeTabla& tabla, const Fila& fila);  // all columns
// The columns in which the two differ, in the row of that key.
std::string Actualizar(const CambiosDeTabla& tabla, const Fila& ahora, const Fila& debe);

}  // namespace corridas::sql
