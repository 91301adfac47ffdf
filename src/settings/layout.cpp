#include <algorithm>
#include <cmath>
#include <limits>

#include "base/number.h"
#include "base/text.h"
#include "settings/config_file.h"

namespace settings {
namespace {

std::int16_t Entero16DeTexto(std::string_view pieza) {
  constexpr double kMin = std::numeric_limits<std::int16_t>::min();
  constexpr double kMax = std::numeric_limits<std::int16_t>::max();
  // Clamped, not zeroed: a length of 99999 means the rest of the line.
  return static_cast<std::int16_t>(base::Round(std::clamp(base::Parse(pieza), kMin, kMax), 0));
}

}  // namespace

FixedWidthLayout LayoutPorDefecto() { return {{1, 1, 6}, {2, 8, 3}, {3, 12, 9}, {4, -1, 0}, {5, -1, 0}}; }

FixedWidthLayout LayoutDeTexto(std::string_view valor) {
  FixedWidthLayout layout = LayoutPorDefecto();
  if (valor.empty()) return layout;
  const std::string texto = ConCrLf(valor);
  std::vector<std::string_view> lineas, piezas;
  base::SplitViews(texto, base::kCrLf, lineas);
  if (lineas.size() > layout.size()) layout.resize(lineas.size());
  for (std::size_t j = 0; j < lineas.size(); ++j) {
    base::SplitViews(lineas[j], "*", piezas);
    const auto pieza = [&](std::size_t i) {
      return i < piezas.size() ? Entero16DeTexto(piezas[i]) : std::int16_t{0};
    };
    layout[j] = {pieza(0), pieza(1), pieza(2)};
  }
  for (std::size_t j = lineas.size(); j < layout.size(); ++j) layout[j].inicio = -1;
  return layout;
}

std::string TextoDeLayout(const FixedWidthLayout& layout) {
  std::string texto;
  for (const ColumnaAF& columna : layout) {
    if (!texto.empty()) texto += base::kCrLf;
    texto += std::to_string(columna.campo) + '*' + std::to_string(columna.inicio) + '*' +
             std::to_string(columna.largo);
  }
  return texto;
}

}  // namespace settings
