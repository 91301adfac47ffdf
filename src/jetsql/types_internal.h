// Static types of expressions.
#pragma once

#include <string_view>

#include "jetsql/ast.h"

namespace jetsql {

constexpr bool IsNumericType(base::Type t) {
  return t == base::Type::Boolean || t == base::Type::Integer || t == base::Type::Single ||
         t == base::Type::Number || t == base::Type::Currency;
}
// Held as a number, so that SQLite's own arithmetic and comparison serve.
constexpr bool IsQuantity(base::Type t) { return IsNumericType(t) || t == base::Type::Date; }

// Whether a value may turn out to be a text.
constexpr bool MayBeText(ExprType t) {
  return !t.null && (t.type == base::Type::Text || t.type == base::Type::Null);
}

// The type of a column that holds values of both. A text and a date or boolean give a text, and the writer
// turns those values into their texts; a text and a number stay what each is, and the type is not known.
ExprType Common(ExprType a, ExprType b);
// As a number: a boolean is an integer, a text a number.
ExprType AsNumber(ExprType t);

ExprType BinaryType(Op op, const Expr& e);
ExprType AggregateType(Special e, ExprType argument);

Special FindSpecial(std::string_view name);

}  // namespace jetsql
