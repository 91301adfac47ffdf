#include "base/error.h"
#include "jetsql/runtime.h"
#include "jetsql/types_internal.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {
namespace {

constexpr int kMaxLevel = 800;
constexpr std::size_t kMaxLength = 8u << 20;
constexpr std::size_t kMaxArguments = 100;  // SQLite's functions take 127
constexpr std::size_t kFlatChain = 60;

// Aliases inside a list share trees, so that a short text can be a long expression.
class Level {
 public:
  explicit Level(SqlDraft& draft) : draft_(draft) {
    if (++draft_.depth > kMaxLevel || draft_.text.size() > kMaxLength)
      throw base::Error("La sentencia es demasiado compleja");
  }
  ~Level() { --draft_.depth; }
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;

 private:
  SqlDraft& draft_;
};

// What SQLite itself answers with 1, 0 or NULL.
bool IsCondition(const Expr& e) {
  switch (e.node) {
    case Node::Unary:
      return e.op == Op::Not;
    case Node::Binary:
      return e.op < Op::Concat;
    case Node::Between:
    case Node::InList:
    case Node::InQuery:
    case Node::Exists:
    case Node::Quantified:
    case Node::IsNull:
    case Node::Like:
      return true;
    case Node::Call:
      return e.special == Special::IsNull;
    default:
      return false;
  }
}

}  // namespace

void ExpressionWriter::Column(const Expr& e) {
  d_.Name(e.source->alias_sql);
  t_ += '.';
  d_.Name(e.source->columns[static_cast<std::size_t>(e.column)].sql_name);
}

void ExpressionWriter::Value(const Expr& e, int minimum) {
  const Level level(d_);
  if (IsCondition(e)) {  // True is -1
    d_.OpenBracket(strength::kUnary, minimum);
    t_ += "-(";
    Condition(e);
    t_ += ')';
    d_.CloseBracket(strength::kUnary, minimum);
    return;
  }
  switch (e.node) {
    case Node::Literal:
      d_.Literal(e);
      break;
    case Node::True:
      d_.OpenBracket(strength::kUnary, minimum);
      t_ += "-1";
      d_.CloseBracket(strength::kUnary, minimum);
      break;
    case Node::False:
      t_ += '0';
      break;
    case Node::Null:
      t_ += "NULL";
      break;
    case Node::Column:
      Column(e);
      break;
    case Node::Unary:
      Unary(e, minimum);
      break;
    case Node::Binary:
      if (e.op == Op::Concat)
        Concatenate(e.children, e.children.size());
      else
        Arithmetic(e, minimum);
      break;
    case Node::Call:
      d_.call.Call(e);
      break;
    case Node::Subquery:
      t_ += '(';
      d_.query.WriteQuery(*e.query, {});
      t_ += ')';
      break;
    default:
      break;  // a star, which Count writes itself
  }
}

void ExpressionWriter::Condition(const Expr& e, int minimum) {
  const Level level(d_);
  switch (e.node) {
    case Node::Between:
      d_.compare.Between(e, minimum);
      return;
    case Node::InList:
      d_.compare.InList(e, minimum);
      return;
    case Node::InQuery:
      d_.compare.InQuery(e, minimum);
      return;
    case Node::Like:
      d_.compare.Like(e, minimum);
      return;
    case Node::Quantified:
      d_.compare.Quantified(e);
      return;
    case Node::Exists:
      t_ += "EXISTS (";
      d_.query.WriteQuery(*e.query, {});
      t_ += ')';
      return;
    default:
      break;
  }
  if (!IsCondition(e)) {
    Value(e, minimum);
  } else if (e.node == Node::IsNull || e.node == Node::Call) {
    d_.OpenBracket(strength::kEqual, minimum);
    Value(*e.children[0], strength::kEqual);
    t_ += e.negated ? " IS NOT NULL" : " IS NULL";
    d_.CloseBracket(strength::kEqual, minimum);
  } else if (e.node == Node::Unary) {
    d_.OpenBracket(strength::kNot, minimum);
    t_ += "NOT ";
    Condition(*e.children[0], strength::kNot);
    d_.CloseBracket(strength::kNot, minimum);
  } else if (e.op < Op::Not) {
    Logic(e, minimum);
  } else {
    d_.compare.Compare(e.op, *e.children[0], *e.children[1], minimum);
  }
}

