#include "jetsql/printer_internal.h"

namespace jetsql {

void Printer::Write(const Query& c) {
  if (c.crosstab) {
    t_ += "TRANSFORM ";
    Write(*c.crosstab->value);
    t_ += ' ';
  }
  for (std::size_t i = 0; i < c.parts.size(); ++i) {
    if (i > 0) t_ += c.all[i - 1] ? " UNION ALL " : " UNION ";
    WriteSelect(c.parts[i]);
  }
  for (std::size_t i = 0; i < c.order.size(); ++i) {
    t_ += i == 0 ? " ORDER BY " : ", ";
    Write(*c.order[i].expr);
    if (c.order[i].descending) t_ += " DESC";
  }
  if (!c.crosstab) return;
  t_ += " PIVOT ";
  Write(*c.crosstab->pivot, 8);
  for (std::size_t i = 0; i < c.crosstab->list.size(); ++i) {
    t_ += i == 0 ? " IN (" : ", ";
    Write(*c.crosstab->list[i]);
  }
  if (c.crosstab->has_list) t_ += ')';
}

void Printer::Write(const Insert& s) {
  t_ += "INSERT INTO ";
  Name(s.table);
  t_ += ' ';
  if (!s.columns.empty()) {
    Names(s.columns);
    t_ += ' ';
  }
  if (s.query) {
    Write(*s.query);
    return;
  }
  t_ += "VALUES (";
  for (std::size_t i = 0; i < s.values.size(); ++i) {
    if (i > 0) t_ += ", ";
    Write(*s.values[i]);
  }
  t_ += ')';
}

void Printer::Write(const Update& s) {
  t_ += "UPDATE ";
  From(s.from);
  for (std::size_t i = 0; i < s.changes.size(); ++i) {
    t_ += i == 0 ? " SET " : ", ";
    Write(*s.changes[i].column);
    t_ += " = ";
    Write(*s.changes[i].value);
  }
  if (!s.where) return;
  t_ += " WHERE ";
  Write(*s.where);
}

void Printer::Write(const Delete& s) {
  t_ += "DELETE ";
  if (s.target.empty()) {
    t_ += "*";
  } else {
    Name(s.target);
    t_ += ".*";
  }
  t_ += " FROM ";
  From(s.from);
  if (!s.where) return;
  t_ += " WHERE ";
  Write(*s.where);
}

void Printer::Type(const ColumnDefinition& c) {
  static constexpr std::string_view kNames[] = {"YESNO",  "BYTE",     "SHORT",    "LONG",    "COUNTER",
                                                "SINGLE", "DOUBLE",   "CURRENCY", "DECIMAL", "DATETIME",
                                                "TEXT",   "LONGTEXT", "BINARY",   "GUID",    "LONGBINARY"};
  t_ += kNames[static_cast<std::size_t>(c.kind)];
  if (c.kind == ColumnKind::Counter && c.seed != 1)
    t_.append("(").append(std::to_string(c.seed)).append(", 1)");
  if (c.length > 0) t_.append("(").append(std::to_string(c.length)).append(")");
  if (c.kind == ColumnKind::Decimal && (c.precision != 18 || c.scale != 0))
    t_.append("(")
        .append(std::to_string(c.precision))
        .append(", ")
        .append(std::to_string(c.scale))
        .append(")");
}

void Printer::WriteReference(const Reference& r) {
  t_ += " REFERENCES ";
  Name(r.table);
  if (!r.columns.empty()) {
    t_ += ' ';
    Names(r.columns);
  }
  if (r.cascades_updates) t_ += " ON UPDATE CASCADE";
  if (r.cascades_deletes) t_ += " ON DELETE CASCADE";
}

void Printer::Column(const ColumnDefinition& c) {
  Name(c.name);
  t_ += ' ';
  Type(c);
  if (c.default_value) {
    t_ += " DEFAULT ";
    Write(*c.default_value, 8);
  }
  if (c.not_null) t_ += " NOT NULL";
  if (!c.constraint_name.empty()) {
    t_ += " CONSTRAINT ";
    Name(c.constraint_name);
  }
  if (c.key) t_ += " PRIMARY KEY";
  if (c.unique) t_ += " UNIQUE";
  if (c.reference) WriteReference(*c.reference);
}

void Printer::WriteConstraint(const Constraint& r) {
  if (!r.name.empty()) {
    t_ += "CONSTRAINT ";
    Name(r.name);
    t_ += ' ';
  }
  static constexpr std::string_view kNames[] = {"PRIMARY KEY ", "UNIQUE ", "NOT NULL ", "FOREIGN KEY "};
  t_ += kNames[static_cast<std::size_t>(r.what)];
  Names(r.columns);
  if (r.what == Constraint::What::Foreign) WriteReference(r.reference);
}

void Printer::Write(const CreateTable& s) {
  t_ += "CREATE TABLE ";
  Name(s.name);
  t_ += " (";
  bool comma = false;
  for (const auto& c : s.columns) {
    if (comma) t_ += ", ";
    comma = true;
    Column(c);
  }
  for (const auto& r : s.constraints) {
    if (comma) t_ += ", ";
    comma = true;
    WriteConstraint(r);
  }
  t_ += ')';
}

void Printer::Write(const CreateIndex& s) {
  t_ += s.unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ";
  Name(s.name);
  t_ += " ON ";
  Name(s.table);
  t_ += " (";
  for (std::size_t i = 0; i < s.columns.size(); ++i) {
    if (i > 0) t_ += ", ";
    Name(s.columns[i].name);
    if (s.columns[i].descending) t_ += " DESC";
  }
  t_ += ')';
  if (s.primary) t_ += " WITH PRIMARY";
  if (s.disallows_nulls) t_ += s.primary ? ", DISALLOW NULL" : " WITH DISALLOW NULL";
  if (s.ignores_nulls) t_ += s.primary || s.disallows_nulls ? ", IGNORE NULL" : " WITH IGNORE NULL";
}

void Printer::Write(const CreateView& s) {
  t_ += "CREATE VIEW ";
  Name(s.name);
  if (!s.columns.empty()) {
    t_ += ' ';
    Names(s.columns);
  }
  t_ += " AS ";
  Write(*s.query);
}

void Printer::Write(const Drop& s) {
  static constexpr std::string_view kNames[] = {"DROP TABLE ", "DROP INDEX ", "DROP VIEW "};
  t_ += kNames[static_cast<std::size_t>(s.what)];
  Name(s.name);
  if (s.what != Drop::What::Index) return;
  t_ += " ON ";
  Name(s.table);
}

void Printer::Write(const AlterTable& s) {
  t_ += "ALTER TABLE ";
  Name(s.table);
  switch (s.what) {
    case AlterTable::What::Add:
      t_ += " ADD COLUMN ";
      Column(s.column);
      break;
    case AlterTable::What::Drop:
      t_ += " DROP COLUMN ";
      Name(s.name);
      break;
    case AlterTable::What::AddConstraint:
      t_ += " ADD ";
      WriteConstraint(s.constraint);
      break;
    case AlterTable::What::DropConstraint:
      t_ += " DROP CONSTRAINT ";
      Name(s.name);
      break;
  }
}

}  // namespace jetsql
