// The rows of a table, for reading.
#pragma once

#include <functional>
#include <optional>

#include "mdb/definitions/definition.h"
#include "mdb/rows/value.h"

namespace mdb {

// Calls `visita` for each live row, in the order of the pages; false ends the walk. The row is reused between
// calls. `columnas`: when not empty, only those positions of the definition are decoded (the others stay
// Null). Throws Danio with the page of a row that cannot be read.
using Visita = std::function<bool(IdFila, const Fila&)>;
void RecorrerFilas(Paginas& paginas, const Definicion& definicion, const Visita& visita,
                   const std::vector<std::size_t>& columnas = {});
// One live row by its identity (a moved row is followed), or none.
std::optional<Fila> LeerFila(Paginas& paginas, const Definicion& definicion, IdFila id);

// The stored bytes of a column of a row, absent when Null. For a Boolean, one byte.
using Crudo = std::optional<Vista>;
// All columns of a row, in the order of `columnas`; the views lie in `bytes`.
std::vector<Crudo> PartirFila(const Cabecera& cabecera, const Definicion& definicion, Vista bytes);
// The bytes of the row (a moved one is followed), or none when it is deleted or not a row of its own. Keep
// the image while the view is used.
struct BytesDeFila {
  Imagen imagen;
  Vista bytes;
  IdFila lugar;  // where the bytes stand: elsewhere than the identity when the row has moved
};
std::optional<BytesDeFila> BuscarFila(Paginas& paginas, const Definicion& definicion, IdFila id);

// From stored bytes to a value; long values are followed to their pages. Throws Danio.
Dato Decodificar(Paginas& paginas, const Columna& columna, Vista bytes);

}  // namespace mdb
