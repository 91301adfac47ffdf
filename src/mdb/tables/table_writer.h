// Changes of rows, with every index, map and counter kept.
#pragma once

#include <utility>
#include <vector>

#include "mdb/definitions/definition.h"
#include "mdb/rows/value.h"

namespace mdb {

struct CambioDeFila {
  IdFila fila;
  // Position in `columnas` and new value. Columns that are not named keep their stored bytes, long values
  // too.
  std::vector<std::pair<std::size_t, Dato>> valores;
};

// What is done to one table at once: rows may exchange the values of a unique index.
struct Cambios {
  std::vector<IdFila> borradas;
  std::vector<CambioDeFila> cambiadas;
  std::vector<Fila> nuevas;  // complete: autonumbers and defaults are the caller's matter
};

// A row that a unique index already has, or a Null in a required one. `numero` 3022 or 3058.
class ErrorDeClave : public base::Error {
 public:
  ErrorDeClave(std::string descripcion, int numero, std::string cual)
      : base::Error(std::move(descripcion), numero), indice(std::move(cual)) {}
  std::string indice;
};

// Why the table's rows cannot be written (an index over text of a sort order that is not known, a column type
// that is not written, a format that is only read); empty when they can.
std::string MotivoNoEscribible(const Cabecera& cabecera, const Definicion& definicion);

// Does all of it in the pages (not yet on disk) and brings `definicion` up to date; returns the identities of
// the new rows in their order. Throws ErrorDeClave, base::Error (a value that does not fit its column, a row
// too long), Danio; after an error the pages are in between: go back with Paginas::Volver.
std::vector<IdFila> Aplicar(Paginas& paginas, Definicion& definicion, const Cambios& cambios);

}  // namespace mdb
