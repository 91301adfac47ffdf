#include <algorithm>

#include "base/error.h"
#include "importfile/importfile_internal.h"

namespace importfile {
namespace {

bool EnUso(const settings::ColumnaAF& columna) { return columna.campo > 0 && columna.inicio >= 1; }

bool EsContinuacion(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Bytes of the character at `i`; a stray byte is a character by itself.
std::size_t BytesDeCaracter(std::string_view texto, std::size_t i) {
  const auto primero = static_cast<unsigned char>(texto[i]);
  const std::size_t bytes = primero < 0xC2   ? 1
                            : primero < 0xE0 ? 2
                            : primero < 0xF0 ? 3
                            : primero < 0xF5 ? 4
                                             : 1;
  for (std::size_t k = 1; k < bytes; ++k)
    if (i + k >= texto.size() || !EsContinuacion(texto[i + k])) return 1;
  return bytes;
}

// Byte offset after `caracteres` characters from `desde`, at most the end.
std::size_t Avanzar(std::string_view texto, std::size_t desde, std::size_t caracteres) {
  for (; caracteres > 0 && desde < texto.size(); --caracteres) desde += BytesDeCaracter(texto, desde);
  return desde;
}

bool EsAscii(std::string_view texto) {
  return std::none_of(texto.begin(), texto.end(),
                      [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

std::string_view Pieza(std::string_view linea, const settings::ColumnaAF& columna, bool ascii) {
  const auto antes = static_cast<std::size_t>(columna.inicio - 1);
  const auto largo = static_cast<std::size_t>(std::max<int>(columna.largo, 0));
  if (ascii) return antes < linea.size() ? linea.substr(antes, largo) : std::string_view();
  const std::size_t desde = Avanzar(linea, 0, antes);
  return linea.substr(desde, Avanzar(linea, desde, largo) - desde);
}

}  // namespace

bool SePuedeCortar(const settings::FixedWidthLayout& layout) {
  return layout.size() <= kCamposDeLinea &&
         std::none_of(layout.begin(), layout.end(), [](const auto& columna) {
           return EnUso(columna) && columna.campo > static_cast<int>(kCamposDeLinea);
         });
}

CorteAF CortarAF(std::string_view linea, const settings::FixedWidthLayout& layout) {
  CorteAF corte;
  const bool ascii = EsAscii(linea);
  for (std::size_t i = 0; i < layout.size(); ++i) {
    if (!EnUso(layout[i])) continue;
    corte.piezas[i] = Pieza(linea, layout[i], ascii);
    corte.campos[static_cast<std::size_t>(layout[i].campo - 1)] = corte.piezas[i];
  }
  return corte;
}

ResultadoCorte DevLineaAF(std::string_view linea, const settings::FixedWidthLayout& layout) {
  if (!SePuedeCortar(layout))
    throw base::Error("El diseño de ancho fijo (ConfDeAF) admite cinco columnas y cinco campos", 9,
                      "DevLineaAF");
  const CorteAF corte = CortarAF(linea, layout);
  ResultadoCorte resultado;
  resultado.campos.assign(corte.campos.begin(), corte.campos.end());
  for (std::size_t i = 0; i < corte.piezas.size(); ++i) {
    if (i > 0) resultado.estrella += '*';
    resultado.estrella += corte.piezas[i];
  }
  return resultado;
}

}  // namespace importfile
