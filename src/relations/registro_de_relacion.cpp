#include <cmath>
#include <limits>

#include "base/number.h"
#include "base/text.h"
#include "relations/code_relations.h"

namespace relations {
namespace {

constexpr std::string_view kGuion = " - ", kDeTabla = "  (T.U.)";

std::string CodigoDe(std::string_view texto_combo, std::string_view lblConcepto) {
  // A concept shows its code and then the name of the label; a user table is known by the name of the label
  // and shows its field behind it.
  const std::string detras = std::string(kGuion).append(lblConcepto);
  if (base::TerminaCon(texto_combo, detras))
    return std::string(texto_combo.substr(0, texto_combo.size() - detras.size()));
  if (base::TerminaCon(lblConcepto, kDeTabla)) {
    std::string delante(lblConcepto.substr(0, lblConcepto.size() - kDeTabla.size()));
    if (base::EmpiezaCon(texto_combo, delante + std::string(kGuion))) return delante;
  }
  return std::string(texto_combo.substr(0, texto_combo.find(kGuion)));
}

std::string EnteroOTexto(std::string_view texto) {
  const auto id = IdentificadorDe(texto);
  return id ? std::to_string(*id) : std::string(texto);
}

}  // namespace

std::optional<std::int32_t> IdentificadorDe(std::string_view texto) {
  using Limites = std::numeric_limits<std::int32_t>;
  const auto numero = base::NumeroDeTexto(texto);
  if (!numero || *numero != std::trunc(*numero) || *numero < Limites::min() || *numero > Limites::max())
    return std::nullopt;
  return static_cast<std::int32_t>(*numero);
}

Relacion RegistroDeRelacion(const DatosRelacion& datos) {
  std::string codigos(",");
  codigos.append(datos.txtTipo).append(",");
  return {CodigoDe(datos.texto_combo, datos.lblConcepto),
          std::to_string(datos.color),
          std::move(codigos),
          EnteroOTexto(datos.id_concepto),
          datos.lblConcepto,
          std::to_string(datos.cc)};
}

}  // namespace relations
