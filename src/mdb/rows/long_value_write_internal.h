// Memo and OLE values: where their bytes go, and how they are let go.
#pragma once

#include <string>

#include "mdb/definitions/definition.h"
#include "mdb/rows/row_store_internal.h"

namespace mdb::internal {

constexpr std::size_t kCampoLargo = 12;      // bytes in the row, before inline data
constexpr std::size_t kLargoEnLinea = 64;    // the longest value that stands in the row
constexpr std::size_t kLargoDePieza = 4076;  // the longest row of a page of long values
constexpr std::uint32_t kEnLinea = 0x80000000, kEnUnaFila = 0x40000000, kLargoMas = 0x3FFFFFFF;

// The long values of one column, for one batch of changes.
class ValoresLargos {
 public:
  ValoresLargos(Paginas& paginas, const Definicion& definicion, const Columna& columna);
  // What stands in the row for the value: 12 bytes, and the value itself when it is short and
  // `puede_en_linea`. Throws base::Error for a value that is too long for the format or without maps.
  Bytes Guardar(Vista valor, bool puede_en_linea = true);
  // Deletes the pieces that the bytes of a row lead to. Pieces on pages that are not the column's own stay
  // where they are: other programs leave such things.
  void Soltar(Vista campo);

 private:
  Paginas& paginas_;
  std::string donde_;
  Puntero propias_;
  AlmacenDeFilas almacen_;
};

inline bool EstaEnLinea(Vista campo) { return campo.size() > kCampoLargo && (U32(campo, 0) & kEnLinea) != 0; }
Bytes Puntero4(IdFila fila);  // the 4 bytes of a data pointer

}  // namespace mdb::internal
