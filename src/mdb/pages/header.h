// Page 0 of an Access file.
#pragma once

#include <string>

#include "mdb/pages/bytes.h"

namespace mdb {

enum class Version { Jet3, Jet4, Ace };  // Access 97; 2000 to 2003; 2007 and later (.accdb)

// Where a row of a data page stands: a "data pointer", and a row's identity for life. Page 0 is "none".
struct IdFila {
  NumPagina pagina = 0;
  std::uint8_t fila = 0;
  auto operator<=>(const IdFila&) const = default;
};
using Puntero = IdFila;

struct Cabecera {
  Version version = Version::Jet4;
  std::size_t tamano_pagina = 4096;
  std::uint16_t pagina_de_codigos = 1252;  // of all text of a Jet 3 file
  std::uint16_t orden = 3082;              // LCID: 1033 General, 3082 Modern Spanish, 1034 Traditional, …
  std::uint8_t version_orden = 0;
  std::uint32_t clave = 0;     // of the page encryption of Jet 3 and 4; 0: plain
  bool cifrado_ajeno = false;  // encrypted by a provider we do not have (.accdb)
  std::string contrasena;      // UTF-8; empty: none
  double creada = 0;           // day serial
  std::uint32_t sello = 0;     // differs from file to file; its meaning is not known
  NumPagina objetos = 2, permisos = 3, consultas = 4, relaciones = 5;  // definitions of the system tables
  bool Jet3() const { return version == Version::Jet3; }
};

// From the stored bytes of page 0 (2048 bytes or more). Throws base::Error for a file of another kind, with
// its reason.
Cabecera LeerCabecera(Vista primera);
// The stored bytes of page 0 of a new Jet 4 file.
Bytes NuevaCabecera(const Cabecera& cabecera);

// Encrypts or decrypts (the same) a page's bytes in place; page 0 and files without a key are left alone.
void CifrarPagina(const Cabecera& cabecera, NumPagina numero, std::span<std::uint8_t> bytes);

}  // namespace mdb
