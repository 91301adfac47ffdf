// What the writers of definitions share.
#pragma once

#include "mdb/definitions/definition.h"

namespace mdb {

// The joined bytes of a Jet 4 definition: the first page's 8 header bytes (zero here), then everything that
// stands on its pages one after another. Throws base::Error beyond the limits of the format.
Bytes SerializarDefinicion(const Definicion& definicion);
// The header of a definition page: `usados` are its bytes in use, header included.
void PonerCabeceraDeDefinicion(std::span<std::uint8_t> pagina, std::size_t usados, NumPagina siguiente);

}  // namespace mdb
