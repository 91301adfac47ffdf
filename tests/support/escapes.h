// Bytes in the text of a case: \r \n \t \\ and \xHH stand for what they are in C.
#pragma once

#include <cctype>
#include <string>
#include <string_view>

namespace support {

inline int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

inline std::string Unescape(std::string_view text) {
  std::string output;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      output += text[i];
      continue;
    }
    const char c = text[++i];
    if (c == 'r') {
      output += '\r';
    } else if (c == 'n') {
      output += '\n';
    } else if (c == 't') {
      output += '\t';
    } else if (c == 'x' && i + 2 < text.size() && HexDigit(text[i + 1]) >= 0 && HexDigit(text[i + 2]) >= 0) {
      output += static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2]));
      i += 2;
    } else {
      output += c;
    }
  }
  return output;
}

// Control characters, the backslash and, with `ascii_only`, every byte from 0x80 on are written as escapes.
inline std::string Escaped(std::string_view text, bool ascii_only = false) {
  constexpr char kHexDigits[] = "0123456789ABCDEF";
  std::string output;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\r') {
      output += "\\r";
    } else if (c == '\n') {
      output += "\\n";
    } else if (c == '\t') {
      output += "\\t";
    } else if (c == '\\') {
      output += "\\\\";
    } else if (byte < 0x20 || byte == 0x7F || (ascii_only && byte >= 0x80)) {
      output += "\\x";
      output += kHexDigits[byte >> 4];
      output += kHexDigits[byte & 15];
    } else {
      output += c;
    }
  }
  return output;
}

}  // namespace support
