#include "mdb/pages/header.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "base/encoding.h"
#include "mdb/pages/header_internal.h"

namespace mdb {
namespace {

constexpr std::array<std::uint8_t, 4> kClaveDeMascara{0xC7, 0xDA, 0x39, 0x6B};

// RC4, the cipher of the header's mask and of encrypted pages.
void Rc4(Vista clave, std::span<std::uint8_t> bytes) {
  std::array<std::uint8_t, 256> s;
  std::iota(s.begin(), s.end(), std::uint8_t{0});
  for (unsigned i = 0, j = 0; i < 256; ++i) {
    j = (j + s[i] + clave[i % clave.size()]) & 255U;
    std::swap(s[i], s[j]);
  }
  unsigned i = 0, j = 0;
  for (auto& b : bytes) {
    i = (i + 1) & 255U;
    j = (j + s[i]) & 255U;
    std::swap(s[i], s[j]);
    b ^= s[(s[i] + s[j]) & 255U];
  }
}

// Jet 4 keeps UTF-16 XORed with the whole days of the creation date; Jet 3 bytes of its code page.
std::string LeerContrasena(Vista p, const Cabecera& c) {
  if (c.Jet3()) {
    std::string texto;
    for (const auto b : Trozo(p, 0x42, 20)) {
      if (b == 0) break;
      texto.push_back(static_cast<char>(b));
    }
    return base::DeCp1252(texto);
  }
  const std::uint32_t sal = SalDeContrasena(c.creada);
  std::u16string texto;
  for (std::size_t i = 0; i < 40; i += 2) {
    const auto unidad =
        static_cast<char16_t>(U16(p, 0x42 + i) ^ static_cast<std::uint16_t>(sal >> (i % 4 * 8)));
    if (unidad == 0) break;
    texto.push_back(unidad);
  }
  return base::DeUtf16(texto);
}

}  // namespace

void EnmascararCabecera(std::span<std::uint8_t> pagina, bool jet3) {
  Rc4(kClaveDeMascara, pagina.subspan(0x18, jet3 ? 126 : 128));
}

std::uint32_t SalDeContrasena(double creada) {
  const bool medible = creada > -2147483648.0 && creada < 2147483647.0;
  return static_cast<std::uint32_t>(static_cast<std::int32_t>(medible ? creada : 0));
}

Cabecera LeerCabecera(Vista primera) {
  if (primera.size() < 0x15)
    throw base::StorageFault("El archivo es demasiado corto para ser una base de Access");
  const std::string_view nombre(reinterpret_cast<const char*>(primera.data()) + 4, 16);
  if (nombre != kNombreJet && nombre != kNombreAce)
    throw base::StorageFault("El archivo no es una base de Access");
  const std::uint8_t version = primera[0x14];
  Cabecera c;
  c.version = nombre == kNombreAce ? Version::Ace : (version == 0 ? Version::Jet3 : Version::Jet4);
  if (version > 6 || (nombre == kNombreJet && version > 1))
    throw base::StorageFault("La base es de una versión de Access que no se conoce (" +
                             std::to_string(version) + ")");
  c.tamano_pagina = c.Jet3() ? 2048 : 4096;
  if (primera.size() < 2048)
    throw base::StorageFault("El archivo es demasiado corto para ser una base de Access");
  Bytes p(primera.begin(), primera.begin() + 2048);
  EnmascararCabecera(p, c.Jet3());
  c.pagina_de_codigos = U16(p, 0x3C);
  c.clave = U32(p, 0x3E);
  c.objetos = U32(p, 0x20);
  c.permisos = U32(p, 0x24);
  c.consultas = U32(p, 0x28);
  c.relaciones = U32(p, 0x2C);
  if (c.Jet3()) {
    c.orden = U16(p, 0x3A);
  } else {
    c.sello = U32(p, 0x6A);
    c.orden = U16(p, 0x6E);
    c.version_orden = U8(p, 0x71);
    c.creada = F64(p, 0x72);
  }
  c.cifrado_ajeno = c.version == Version::Ace && c.clave != 0;
  if (c.clave == 0 || !c.cifrado_ajeno) c.contrasena = LeerContrasena(p, c);
  return c;
}

void CifrarPagina(const Cabecera& cabecera, NumPagina numero, std::span<std::uint8_t> bytes) {
  if (numero == 0 || cabecera.clave == 0 || cabecera.cifrado_ajeno) return;
  Bytes clave;
  Agregar32(clave, cabecera.clave ^ numero);
  Rc4(clave, bytes);
}

}  // namespace mdb
