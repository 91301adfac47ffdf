#include "jetsql/types_internal.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {
namespace {

using base::Type;

std::string_view SqlOfOp(Op op) {
  switch (op) {
    case Op::Equal:
      return " = ";
    case Op::NotEqual:
      return " <> ";
    case Op::Less:
      return " < ";
    case Op::Greater:
      return " > ";
    case Op::LessOrEqual:
      return " <= ";
    default:
      return " >= ";
  }
}

bool IsText(const Expr& e) { return e.type.type == Type::Text; }

}  // namespace

// Whether SQLite compares it by JET without being told. Only columns carry a collation.
bool ComparisonWriter::IsCollated(const Expr& e) {
  return e.node == Node::Column && e.source->columns[static_cast<std::size_t>(e.column)].collated;
}

// A value that is compared, grouped or ordered as it stands.
void ComparisonWriter::Collated(const Expr& e, int minimum) {
  if (!MayBeText(e.type) || IsCollated(e)) {
    d_.expr.Value(e, minimum);
    return;
  }
  d_.OpenBracket(strength::kCollate, minimum);
  d_.expr.Value(e, strength::kCollate);
  t_ += " COLLATE JET";
  d_.CloseBracket(strength::kCollate, minimum);
}

// One side of a comparison. A text beside a quantity is read as one; only a text column stays a text, so that
// a code like '07' can be compared with any code.
void ComparisonWriter::Side(const Expr& e, const Expr& other, bool collate, int minimum) {
  const bool column = e.node == Node::Column;
  if (IsText(e) && other.type.type == Type::Date) {
    t_ += "jet_to_date(";
    d_.expr.Value(e);
    t_ += ')';
  } else if (IsText(e) && IsNumericType(other.type.type) && !column) {
    t_ += "jet_num(";
    d_.expr.Value(e);
    t_ += ')';
  } else if (IsNumericType(e.type.type) && IsText(other) && other.node == Node::Column && !column) {
    d_.expr.Text(e);
  } else if (e.type.type == Type::Number && other.type.type == Type::Single) {
    t_ += "jet_as_single(";  // a double beside a single has the precision of the single
    d_.expr.Value(e);
    t_ += ')';
  } else if (collate) {
    Collated(e, minimum);
  } else {
    d_.expr.Value(e, minimum);
  }
}

void ComparisonWriter::Compare(Op op, const Expr& a, const Expr& b, int minimum) {
  const int f = op == Op::Equal || op == Op::NotEqual ? strength::kEqual : strength::kLess;
  d_.OpenBracket(f, minimum);
  // SQLite takes the collation of the left side, else of the right one; a column has one even when it is not
  // JET.
  const bool texts = MayBeText(a.type) && MayBeText(b.type);
  const bool collate = texts && (a.node == Node::Column || !IsCollated(b));
  Side(a, b, collate, f);
  t_ += SqlOfOp(op);
  Side(b, a, false, f + 1);
  d_.CloseBracket(f, minimum);
}

// Null in a list never matches and never makes the answer Null.
void ComparisonWriter::InList(const Expr& e, int minimum) {
  const Expr& x = *e.children[0];
  d_.OpenBracket(strength::kEqual, minimum);
  Collated(x, strength::kEqual);
  t_ += e.negated ? " NOT IN (" : " IN (";
  bool comma = false;
  for (std::size_t i = 1; i < e.children.size(); ++i) {
    const Expr& item = *e.children[i];
    if (item.type.null) continue;
    if (comma) t_ += ", ";
    comma = true;
    if (IsText(x) && IsNumericType(item.type.type))
      d_.expr.Text(item);
    else
      Side(item, x, false, 0);
  }
  t_ += ')';
  d_.CloseBracket(strength::kEqual, minimum);
}

void ComparisonWriter::InQuery(const Expr& e, int minimum) {
  d_.OpenBracket(strength::kEqual, minimum);
  Collated(*e.children[0], strength::kEqual);
  t_ += e.negated ? " NOT IN (" : " IN (";
  d_.query.WriteQuery(*e.query, {});
  t_ += ')';
  d_.CloseBracket(strength::kEqual, minimum);
}

// The bounds may come in either order.
void ComparisonWriter::Between(const Expr& e, int minimum) {
  const Expr &x = *e.children[0], &a = *e.children[1], &b = *e.children[2];
  const auto bounds = [&](std::string_view function) {
    t_ += function;
    Side(a, x, true, 0);
    t_ += ", ";
    Side(b, x, false, 0);
    t_ += ')';
  };
  d_.OpenBracket(strength::kEqual, minimum);
  Collated(x, strength::kEqual);
  t_ += e.negated ? " NOT BETWEEN " : " BETWEEN ";
  bounds("min(");
  t_ += " AND ";
  bounds("max(");
  d_.CloseBracket(strength::kEqual, minimum);
}

void ComparisonWriter::Like(const Expr& e, int minimum) {
  const int f = e.negated ? strength::kNot : strength::kAtom;
  d_.OpenBracket(f, minimum);
  if (e.negated) t_ += "NOT ";
  t_ += "jet_like(";
  const auto side = [&](const Expr& x) {
    if (IsQuantity(x.type.type))
      d_.expr.Text(x);
    else
      d_.expr.Value(x);
  };
  side(*e.children[0]);
  t_ += ", ";
  side(*e.children[1]);
  t_ += d_.options.dao_wildcards ? ", 1)" : ", 0)";
  d_.CloseBracket(f, minimum);
}

// ALL is the least of the answers and ANY the greatest, Null where a Null among them leaves it open.
void ComparisonWriter::Quantified(const Expr& e) {
  Source source;
  source.alias_sql = "jet_q";
  source.columns = e.query->output;
  Expr value(Node::Column);
  value.source = &source;
  value.column = 0;
  value.type = source.columns[0].type;
  const auto answer = [&] { Compare(e.op, *e.children[0], value, 0); };
  t_ += "(SELECT CASE WHEN count(*) = 0 THEN ";
  t_ += e.all ? "1 WHEN min(" : "0 WHEN max(";
  answer();
  t_ += e.all ? ") = 0 THEN 0 WHEN count(" : ") = 1 THEN 1 WHEN count(";
  answer();
  t_ += e.all ? ") < count(*) THEN NULL ELSE 1 END FROM (" : ") < count(*) THEN NULL ELSE 0 END FROM (";
  ListMode mode;
  mode.names = mode.collate = true;
  d_.query.WriteQuery(*e.query, mode);
  t_ += ") AS \"jet_q\")";
}

}  // namespace jetsql
