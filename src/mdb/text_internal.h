// Texts of a file to UTF-8, into a string that its owner reuses.
#pragma once

#include <string>

#include "mdb/header.h"

namespace mdb::internal {

// A value: Jet 4's may be compressed (it then starts with FF FE), whatever its column's flag says.
void LeerTexto(const Cabecera& cabecera, Vista bytes, std::string& destino);
// A name of a definition or of a list of properties: never compressed.
void LeerNombre(const Cabecera& cabecera, Vista bytes, std::string& destino);

}  // namespace mdb::internal
