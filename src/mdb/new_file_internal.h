// The first rows of a new file, written straight into its pages: nothing is there yet that the writer of rows
// could stand on.
#pragma once

#include <span>

#include "mdb/definition.h"
#include "mdb/value.h"

namespace mdb {

// Rows on one data page, which is entered in the table's maps, with their entries on the roots of its
// indexes. The values are by column number; there are few enough for a page and for each root.
void EscribirPrimerasFilas(Paginas& paginas, Definicion& definicion, NumPagina datos,
                           const std::vector<std::vector<Dato>>& filas);
// Sets a page's bit in an inline map that starts at page 0.
void MarcarEnMapa(Paginas& paginas, Puntero mapa, NumPagina pagina);

}  // namespace mdb
