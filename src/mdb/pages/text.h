// Texts of a file to UTF-8.
#pragma once

#include <string>

#include "mdb/pages/header.h"

namespace mdb {

// Text as stored (compressed or not; code page in Jet 3).
std::string DecodeText(const FileHeader& header, View bytes);

namespace internal {

// The same into a string that its owner reuses.
// A value: Jet 4's may be compressed (it then starts with FF FE), whatever its column's flag says.
void ReadText(const FileHeader& header, View bytes, std::string& target);
// A name of a definition or of a list of properties: never compressed.
void ReadName(const FileHeader& header, View bytes, std::string& target);

}  // namespace internal

}  // namespace mdb
