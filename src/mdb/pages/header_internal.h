// What reading and writing page 0 share.
#pragma once

#include <string_view>

#include "mdb/pages/header.h"

namespace mdb {

inline constexpr std::string_view kNombreJet{"Standard Jet DB\0", 16}, kNombreAce{"Standard ACE DB\0", 16};

// Masks or unmasks (the same) the part of page 0 that is stored XORed with a fixed stream.
void EnmascararCabecera(std::span<std::uint8_t> pagina, bool jet3);
// What the password's UTF-16 units are XORed with in Jet 4, low half first: the whole days of the creation
// date.
std::uint32_t SalDeContrasena(double creada);

}  // namespace mdb
