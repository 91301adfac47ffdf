// What the text files of this module share.
#pragma once

#include <cstddef>
#include <string_view>

namespace base::internal {

// Bytes of the character that starts at `i` (1 for a stray byte); `i` must be inside.
std::size_t CharacterLength(std::string_view text, std::size_t i);
// The character of `length` bytes at `i` as a code point; a stray byte b is U+DC00 + b.
char32_t PointAt(std::string_view text, std::size_t i, std::size_t length);

bool IsAscii(std::string_view text);
inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }
inline char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
inline char UpperAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }

// The partner of a letter, or the point itself. Both partners always have the same length in UTF-8.
char32_t UpperCasePoint(char32_t point);
char32_t LowerCasePoint(char32_t point);

}  // namespace base::internal
