// What the writers of definitions share.
#pragma once

#include "mdb/definitions/definition.h"

namespace mdb {

// The joined bytes of a Jet 4 definition: the first page's 8 header bytes (zero here), then everything that
// stands on its pages one after another. Throws base::Error beyond the limits of the format.
Bytes SerializeDefinition(const Definition& definition);
// The header of a definition page: `used` are its bytes in use, header included.
void PutDefinitionHeader(std::span<std::uint8_t> page, std::size_t used, PageNumber next);

}  // namespace mdb
