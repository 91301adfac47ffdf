// What the text files of this module share.
#pragma once

#include <cstddef>
#include <string_view>

namespace base::internal {

// Bytes of the character that starts at `i` (1 for a stray byte); `i` must be inside.
std::size_t LargoCaracter(std::string_view texto, std::size_t i);
// The character of `largo` bytes at `i` as a code point; a stray byte b is U+DC00 + b.
char32_t PuntoEn(std::string_view texto, std::size_t i, std::size_t largo);

bool EsAscii(std::string_view texto);
inline bool EsDigito(char c) { return c >= '0' && c <= '9'; }
inline char MinAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
inline char MayAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }

// The partner of a letter, or the point itself. Both partners always have the same length in UTF-8.
char32_t PuntoMayuscula(char32_t punto);
char32_t PuntoMinuscula(char32_t punto);

}  // namespace base::internal
