#include <algorithm>

#include "formula/vectores/vector_utils.h"

namespace formula {
namespace {

// A table has as many fields as its widest record: shorter ones end in empty fields.
std::size_t Campos(const Vector& vector) {
  std::size_t campos = 0;
  for (const auto& registro : vector.registros) campos = std::max(campos, registro.size());
  return campos;
}

}  // namespace

std::string UnirVector(const Vector& vector, int campo, std::string_view sep_campo,
                       std::string_view sep_registro) {
  std::string texto;
  const std::size_t campos = Campos(vector);
  for (std::size_t i = 0; i < vector.Cantidad(); ++i) {
    if (i > 0) texto += sep_registro;
    if (vector.dimensiones == 2 && campo >= 0) {
      texto += vector.Campo(static_cast<std::size_t>(campo), i);
      continue;
    }
    for (std::size_t c = 0; c < campos; ++c) {
      if (c > 0) texto += sep_campo;
      texto += vector.Campo(c, i);
    }
  }
  return texto;
}

}  // namespace formula
