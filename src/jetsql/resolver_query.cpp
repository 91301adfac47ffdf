#include <algorithm>

#include "base/error.h"
#include "base/text.h"
#include "jetsql/crosstab_internal.h"
#include "jetsql/parser.h"
#include "jetsql/resolver_internal.h"
#include "jetsql/types_internal.h"

namespace jetsql {
namespace {

ExprPtr ResolvedColumn(const Source& f, std::size_t i) {
  auto e = std::make_shared<Expr>(Node::Column);
  e->qualifier = f.alias.empty() ? f.name : f.alias;
  e->name = f.columns[i].name;
  e->source = &f;
  e->column = static_cast<int>(i);
  e->type = f.columns[i].type;
  e->resolved = true;
  return e;
}

bool IsPosition(const Expr& e) { return e.node == Node::Literal && e.literal.type() == base::Type::Integer; }

void CollectUsed(const Expr& e, std::vector<const Source*>& used) {
  if (e.source != nullptr && std::find(used.begin(), used.end(), e.source) == used.end())
    used.push_back(e.source);
  for (const auto& h : e.children) CollectUsed(*h, used);
}

}  // namespace

void Resolver::Resolve(Query& c, const Scope* parent) {
  if (c.crosstab) ExpandCrosstab(c, locale_, fixed_);
  for (auto& part : c.parts) {
    ResolvePart(part, parent);
    if (part.list.size() != c.parts[0].list.size())
      throw base::Error("Las consultas de la unión no tienen el mismo número de columnas");
  }
  ResolveOrder(c, parent);
  ComputeOutput(c);
}

void Resolver::ResolvePart(Select& s, const Scope* parent) {
  Leaves(s.from, s.sources);
  ResolveSources(s.sources, parent);
  const Scope without_aliases{parent, s.sources, nullptr};
  for (const auto& branch : s.from) ResolveConditions(*branch, parent);
  if (s.where) Resolve(s.where, {without_aliases});
  Expand(s);
  bool aggregate = false;
  const Scope scope{parent, s.sources, &s.list};
  for (auto& item : s.list) {
    item.resolving = true;
    Resolve(item.expr, {scope, Aggregates::Allowed, &aggregate});
    item.resolving = false;
  }
  for (auto& g : s.group) Resolve(g, {without_aliases});
  if (s.having) Resolve(s.having, {without_aliases, Aggregates::Allowed, &aggregate});
  s.aggregated = aggregate || !s.group.empty() || s.having != nullptr;
  if (s.aggregated) {
    for (auto& item : s.list) CheckGroup(s, item.expr, false);
    if (s.having) CheckGroup(s, s.having, false);
  }
  NameOutput(s);
  ChooseDistinct(s);
}

void Resolver::Expand(Select& s) const {
  std::vector<ListItem> list;
  for (auto& item : s.list) {
    if (item.expr) {
      list.push_back(std::move(item));
      continue;
    }
    std::vector<const Source*> from;
    for (const Source* f : s.sources) {
      const bool matches = item.qualifier.empty() ||
                           base::EqualIgnoringCase(f->alias.empty() ? f->name : f->alias, item.qualifier);
      if (matches) from.push_back(f);
    }
    for (const Source* f : s.sources)  // a base table that is read under another name
      if (from.empty() && std::any_of(f->reads.begin(), f->reads.end(), [&](const std::string& t) {
            return base::EqualIgnoringCase(t, item.qualifier);
          }))
        from.push_back(f);
    if (from.empty())
      throw base::Error(item.qualifier.empty()
                            ? "'*' necesita una cláusula FROM"
                            : "No se encuentra la tabla o consulta '" + item.qualifier + "'");
    for (const Source* f : from)
      for (std::size_t i = 0; i < f->columns.size(); ++i) {
        ListItem column;
        column.expr = ResolvedColumn(*f, i);
        list.push_back(std::move(column));
      }
  }
  s.list = std::move(list);
}

void Resolver::NameOutput(Select& s) const {
  std::vector<std::string> used;
  used.reserve(s.list.size());
  for (std::size_t i = 0; i < s.list.size(); ++i) {
    ListItem& item = s.list[i];
    if (!item.alias.empty())
      item.name = item.alias;
    else if (item.expr->node == Node::Column)
      item.name = item.expr->source->columns[static_cast<std::size_t>(item.expr->column)].name;
    else
      item.name = "Expr" + std::to_string(1000 + i);
    std::string sql = item.name;
    for (int n = 2; std::find(used.begin(), used.end(), base::LowerCase(sql)) != used.end(); ++n)
      sql = item.name + "_" + std::to_string(n);
    used.push_back(base::LowerCase(sql));
    item.sql_name = std::move(sql);
  }
}

// DISTINCTROW leaves one row for each different set of rows of the tables that the list names, when it does
// not name them all. A derived table has no rows of its own to tell apart: then nothing is left out.
void Resolver::ChooseDistinct(Select& s) const {
  if (s.distinctness != Distinctness::DistinctRow || s.aggregated || s.sources.size() < 2) return;
  std::vector<const Source*> used;
  for (const auto& item : s.list) CollectUsed(*item.expr, used);
  if (used.empty() || used.size() == s.sources.size()) return;
  for (Source* f : s.sources) {
    if (std::find(used.begin(), used.end(), f) == used.end()) continue;
    if (f->table == nullptr) {
      s.distinct.clear();
      return;
    }
    s.distinct.push_back(f);
  }
}

// Every part of an expression of an aggregated query is a group's expression, inside an aggregate, or made of
// such. A part that is a group's expression becomes that very tree, so that SQLite sees the same text.
void Resolver::CheckGroup(Select& s, ExprPtr& e, bool inside_aggregate) {
  if (inside_aggregate) return;
  for (const auto& g : s.group) {
    if (g == e) return;
    if (!Match(*g, *e)) continue;
    e = g;
    return;
  }
  if (e->node == Node::Column) {
    if (std::find(s.sources.begin(), s.sources.end(), e->source) == s.sources.end())
      return;  // of an outer query
    throw base::Error("La columna '" + e->name +
                      "' no está en GROUP BY ni dentro de una función de agregado");
  }
  const bool aggregate = e->node == Node::Call && IsAggregate(e->special);
  for (auto& h : e->children) CheckGroup(s, h, aggregate);
}

// Whether it names a table of an outer query.
bool Resolver::NamesOuter(const Expr& e, const Select& s) {
  if (e.source != nullptr && std::find(s.sources.begin(), s.sources.end(), e.source) == s.sources.end())
    return true;
  return std::any_of(e.children.begin(), e.children.end(),
                     [&](const ExprPtr& h) { return NamesOuter(*h, s); });
}

void Resolver::ResolveOrder(Query& c, const Scope* parent) {
  if (c.parts.size() > 1) {
    ResolveUnionOrder(c);
    return;
  }
  Select& s = c.parts[0];
  bool aggregate = false;
  const Scope scope{parent, s.sources, &s.list};
  for (auto& o : c.order) {
    if (IsPosition(*o.expr)) {
      const std::int64_t n = *o.expr->literal.GetIf<std::int64_t>();
      if (n < 1 || n > static_cast<std::int64_t>(s.list.size()))
        throw base::Error("ORDER BY " + std::to_string(n) + ": no hay una columna en esa posición");
      if (o.expr->index >= 0) fixed_.push_back(o.expr->index);
      o.position = static_cast<int>(n - 1);
      o.expr = s.list[static_cast<std::size_t>(n - 1)].expr;
      continue;
    }
    Resolve(o.expr, {scope, Aggregates::Allowed, &aggregate});
    if (aggregate && !s.aggregated)
      throw base::Error("ORDER BY tiene una función de agregado y la consulta no");
    if (s.aggregated) CheckGroup(s, o.expr, false);
    c.orders_by_outer = c.orders_by_outer || NamesOuter(*o.expr, s);
  }
  if (s.distinctness == Distinctness::Distinct) ResolveDistinctOrder(c);
}

// A union is ordered by the names, or the positions, of its first query.
void Resolver::ResolveUnionOrder(Query& c) {
  const auto& list = c.parts[0].list;
  for (auto& o : c.order) {
    if (IsPosition(*o.expr)) {
      const std::int64_t n = *o.expr->literal.GetIf<std::int64_t>();
      if (n >= 1 && n <= static_cast<std::int64_t>(list.size())) o.position = static_cast<int>(n - 1);
      if (o.expr->index >= 0) fixed_.push_back(o.expr->index);
    } else if (o.expr->node == Node::Column) {
      for (std::size_t i = 0; i < list.size() && o.position < 0; ++i)
        if (base::EqualIgnoringCase(list[i].name, o.expr->name)) o.position = static_cast<int>(i);
    }
    if (o.position < 0)
      throw base::Error("ORDER BY " + Print(*o.expr) +
                        ": una unión se ordena por las columnas de su primera consulta");
    o.expr = list[static_cast<std::size_t>(o.position)].expr;
  }
}

void Resolver::ResolveDistinctOrder(Query& c) {
  const auto& list = c.parts[0].list;
  for (auto& o : c.order) {
    for (std::size_t i = 0; i < list.size() && o.position < 0; ++i)
      if (list[i].expr == o.expr || Match(*list[i].expr, *o.expr)) o.position = static_cast<int>(i);
    if (o.position < 0)
      throw base::Error("ORDER BY tiene una expresión que no está en la lista de SELECT DISTINCT");
  }
}

void Resolver::ComputeOutput(Query& c) const {
  const auto& list = c.parts[0].list;
  for (std::size_t i = 0; i < list.size(); ++i) {
    SourceColumn col;
    col.name = list[i].name;
    col.sql_name = list[i].sql_name;
    if (col.sql_name != col.name || std::any_of(list.begin(), list.end(), [&](const ListItem& other) {
          return &other != &list[i] && base::EqualIgnoringCase(other.name, col.name);
        })) {
      const Expr& e = *list[i].expr;
      if (list[i].alias.empty() && e.node == Node::Column)
        col.long_name = (e.source->alias.empty() ? e.source->name : e.source->alias) + "." + col.name;
    }
    col.type = {base::Type::Null, true};
    for (const auto& part : c.parts) col.type = Common(col.type, part.list[i].expr->type);
    col.collated = MayBeText(col.type);
    c.output.push_back(std::move(col));
  }
}

bool Resolver::AreEqual(const Expr& a, const Expr& b, std::vector<int>& literals) const {
  if (a.node != b.node || a.negated != b.negated || a.children.size() != b.children.size()) return false;
  if (a.query || b.query) return false;
  switch (a.node) {
    case Node::Literal:
      if (!(a.literal == b.literal)) return false;
      if (a.index >= 0) literals.push_back(a.index);
      if (b.index >= 0) literals.push_back(b.index);
      break;
    case Node::Column:
      if (a.source != b.source || a.column != b.column) return false;
      break;
    case Node::Call:
      if (a.function != b.function || a.special != b.special || a.distinct != b.distinct || a.filter ||
          b.filter)
        return false;
      break;
    case Node::Unary:
    case Node::Binary:
      if (a.op != b.op) return false;
      break;
    default:
      break;
  }
  for (std::size_t i = 0; i < a.children.size(); ++i)
    if (!AreEqual(*a.children[i], *b.children[i], literals)) return false;
  return true;
}

bool Resolver::Match(const Expr& a, const Expr& b) {
  std::vector<int> literals;
  if (!AreEqual(a, b, literals)) return false;
  fixed_.insert(fixed_.end(), literals.begin(), literals.end());
  return true;
}

}  // namespace jetsql
