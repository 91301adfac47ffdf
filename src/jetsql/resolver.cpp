#include "jetsql/resolver_internal.h"

#include <algorithm>

#include "base/error.h"
#include "base/text.h"
#include "jetsql/crosstab_internal.h"
#include "jetsql/parser.h"
#include "jetsql/types_internal.h"

namespace jetsql {
namespace {

constexpr std::size_t kNestedQueries = 30;

std::string FullName(const Expr& e) { return e.qualifier.empty() ? e.name : e.qualifier + "." + e.name; }

std::string_view QualifierOf(const Source& f) { return f.alias.empty() ? f.name : f.alias; }

int ColumnOf(const Source& f, std::string_view name) {
  for (std::size_t i = 0; i < f.columns.size(); ++i)
    if (base::EqualIgnoringCase(f.columns[i].name, name)) return static_cast<int>(i);
  for (std::size_t i = 0; i < f.columns.size(); ++i)
    if (base::EqualIgnoringCase(f.columns[i].long_name, name)) return static_cast<int>(i);
  return -1;
}

}  // namespace

void Resolver::Leaves(const Branch& branch, std::vector<Source*>& sources) const {
  if (branch.leaf) {
    sources.push_back(branch.leaf.get());
    return;
  }
  Leaves(*branch.left, sources);
  Leaves(*branch.right, sources);
}

void Resolver::Leaves(const std::vector<BranchPtr>& from, std::vector<Source*>& sources) const {
  for (const auto& branch : from) Leaves(*branch, sources);
}

// SQLite would find the nearest table of an alias; with aliases that are unique in the statement there is
// only one, ours.
std::string Resolver::UniqueAlias(std::string_view name) {
  const std::string root(name);
  for (int n = 1;; ++n) {
    std::string alias = n == 1 ? root : root + "_" + std::to_string(n);
    const std::string key = base::LowerCase(alias);
    if (std::find(alias_sql_.begin(), alias_sql_.end(), key) != alias_sql_.end()) continue;
    alias_sql_.push_back(key);
    return alias;
  }
}

const TableInfo& Resolver::TableOf(std::string_view name) const {
  if (const TableInfo* t = catalog_.Table(name)) return *t;
  if (catalog_.Query(name) != nullptr)
    throw base::Error("'" + std::string(name) + "' es una consulta; la operación necesita una tabla");
  throw base::Error("No se encuentra la tabla o consulta '" + std::string(name) + "'");
}

void Resolver::ResolveSources(const std::vector<Source*>& sources, const Scope* parent) {
  for (Source* f : sources) {
    ResolveSource(*f, parent);
    const std::string_view alias = QualifierOf(*f);
    for (const Source* other : sources) {
      if (other == f) break;
      if (!alias.empty() && base::EqualIgnoringCase(QualifierOf(*other), alias))
        throw base::Error("La tabla '" + std::string(alias) + "' está repetida en la cláusula FROM");
    }
  }
}

void Resolver::ResolveSource(Source& f, const Scope* parent) {
  if (f.name.empty()) {
    Resolve(*f.query, parent);
  } else if ((f.table = catalog_.Table(f.name)) != nullptr) {
    for (const auto& c : f.table->columns)
      f.columns.push_back({c.name, {}, c.name, {c.type, false}, c.type == base::Type::Text});
    f.reads.push_back(f.table->name);
  } else if (const std::string* text = catalog_.Query(f.name)) {
    OpenQuery(f, *text);
  } else {
    throw base::Error("No se encuentra la tabla o consulta '" + f.name + "'");
  }
  if (f.query) {
    f.columns = f.query->output;
    for (const auto& part : f.query->parts)
      for (const Source* g : part.sources) f.reads.insert(f.reads.end(), g->reads.begin(), g->reads.end());
  }
  std::string_view alias = QualifierOf(f);
  if (alias.empty()) alias = "jet_d";
  if (f.alias.empty() && f.table != nullptr) alias = f.table->name;
  f.alias_sql = UniqueAlias(alias);
}

void Resolver::OpenQuery(Source& f, const std::string& text) {
  for (const auto& open_query : open_)
    if (base::EqualIgnoringCase(open_query, f.name))
      throw base::Error("La consulta '" + f.name + "' se contiene a sí misma");
  if (open_.size() >= kNestedQueries)
    throw base::Error("La consulta '" + f.name + "' está anidada a demasiada profundidad");
  Statement s;
  try {
    s = Parse(text, Literals::InText);
  } catch (const SyntaxError& e) {
    throw base::Error("En la consulta '" + f.name + "': " + e.Description());
  }
  auto* query = std::get_if<QueryPtr>(&s);
  if (query == nullptr) throw base::Error("La consulta '" + f.name + "' no devuelve filas");
  f.query = std::move(*query);
  OpenCrosstab(f);
  open_.push_back(f.name);
  Resolve(*f.query, nullptr);
  open_.pop_back();
}

void Resolver::OpenCrosstab(const Source& f) const {
  if (!f.query->crosstab || f.query->crosstab->has_list) return;
  if (crosstabs_ != nullptr)
    for (const auto& c : *crosstabs_)
      if (base::EqualIgnoringCase(c.query, f.name)) {
        SetValues(*f.query, c.values);
        return;
      }
  throw MissingColumns(f.name);
}

// The condition of a join sees the tables that it joins, not those beside them.
void Resolver::ResolveConditions(Branch& branch, const Scope* parent) {
  if (branch.leaf) return;
  ResolveConditions(*branch.left, parent);
  ResolveConditions(*branch.right, parent);
  Scope scope{parent, {}, nullptr};
  Leaves(branch, scope.sources);
  Resolve(branch.condition, {scope});
}

Resolver::Found Resolver::FindInSources(const std::vector<Source*>& sources, const Expr& e) const {
  Found found;
  for (const Source* f : sources) {
    if (!e.qualifier.empty() && !base::EqualIgnoringCase(QualifierOf(*f), e.qualifier)) continue;
    const int i = ColumnOf(*f, e.name);
    if (i < 0) {
      if (e.qualifier.empty()) continue;
      throw base::Error("No se encuentra la columna '" + FullName(e) + "'");
    }
    if (found.source != nullptr)
      throw base::Error("La columna '" + e.name + "' está en más de una tabla de la cláusula FROM");
    found = {f, i};
  }
  return found;
}

// A qualifier that names no table in scope: the statements written for Access name the base table that a
// derived table, or a table under an alias, reads.
Resolver::Found Resolver::FindByTableRead(const Scope& scope, const Expr& e) const {
  for (const Scope* a = &scope; a != nullptr; a = a->parent) {
    for (const Source* f : a->sources) {
      const bool reads = std::any_of(f->reads.begin(), f->reads.end(), [&](const std::string& t) {
        return base::EqualIgnoringCase(t, e.qualifier);
      });
      if (!reads) continue;
      const int i = ColumnOf(*f, e.name);
      if (i >= 0) return {f, i};
    }
  }
  return {};
}

Resolver::Found Resolver::Find(const Scope& scope, const Expr& e) const {
  for (const Scope* a = &scope; a != nullptr; a = a->parent) {
    const Found h = FindInSources(a->sources, e);
    if (h.source != nullptr) return h;
  }
  return e.qualifier.empty() ? Found{} : FindByTableRead(scope, e);
}

}  // namespace jetsql
