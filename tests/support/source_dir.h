// Where this checkout lies. In a file of its own, so that no other object differs between two checkouts and
// the compiler cache serves both.
#pragma once

#include <string>

namespace support {

std::string SourceDir();  // of the checkout, without a "/" at its end
std::string SharedDir();  // the optional corpus beside it; it may not be there

}  // namespace support
