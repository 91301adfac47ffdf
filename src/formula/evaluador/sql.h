// Queries written in formulas.
#pragma once

#include <string>
#include <string_view>

namespace formula::sql {

// A query in the formula language's Spanish words, upper-cased and put into SQL, text constants and all.
std::string DeFormula(std::string_view texto);

}  // namespace formula::sql
