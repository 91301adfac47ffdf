// What CalcularFormula asks of the substitution beyond its text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "formula/evaluador/line_formula.h"

namespace formula {

// None when the text would pass kLargoMaximo.
std::optional<std::string> SinComodines(std::string_view formula, const CamposDeLinea& linea,
                                        PasosDeFormula* pasos = nullptr);

}  // namespace formula
