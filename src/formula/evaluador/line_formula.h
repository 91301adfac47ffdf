// The formula of a line: wildcards, then the evaluator.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "formula/evaluador/evaluator.h"

namespace formula {

// The fifteen fields of a kept line, by number (0 person key … 14 value).
using CamposDeLinea = std::array<std::string, 15>;

// How a text came to its value, for whoever wants to be told.
struct PasosDeFormula {
  struct Sustitucion {
    std::string comodin;  // in lower case
    std::string valor;    // the line's
    std::string texto;    // after it
  };
  std::vector<Sustitucion> sustituciones;
  std::string expresion;  // what was evaluated
  std::string valor;      // what came of it
  bool sin_valor = false;
};

// Every wildcard replaced by the line's field, in the fixed order, each step on the result of the one before.
// Case and word boundaries do not matter. A text that would grow past kLargoMaximo bytes becomes empty.
inline constexpr std::size_t kLargoMaximo = std::size_t{1} << 20;
std::string ReemplazaComodines(std::string_view formula, const CamposDeLinea& linea,
                               PasosDeFormula* pasos = nullptr);

// The new quantity of a line by the text of the formula box, from field 3 of the line; an empty field 3 is 0.
// 0 when the formula has no value or its value does not start with a number, ±infinity when that number
// passes the single precision. When the evaluation was given up (ev.agotado) the 0 is no quantity: the line
// is to be refused. Throws base::Error for a fault of the storage alone.
float CalcularFormula(Evaluador& ev, std::string_view texto_formula, const CamposDeLinea& linea,
                      PasosDeFormula* pasos = nullptr);

}  // namespace formula
