#include "jetsql/definition_rules.h"

#include <algorithm>

#include "base/text.h"

namespace jetsql {
namespace {

constexpr const char* kPrimaryKey = "PrimaryKey";

bool Names(const std::vector<std::string>& names, const std::string& name) {
  return std::any_of(names.begin(), names.end(),
                     [&](const std::string& n) { return base::EqualIgnoringCase(n, name); });
}

}  // namespace

std::string IndexName(const ColumnDefinition& column) {
  if (!column.constraint_name.empty()) return column.constraint_name;
  return column.key ? kPrimaryKey : column.name;
}

std::string IndexName(const Constraint& constraint) {
  if (!constraint.name.empty()) return constraint.name;
  return constraint.what == Constraint::What::Key ? kPrimaryKey : constraint.columns[0];
}

bool RefusesNull(const CreateTable& table, const ColumnDefinition& column) {
  if (column.not_null || column.key) return true;
  return std::any_of(table.constraints.begin(), table.constraints.end(), [&](const Constraint& r) {
    const bool refuses = r.what == Constraint::What::Key || r.what == Constraint::What::NotNull;
    return refuses && Names(r.columns, column.name);
  });
}

}  // namespace jetsql
