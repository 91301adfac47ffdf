#include "base/text.h"
#include "formula/evaluador/evaluator_internal.h"

namespace formula {
namespace {

bool TerminaEnOperador(std::string_view pieza) {
  pieza = base::TrimView(pieza);
  return !pieza.empty() && (pieza.back() == '+' || pieza.back() == '*' || pieza.back() == '/');
}

}  // namespace

bool SepararPorOperador(std::string_view texto, char operador, std::vector<std::string>& piezas) {
  piezas.clear();
  const auto crudas = SepararFueraDeParentesis(texto, operador);
  std::size_t i = 0;
  std::string pieza(crudas[0]);
  while (true) {
    const bool hay_otra = i + 1 < crudas.size();
    if (base::TrimView(pieza).empty()) {
      if (!hay_otra) break;
      pieza.clear();
      if (operador == '-') pieza = '-';
      pieza += base::TrimView(crudas[++i]);
    } else if (operador == '-' && hay_otra && TerminaEnOperador(pieza)) {
      pieza += '-';
      pieza += crudas[++i];
    } else {
      piezas.push_back(std::move(pieza));
      if (!hay_otra) break;
      pieza = crudas[++i];
    }
  }
  return piezas.size() > 1;
}

}  // namespace formula
