#include "jetsql/crosstab_internal.h"

#include "base/error.h"
#include "base/number.h"
#include "base/text.h"
#include "jetsql/types_internal.h"

namespace jetsql {
namespace {

ExprPtr Clone(const Expr& e) {
  if (e.query) throw base::Error("TRANSFORM y PIVOT no admiten una subconsulta");
  auto c = std::make_shared<Expr>(e.node);
  c->op = e.op;
  c->negated = e.negated;
  c->distinct = e.distinct;
  c->parameter = e.parameter;
  c->height = e.height;
  c->literal = e.literal;
  c->index = e.index;
  c->qualifier = e.qualifier;
  c->name = e.name;
  for (const auto& h : e.children) c->children.push_back(Clone(*h));
  return c;
}

// A value of the rows as a tree that is written into the text.
ExprPtr FromValue(const base::Value& v) {
  if (v.IsNull()) return std::make_shared<Expr>(Node::Null);
  if (const auto* b = v.GetIf<bool>()) return std::make_shared<Expr>(*b ? Node::True : Node::False);
  auto e = std::make_shared<Expr>(Node::Literal);
  if (const auto* s = v.GetIf<float>())
    e->literal = base::DoubleOfSingle(*s);
  else
    e->literal = v.type() == base::Type::Currency ? base::Value(v.Number()) : v;
  return e;
}

ExprPtr ColumnCondition(const Crosstab& crosstab, const ExprPtr& column) {
  auto e = std::make_shared<Expr>(column->node == Node::Null ? Node::IsNull : Node::Binary);
  e->op = Op::Equal;
  e->children.push_back(Clone(*crosstab.pivot));
  if (e->node == Node::Binary) e->children.push_back(column);
  return e;
}

bool AddFilters(Expr& e, const Crosstab& crosstab, const ExprPtr& column) {
  bool any = false;
  if (e.node == Node::Call && IsAggregate(FindSpecial(e.name))) {
    e.filter = ColumnCondition(crosstab, column);
    return true;
  }
  for (const auto& h : e.children) any = AddFilters(*h, crosstab, column) || any;
  return any;
}

// "<>" stands for Null; a point would part the name of a table from that of a column.
std::string NameOf(const Expr& column, const base::Locale& locale) {
  switch (column.node) {
    case Node::Null:
      return "<>";
    case Node::True:
      return "-1";
    case Node::False:
      return "0";
    case Node::Unary:
      if (column.op == Op::Minus && column.children[0]->node == Node::Literal)
        return "-" + column.children[0]->literal.Text(locale);
      break;
    case Node::Literal: {
      const std::string text = base::Replace(column.literal.Text(locale), ".", "_");
      return text.empty() ? "_" : text;
    }
    default:
      break;
  }
  throw base::Error("Las columnas de PIVOT … IN deben ser valores");
}

}  // namespace

void AskForValues(Query& c) {
  Select& s = c.parts[0];
  if (!s.target.empty() || s.limit) throw base::Error("TRANSFORM no admite INTO ni TOP");
  ListItem item;
  item.expr = c.crosstab->pivot;
  s.list.clear();
  s.list.push_back(std::move(item));
  s.group.clear();
  s.having = nullptr;
  s.distinctness = Distinctness::Distinct;
  c.order.clear();
  c.order.push_back({Clone(*c.crosstab->pivot)});
  c.crosstab = nullptr;
}

void SetValues(Query& c, const std::vector<base::Value>& values) {
  c.crosstab->has_list = true;
  for (const auto& v : values) c.crosstab->list.push_back(FromValue(v));
}

void ExpandCrosstab(Query& c, const base::Locale& locale, std::vector<int>& fixed) {
  const Crosstab& crosstab = *c.crosstab;
  if (!crosstab.has_list)
    throw base::Error(
        "Una consulta de referencias cruzadas sin columnas fijas (PIVOT … IN) no se puede usar "
        "dentro de otra");
  Select& s = c.parts[0];
  if (!s.target.empty() || s.limit) throw base::Error("TRANSFORM no admite INTO ni TOP");
  constexpr std::size_t kColumns = 255;
  if (s.list.size() + crosstab.list.size() > kColumns)
    throw base::Error("La consulta de referencias cruzadas tiene demasiadas columnas (" +
                      std::to_string(crosstab.list.size()) + ")");
  for (const auto& column : crosstab.list) {
    ListItem item;
    item.expr = Clone(*crosstab.value);
    if (!AddFilters(*item.expr, crosstab, column))
      throw base::Error("TRANSFORM necesita una función de agregado, como Sum o Count");
    item.alias = NameOf(*column, locale);
    const Expr& literal = column->node == Node::Unary ? *column->children[0] : *column;
    if (literal.index >= 0) fixed.push_back(literal.index);
    s.list.push_back(std::move(item));
  }
  c.crosstab = nullptr;
}

}  // namespace jetsql
