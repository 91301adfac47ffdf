// Bytes in the text of a case: \r \n \t \\ and \xHH stand for what they are in C.
#pragma once

#include <cctype>
#include <string>
#include <string_view>

namespace support {

inline int CifraHexa(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

inline std::string Desescapar(std::string_view texto) {
  std::string salida;
  for (std::size_t i = 0; i < texto.size(); ++i) {
    if (texto[i] != '\\' || i + 1 == texto.size()) {
      salida += texto[i];
      continue;
    }
    const char c = texto[++i];
    if (c == 'r') {
      salida += '\r';
    } else if (c == 'n') {
      salida += '\n';
    } else if (c == 't') {
      salida += '\t';
    } else if (c == 'x' && i + 2 < texto.size() && CifraHexa(texto[i + 1]) >= 0 &&
               CifraHexa(texto[i + 2]) >= 0) {
      salida += static_cast<char>(CifraHexa(texto[i + 1]) * 16 + CifraHexa(texto[i + 2]));
      i += 2;
    } else {
      salida += c;
    }
  }
  return salida;
}

// Control characters, the backslash and, with `solo_ascii`, every byte from 0x80 on are written as escapes.
inline std::string Escapado(std::string_view texto, bool solo_ascii = false) {
  constexpr char kHexa[] = "0123456789ABCDEF";
  std::string salida;
  for (const char c : texto) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\r') {
      salida += "\\r";
    } else if (c == '\n') {
      salida += "\\n";
    } else if (c == '\t') {
      salida += "\\t";
    } else if (c == '\\') {
      salida += "\\\\";
    } else if (byte < 0x20 || byte == 0x7F || (solo_ascii && byte >= 0x80)) {
      salida += "\\x";
      salida += kHexa[byte >> 4];
      salida += kHexa[byte & 15];
    } else {
      salida += c;
    }
  }
  return salida;
}

}  // namespace support
