#include "base/text.h"
#include "formula/evaluador/evaluator_internal.h"

namespace formula {

bool EvaluarLogica(Evaluador& ev, std::string_view condicion, std::string_view operador) {
  const Nivel nivel(ev, condicion.size());
  const std::string texto = base::UpperCase(condicion);
  if (operador.empty()) operador = "OR";  // over one piece, when there is none
  std::vector<std::string_view> piezas;
  base::SplitViews(texto, operador, piezas);
  // The pieces that hold "AND" are all decided before the first comparison, whatever it then gives.
  std::vector<char> decididas(piezas.size(), 2);
  for (std::size_t i = 0; i < piezas.size(); ++i)
    if (base::Contains(piezas[i], "AND")) decididas[i] = EvaluarLogica(ev, piezas[i], "AND") ? 1 : 0;
  const auto comparar = [&](std::size_t i) {
    return decididas[i] == 2 ? EvaluarComparacion(ev, piezas[i]) : decididas[i] == 1;
  };
  bool valor = comparar(0);
  for (std::size_t i = 1; i < piezas.size() && valor == (operador == "AND"); ++i) valor = comparar(i);
  return valor;
}

}  // namespace formula
