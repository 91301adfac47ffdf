// Decimal digits of a number: what rounding, texts and masks work on.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/locale.h"

namespace base::internal {

// 0.d1d2d3… x 10^exponente. No leading zero digit; zero has no digits at all.
struct Decimal {
  bool negativo = false;
  std::string digitos;
  int exponente = 0;

  bool EsCero() const { return digitos.empty(); }
};

// At most `maximo` significant digits (15 of a double): the shortest text that reads back when that is short
// enough, else the exact value with its last digit rounded half away. Not for infinities.
Decimal DeDoble(double numero, int maximo = 15);
Decimal DeSimple(float numero);  // 7 digits

enum class Medio { AlPar, Afuera };
// Rounds to `decimales` digits after the point (negative ones before it).
void RedondearDecimal(Decimal& decimal, int decimales, Medio medio);

double ADoble(const Decimal& decimal);
// Plain digits with `punto` as decimal sign, or the exponent form.
std::string TextoPlano(const Decimal& decimal, std::string_view punto);
std::string TextoExponente(const Decimal& decimal, std::string_view punto);

enum class Lectura { Bien, NoEsNumero, Desborda };
// digits + digits of the fraction x 10^exponente, both parts without signs. Too small is 0.
Lectura Componer(std::string_view digitos, std::string_view fraccion, int exponente, double& numero);

// White space at the start, the no-break space among it, taken off.
void SaltarBlancos(std::string_view& texto);
// "," for the decimals and "." for the thousands: texts that an operator of this program writes.
bool EsDelOperador(const Locale& locale);
// Digits with at most one decimal sign among them, as nearly every number is written: the operator's rule and
// the dialect read both signs alike. False leaves it to the general way.
bool LeerLlano(std::string_view texto, double& numero);

}  // namespace base::internal
