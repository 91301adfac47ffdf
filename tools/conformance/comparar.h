// Whether what came out is what a table says.
//
//   numbers   within one part in 10^14, a Single in 10^6; or the same in all the digits that the table
//   writes,
//             when it writes twelve or more (serials are cut there)
//   texts     character by character
//   dates     to the half second, and they must be dates
//   true      the dialect's True, -1
#pragma once

#include <string>

#include "base/error.h"
#include "base/valor.h"
#include "conformance/json.h"
#include "conformance/tabla.h"
#include "db/recordset.h"

namespace conformance {

bool Igual(const Json& espera, const base::Valor& dio, bool sin_caso = false);
// A list of texts, as Split and an ordered column give.
bool Igual(const Json& espera, const std::vector<std::string>& dio);
// Whether the table says that error `numero` is raised.
bool EsperaError(const Json& espera, int numero);
// The rows of a query or of what is asked after a change; in any order where the row says so.
bool MismasFilas(const Json& espera, const db::Recordset& filas, bool ordenadas, bool sin_caso);

// For messages.
std::string Mostrar(const base::Valor& valor);
std::string Mostrar(const db::Recordset& filas);
std::string Mostrar(const base::Error& error);

}  // namespace conformance
