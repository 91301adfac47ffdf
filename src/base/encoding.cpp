#include "base/encoding.h"

#include <algorithm>
#include <array>

#include "base/text.h"
#include "base/text_internal.h"

namespace base {
namespace {

// The points of bytes 0x80 to 0x9F; every other byte is the point of its own number.
constexpr std::array<char32_t, 32> kAltos = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                             0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                             0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                             0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

char32_t PuntoDeByte(unsigned char b) { return b >= 0x80 && b < 0xA0 ? kAltos[b - 0x80U] : b; }

// The byte of a point, or 0 when the page lacks it (point 0 itself is not asked for).
unsigned char ByteDePunto(char32_t p) {
  if (p < 0x80 || (p >= 0xA0 && p <= 0xFF)) return static_cast<unsigned char>(p);
  const auto it = std::find(kAltos.begin(), kAltos.end(), p);
  return it == kAltos.end() ? static_cast<unsigned char>(0)
                            : static_cast<unsigned char>(0x80 + (it - kAltos.begin()));
}

void AgregarPunto(std::string& texto, char32_t p) {
  if (p < 0x80) {
    texto += static_cast<char>(p);
  } else {
    texto += DePuntos(std::u32string_view(&p, 1));
  }
}

// A file marked as UTF-8 may still hold bytes that another program appended in its code page.
std::string Utf8ConSueltos(std::string_view bytes) {
  if (EsUtf8Valido(bytes)) return std::string(bytes);
  std::string texto;
  texto.reserve(bytes.size() + 16);
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t largo = internal::LargoCaracter(bytes, i);
    if (largo == 1) {
      AgregarPunto(texto, PuntoDeByte(static_cast<unsigned char>(bytes[i])));
    } else {
      texto.append(bytes, i, largo);
    }
    i += largo;
  }
  return texto;
}

std::string DeBytesUtf16(std::string_view bytes, bool menor_primero) {
  std::u16string unidades;
  unidades.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto a = static_cast<unsigned char>(bytes[i]), b = static_cast<unsigned char>(bytes[i + 1]);
    unidades += static_cast<char16_t>(menor_primero ? a | b << 8 : a << 8 | b);
  }
  return DeUtf16(unidades);
}

}  // namespace

std::string DeCp1252(std::string_view bytes) {
  if (internal::EsAscii(bytes)) return std::string(bytes);
  std::string texto;
  texto.reserve(bytes.size() + bytes.size() / 8);
  for (const char c : bytes) AgregarPunto(texto, PuntoDeByte(static_cast<unsigned char>(c)));
  return texto;
}

std::string ACp1252(std::string_view utf8, std::size_t* perdidos) {
  if (perdidos != nullptr) *perdidos = 0;
  if (internal::EsAscii(utf8)) return std::string(utf8);
  std::string bytes;
  bytes.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    const std::size_t largo = internal::LargoCaracter(utf8, i);
    const char32_t p = internal::PuntoEn(utf8, i, largo);
    const unsigned char b = p == 0 ? static_cast<unsigned char>(0) : ByteDePunto(p);
    if (b == 0 && p != 0) {
      bytes += '?';
      if (perdidos != nullptr) ++*perdidos;
    } else {
      bytes += static_cast<char>(b);
    }
    i += largo;
  }
  return bytes;
}

std::string DecodificarArchivo(std::string_view bytes) {
  if (EmpiezaCon(bytes, "\xEF\xBB\xBF")) return Utf8ConSueltos(bytes.substr(3));
  if (EmpiezaCon(bytes, "\xFF\xFE")) return DeBytesUtf16(bytes.substr(2), true);
  if (EmpiezaCon(bytes, "\xFE\xFF")) return DeBytesUtf16(bytes.substr(2), false);
  return EsUtf8Valido(bytes) ? std::string(bytes) : DeCp1252(bytes);
}

bool EsUtf8Valido(std::string_view bytes) {
  if (internal::EsAscii(bytes)) return true;
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t largo = internal::LargoCaracter(bytes, i);
    if (largo == 1 && static_cast<unsigned char>(bytes[i]) >= 0x80) return false;
    i += largo;
  }
  return true;
}

std::string DeUtf16(std::u16string_view texto) {
  std::u32string puntos;
  puntos.reserve(texto.size());
  for (std::size_t i = 0; i < texto.size(); ++i) {
    const char32_t u = texto[i];
    const bool alto = u >= 0xD800 && u < 0xDC00;
    if (alto && i + 1 < texto.size() && texto[i + 1] >= 0xDC00 && texto[i + 1] < 0xE000) {
      puntos += 0x10000 + ((u - 0xD800) << 10) + (texto[++i] - 0xDC00U);
    } else {
      puntos += u >= 0xD800 && u < 0xE000 ? U'\uFFFD' : u;
    }
  }
  return DePuntos(puntos);
}

std::u16string AUtf16(std::string_view utf8) {
  std::u16string unidades;
  unidades.reserve(utf8.size());
  for (char32_t p : APuntos(utf8)) {
    if (p >= 0xDC80 && p <= 0xDCFF) p = 0xFFFD;  // a stray byte
    if (p >= 0x10000) {
      unidades += static_cast<char16_t>(0xD800 + ((p - 0x10000) >> 10));
      unidades += static_cast<char16_t>(0xDC00 + ((p - 0x10000) & 0x3FF));
    } else {
      unidades += static_cast<char16_t>(p);
    }
  }
  return unidades;
}

}  // namespace base
