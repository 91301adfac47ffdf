#include "base/error.h"
#include "base/text.h"
#include "jetsql/domain_internal.h"
#include "jetsql/resolver_internal.h"
#include "jetsql/types_internal.h"

namespace jetsql {
namespace {

void CheckArguments(const Expr& e, std::size_t minimum, std::size_t maximum) {
  if (e.children.size() < minimum || e.children.size() > maximum)
    throw base::Error("La función '" + e.name + "' tiene un número de argumentos incorrecto");
}

constexpr std::size_t kAnyCount = 1000;

}  // namespace

void Resolver::Resolve(ExprPtr& e, const Context& c) {
  if (e->resolved) return;  // an item of the list that was reached by its alias
  if (e->node == Node::Column) {
    ResolveColumn(e, c);
    return;
  }
  if (e->node == Node::Call) {
    ResolveCall(*e, c);
    return;
  }
  for (auto& h : e->children) Resolve(h, c);
  e->resolved = true;
  switch (e->node) {
    case Node::Literal:
      e->type = {e->literal.type(), false};
      break;
    case Node::Null:
      e->type = {base::Type::Null, true};
      break;
    case Node::Unary:
      e->type = e->op == Op::Not    ? ExprType{base::Type::Boolean, false}
                : e->op == Op::Plus ? e->children[0]->type
                                    : AsNumber(e->children[0]->type);
      break;
    case Node::Binary:
      e->type = BinaryType(e->op, *e);
      break;
    case Node::Subquery:
      ResolveSubquery(*e, c, true);
      e->type = e->query->output[0].type;
      break;
    case Node::Exists:
      ResolveSubquery(*e, c, false);
      e->type = {base::Type::Boolean, false};
      break;
    case Node::InQuery:
    case Node::Quantified:
      ResolveSubquery(*e, c, true);
      e->type = {base::Type::Boolean, false};
      break;
    case Node::Star:
      throw base::Error("'*' solo puede estar en Count(*)");
    default:
      e->type = {base::Type::Boolean, false};
  }
}

void Resolver::ResolveAlone(ExprPtr& e) {
  const Scope none;
  Resolve(e, {none});
}

void Resolver::ResolveSubquery(Expr& e, const Context& c, bool one_column) {
  Resolve(*e.query, &c.scope);
  if (one_column && e.query->output.size() != 1)
    throw base::Error("La subconsulta debe devolver una sola columna");
}

// The alias of a list item stands for the item where no table has a column of that name; inside the item
// itself the name can only be an outer query's.
bool Resolver::ResolveByAlias(ExprPtr& e, const Context& c) {
  if (c.scope.list == nullptr || !e->qualifier.empty()) return false;
  for (auto& item : *c.scope.list) {
    if (item.resolving || item.alias.empty() || !base::EqualIgnoringCase(item.alias, e->name)) continue;
    item.resolving = true;
    Resolve(item.expr, c);
    item.resolving = false;
    e = item.expr;
    return true;
  }
  return false;
}

void Resolver::ResolveColumn(ExprPtr& e, const Context& c) {
  Found h = FindInSources(c.scope.sources, *e);
  if (h.source == nullptr && ResolveByAlias(e, c)) return;
  if (h.source == nullptr) h = Find(c.scope, *e);
  e->resolved = true;
  if (h.source != nullptr) {
    const SourceColumn& column = h.source->columns[static_cast<std::size_t>(h.column)];
    e->source = h.source;
    e->column = h.column;
    e->type = column.type;
    return;
  }
  const std::string name = e->qualifier.empty() ? e->name : e->qualifier + "." + e->name;
  if (e->qualifier.empty()) {
    if (base::EqualIgnoringCase(name, "YES") || base::EqualIgnoringCase(name, "NO")) {
      e->node = base::EqualIgnoringCase(name, "YES") ? Node::True : Node::False;
      e->type = {base::Type::Boolean, false};
      return;
    }
    // Date and Now stand without brackets, too.
    const Function* f = FindFunction(name);
    if (f != nullptr && f->maximum == 0) {
      e->node = Node::Call;
      e->resolved = false;
      ResolveCall(*e, c);
      return;
    }
  }
  if (e->parameter) throw base::Error("Falta el valor del parámetro '" + name + "'");
  throw base::Error("No se encuentra la columna '" + name + "'");
}

void Resolver::ResolveCall(Expr& e, const Context& c) {
  e.resolved = true;
  e.special = FindSpecial(e.name);
  Context inside = c;
  if (IsAggregate(e.special)) {
    if (c.aggregates != Aggregates::Allowed)
      throw base::Error("La función de agregado '" + e.name + "' no puede estar aquí");
    *c.has_aggregate = true;
    inside.aggregates = Aggregates::Inside;
    if (e.filter) Resolve(e.filter, inside);
    CheckArguments(e, 1, 1);
    if (e.special == Special::Count && e.children[0]->node == Node::Star) {
      e.type = {base::Type::Integer, false};
      return;
    }
  }
  if (e.distinct && !IsAggregate(e.special))
    throw base::Error("DISTINCT solo puede estar en una función de agregado, y no en '" + e.name + "'");
  for (auto& h : e.children) Resolve(h, inside);
  if (e.special != Special::None) {
    ResolveSpecial(e);
    return;
  }
  if (IsDomainFunction(e.name)) {
    CheckArguments(e, 2, 3);
    OpenDomain(e, fixed_);
    Resolve(*e.query, nullptr);
    if (e.query->output.size() != 1) throw base::Error(e.name + " debe dar un solo valor");
    e.type = e.query->output[0].type;
    return;
  }
  e.function = FindFunction(e.name);
  if (e.function == nullptr) throw base::Error("No se encuentra la función '" + e.name + "'");
  CheckArguments(e, static_cast<std::size_t>(e.function->minimum),
                 e.function->maximum < 0 ? kAnyCount : static_cast<std::size_t>(e.function->maximum));
  if (!e.function->deterministic) deterministic_ = false;
  switch (e.function->rule) {
    case TypeRule::Fixed:
      e.type = {e.function->type, false};
      break;
    case TypeRule::OfFirst:
      e.type = e.children.empty() ? ExprType{} : AsNumber(e.children[0]->type);
      break;
    case TypeRule::Common:
      e.type = {base::Type::Null, true};
      for (const auto& h : e.children) e.type = Common(e.type, h->type);
      break;
  }
}

void Resolver::ResolveSpecial(Expr& e) {
  ExprType t{base::Type::Null, true};
  switch (e.special) {
    case Special::IIf:
      CheckArguments(e, 2, 3);
      for (std::size_t i = 1; i < e.children.size(); ++i) t = Common(t, e.children[i]->type);
      break;
    case Special::Switch:
      CheckArguments(e, 2, kAnyCount);
      if (e.children.size() % 2 != 0) CheckArguments(e, kAnyCount, kAnyCount);
      for (std::size_t i = 1; i < e.children.size(); i += 2) t = Common(t, e.children[i]->type);
      break;
    case Special::Choose:
      CheckArguments(e, 2, kAnyCount);
      for (std::size_t i = 1; i < e.children.size(); ++i) t = Common(t, e.children[i]->type);
      break;
    case Special::IsNull:
      CheckArguments(e, 1, 1);
      t = {base::Type::Boolean, false};
      break;
    default:
      t = AggregateType(e.special, e.children[0]->type);
  }
  e.type = t;
}

}  // namespace jetsql
