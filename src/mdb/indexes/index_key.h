// Keys of index entries: bytes whose order is that of the index.
#pragma once

#include "mdb/definitions/definition.h"
#include "mdb/rows/value.h"

namespace mdb {

// Flag byte and value bytes of one column, at the end of `clave`. Throws base::Error for a type or a sort
// order without known keys.
void AgregarClave(const Cabecera& cabecera, const Columna& columna, bool descendente, const Dato& dato,
                  Bytes& clave);
// The whole key of a row, in `clave` (emptied first).
void ClaveDeFila(const Cabecera& cabecera, const Definicion& definicion, const IndiceReal& indice,
                 const Fila& fila, Bytes& clave);
// Whether all, or any, of the index's columns are Null in the row (a Boolean never is).
bool TodosNulos(const Definicion& definicion, const IndiceReal& indice, const Fila& fila);
bool AlgunNulo(const Definicion& definicion, const IndiceReal& indice, const Fila& fila);
// Why keys of this index cannot be made; empty when they can.
std::string MotivoSinClaves(const Cabecera& cabecera, const Definicion& definicion, const IndiceReal& indice);

}  // namespace mdb
