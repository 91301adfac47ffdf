#include "base/error.h"
#include "base/text.h"
#include "jetsql/resolver_internal.h"

namespace jetsql {
namespace {

int ColumnOfTable(const TableInfo& t, std::string_view name) {
  for (std::size_t i = 0; i < t.columns.size(); ++i)
    if (base::EqualIgnoringCase(t.columns[i].name, name)) return static_cast<int>(i);
  return -1;
}

[[noreturn]] void ThrowNotUpdatable() {
  throw base::Error("La operación debe usar una consulta actualizable", 3073);
}

bool HasSubquery(const Expr& e) {
  if (e.query) return true;
  for (const auto& h : e.children)
    if (HasSubquery(*h)) return true;
  return false;
}

}  // namespace

void Resolver::Resolve(Insert& s) {
  s.info = &TableOf(s.table);
  const auto add = [&](std::string_view name) {
    const int i = ColumnOfTable(*s.info, name);
    if (i < 0)
      throw base::Error("La tabla '" + s.info->name + "' no tiene la columna '" + std::string(name) + "'");
    for (const int other : s.targets)
      if (other == i) throw base::Error("La columna '" + std::string(name) + "' está repetida");
    s.targets.push_back(i);
  };
  for (const auto& c : s.columns) add(c);
  if (s.query) {
    Resolve(*s.query, nullptr);
    if (s.columns.empty())  // each value goes to the column of its name
      for (const auto& c : s.query->output) add(c.name);
  } else {
    if (s.columns.empty())
      for (const auto& c : s.info->columns) add(c.name);
    const Scope none;
    for (auto& v : s.values) Resolve(v, {none});
  }
  const std::size_t how_many = s.query ? s.query->output.size() : s.values.size();
  if (how_many != s.targets.size())
    throw base::Error("El número de valores no coincide con el número de columnas de destino");
}

void Resolver::Resolve(Update& s) {
  Leaves(s.from, s.sources);
  ResolveSources(s.sources, nullptr);
  const Scope scope{nullptr, s.sources, nullptr};
  for (const auto& branch : s.from) ResolveConditions(*branch, nullptr);
  for (auto& change : s.changes) {
    Resolve(change.column, {scope});
    if (change.column->source == nullptr || change.column->source->table == nullptr) ThrowNotUpdatable();
    if (HasSubquery(*change.value)) ThrowNotUpdatable();
    Resolve(change.value, {scope});
  }
  for (std::size_t i = 0; i < s.changes.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      if (s.changes[i].column->source == s.changes[j].column->source &&
          s.changes[i].column->column == s.changes[j].column->column)
        throw base::Error("La columna '" + s.changes[i].column->name + "' está repetida");
  if (s.where) Resolve(s.where, {scope});
}

void Resolver::Resolve(Delete& s) {
  Leaves(s.from, s.sources);
  ResolveSources(s.sources, nullptr);
  const Scope scope{nullptr, s.sources, nullptr};
  for (const auto& branch : s.from) ResolveConditions(*branch, nullptr);
  if (s.where) Resolve(s.where, {scope});
  if (s.target.empty()) {
    if (s.sources.size() > 1)
      throw base::Error("DELETE debe decir de qué tabla se borran las filas (tabla.*)");
    s.source = s.sources[0];
  } else {
    for (const Source* f : s.sources)
      if (base::EqualIgnoringCase(f->alias.empty() ? f->name : f->alias, s.target)) s.source = f;
    for (const Source* f : s.sources)  // a table that is read under another name
      if (s.source == nullptr && f->table != nullptr && base::EqualIgnoringCase(f->name, s.target))
        s.source = f;
    if (s.source == nullptr) throw base::Error("No se encuentra la tabla o consulta '" + s.target + "'");
  }
  if (s.source->table == nullptr) ThrowNotUpdatable();
}

}  // namespace jetsql
