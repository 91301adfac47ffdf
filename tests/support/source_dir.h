// Where this checkout lies. In a file of its own, so that no other object differs between two checkouts and
// the compiler cache serves both.
#pragma once

#include <string>

namespace support {

std::string SourceDir();  // of the checkout, without a "/" at its end
// The folder that IDM_CORPUS names, with more Access files and a checker of them; empty where it is not here.
// What is tested with it is tested without it too, on files that the tests make.
std::string SharedDir();

}  // namespace support
