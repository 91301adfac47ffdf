// Searching inside texts as InStr and Replace do it: exactly, or by the characters' weights.
#pragma once

#include <cstddef>
#include <string_view>

#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {

// Texto: as classic Basic compares texts; Base: by the sort order of the file. They differ in how texts sort
// alone.
enum class ModoTexto { Binario, Texto, Base };

// The comparison argument of InStr, Replace and StrComp: 0 is binary, 1 text, 2 database, which is what
// the dialect takes when it is not given. Throws 5 for another one.
ModoTexto LeerModo(const Llamada& llamada, int argumento);

struct Hallazgo {
  std::size_t desde = std::string_view::npos;  // byte, npos when there is none
  std::size_t largo = 0;                       // bytes; not always the needle's, because case may change them
  bool Hay() const { return desde != std::string_view::npos; }
};

// The first occurrence at or after byte `desde`. The needle is not empty.
Hallazgo BuscarDesde(std::string_view texto, std::string_view aguja, std::size_t desde, ModoTexto modo);
// Bytes of the occurrence that starts exactly at byte `lugar`, 0 when there is none.
std::size_t OcurreEn(std::string_view texto, std::string_view aguja, std::size_t lugar, ModoTexto modo);

// -1, 0, 1 by the order of classic Basic's text comparison: that of the files, but Ø is a letter behind Z and
// no kind of O.
int CompararComoTexto(std::string_view a, std::string_view b, base::Orden orden);

// The byte where character `cuantos` after byte `desde` starts, or the end of the text.
std::size_t AvanzarCaracteres(std::string_view texto, std::size_t desde, std::int64_t cuantos);
// Characters in a text.
std::int64_t Caracteres(std::string_view texto);

}  // namespace engine_sqlite
