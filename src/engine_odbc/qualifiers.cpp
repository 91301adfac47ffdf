#include "engine_odbc/qualifiers_internal.h"

#include <algorithm>

#include "base/error.h"
#include "base/text.h"

namespace engine_odbc {
namespace {

using jetsql::Branch;
using jetsql::BranchPtr;
using jetsql::Select;
using jetsql::Source;

std::string_view NameInScope(const Source& f) { return f.alias.empty() ? f.name : f.alias; }

void Leaves(const Branch& branch, std::vector<Source*>& sources) {
  if (branch.leaf) {
    sources.push_back(branch.leaf.get());
    return;
  }
  Leaves(*branch.left, sources);
  Leaves(*branch.right, sources);
}

std::vector<Source*> Leaves(const std::vector<BranchPtr>& from) {
  std::vector<Source*> sources;
  for (const BranchPtr& branch : from) Leaves(*branch, sources);
  return sources;
}

// Whether the base table is read by the source, at any depth.
bool Reads(const Source& f, std::string_view table) {
  if (!f.query) return base::EqualIgnoringCase(f.name, table);
  return std::any_of(f.query->parts.begin(), f.query->parts.end(), [&](const Select& s) {
    const std::vector<Source*> sources = Leaves(s.from);
    return std::any_of(sources.begin(), sources.end(), [&](const Source* g) { return Reads(*g, table); });
  });
}

}  // namespace

bool Qualifiers::Resolve(jetsql::Statement& statement) {
  changed_ = false;
  if (auto* c = std::get_if<jetsql::QueryPtr>(&statement)) {
    Visit(**c, nullptr);
  } else if (auto* i = std::get_if<jetsql::Insert>(&statement)) {
    if (i->query) Visit(*i->query, nullptr);
  } else if (auto* a = std::get_if<jetsql::Update>(&statement)) {
    Visit(*a);
  } else if (auto* b = std::get_if<jetsql::Delete>(&statement)) {
    Visit(*b);
  }
  return changed_;
}

void Qualifiers::Visit(jetsql::Query& c, const Scope* parent) {
  for (Select& s : c.parts) Visit(s, parent);
  if (c.parts.size() != 1) return;  // the order of a union names columns of the result
  const Scope scope{parent, Leaves(c.parts[0].from)};
  for (const jetsql::OrderItem& o : c.order) Visit(o.expr, scope);
  if (c.crosstab == nullptr) return;
  Visit(c.crosstab->value, scope);
  Visit(c.crosstab->pivot, scope);
}

void Qualifiers::Visit(Select& s, const Scope* parent) {
  const Scope scope{parent, Leaves(s.from)};
  VisitDerived(scope);
  for (const BranchPtr& branch : s.from) VisitConditions(*branch, parent);
  for (jetsql::ListItem& item : s.list) {
    if (item.expr)
      Visit(item.expr, scope);
    else if (!item.qualifier.empty())
      Set(item.qualifier, {}, scope);
  }
  Visit(s.where, scope);
  for (const jetsql::ExprPtr& g : s.group) Visit(g, scope);
  Visit(s.having, scope);
}

void Qualifiers::Visit(jetsql::Update& s) {
  const Scope scope{nullptr, Leaves(s.from)};
  VisitDerived(scope);
  for (const BranchPtr& branch : s.from) VisitConditions(*branch, nullptr);
  for (const jetsql::Assignment& a : s.changes) {
    Visit(a.column, scope);
    Visit(a.value, scope);
  }
  Visit(s.where, scope);
}

void Qualifiers::Visit(jetsql::Delete& s) {
  const Scope scope{nullptr, Leaves(s.from)};
  VisitDerived(scope);
  for (const BranchPtr& branch : s.from) VisitConditions(*branch, nullptr);
  if (!s.target.empty()) Set(s.target, {}, scope);
  Visit(s.where, scope);
}

void Qualifiers::VisitDerived(const Scope& scope) {
  for (Source* f : scope.sources)
    if (f->query) Visit(*f->query, scope.parent);
}

// The condition of a join sees the tables that it joins, not those beside them.
void Qualifiers::VisitConditions(Branch& branch, const Scope* parent) {
  if (branch.leaf) return;
  VisitConditions(*branch.left, parent);
  VisitConditions(*branch.right, parent);
  Scope scope{parent, {}};
  Leaves(branch, scope.sources);
  Visit(branch.condition, scope);
}

void Qualifiers::Visit(const jetsql::ExprPtr& e, const Scope& scope) {
  if (e == nullptr) return;
  if (e->node == jetsql::Node::Column && !e->qualifier.empty()) Set(e->qualifier, e->name, scope);
  for (const jetsql::ExprPtr& child : e->children) Visit(child, scope);
  if (e->query) Visit(*e->query, &scope);
  Visit(e->filter, scope);
}

// `name` is the column; empty for all of them.
void Qualifiers::Set(std::string& qualifier, const std::string& name, const Scope& scope) {
  for (const Scope* a = &scope; a != nullptr; a = a->parent)
    for (const Source* f : a->sources)
      if (base::EqualIgnoringCase(NameInScope(*f), qualifier)) return;
  for (const Scope* a = &scope; a != nullptr; a = a->parent)
    for (Source* f : a->sources) {
      if (!Reads(*f, qualifier) || !(name.empty() || HasColumn(*f, name))) continue;
      qualifier = AliasOf(*f, unnamed_);
      changed_ = true;
      return;
    }
}

const std::string& Qualifiers::AliasOf(Source& f, int& unnamed) {
  if (f.alias.empty()) f.alias = "jet_d" + std::to_string(++unnamed);  // a derived table without a name
  return f.alias;
}

bool Qualifiers::HasColumn(const Source& f, std::string_view name) const {
  if (!f.query) {
    const jetsql::TableInfo* table = nullptr;
    base::PassOverError("ODBC: catálogo", nullptr, [&] { table = catalog_.Table(f.name); });
    return table == nullptr || table->columns.empty() ||
           std::any_of(table->columns.begin(), table->columns.end(),
                       [&](const jetsql::TableColumn& c) { return base::EqualIgnoringCase(c.name, name); });
  }
  const Select& s = f.query->parts.front();  // a union takes its names from the first part
  const std::vector<Source*> sources = Leaves(s.from);
  return std::any_of(s.list.begin(), s.list.end(), [&](const jetsql::ListItem& item) {
    if (!item.alias.empty()) return base::EqualIgnoringCase(item.alias, name);
    if (item.expr)
      return item.expr->node == jetsql::Node::Column && base::EqualIgnoringCase(item.expr->name, name);
    return std::any_of(sources.begin(), sources.end(), [&](const Source* g) {
      const bool counts = item.qualifier.empty() || base::EqualIgnoringCase(NameInScope(*g), item.qualifier);
      return counts && HasColumn(*g, name);
    });
  });
}

}  // namespace engine_odbc
