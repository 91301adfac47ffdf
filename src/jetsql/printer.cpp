#include <array>
#include <charconv>
#include <cstdio>

#include "jetsql/parser_internal.h"
#include "jetsql/printer_internal.h"

namespace jetsql {
namespace {

struct OpText {
  std::string_view text;
  int strength;
};

OpText DescribeOp(Op op) {
  switch (op) {
    case Op::Imp:
      return {"IMP", 1};
    case Op::Eqv:
      return {"EQV", 2};
    case Op::Xor:
      return {"XOR", 3};
    case Op::Or:
      return {"OR", 4};
    case Op::And:
      return {"AND", 5};
    case Op::Not:
      return {"NOT", 6};
    case Op::Equal:
      return {"=", 7};
    case Op::NotEqual:
      return {"<>", 7};
    case Op::Less:
      return {"<", 7};
    case Op::Greater:
      return {">", 7};
    case Op::LessOrEqual:
      return {"<=", 7};
    case Op::GreaterOrEqual:
      return {">=", 7};
    case Op::Concat:
      return {"&", 8};
    case Op::Add:
      return {"+", 9};
    case Op::Subtract:
      return {"-", 9};
    case Op::Mod:
      return {"MOD", 10};
    case Op::IntDiv:
      return {"\\", 11};
    case Op::Multiply:
      return {"*", 12};
    case Op::Div:
      return {"/", 12};
    case Op::Minus:
      return {"-", 13};
    case Op::Plus:
      return {"+", 13};
    case Op::Power:
      return {"^", 14};
  }
  return {"", 0};
}

int StrengthOf(const Expr& e) {
  switch (e.node) {
    case Node::Unary:
      return e.op == Op::Minus && e.children[0]->node == Node::Literal ? 99 : DescribeOp(e.op).strength;
    case Node::Binary:
      return DescribeOp(e.op).strength;
    case Node::Between:
    case Node::InList:
    case Node::InQuery:
    case Node::Quantified:
    case Node::IsNull:
    case Node::Like:
      return 7;
    default:
      return 99;
  }
}

bool IsSimpleName(std::string_view n) {
  for (std::size_t i = 0; i < n.size(); ++i) {
    const auto c = static_cast<unsigned char>(n[i]);
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c >= 0x80 || c == '_';
    if (!letter && !(i > 0 && c >= '0' && c <= '9')) return false;
  }
  return !n.empty() && !IsReservedWord(n);
}

}  // namespace

void Printer::Name(std::string_view name) {
  if (IsSimpleName(name))
    t_ += name;
  else
    t_.append("[").append(name).append("]");
}

void Printer::Names(const std::vector<std::string>& names) {
  t_ += '(';
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) t_ += ", ";
    Name(names[i]);
  }
  t_ += ')';
}

void Printer::Literal(const base::Value& v) {
  if (const auto* n = v.GetIf<std::int64_t>()) {
    t_ += std::to_string(*n);
  } else if (const auto* d = v.GetIf<double>()) {
    std::array<char, 40> b{};
    const auto r = std::to_chars(b.data(), b.data() + b.size(), *d);
    const std::string_view s(b.data(), static_cast<std::size_t>(r.ptr - b.data()));
    t_ += s;
    if (s.find_first_of(".e") == std::string_view::npos) t_ += ".0";
  } else if (const auto* f = v.GetIf<base::Date>()) {
    const base::DateParts p = base::PartsOf(*f);
    std::array<char, 48> b{};
    std::snprintf(b.data(), b.size(), "#%02d/%02d/%04d", p.month, p.day, p.year);
    t_ += b.data();
    if (p.hour != 0 || p.minute != 0 || p.second != 0) {
      std::snprintf(b.data(), b.size(), " %02d:%02d:%02d", p.hour, p.minute, p.second);
      t_ += b.data();
    }
    t_ += '#';
  } else if (const auto* s = v.GetIf<std::string>()) {
    t_ += '\'';
    for (const char c : *s) {
      if (c == '\'') t_ += c;
      t_ += c;
    }
    t_ += '\'';
  }
}

void Printer::List(const Expr& e, std::size_t from) {
  for (std::size_t i = from; i < e.children.size(); ++i) {
    if (i > from) t_ += ", ";
    Write(*e.children[i]);
  }
}

void Printer::Binary(const Expr& e, int strength) {
  const bool chain = e.op == Op::And || e.op == Op::Or || e.op == Op::Concat;
  for (std::size_t i = 0; i < e.children.size(); ++i) {
    if (i > 0) t_.append(" ").append(DescribeOp(e.op).text).append(" ");
    Write(*e.children[i], i == 0 && !chain ? strength : strength + 1);
  }
}

// IS NULL, IN, BETWEEN, LIKE and the comparison with ANY or ALL: what stands after their first operand.
void Printer::Predicate(const Expr& e) {
  Write(*e.children[0], 7);
  if (e.node == Node::IsNull) {
    t_ += e.negated ? " IS NOT NULL" : " IS NULL";
    return;
  }
  t_ += e.negated ? " NOT " : " ";
  switch (e.node) {
    case Node::Between:
      t_ += "BETWEEN ";
      Write(*e.children[1], 8);
      t_ += " AND ";
      Write(*e.children[2], 8);
      return;
    case Node::Like:
      t_ += "LIKE ";
      Write(*e.children[1], 8);
      return;
    case Node::InList:
      t_ += "IN (";
      List(e, 1);
      break;
    case Node::InQuery:
      t_ += "IN (";
      Write(*e.query);
      break;
    default:
      t_.append(DescribeOp(e.op).text).append(e.all ? " ALL (" : " ANY (");
      Write(*e.query);
  }
  t_ += ')';
}

