// What a definition leaves to be understood.
#pragma once

#include <string>

#include "jetsql/ast.h"

namespace jetsql {

// The name of the index of a column that is a key or unique, and of a constraint: the one given, or else that
// of every primary key, or that of the (first) column.
std::string IndexName(const ColumnDefinition& column);
std::string IndexName(const Constraint& constraint);

// Whether a column of a new table refuses Null: it says so, it is the key or of the key, or a constraint says
// so.
bool RefusesNull(const CreateTable& table, const ColumnDefinition& column);

}  // namespace jetsql
