// Values of Access columns as the mirror holds them, and back (storage: see jetsql/runtime.h).
#pragma once

#include <sqlite3.h>

#include <string>
#include <string_view>

#include "base/valor.h"
#include "mdb/definitions/definition.h"
#include "mdb/rows/value.h"

namespace engine_mdb {

// The type that the dialect sees.
base::Tipo TipoDe(mdb::TipoColumna tipo);
// A text in a column of bytes, as Access keeps it.
mdb::Bytes EnUtf16(std::string_view texto);
// Binds the value; texts and bytes are not copied and must outlive the step.
void Ligar(sqlite3_stmt* sentencia, int indice, const mdb::Dato& dato);
// Whether the mirror's cell is what the file's value was mirrored as: then the file keeps its exact bytes.
bool MismoValor(const mdb::Dato& dato, sqlite3_stmt* fila, int columna);
// The cell as a value of the column. Throws base::Error when the column cannot hold it.
mdb::Dato DatoDeCelda(const mdb::Columna& columna, sqlite3_stmt* fila, int indice);

}  // namespace engine_mdb
