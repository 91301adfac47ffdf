#include <array>
#include <utility>

#include "base/number.h"
#include "base/text.h"
#include "formula/evaluador/evaluator_internal.h"
#include "formula/vectores/vector_utils.h"

namespace formula {
namespace {

constexpr std::array<std::string_view, 7> kComparaciones = {"<=", "<>", ">=", "=", "<", ">", " ENLIST "};

bool Cumple(std::string_view operador, int orden) {
  if (operador == "<=") return orden <= 0;
  if (operador == "<>") return orden != 0;
  if (operador == ">=") return orden >= 0;
  if (operador == "=") return orden == 0;
  if (operador == "<") return orden < 0;
  return orden > 0;
}

bool CompararPor(Evaluador& ev, std::string_view texto, std::string_view operador) {
  // Split at every occurrence; what comes after a second one is not looked at.
  const std::size_t fin = texto.find(operador);
  std::string_view derecho = texto.substr(fin + operador.size());
  derecho = derecho.substr(0, derecho.find(operador));
  const std::string izquierdo = TextoDeLado(ev, texto.substr(0, fin));
  std::string lado = TextoDeLado(ev, derecho);
  if (operador == " ENLIST ") return FindInColumn(izquierdo, base::Split(lado, ",")) >= 0;
  return Cumple(operador, Comparar(Clasificar(ev, izquierdo), Clasificar(ev, std::move(lado))));
}

}  // namespace

bool EvaluarComparacion(Evaluador& ev, std::string_view comparacion) {
  bool valor = base::Parse(comparacion) == 1;
  base::PassOverError("EvaluarComparacion", nullptr, [&] {
    const Nivel nivel(ev, comparacion.size());
    for (const std::string_view operador : kComparaciones) {
      if (!base::Contains(comparacion, operador)) continue;
      valor = CompararPor(ev, comparacion, operador);
      return;
    }
  });
  return valor;
}

}  // namespace formula