// A long chain is written as a balanced tree: SQLite counts the depth of a chain as its length.
void ExpressionWriter::String(const Expr& e, std::size_t from, std::size_t to, int minimum) {
  const int f = e.op == Op::And ? strength::kAnd : strength::kOr;
  const std::string_view op = e.op == Op::And ? " AND " : " OR ";
  if (to - from == 1) {
    Condition(*e.children[from], minimum);
    return;
  }
  d_.OpenBracket(f, minimum);
  if (to - from <= kFlatChain) {
    for (std::size_t i = from; i < to; ++i) {
      if (i > from) t_ += op;
      Condition(*e.children[i], f + 1);
    }
  } else {
    const std::size_t middle = from + (to - from) / 2;
    String(e, from, middle, f + 1);
    t_ += op;
    String(e, middle, to, f + 1);
  }
  d_.CloseBracket(f, minimum);
}

void ExpressionWriter::Logic(const Expr& e, int minimum) {
  if (e.op == Op::And || e.op == Op::Or) {
    String(e, 0, e.children.size(), minimum);
    return;
  }
  const bool imp = e.op == Op::Imp;
  const int f = imp ? strength::kOr : strength::kEqual;
  d_.OpenBracket(f, minimum);
  t_ += "(NOT ";
  Condition(*e.children[0], strength::kNot);
  t_ += imp ? ") OR " : e.op == Op::Xor ? ") <> (NOT " : ") = (NOT ";
  Condition(*e.children[1], imp ? strength::kAnd : strength::kNot);
  if (!imp) t_ += ')';
  d_.CloseBracket(f, minimum);
}

void ExpressionWriter::Number(const Expr& e, int minimum) {
  if (IsQuantity(e.type.type) || e.type.null) {
    Value(e, minimum);
    return;
  }
  t_ += "jet_num(";
  Value(e);
  t_ += ')';
}

void ExpressionWriter::Unary(const Expr& e, int minimum) {
  const Expr& x = *e.children[0];
  if (e.op == Op::Plus) {
    Value(x, minimum);
    return;
  }
  d_.OpenBracket(strength::kUnary, minimum);
  t_ += '-';
  Number(x, strength::kAtom);  // "--" would start a comment
  d_.CloseBracket(strength::kUnary, minimum);
}

void ExpressionWriter::Helper(std::string_view name, const Expr& e) {
  t_.append(name).append("(");
  Value(*e.children[0]);
  t_ += ", ";
  Value(*e.children[1]);
  t_ += ')';
}

void ExpressionWriter::Arithmetic(const Expr& e, int minimum) {
  switch (e.op) {
    case Op::Div:
      Helper("jet_div", e);
      return;
    case Op::IntDiv:
      Helper("jet_idiv", e);
      return;
    case Op::Mod:
      Helper("jet_mod", e);
      return;
    case Op::Power:
      Helper("jet_pow", e);
      return;
    default:
      break;
  }
  const Expr &a = *e.children[0], &b = *e.children[1];
  if (e.op == Op::Add && (MayBeText(a.type) || MayBeText(b.type))) {
    t_ += "jet_add(";
    Tags(e.children, 0, 2);
    t_ += ", ";
    Value(a);
    t_ += ", ";
    Value(b);
    t_ += ')';
    return;
  }
  const int f = e.op == Op::Multiply ? strength::kMultiply : strength::kSum;
  const bool null =
      a.type.null || b.type.null;  // then nothing else matters, not even a text that is no number
  d_.OpenBracket(f, minimum);
  null ? Value(a, f) : Number(a, f);
  t_ += e.op == Op::Multiply ? " * " : e.op == Op::Add ? " + " : " - ";
  null ? Value(b, f + 1) : Number(b, f + 1);
  d_.CloseBracket(f, minimum);
}

void ExpressionWriter::Tags(const std::vector<ExprPtr>& parts, std::size_t from, std::size_t to) {
  t_ += '\'';
  for (std::size_t i = from; i < to; ++i) t_ += TypeLetter(parts[i]->type.type);
  t_ += '\'';
}

void ExpressionWriter::Concatenate(const std::vector<ExprPtr>& parts, std::size_t to) {
  t_ += "jet_concat(";
  std::size_t from = 0;
  if (to > kMaxArguments) {
    from = to - kMaxArguments + 1;
    t_ += "'T";
    for (std::size_t i = from; i < to; ++i) t_ += TypeLetter(parts[i]->type.type);
    t_ += "', ";
    Concatenate(parts, from);
  } else {
    Tags(parts, 0, to);
  }
  for (std::size_t i = from; i < to; ++i) {
    t_ += ", ";
    Value(*parts[i]);
  }
  t_ += ')';
}

void ExpressionWriter::Text(const Expr& e) {
  if (e.type.type == base::Type::Text || e.type.null) {
    Value(e);
    return;
  }
  t_.append("jet_concat('").append(1, TypeLetter(e.type.type)).append("', ");
  Value(e);
  t_ += ')';
}

}  // namespace jetsql
