#include "engine_sqlite/catalog_internal.h"

#include "base/text.h"
#include "engine_sqlite/sqlite_internal.h"
#include "jetsql/runtime.h"

namespace engine_sqlite {
namespace {

std::string Text(sqlite3_stmt* s, int column) { return std::string(TextOf(s, column)); }

// Calls `row` for each row.
template <typename Row>
void Walk(sqlite3* base, const Statement& s, Row&& row) {
  int rc = SQLITE_OK;
  while ((rc = sqlite3_step(s.get())) == SQLITE_ROW) row(s.get());
  if (rc != SQLITE_DONE) ThrowError(base);
}

void BindText(const Statement& s, int index, std::string_view text) {
  sqlite3_bind_text64(s.get(), index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

}  // namespace

void SqliteCatalog::Read() {
  if (loaded_) return;
  bool has_queries = false;
  const Statement s =
      Prepare(base_,
              "SELECT name FROM sqlite_schema WHERE type IN ('table','view') AND name NOT LIKE 'sqlite\\_%' "
              "ESCAPE '\\'");
  Walk(base_, s, [&](sqlite3_stmt* f) {
    std::string name = Text(f, 0);
    if (name == kQueryTable) {
      has_queries = true;
      return;
    }
    std::string key = base::LowerCase(name);
    tables_[std::move(key)].name = std::move(name);
  });
  if (has_queries) ReadQueries();
  loaded_ = true;
}

void SqliteCatalog::ReadQueries() {
  const Statement s = Prepare(base_, "SELECT Nombre, Texto FROM MSysConsultas");
  Walk(base_, s, [&](sqlite3_stmt* f) {
    std::string name = Text(f, 0);
    std::string key = base::LowerCase(name);
    queries_[std::move(key)] = {std::move(name), Text(f, 1)};
  });
}

const jetsql::TableInfo* SqliteCatalog::Table(std::string_view name) {
  if (source_ != nullptr) return source_->Table(name);
  Read();
  const auto it = tables_.find(base::LowerCase(name));
  if (it == tables_.end()) return nullptr;
  Entry& entry = it->second;
  if (entry.columns == nullptr) {
    auto info = std::make_unique<jetsql::TableInfo>();
    info->name = entry.name;
    const Statement s = Prepare(base_, "SELECT name, type FROM pragma_table_info(?1) ORDER BY cid");
    BindText(s, 1, entry.name);
    Walk(base_, s, [&](sqlite3_stmt* f) {
      info->columns.push_back({Text(f, 0), jetsql::DeclaredType(Text(f, 1))});
    });
    entry.columns = std::move(info);
  }
  return entry.columns.get();
}

const std::string* SqliteCatalog::Query(std::string_view name) {
  if (source_ != nullptr) return source_->Query(name);
  Read();
  const auto it = queries_.find(base::LowerCase(name));
  return it == queries_.end() ? nullptr : &it->second.text;
}

void SqliteCatalog::Forget() {
  loaded_ = false;
  tables_.clear();
  queries_.clear();
}

void SqliteCatalog::VerifyNameIsFree(const jetsql::Definition& definition) {
  using What = jetsql::Definition::What;
  const bool table = definition.what == What::CreateTable, view = definition.what == What::CreateView;
  if (!table && !view) return;
  if (base::EqualIgnoringCase(definition.name, kQueryTable))
    throw db::Error("El nombre " + definition.name + " está reservado.");
  if (Query(definition.name) != nullptr)
    throw db::Error("Ya existe una consulta con el nombre " + definition.name + ".");
  if (view && Table(definition.name) != nullptr)
    throw db::Error("Ya existe una tabla con el nombre " + definition.name + ".");
}

void SqliteCatalog::CreateQuery(std::string_view name, std::string_view text) {
  ExecuteOwn(
      base_,
      "CREATE TABLE IF NOT EXISTS MSysConsultas (Nombre TEXT PRIMARY KEY NOT NULL, Texto TEXT NOT NULL)");
  const Statement s = Prepare(base_, "INSERT INTO MSysConsultas (Nombre, Texto) VALUES (?1, ?2)");
  BindText(s, 1, name);
  BindText(s, 2, text);
  Walk(base_, s, [](sqlite3_stmt*) {});
}

void SqliteCatalog::DropQuery(std::string_view name) {
  if (Query(name) == nullptr) throw db::Error("No existe la consulta " + std::string(name) + ".");
  const Statement s = Prepare(base_, "DELETE FROM MSysConsultas WHERE Nombre = ?1");
  BindText(s, 1, queries_.at(base::LowerCase(name)).name);
  Walk(base_, s, [](sqlite3_stmt*) {});
}

}  // namespace engine_sqlite
