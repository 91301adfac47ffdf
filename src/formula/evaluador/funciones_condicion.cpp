#include "base/text.h"
#include "formula/evaluador/evaluator_internal.h"

namespace formula {
namespace {

bool Prueba(Evaluador& ev, std::string_view condicion) {
  return EvaluarFuncion(ev, condicion, "EVAL") == "1";
}

}  // namespace

std::string FuncionSi(Evaluador& ev, std::string_view x) {
  const auto partes = SepararFueraDeParentesis(x, ';');
  if (partes.size() < 3) throw base::Error("Falta uno de los parametros", 3);
  return Evaluar(ev, Prueba(ev, partes[0]) ? partes[1] : partes[2]);
}

std::string FuncionCond(Evaluador& ev, std::string_view x) {
  const auto partes = SepararFueraDeParentesis(x, ';');
  if (partes.size() % 2 != 0) throw base::Error("Falta un termino en la funcion Condicion", 5);
  for (std::size_t i = 0; i < partes.size(); i += 2)
    if (Prueba(ev, partes[i])) return Evaluar(ev, partes[i + 1]);
  return "0";
}

std::string FuncionEntre(Evaluador& ev, std::string_view x) {
  const auto partes = SepararFueraDeParentesis(x, ';');
  if (partes.size() < 3) throw base::Error("Falta uno de los parametros", 3);
  const Comparable valor = EvaluarLado(ev, partes[0]);
  const Comparable bajo = EvaluarLado(ev, partes[1]);
  const Comparable alto = EvaluarLado(ev, partes[2]);
  return Comparar(bajo, valor) <= 0 && Comparar(valor, alto) <= 0 ? "1" : "0";
}

std::string FuncionEval(Evaluador& ev, std::string_view x) { return EvaluarLogica(ev, x) ? "1" : "0"; }

}  // namespace formula
