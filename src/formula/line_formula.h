// The formula of a line: wildcards, then the evaluator.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "formula/evaluator.h"

namespace formula {

// The fifteen fields of a kept line, by number (0 person key … 14 value).
using CamposDeLinea = std::array<std::string, 15>;

// Every wildcard replaced by the line's field, in the fixed order, each step on the result of the one before.
std::string ReemplazaComodines(std::string_view formula, const CamposDeLinea& linea);

// The new quantity of a line by the text of the formula box; a result that is no number is 0.
float CalcularFormula(Evaluador& ev, std::string_view texto_formula, const CamposDeLinea& linea);

}  // namespace formula
