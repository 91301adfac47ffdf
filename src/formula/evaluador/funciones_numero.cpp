#include <cmath>

#include "base/number.h"
#include "base/text.h"
#include "formula/evaluador/evaluator_internal.h"

namespace formula {
namespace {

constexpr int kTipoNoCoincide = 13;
constexpr int kLlamadaMala = 5;

double NumeroOError(const Evaluador& ev, std::string_view texto) {
  if (const auto numero = Numero(ev, texto)) return *numero;
  throw base::Error(base::ErrorDescription(kTipoNoCoincide), kTipoNoCoincide);
}

double Porcentaje(Evaluador& ev, std::string_view x) {
  return NumeroOError(ev, CalcularTerminos(ev, x)) / 100;
}

}  // namespace

std::string FuncionPA(Evaluador& ev, std::string_view x) { return TextoDeNumero(ev, 1 + Porcentaje(ev, x)); }

std::string FuncionP(Evaluador& ev, std::string_view x) { return TextoDeNumero(ev, Porcentaje(ev, x)); }

std::string FuncionEntero(Evaluador& ev, std::string_view x) {
  return TextoDeNumero(ev, std::floor(NumeroOError(ev, NumeroOValor(ev, x))));
}

// The divisor is never evaluated: its leading number counts.
std::string FuncionMod(Evaluador& ev, std::string_view x) {
  const auto partes = SepararFueraDeParentesis(x, ';');
  const auto a = Numero(ev, NumeroOValor(ev, partes[0]));
  if (!a) return "0";
  const long long dividendo = base::BankersInteger(*a);
  const long long divisor = partes.size() > 1 ? base::BankersInteger(base::Parse(partes[1])) : 10;
  if (divisor == 0 || divisor == -1) return "0";  // -1 divides all, and overflows on the least number
  return std::to_string(dividendo % divisor);
}

std::string FuncionRedondeo(Evaluador& ev, std::string_view x) {
  const auto partes = SepararFueraDeParentesis(x, ';');
  const auto numero = Numero(ev, NumeroOValor(ev, partes[0]));
  if (!numero) return "0";
  const long long decimales = partes.size() > 1 ? base::BankersInteger(base::Parse(partes[1])) : 0;
  if (decimales < 0 || decimales > 22) throw base::Error(base::ErrorDescription(kLlamadaMala), kLlamadaMala);
  return TextoDeNumero(ev, base::Round(*numero, static_cast<int>(decimales)));
}

std::string FuncionProm(Evaluador& ev, std::string_view x) {
  const auto partes = SepararFueraDeParentesis(x, ';');
  double suma = 0;
  for (const auto parte : partes) suma += base::Parse(Evaluar(ev, parte));
  if (!std::isfinite(suma)) throw base::Error(base::ErrorDescription(6), 6);
  return TextoDeNumero(ev, suma / static_cast<double>(partes.size()));
}

}  // namespace formula
