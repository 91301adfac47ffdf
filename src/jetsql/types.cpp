#include "jetsql/types_internal.h"

#include "base/text.h"
#include "jetsql/functions.h"
#include "jetsql/runtime.h"

namespace jetsql {
namespace {

using base::Type;

constexpr ExprType kUnknown{Type::Null, false};
constexpr ExprType kNull{Type::Null, true};

bool IsUnknown(ExprType t) { return t.type == Type::Null && !t.null; }

Type CommonNumericType(Type a, Type b) {
  if (a == b) return a;
  if (a > b) std::swap(a, b);  // Boolean, Integer, Simple, Number, Currency
  if (a == Type::Boolean) return b;
  if (a == Type::Integer && b == Type::Currency) return Type::Currency;
  return Type::Number;
}

ExprType ArithmeticType(Op op, ExprType a, ExprType b) {
  if (a.null || b.null) return kNull;
  if (op == Op::Add && a.type == Type::Text && b.type == Type::Text) return {Type::Text, false};
  if (IsUnknown(a) || IsUnknown(b)) return kUnknown;
  const bool a_is_date = a.type == Type::Date, b_is_date = b.type == Type::Date;
  if (op == Op::Add && (a_is_date || b_is_date)) return {Type::Date, false};
  if (op == Op::Subtract && a_is_date) return {b_is_date ? Type::Number : Type::Date, false};
  const ExprType na = AsNumber(a), nb = AsNumber(b);
  return {CommonNumericType(na.type, nb.type), false};
}

}  // namespace

ExprType Common(ExprType a, ExprType b) {
  if (a.null) return b;
  if (b.null) return a;
  if (a.type == b.type) return a;
  if (a.type == Type::Null || b.type == Type::Null) return kUnknown;
  if (a.type == Type::Text || b.type == Type::Text) {
    const Type other = a.type == Type::Text ? b.type : a.type;
    return other == Type::Date || other == Type::Boolean ? ExprType{Type::Text, false} : kUnknown;
  }
  if (a.type == Type::Date || b.type == Type::Date) return {Type::Date, false};
  return {CommonNumericType(a.type, b.type), false};
}

ExprType AsNumber(ExprType t) {
  switch (t.type) {
    case Type::Boolean:
      return {Type::Integer, t.null};
    case Type::Text:
    case Type::Date:
      return {Type::Number, t.null};
    default:
      return t;
  }
}

ExprType BinaryType(Op op, const Expr& e) {
  const ExprType a = e.children[0]->type, b = e.children[1]->type;
  switch (op) {
    case Op::Concat: {
      bool null = true;
      for (const auto& h : e.children) null = null && h->type.null;
      return null ? kNull : ExprType{Type::Text, false};
    }
    case Op::Add:
    case Op::Subtract:
    case Op::Multiply:
      return ArithmeticType(op, a, b);
    case Op::Div:
    case Op::Power:
      return a.null || b.null ? kNull : ExprType{Type::Number, false};
    case Op::Mod:
    case Op::IntDiv:
      return a.null || b.null ? kNull : ExprType{Type::Integer, false};
    default:
      return {Type::Boolean, false};
  }
}

ExprType AggregateType(Special e, ExprType argument) {
  switch (e) {
    case Special::Count:
      return {Type::Integer, false};
    case Special::Sum: {
      ExprType t = AsNumber(argument);
      if (t.type == Type::Single) t.type = Type::Number;
      return t;
    }
    case Special::Avg:
      return {argument.type == Type::Currency ? Type::Currency : Type::Number, false};
    case Special::Min:
    case Special::Max:
    case Special::First:
    case Special::Last:
      return argument;
    default:
      return {Type::Number, false};
  }
}

Special FindSpecial(std::string_view name) {
  struct Pair {
    std::string_view name;
    Special special;
  };
  static constexpr Pair kPairs[] = {
      {"IIF", Special::IIf},       {"SWITCH", Special::Switch}, {"CHOOSE", Special::Choose},
      {"ISNULL", Special::IsNull}, {"COUNT", Special::Count},   {"SUM", Special::Sum},
      {"AVG", Special::Avg},       {"MIN", Special::Min},       {"MAX", Special::Max},
      {"FIRST", Special::First},   {"LAST", Special::Last},     {"STDEV", Special::StDev},
      {"STDEVP", Special::StDevP}, {"VAR", Special::Var},       {"VARP", Special::VarP}};
  for (const auto& p : kPairs)
    if (base::EqualIgnoringCase(p.name, name)) return p.special;
  return Special::None;
}

bool KnowsFunction(std::string_view name) {
  return FindFunction(name) != nullptr || FindSpecial(name) != Special::None;
}

base::Type DeclaredType(std::string_view declaration) {
  const std::string d = base::UpperCase(declaration);
  const auto starts = [&](std::string_view p) { return base::StartsWith(d, p); };
  if (starts("YESNO")) return Type::Boolean;
  if (starts("DATETIME")) return Type::Date;
  if (starts("CURRENCY")) return Type::Currency;
  if (starts("SINGLE")) return Type::Single;
  if (starts("BINARY")) return Type::Null;
  // What follows also reads tables that another program made.
  const auto has = [&](std::string_view p) { return base::Contains(d, p); };
  if (has("INT")) return Type::Integer;
  if (has("CHAR") || has("CLOB") || has("TEXT")) return Type::Text;
  if (has("REAL") || has("FLOA") || has("DOUB") || has("NUMERIC") || has("DECIMAL")) return Type::Number;
  return Type::Null;
}

}  // namespace jetsql
