#include "jetsql/definition_rules.h"

#include <algorithm>

#include "base/text.h"

namespace jetsql {
namespace {

constexpr const char* kPrimaryKey = "PrimaryKey";

bool Names(const std::vector<std::string>& names, const std::string& name) {
  return std::any_of(names.begin(), names.end(),
                     [&](const std::string& n) { return base::IgualSinCaso(n, name); });
}

}  // namespace

std::string IndexName(const DefColumna& column) {
  if (!column.nombre_restriccion.empty()) return column.nombre_restriccion;
  return column.clave ? kPrimaryKey : column.nombre;
}

std::string IndexName(const Restriccion& constraint) {
  if (!constraint.nombre.empty()) return constraint.nombre;
  return constraint.que == Restriccion::Que::Clave ? kPrimaryKey : constraint.columnas[0];
}

bool RefusesNull(const CrearTabla& table, const DefColumna& column) {
  if (column.no_nulo || column.clave) return true;
  return std::any_of(table.restricciones.begin(), table.restricciones.end(), [&](const Restriccion& r) {
    const bool refuses = r.que == Restriccion::Que::Clave || r.que == Restriccion::Que::NoNulo;
    return refuses && Names(r.columnas, column.nombre);
  });
}

}  // namespace jetsql
