#include <algorithm>
#include <bit>

#include "base/encoding.h"
#include "mdb/pages/header_internal.h"

namespace mdb {
namespace {

constexpr std::size_t kUnidadesDeContrasena = 20;

void PonerContrasena(std::span<std::uint8_t> p, const Cabecera& c) {
  std::u16string texto = base::AUtf16(c.contrasena);
  if (texto.size() > kUnidadesDeContrasena)
    throw base::Error("La contraseña de una base no puede tener más de 20 caracteres");
  texto.resize(kUnidadesDeContrasena, u'\0');
  const std::uint32_t sal = SalDeContrasena(c.creada);
  for (std::size_t i = 0; i < texto.size(); ++i)
    Poner16(p, 0x42 + 2 * i, static_cast<std::uint16_t>(texto[i] ^ (i % 2 == 0 ? sal : sal >> 16)));
}

}  // namespace

Bytes NuevaCabecera(const Cabecera& cabecera) {
  if (cabecera.version != Version::Jet4 || cabecera.clave != 0)
    throw base::Error("Solo se crean bases de Access 2000 a 2003 sin cifrar");
  Bytes p(cabecera.tamano_pagina, 0);
  Poner32(p, 0, 0x100);
  std::copy(kNombreJet.begin(), kNombreJet.end(), p.begin() + 4);
  Poner32(p, 0x14, 1);
  // The map of free pages and the second map: rows 0 and 1 of page 1.
  Poner32(p, 0x18, 0x100);
  Poner32(p, 0x1C, 0x101);
  Poner32(p, 0x20, cabecera.objetos);
  Poner32(p, 0x24, cabecera.permisos);
  Poner32(p, 0x28, cabecera.consultas);
  Poner32(p, 0x2C, cabecera.relaciones);
  Poner16(p, 0x3C, cabecera.pagina_de_codigos);
  PonerContrasena(p, cabecera);
  Poner32(p, 0x6A, cabecera.sello);
  Poner16(p, 0x6E, cabecera.orden);
  Poner8(p, 0x71, cabecera.version_orden);
  Poner64(p, 0x72, std::bit_cast<std::uint64_t>(cabecera.creada));
  EnmascararCabecera(p, false);
  Poner32(p, 0x98, 0x654);
  const std::string_view version = "4.0";
  std::copy(version.begin(), version.end(), p.begin() + 0x9C);
  // Commit counters, a pair for each user and the first for exclusive use: the state of a file that nobody
  // has opened yet.
  for (std::size_t i = 0xE00; i < p.size(); i += 2) Poner16(p, i, 0x100);
  Poner16(p, 0xE00, 0x101);
  return p;
}

}  // namespace mdb
