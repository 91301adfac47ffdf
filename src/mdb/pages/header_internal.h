// What reading and writing page 0 share.
#pragma once

#include <string_view>

#include "mdb/pages/header.h"

namespace mdb {

inline constexpr std::string_view kJetName{"Standard Jet DB\0", 16}, kAceName{"Standard ACE DB\0", 16};

// Masks or unmasks (the same) the part of page 0 that is stored XORed with a fixed stream.
void MaskHeader(std::span<std::uint8_t> page, bool jet3);
// What the password's UTF-16 units are XORed with in Jet 4, low half first: the whole days of the creation
// date.
std::uint32_t PasswordSalt(double created);

}  // namespace mdb
