#include "formula/evaluador/sql.h"

#include <array>
#include <utility>

#include "base/text.h"

namespace formula::sql {
namespace {

// In this order; the text is in upper case by then, so that the comparison is exact.
constexpr std::array<std::pair<std::string_view, std::string_view>, 11> kPalabras = {{
    {"CAMPO", "SELECT"},
    {"SQL", ""},
    {" EN ", " FROM "},
    {" SOLOSI ", " WHERE "},
    {" COMO ", " AS "},
    {" Y ", " AND "},
    {" O ", " OR "},
    {" NO ", " NOT "},
    {"(NO ", "(NOT "},
    {"PROMEDIO(", "AVG("},
    {"V(PARCONT)", ""},  // no contract stands behind a formula
}};

}  // namespace

std::string DeFormula(std::string_view texto) {
  std::string sql = base::UpperCase(texto);
  for (const auto& [de, por] : kPalabras)
    if (sql.find(de) != std::string::npos) sql = base::Replace(sql, de, por);
  return sql;
}

}  // namespace formula::sql
