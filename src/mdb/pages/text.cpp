#include <algorithm>
#include <string>

#include "base/encoding.h"
#include "mdb/pages/text.h"

namespace mdb {
namespace internal {
namespace {

bool EsAscii(Vista bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t b) { return b < 0x80; });
}

std::string_view Caracteres(Vista bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

void AgregarPunto(char32_t p, std::string& s) {
  if (p < 0x80) {
    s += static_cast<char>(p);
  } else if (p < 0x800) {
    s += static_cast<char>(0xC0 | p >> 6);
    s += static_cast<char>(0x80 | (p & 0x3F));
  } else if (p < 0x10000) {
    s += static_cast<char>(0xE0 | p >> 12);
    s += static_cast<char>(0x80 | (p >> 6 & 0x3F));
    s += static_cast<char>(0x80 | (p & 0x3F));
  } else {
    s += static_cast<char>(0xF0 | p >> 18);
    s += static_cast<char>(0x80 | (p >> 12 & 0x3F));
    s += static_cast<char>(0x80 | (p >> 6 & 0x3F));
    s += static_cast<char>(0x80 | (p & 0x3F));
  }
}

// UTF-16 units, lowest byte first; an odd last byte is dropped.
void AgregarUtf16(Vista v, std::string& s) {
  const std::size_t unidades = v.size() / 2;
  const auto unidad = [&](std::size_t i) { return static_cast<char32_t>(v[2 * i] | v[2 * i + 1] << 8); };
  for (std::size_t i = 0; i < unidades; ++i) {
    char32_t p = unidad(i);
    if (p >= 0xD800 && p < 0xE000) {
      const char32_t bajo = i + 1 < unidades ? unidad(i + 1) : 0;
      const bool par = p < 0xDC00 && bajo >= 0xDC00 && bajo < 0xE000;
      p = par ? 0x10000 + ((p - 0xD800) << 10) + (bajo - 0xDC00) : 0xFFFD;
      if (par) ++i;
    }
    AgregarPunto(p, s);
  }
}

// Runs of single-byte characters and runs of UTF-16 in turn, parted by a zero byte.
void AgregarComprimido(Vista v, std::string& s) {
  bool de_un_byte = true;
  for (std::size_t desde = 0; desde <= v.size();) {
    const auto cero = std::find(v.begin() + static_cast<std::ptrdiff_t>(desde), v.end(), 0);
    const Vista tramo = v.subspan(desde, static_cast<std::size_t>(cero - v.begin()) - desde);
    if (!de_un_byte) {
      AgregarUtf16(tramo, s);
    } else if (EsAscii(tramo)) {
      s += Caracteres(tramo);
    } else {
      for (const auto b : tramo) AgregarPunto(b, s);
    }
    de_un_byte = !de_un_byte;
    desde += tramo.size() + 1;
  }
}

void LeerDeCodigos(const Cabecera& cabecera, Vista bytes, std::string& destino) {
  if (EsAscii(bytes)) {
    destino.assign(Caracteres(bytes));
  } else if (cabecera.pagina_de_codigos == 1252 || cabecera.pagina_de_codigos == 0) {
    destino = base::DeCp1252(Caracteres(bytes));
  } else {
    // Guessing would show, and perhaps pay, another person's name.
    throw base::StorageFault("La base guarda sus textos en la página de códigos " +
                             std::to_string(cabecera.pagina_de_codigos) +
                             ", que este programa no lee: conviértala al formato de Access 2000 o posterior");
  }
}

}  // namespace

void LeerNombre(const Cabecera& cabecera, Vista bytes, std::string& destino) {
  if (cabecera.Jet3()) return LeerDeCodigos(cabecera, bytes, destino);
  destino.clear();
  AgregarUtf16(bytes, destino);
}

void LeerTexto(const Cabecera& cabecera, Vista bytes, std::string& destino) {
  if (cabecera.Jet3()) return LeerDeCodigos(cabecera, bytes, destino);
  destino.clear();
  if (bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE) {
    AgregarComprimido(bytes.subspan(2), destino);
  } else {
    AgregarUtf16(bytes, destino);
  }
}

}  // namespace internal

std::string DecodificarTexto(const Cabecera& cabecera, Vista bytes) {
  std::string texto;
  internal::LeerTexto(cabecera, bytes, texto);
  return texto;
}

}  // namespace mdb
