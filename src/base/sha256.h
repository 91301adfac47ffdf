// The SHA-256 of bytes.
#pragma once

#include <string>
#include <string_view>

namespace base {

// 64 hexadecimal digits, in small letters.
std::string Sha256(std::string_view bytes);

}  // namespace base