void Printer::Unary(const Expr& e) {
  t_ += DescribeOp(e.op).text;
  if (e.op == Op::Not) t_ += ' ';
  // "-10 ^ 2" would be the power of -10.
  const bool power = e.op != Op::Not && e.children[0]->node == Node::Binary && e.children[0]->op == Op::Power;
  Write(*e.children[0], power ? 99 : DescribeOp(e.op).strength);
}

void Printer::Write(const Expr& e, int minimum) {
  const int strength = StrengthOf(e);
  const bool parenthesis = strength < minimum;
  if (parenthesis) t_ += '(';
  switch (e.node) {
    case Node::Literal:
      Literal(e.literal);
      break;
    case Node::True:
      t_ += "TRUE";
      break;
    case Node::False:
      t_ += "FALSE";
      break;
    case Node::Null:
      t_ += "NULL";
      break;
    case Node::Star:
      t_ += '*';
      break;
    case Node::Column:
      if (!e.qualifier.empty()) {
        Name(e.qualifier);
        t_ += '.';
      }
      Name(e.name);
      break;
    case Node::Unary:
      Unary(e);
      break;
    case Node::Binary:
      Binary(e, strength);
      break;
    case Node::Call:
      t_.append(e.name).append(e.distinct ? "(DISTINCT " : "(");
      List(e, 0);
      t_ += ')';
      break;
    case Node::Exists:
    case Node::Subquery:
      t_ += e.node == Node::Exists ? "EXISTS (" : "(";
      Write(*e.query);
      t_ += ')';
      break;
    default:
      Predicate(e);
  }
  if (parenthesis) t_ += ')';
}

void Printer::Item(const ListItem& i) {
  if (!i.expr) {
    if (!i.qualifier.empty()) {
      Name(i.qualifier);
      t_ += '.';
    }
    t_ += '*';
    return;
  }
  Write(*i.expr);
  if (i.alias.empty()) return;
  t_ += " AS ";
  Name(i.alias);
}

void Printer::WriteSelect(const Select& s) {
  t_ += "SELECT ";
  if (s.distinctness == Distinctness::Distinct) t_ += "DISTINCT ";
  if (s.distinctness == Distinctness::DistinctRow) t_ += "DISTINCTROW ";
  if (s.limit) {
    t_ += "TOP ";
    Write(*s.limit);
    t_ += s.limit_is_percent ? " PERCENT " : " ";
  }
  for (std::size_t i = 0; i < s.list.size(); ++i) {
    if (i > 0) t_ += ", ";
    Item(s.list[i]);
  }
  if (!s.target.empty()) {
    t_ += " INTO ";
    Name(s.target);
  }
  if (!s.from.empty()) {
    t_ += " FROM ";
    From(s.from);
  }
  if (s.where) {
    t_ += " WHERE ";
    Write(*s.where);
  }
  for (std::size_t i = 0; i < s.group.size(); ++i) {
    t_ += i == 0 ? " GROUP BY " : ", ";
    Write(*s.group[i]);
  }
  if (s.having) {
    t_ += " HAVING ";
    Write(*s.having);
  }
}

void Printer::From(const std::vector<BranchPtr>& from) {
  for (std::size_t i = 0; i < from.size(); ++i) {
    if (i > 0) t_ += ", ";
    Branch(*from[i]);
  }
}

void Printer::Branch(const jetsql::Branch& r) {
  if (r.leaf) {
    if (r.leaf->name.empty()) {
      t_ += '(';
      Write(*r.leaf->query);
      t_ += ')';
    } else {
      Name(r.leaf->name);
    }
    if (!r.leaf->alias.empty()) {
      t_ += " AS ";
      Name(r.leaf->alias);
    }
    return;
  }
  const auto side = [&](const jetsql::Branch& x) {
    if (!x.leaf) t_ += '(';
    Branch(x);
    if (!x.leaf) t_ += ')';
  };
  side(*r.left);
  t_ += r.type == JoinType::Inner  ? " INNER JOIN "
        : r.type == JoinType::Left ? " LEFT JOIN "
                                   : " RIGHT JOIN ";
  side(*r.right);
  t_ += " ON ";
  Write(*r.condition);
}

std::string Print(const Statement& statement) {
  Printer i;
  std::visit(
      [&](const auto& s) {
        if constexpr (std::is_same_v<std::decay_t<decltype(s)>, QueryPtr>)
          i.Write(*s);
        else
          i.Write(s);
      },
      statement);
  return std::move(i).Text();
}

std::string Print(const Query& query) {
  Printer i;
  i.Write(query);
  return std::move(i).Text();
}

std::string Print(const Select& select) {
  Printer i;
  i.WriteSelect(select);
  return std::move(i).Text();
}

std::string Print(const Expr& expr) {
  Printer i;
  i.Write(expr);
  return std::move(i).Text();
}

}  // namespace jetsql
