// A value on its way into a column: as Access converts it when it stores it.
#include "jetsql/types_internal.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {
namespace {

using base::Type;

// The function that makes a value of another type one of the column's; empty when it can stand as it is.
std::string_view Conversion(Type of, Type into) {
  switch (into) {
    case Type::Boolean:
      return "jet_to_bool";
    case Type::Integer:
      return of == Type::Boolean ? "" : "jet_to_int";
    case Type::Single:
      return "jet_to_single";
    case Type::Number:
      return IsQuantity(of) ? "" : "jet_to_number";
    case Type::Currency:
      return of == Type::Integer || of == Type::Boolean ? "" : "jet_to_currency";
    case Type::Date:
      return IsQuantity(of) ? "" : "jet_to_date";
    default:
      return "";
  }
}

// The same for a value of the column's own type: a computed single or currency is a double until it is
// stored.
std::string_view Rounding(const Expr& e, Type into) {
  if (e.type.type != into || e.node == Node::Column) return "";
  if (into == Type::Single) return "jet_to_single";
  return into == Type::Currency ? "jet_to_currency" : "";
}

}  // namespace

void ChangeWriter::Assigned(const Expr& e, Type target) {
  const Type t = e.type.type;
  const bool as_it_is = e.type.null || target == Type::Null || t == target;
  if (!as_it_is && target == Type::Boolean && IsQuantity(t)) {
    t_ += "-(";
    d_.expr.Value(e, strength::kEqual);
    t_ += " <> 0)";
    return;
  }
  if (!as_it_is && target == Type::Text) {
    d_.expr.Text(e);
    return;
  }
  const std::string_view function = as_it_is ? Rounding(e, target) : Conversion(t, target);
  if (function.empty()) {
    d_.expr.Value(e);
    return;
  }
  t_.append(function).append("(");
  d_.expr.Value(e);
  t_ += ')';
}

}  // namespace jetsql
