#include <cmath>

#include "base/number.h"
#include "base/text.h"
#include "formula/evaluador/evaluator_internal.h"

namespace formula {
namespace {

constexpr std::string_view kOperadores = "+-*/";

// Blanks beside an operator do not matter: "- 5" is the number -5.
std::string SinBlancosTrasElSigno(std::string_view termino) {
  termino = base::TrimView(termino);
  if (termino.empty() || (termino.front() != '-' && termino.front() != '+')) return std::string(termino);
  return termino.front() + base::Trim(termino.substr(1));
}

// A piece that is not a number gives the leading number of its value: a value with a decimal comma loses its
// decimals here, and formula authors know it.
double ValorDePieza(Evaluador& ev, std::string_view pieza) {
  if (const auto numero = Numero(ev, pieza)) return *numero;
  return base::Parse(CalcularTerminos(ev, pieza));
}

double Aplicar(char operador, double a, double b) {
  double r = 0;
  switch (operador) {
    case '+':
      r = a + b;
      break;
    case '-':
      r = a - b;
      break;
    case '*':
      r = a * b;
      break;
    default:
      if (b == 0) return 0;  // a division by zero is zero, on purpose
      r = a / b;
  }
  if (!std::isfinite(r)) throw base::Error(base::ErrorDescription(6), 6);
  return operador == '/' ? base::Round(r, 15) : r;
}

double Plegar(Evaluador& ev, const std::vector<std::string>& piezas, char operador) {
  double acumulado = ValorDePieza(ev, piezas[0]);
  for (std::size_t i = 1; i < piezas.size(); ++i)
    acumulado = Aplicar(operador, acumulado, ValorDePieza(ev, piezas[i]));
  return acumulado;
}

}  // namespace

std::string CalcularTerminos(Evaluador& ev, std::string_view termino) {
  const Nivel nivel(ev, termino.size());
  const std::string texto = SinBlancosTrasElSigno(termino);
  std::vector<std::string> piezas;
  for (const char op : kOperadores) {
    if (texto.find(op) == std::string::npos || !SepararPorOperador(texto, op, piezas)) continue;
    return TextoDeNumero(ev, Plegar(ev, piezas, op));
  }
  return EvaluarFuncion(ev, texto, {});
}

}  // namespace formula
