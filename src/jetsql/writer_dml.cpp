#include <algorithm>

#include "base/error.h"
#include "jetsql/types_internal.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {
namespace {

const SourceColumn& ChangedColumn(const Assignment& a) {
  return a.column->source->columns[static_cast<std::size_t>(a.column->column)];
}

// "(r0, …, v0, …)": the rows of the tables to change, and the values.
std::string Columns(std::size_t rows, std::size_t values) {
  std::string text = " (";
  for (std::size_t i = 0; i < rows; ++i) text += (i > 0 ? ", \"r" : "\"r") + std::to_string(i) + "\"";
  for (std::size_t i = 0; i < values; ++i) text += ", \"v" + std::to_string(i) + "\"";
  return text + ")";
}

}  // namespace

void ChangeWriter::Write(const Insert& s) {
  std::vector<TableColumn> columns;
  for (const int i : s.targets) columns.push_back(s.info->columns[static_cast<std::size_t>(i)]);
  if (s.query) {
    InsertQuery(s.info->name, columns, *s.query);
    return;
  }
  t_ += "INSERT INTO ";
  d_.Name(s.info->name);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    t_ += i == 0 ? " (" : ", ";
    d_.Name(columns[i].name);
  }
  t_ += ") VALUES (";
  for (std::size_t i = 0; i < s.values.size(); ++i) {
    if (i > 0) t_ += ", ";
    Assigned(*s.values[i], columns[i].type);
  }
  t_ += ')';
}

void ChangeWriter::InsertQuery(std::string_view table, const std::vector<TableColumn>& columns,
                               const Query& c) {
  std::vector<base::Type> types;
  t_ += "INSERT INTO ";
  d_.Name(table);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    t_ += i == 0 ? " (" : ", ";
    d_.Name(columns[i].name);
    types.push_back(columns[i].type);
  }
  t_ += ") ";
  const Select& s = c.parts[0];
  if (c.parts.size() == 1 && !s.limit && s.distinctness == Distinctness::None) {
    ListMode mode;
    mode.targets = &types;
    d_.query.Part(s, c.order, mode, false);
    return;
  }
  // The values are told apart and counted before they are converted.
  Source source;
  source.alias_sql = "jet_s";
  source.columns = c.output;
  t_ += "SELECT ";
  for (std::size_t i = 0; i < columns.size(); ++i) {
    Expr e(Node::Column);
    e.source = &source;
    e.column = static_cast<int>(i);
    e.type = c.output[i].type;
    if (i > 0) t_ += ", ";
    Assigned(e, types[i]);
  }
  t_ += " FROM (";
  ListMode mode;
  mode.names = mode.collate = true;
  d_.query.WriteQuery(c, mode);
  t_ += ") AS \"jet_s\"";
}

void ChangeWriter::Write(const Delete& s) {
  const Source& f = *s.source;
  t_ += "DELETE FROM ";
  d_.Name(f.table->name);
  if (s.sources.size() == 1) {
    if (f.alias_sql != f.table->name) {
      t_ += " AS ";
      d_.Name(f.alias_sql);
    }
    if (s.where) {
      t_ += " WHERE ";
      d_.expr.Condition(*s.where);
    }
    return;
  }
  if (!d_.from.IsReachable(s.from, f))
    throw base::Error("La operación debe usar una consulta actualizable", 3073);
  Source row;
  row.columns = f.columns;
  row.alias_sql = f.table->name;
  t_ += " WHERE ";
  d_.from.RowOf(row);
  t_ += " IN (SELECT ";
  d_.from.RowOf(f);
  d_.from.FromAndWhere(s.from, s.where);
  t_ += ')';
}

// The column of a change and what it is set to: the value itself, or with `snapshot` its column there.
void ChangeWriter::Assign(const Update& s, const Source& table, bool snapshot) {
  bool comma = false;
  for (std::size_t i = 0; i < s.changes.size(); ++i) {
    if (s.changes[i].column->source != &table) continue;
    t_ += comma ? ", " : " SET ";
    comma = true;
    d_.Name(ChangedColumn(s.changes[i]).sql_name);
    t_ += " = ";
    if (snapshot)
      t_ += "\"jet_v\".\"v" + std::to_string(i) + "\"";
    else
      Assigned(*s.changes[i].value, ChangedColumn(s.changes[i]).type.type);
  }
}

// The rows that change, by number, and their new values.
void ChangeWriter::Snapshot(const Update& s, const std::vector<const Source*>& tables) {
  t_ += "SELECT ";
  for (std::size_t i = 0; i < tables.size(); ++i) {
    if (!d_.from.IsReachable(s.from, *tables[i]))
      throw base::Error("La operación debe usar una consulta actualizable", 3073);
    if (i > 0) t_ += ", ";
    d_.from.RowOf(*tables[i]);
    t_ += " AS \"r" + std::to_string(i) + "\"";
  }
  for (std::size_t i = 0; i < s.changes.size(); ++i) {
    t_ += ", ";
    Assigned(*s.changes[i].value, ChangedColumn(s.changes[i]).type.type);
    t_ += " AS \"v" + std::to_string(i) + "\"";
  }
  d_.from.FromAndWhere(s.from, s.where);
}

// The new values are computed before anything changes, and wait in a temporary table, one for each number of
// columns. Emptying it last counts the rows that were changed as often as they were matched.
std::vector<std::string> ChangeWriter::Steps(const Update& s, const TranslationOptions& options) {
  SqlDraft values(options);
  if (s.sources.size() == 1) {
    values.text = "UPDATE ";
    values.from.Leaf(*s.sources[0]);
    values.change.Assign(s, *s.sources[0], false);
    if (s.where) {
      values.text += " WHERE ";
      values.expr.Condition(*s.where);
    }
    return {std::move(values.text)};
  }
  std::vector<const Source*> tables;
  for (const auto& a : s.changes)
    if (std::find(tables.begin(), tables.end(), a.column->source) == tables.end())
      tables.push_back(a.column->source);
  values.change.Snapshot(s, tables);
  const std::string expected =
      "temp.\"jet_" + std::to_string(tables.size()) + "_" + std::to_string(s.changes.size()) + "\"";
  std::vector<std::string> steps = {
      "CREATE TABLE IF NOT EXISTS " + expected + Columns(tables.size(), s.changes.size()),
      "INSERT INTO " + expected + " " + values.text};
  for (std::size_t t = 0; t < tables.size(); ++t) {
    SqlDraft e(options);
    Source row;
    row.columns = tables[t]->columns;
    row.alias_sql = tables[t]->table->name;
    e.text = "UPDATE ";
    e.Name(row.alias_sql);
    e.change.Assign(s, *tables[t], true);
    e.text += " FROM " + expected + " AS \"jet_v\" WHERE ";
    e.from.RowOf(row);
    e.text += " = \"jet_v\".\"r" + std::to_string(t) + "\"";
    steps.push_back(std::move(e.text));
  }
  steps.push_back("DELETE FROM " + expected);
  return steps;
}

}  // namespace jetsql
