#include <cmath>
#include <limits>

#include "base/number.h"
#include "base/text.h"
#include "formula/evaluador/line_formula_internal.h"

namespace formula {
namespace {

constexpr std::size_t kCantidad = 3;

float ASimple(double numero) {
  if (std::abs(numero) <= static_cast<double>(std::numeric_limits<float>::max()))
    return static_cast<float>(numero);
  constexpr float kInfinito = std::numeric_limits<float>::infinity();
  return std::signbit(numero) ? -kInfinito : kInfinito;
}

}  // namespace

float CalcularFormula(Evaluador& ev, std::string_view texto_formula, const CamposDeLinea& linea,
                      PasosDeFormula* pasos) {
  const std::string_view escrita = base::TrimView(texto_formula);
  const auto formula = SinComodines(escrita, linea, pasos);
  if (!formula) {
    ev.agotado = "La fórmula es demasiado larga con los datos de la línea";
    return 0;
  }
  std::string expresion = linea[kCantidad];
  // Nothing worked is 0 hours, whatever the formula starts with.
  if (base::IsBlank(expresion)) expresion.assign(1, '0');
  if (!escrita.empty() && !formula->empty()) {
    // The operator is looked for in what the operator of the program wrote, not in what a wildcard put there.
    if (std::string_view("-+*/").find(escrita.front()) == std::string_view::npos) expresion += '*';
    expresion += *formula;
  }
  bool con_parametros = false;
  if (pasos != nullptr) pasos->expresion = expresion;
  const std::string valor = EvaluarExpresion(ev, expresion, con_parametros);
  if (pasos != nullptr) {
    pasos->valor = valor;
    pasos->sin_valor = ev.sin_valor;
  }
  if (ev.sin_valor) return 0;
  return ASimple(base::Parse(base::Replace(valor, ",", ".")));
}

}  // namespace formula
