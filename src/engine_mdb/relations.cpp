// Enforced relationships, as triggers of the mirrors: what Access refuses or carries on, row by row.
// Triggers, because SQLite's own foreign keys would have to be declared before the other table is known, and
// cannot name the relationship that was broken.
#include <array>

#include "base/error.h"
#include "base/text.h"
#include "engine_mdb/source_internal.h"

namespace engine_mdb {
namespace {

using mdb::TableRelationship;

constexpr std::string_view kOld = "OLD.", kNew = "NEW.";

// a1 = OLD.b1 AND …
std::string EqualColumns(const std::vector<std::string>& its, std::string_view from,
                         const std::vector<std::string>& others) {
  std::string sql;
  for (std::size_t i = 0; i < its.size(); ++i)
    sql += (i == 0 ? "" : " AND ") + Quoted(its[i]) + " = " + std::string(from) + Quoted(others[i]);
  return sql;
}

// NEW.a IS NOT NULL OR …
std::string AnyNotNull(const std::vector<std::string>& columns) {
  std::string sql;
  for (const auto& c : columns)
    sql += (sql.empty() ? "(" : " OR ") + std::string(kNew) + Quoted(c) + " IS NOT NULL";
  return sql + ")";
}

std::string Change(const std::vector<std::string>& columns) {
  std::string sql;
  for (const auto& c : columns)
    sql += (sql.empty() ? "(" : " OR ") + ("OLD." + Quoted(c)) + " IS NOT NEW." + Quoted(c);
  return sql + ")";
}

std::string Refuse(const std::string& text) {
  return "SELECT RAISE(ABORT, " + InQuotes(std::string(engine_sqlite::kOwnText) + text) + ")";
}

std::string Trigger(const TableRelationship& r, std::string_view which, const std::string& when,
                    const std::string& condition, const std::string& body) {
  return "CREATE TRIGGER IF NOT EXISTS " + Quoted("jet_rel." + r.name + "." + std::string(which)) +
         " AFTER " + when + (condition.empty() ? "" : " WHEN " + condition) + " BEGIN " + body + "; END";
}

std::string OnChangeOf(const std::vector<std::string>& columns, const std::string& table) {
  return "UPDATE OF " + QuotedList(columns) + " ON " + Quoted(table);
}

std::string Assignments(const std::vector<std::string>& columns,
                        const std::vector<std::string>* new_columns) {
  std::string sql;
  for (std::size_t i = 0; i < columns.size(); ++i)
    sql += (i == 0 ? "" : ", ") + Quoted(columns[i]) + " = " +
           (new_columns == nullptr ? "NULL" : std::string(kNew) + Quoted((*new_columns)[i]));
  return sql;
}

bool Cascades(const TableRelationship& r) {
  return (r.flags & (TableRelationship::kCascadesUpdates | TableRelationship::kCascadesDeletes |
                     TableRelationship::kSetsNull)) != 0;
}

}  // namespace

// A key without any value refers to nothing; one of which a part is missing must be found as it is, and no
// key with a Null ever is.
void MdbSource::WatchAsChild(const MirrorTable& child, const TableRelationship& r) {
  const std::string missing = AnyNotNull(r.columns) + " AND NOT EXISTS (SELECT 1 FROM " +
                              Quoted(r.referenced_table) + " WHERE " +
                              EqualColumns(r.referenced_columns, kNew, r.columns) + ")";
  const std::string no = Refuse("No se puede guardar el registro en la tabla " + r.table +
                                ": falta el registro relacionado en la tabla " + r.referenced_table +
                                " (relación " + r.name + ").");
  Execute(Trigger(r, "alta", "INSERT ON " + Quoted(child.info.name), missing, no));
  Execute(Trigger(r, "cambio", OnChangeOf(r.columns, child.info.name), Change(r.columns) + " AND " + missing,
                  no));
}

void MdbSource::WatchAsParent(const MirrorTable& parent, const TableRelationship& r) {
  const std::string children =
      Quoted(r.table) + " WHERE " + EqualColumns(r.columns, kOld, r.referenced_columns);
  const std::string found = "EXISTS (SELECT 1 FROM " + children + ")";
  const std::string no = Refuse("No se puede borrar el registro de la tabla " + r.referenced_table +
                                " ni cambiar su clave: la tabla " + r.table +
                                " tiene registros relacionados (relación " + r.name + ").");
  const std::string& table = parent.info.name;
  const std::string on_delete = "DELETE ON " + Quoted(table);
  if ((r.flags & TableRelationship::kCascadesDeletes) != 0)
    Execute(Trigger(r, "baja", on_delete, {}, "DELETE FROM " + children));
  else if ((r.flags & TableRelationship::kSetsNull) != 0)
    Execute(Trigger(r, "baja", on_delete, {},
                    "UPDATE " + Quoted(r.table) + " SET " + Assignments(r.columns, nullptr) + " WHERE " +
                        EqualColumns(r.columns, kOld, r.referenced_columns)));
  else
    Execute(Trigger(r, "baja", on_delete, found, no));
  const std::string on_change = OnChangeOf(r.referenced_columns, table);
  if ((r.flags & TableRelationship::kCascadesUpdates) != 0)
    Execute(Trigger(r, "clave", on_change, Change(r.referenced_columns),
                    "UPDATE " + Quoted(r.table) + " SET " + Assignments(r.columns, &r.referenced_columns) +
                        " WHERE " + EqualColumns(r.columns, kOld, r.referenced_columns)));
  else
    Execute(Trigger(r, "clave", on_change, Change(r.referenced_columns) + " AND " + found, no));
}

void MdbSource::WatchAutonumber(const MirrorTable& t) {
  if (t.autonumber < 0) return;
  const std::string& column = t.info.columns[static_cast<std::size_t>(t.autonumber)].name;
  Execute("CREATE TRIGGER IF NOT EXISTS " + Quoted("jet_auto." + t.info.name) + " AFTER INSERT ON " +
          Quoted(t.info.name) + " BEGIN SELECT idm_visto(" + std::to_string(t.number) + ", NEW." +
          Quoted(column) + "); END");
}

namespace {

// The column's new value takes `form`, of a row that comes and of one that changes.
std::array<std::string, 2> FormTriggers(const MirrorTable& t, const std::string& name,
                                        const std::string& form) {
  const std::string table = Quoted(t.info.name), column = Quoted(name), row = RowIdName(t);
  const std::string trigger = "jet_form." + t.info.name + "." + name;
  const std::string body = " WHEN NEW." + column + " IS NOT " + form + " COLLATE BINARY BEGIN UPDATE " +
                           table + " SET " + column + " = " + form + " WHERE " + row + " = NEW." + row +
                           "; END";
  return {"CREATE TRIGGER IF NOT EXISTS " + Quoted(trigger + ".1") + " AFTER INSERT ON " + table + body,
          "CREATE TRIGGER IF NOT EXISTS " + Quoted(trigger + ".2") + " AFTER UPDATE OF " + column + " ON " +
              table + body};
}

}  // namespace

// What a column of the file cannot hold as it was given takes the form that it will have there: the digits of
// a decimal, the letters of a GUID, the bytes of a text.
void MdbSource::WatchForms(const MirrorTable& t) {
  for (const std::size_t i : t.columns) {
    const mdb::Column& c = t.definition.columns[i];
    const std::string column = Quoted(c.name);
    std::string form;
    if (c.type == mdb::ColumnType::Decimal)
      form = "idm_decimal(NEW." + column + ", " + std::to_string(c.precision) + ", " +
             std::to_string(c.scale) + ", " + InQuotes(c.name) + ")";
    else if (c.type == mdb::ColumnType::Guid)
      form = "idm_guid_form(NEW." + column + ", " + InQuotes(c.name) + ")";
    else if (c.type == mdb::ColumnType::Binary || c.type == mdb::ColumnType::Ole)
      form = "idm_bytes(NEW." + column + ", " +
             std::to_string(c.type == mdb::ColumnType::Ole ? 0 : c.length) + ", " + InQuotes(c.name) + ")";
    else
      continue;
    for (const std::string& trigger : FormTriggers(t, c.name, form)) Execute(trigger);
  }
}

// Inserting needs the tables that the row refers to; changing and deleting also those that refer to it, and
// with a cascade whatever they need in turn.
void MdbSource::Prepare(MirrorTable& t, bool all) {
  if (all ? t.state.ready_for_all : t.state.ready_to_insert) return;
  if (t.base_refuses) throw BaseNotWritable(t.reason);
  if (!t.reason.empty()) throw base::Error(t.reason);
  Load(t);
  BuildIndexes(t);
  if (!t.reason.empty()) throw base::Error(t.reason);  // its rows break a unique index
  std::vector<std::pair<const TableRelationship*, MirrorTable*>> parents, children;
  for (const TableRelationship& r : base_.Catalog().Relationships()) {
    if (!r.IsEnforced() || r.columns.empty() || r.columns.size() != r.referenced_columns.size()) continue;
    const bool child = base::EqualIgnoringCase(r.table, t.info.name);
    const bool parent = all && base::EqualIgnoringCase(r.referenced_table, t.info.name);
    if (child) parents.emplace_back(&r, &Local(r.referenced_table));
    if (parent) children.emplace_back(&r, &Local(r.table));
  }
  WatchAutonumber(t);
  WatchForms(t);
  for (const auto& [r, parent] : parents) {
    BuildIndexes(*parent);
    WatchAsChild(t, *r);
  }
  for (const auto& [r, child] : children) {
    BuildIndexes(*child);
    WatchAsParent(t, *r);
  }
  t.state.ready_to_insert = true;
  t.state.ready_for_all = all || t.state.ready_for_all;
  try {
    for (const auto& [r, child] : children)
      if (Cascades(*r)) Prepare(*child, true);
  } catch (const base::Error&) {
    t.state.ready_for_all = false;  // a table that it would carry on to cannot be written
    throw;
  }
}

}  // namespace engine_mdb
