#include <cmath>
#include <limits>

#include "base/number.h"
#include "relations/code_relations.h"

namespace relations {
namespace {

constexpr std::string_view kGuion = " - ";

std::string EnteroOTexto(std::string_view texto) {
  const auto id = IdentificadorDe(texto);
  return id ? std::to_string(*id) : std::string(texto);
}

}  // namespace

std::optional<std::int32_t> IdentificadorDe(std::string_view texto) {
  using Limites = std::numeric_limits<std::int32_t>;
  const auto numero = base::NumberFromText(texto);
  if (!numero || *numero != std::trunc(*numero) || *numero < Limites::min() || *numero > Limites::max())
    return std::nullopt;
  return static_cast<std::int32_t>(*numero);
}

Relacion RegistroDeRelacion(const DatosRelacion& datos) {
  std::string codigos(",");
  codigos.append(datos.txtTipo).append(",");
  return {datos.texto_combo.substr(0, datos.texto_combo.find(kGuion)),
          std::to_string(datos.color),
          std::move(codigos),
          EnteroOTexto(datos.id_concepto),
          datos.lblConcepto,
          std::to_string(datos.cc)};
}

}  // namespace relations
