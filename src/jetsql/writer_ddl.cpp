#include "base/error.h"
#include "base/text.h"
#include "jetsql/definition_internal.h"
#include "jetsql/definition_rules.h"
#include "jetsql/parser.h"
#include "jetsql/resolver_internal.h"
#include "jetsql/writer_internal.h"

namespace jetsql {
namespace {

using base::Type;

struct Declaration {
  std::string_view sql;
  Type type;
};

// In the order of ColumnKind. What stands before "_" is what the engine reads the type from; what stands
// after gives SQLite's affinity.
constexpr Declaration kDeclarations[] = {
    {"YESNO_INT", Type::Boolean},   {"BYTE_INT", Type::Integer},
    {"SHORT_INT", Type::Integer},   {"LONG_INT", Type::Integer},
    {"INTEGER", Type::Integer},     {"SINGLE_REAL", Type::Single},
    {"DOUBLE_REAL", Type::Number},  {"CURRENCY_REAL", Type::Currency},
    {"DECIMAL_REAL", Type::Number}, {"DATETIME_REAL", Type::Date},
    {"TEXT", Type::Text},           {"MEMO_TEXT COLLATE JET", Type::Text},
    {"BINARY_BLOB", Type::Null},    {"GUID_TEXT COLLATE JET", Type::Text},
    {"BINARY_BLOB", Type::Null}};

const Declaration& DeclarationOf(ColumnKind c) { return kDeclarations[static_cast<std::size_t>(c)]; }

constexpr int kTextLength = 255;

std::string Range(const std::string& column, std::string_view from, std::string_view to) {
  return " CONSTRAINT " + NameSql("jet_rango." + column) + " CHECK (" + NameSql(column) + " BETWEEN " +
         std::string(from) + " AND " + std::string(to) + ")";
}

std::string DefaultClause(const ColumnDefinition& c, Catalog& catalog) {
  if (!c.default_value) return c.kind == ColumnKind::YesNo ? " DEFAULT 0" : "";
  ExprPtr value = c.default_value;
  Resolver(catalog).ResolveAlone(value);
  return " DEFAULT (" + WriteValue(*value, DeclarationOf(c.kind).type) + ")";
}

// Primary keys are indexes here, so that SQLite does not know which columns a bare REFERENCES means.
std::string ReferencesClause(const Reference& r) {
  if (r.columns.empty())
    throw base::Error("REFERENCES " + r.table + " debe nombrar las columnas de la tabla a la que se refiere");
  std::string sql = " REFERENCES " + NameSql(r.table);
  for (std::size_t i = 0; i < r.columns.size(); ++i) sql += (i == 0 ? " (" : ", ") + NameSql(r.columns[i]);
  if (!r.columns.empty()) sql += ")";
  if (r.cascades_updates) sql += " ON UPDATE CASCADE";
  if (r.cascades_deletes) sql += " ON DELETE CASCADE";
  return sql;
}

std::string ColumnSql(const ColumnDefinition& c, bool not_null, Catalog& catalog) {
  std::string sql = NameSql(c.name) + " " + std::string(DeclarationOf(c.kind).sql);
  if (c.kind == ColumnKind::Counter) return sql + " PRIMARY KEY AUTOINCREMENT";
  if (c.kind == ColumnKind::Text)
    sql += "(" + std::to_string(c.length > 0 ? c.length : kTextLength) + ") COLLATE JET";
  if (c.kind == ColumnKind::YesNo)
    sql += " NOT NULL ON CONFLICT REPLACE";  // a Null is stored as False
  else if (not_null)
    sql += " NOT NULL";
  sql += DefaultClause(c, catalog);
  if (c.kind == ColumnKind::Byte) sql += Range(c.name, "0", "255");
  if (c.kind == ColumnKind::Short) sql += Range(c.name, "-32768", "32767");
  if (c.kind == ColumnKind::Long) sql += Range(c.name, "-2147483648", "2147483647");
  if (c.kind == ColumnKind::Text)
    sql += " CONSTRAINT " + NameSql("jet_largo." + c.name) + " CHECK (length(" + NameSql(c.name) +
           ") <= " + std::to_string(c.length > 0 ? c.length : kTextLength) + ")";
  if (c.reference) sql += ReferencesClause(*c.reference);
  return sql;
}

std::string UniqueIndex(const std::string& table, const std::string& index,
                        const std::vector<std::string>& columns) {
  std::string sql = "CREATE UNIQUE INDEX " + NameSql(table + "." + index) + " ON " + NameSql(table);
  for (std::size_t i = 0; i < columns.size(); ++i) sql += (i == 0 ? " (" : ", ") + NameSql(columns[i]);
  return sql + ")";
}

// SQLite adds no NOT NULL to a column that is there: triggers refuse the Null instead.
void RefuseNulls(const std::string& table, const std::string& index, const std::vector<std::string>& columns,
                 std::vector<std::string>& steps) {
  std::string when;
  for (const auto& c : columns) when += (when.empty() ? "" : " OR ") + ("NEW." + NameSql(c)) + " IS NULL";
  const std::string body = " ON " + NameSql(table) + " WHEN " + when + " BEGIN SELECT RAISE(ABORT, " +
                           LiteralSql(base::Value("jet_nulo." + columns[0])) + "); END";
  steps.push_back("CREATE TRIGGER " + NameSql(table + "." + index + ".nulo1") + " BEFORE INSERT" + body);
  steps.push_back("CREATE TRIGGER " + NameSql(table + "." + index + ".nulo2") + " BEFORE UPDATE" + body);
}

void MustNotExist(Catalog& catalog, std::string_view name) {
  if (catalog.Table(name) != nullptr || catalog.Query(name) != nullptr)
    throw base::Error("La tabla o consulta '" + std::string(name) + "' ya existe", 3010);
}

const TableInfo& ExistingTable(Catalog& catalog, std::string_view name) {
  return Resolver(catalog).TableOf(name);
}

const std::string& ColumnOf(const TableInfo& t, std::string_view name) {
  for (const auto& c : t.columns)
    if (base::EqualIgnoringCase(c.name, name)) return c.name;
  throw base::Error("La tabla '" + t.name + "' no tiene la columna '" + std::string(name) + "'");
}

}  // namespace

// Keys are indexes with a name of their own, so that DROP CONSTRAINT finds them; only a counter is SQLite's
// own key, the number of the row.
void Define(const CreateTable& s, Catalog& catalog, Translation& t) {
  MustNotExist(catalog, s.name);
  TableInfo info{s.name, {}};
  std::string counter;
  for (const auto& c : s.columns) {
    for (const auto& other : info.columns)
      if (base::EqualIgnoringCase(other.name, c.name))
        throw base::Error("La columna '" + c.name + "' está repetida");
    if (c.kind == ColumnKind::Counter) {
      if (!counter.empty()) throw base::Error("Una tabla no puede tener dos contadores");
      counter = c.name;
    }
    info.columns.push_back({c.name, DeclarationOf(c.kind).type});
  }
  std::string sql = "CREATE TABLE " + NameSql(s.name) + " (";
  for (std::size_t i = 0; i < s.columns.size(); ++i) {
    const ColumnDefinition& c = s.columns[i];
    if (i > 0) sql += ", ";
    sql += ColumnSql(c, RefusesNull(s, c), catalog);
  }
  t.steps.emplace_back();
  for (const auto& c : s.columns)
    if ((c.key || c.unique) && c.kind != ColumnKind::Counter)
      t.steps.push_back(UniqueIndex(s.name, IndexName(c), {c.name}));
  for (const auto& r : s.constraints) {
    for (const auto& c : r.columns) ColumnOf(info, c);
    if (r.what == Constraint::What::Foreign) {
      sql += ", FOREIGN KEY";
      for (std::size_t i = 0; i < r.columns.size(); ++i)
        sql += (i == 0 ? " (" : ", ") + NameSql(r.columns[i]);
      sql += ")" + ReferencesClause(r.reference);
    } else if (r.what != Constraint::What::NotNull) {
      t.steps.push_back(UniqueIndex(s.name, IndexName(r), r.columns));
    }
  }
  t.steps[0] = sql + ")";
  for (const auto& c : s.columns)
    if (c.kind == ColumnKind::Counter && c.seed != 1)
      t.steps.push_back("INSERT INTO sqlite_sequence (name, seq) VALUES (" + LiteralSql(base::Value(s.name)) +
                        ", " + std::to_string(c.seed - 1) + ")");
  t.definition = {Definition::What::CreateTable, s.name, {}, {}, std::move(info.columns)};
}

void Define(const CreateIndex& s, Catalog& catalog, Translation& t) {
  const TableInfo& table = ExistingTable(catalog, s.table);
  const bool unique = s.unique || s.primary;
  std::string sql = std::string("CREATE ") + (unique ? "UNIQUE " : "") + "INDEX " +
                    NameSql(table.name + "." + s.name) + " ON " + NameSql(table.name);
  std::vector<std::string> columns;
  for (const auto& c : s.columns) {
    columns.push_back(ColumnOf(table, c.name));
    sql += (columns.size() == 1 ? " (" : ", ") + NameSql(columns.back());
    if (c.descending) sql += " DESC";
  }
  t.steps.push_back(sql + ")");
  if (s.primary || s.disallows_nulls) RefuseNulls(table.name, s.name, columns, t.steps);
  t.definition = {Definition::What::CreateIndex, s.name, table.name, {}, {}};
}

void NameColumns(CreateView& s) {
  if (s.columns.empty()) return;
  auto& list = s.query->parts[0].list;
  bool star = false;
  for (const auto& item : list) star = star || !item.expr;
  if (star || list.size() != s.columns.size())
    throw base::Error("La lista de columnas de la consulta '" + s.name + "' no coincide con su SELECT");
  for (std::size_t i = 0; i < list.size(); ++i) list[i].alias = s.columns[i];
  s.columns.clear();
  s.text = Print(*s.query);
}

// A view is its text: it is read anew wherever it is used.
void Define(CreateView& s, Catalog& catalog, Translation& t) {
  MustNotExist(catalog, s.name);
  NameColumns(s);
  Resolver resolver(catalog);
  resolver.Resolve(*s.query);
  t.definition = {Definition::What::CreateView, s.name, {}, s.text, {}};
}

void Define(const Drop& s, Catalog& catalog, Translation& t) {
  switch (s.what) {
    case Drop::What::Table: {
      const TableInfo& table = ExistingTable(catalog, s.name);
      t.steps.push_back("DROP TABLE " + NameSql(table.name));
      t.definition = {Definition::What::DropTable, table.name, {}, {}, {}};
      break;
    }
    case Drop::What::Index: {
      const TableInfo& table = ExistingTable(catalog, s.table);
      const std::string index = table.name + "." + s.name;
      t.steps.push_back("DROP INDEX " + NameSql(index));
      t.steps.push_back("DROP TRIGGER IF EXISTS " + NameSql(index + ".nulo1"));
      t.steps.push_back("DROP TRIGGER IF EXISTS " + NameSql(index + ".nulo2"));
      t.definition = {Definition::What::DropIndex, s.name, table.name, {}, {}};
      break;
    }
    case Drop::What::View:
      if (catalog.Query(s.name) == nullptr) throw base::Error("No se encuentra la consulta '" + s.name + "'");
      t.definition = {Definition::What::DropView, s.name, {}, {}, {}};
      break;
  }
}

void Define(const AlterTable& s, Catalog& catalog, Translation& t) {
  const TableInfo& table = ExistingTable(catalog, s.table);
  const std::string alter = "ALTER TABLE " + NameSql(table.name);
  switch (s.what) {
    case AlterTable::What::Add: {
      const ColumnDefinition& c = s.column;
      if (c.kind == ColumnKind::Counter)
        throw base::Error("No se puede agregar un contador a una tabla que ya existe");
      for (const auto& other : table.columns)
        if (base::EqualIgnoringCase(other.name, c.name))
          throw base::Error("La columna '" + c.name + "' ya existe");
      t.steps.push_back(alter + " ADD COLUMN " + ColumnSql(c, false, catalog));
      if (c.key || c.unique) t.steps.push_back(UniqueIndex(table.name, IndexName(c), {c.name}));
      if ((c.key || c.not_null) && c.kind != ColumnKind::YesNo)
        RefuseNulls(table.name, IndexName(c), {c.name}, t.steps);
      t.definition = {
          Definition::What::AddColumn, table.name, {}, {}, {{c.name, DeclarationOf(c.kind).type}}};
      break;
    }
    case AlterTable::What::Drop: {
      const std::string& column = ColumnOf(table, s.name);
      t.steps.push_back(alter + " DROP COLUMN " + NameSql(column));
      t.definition = {Definition::What::DropColumn, table.name, {}, {}, {{column, Type::Null}}};
      break;
    }
    case AlterTable::What::AddConstraint: {
      const Constraint& r = s.constraint;
      if (r.what == Constraint::What::Foreign)
        throw base::Error("Agregar una clave foránea a una tabla que ya existe no se admite");
      std::vector<std::string> columns;
      for (const auto& c : r.columns) columns.push_back(ColumnOf(table, c));
      if (r.what != Constraint::What::NotNull)
        t.steps.push_back(UniqueIndex(table.name, IndexName(r), columns));
      if (r.what != Constraint::What::Unique) RefuseNulls(table.name, IndexName(r), columns, t.steps);
      t.definition = {Definition::What::CreateIndex, IndexName(r), table.name, {}, {}};
      break;
    }
    case AlterTable::What::DropConstraint:
      Define(Drop{Drop::What::Index, s.name, s.table}, catalog, t);
      break;
  }
}

void DefineFromQuery(const Query& c, Catalog& catalog, const TranslationOptions& options, Translation& t) {
  const std::string& name = c.parts[0].target;
  MustNotExist(catalog, name);
  std::vector<TableColumn> columns;
  std::string sql = "CREATE TABLE " + NameSql(name);
  for (const auto& col : c.output) {
    std::string_view declaration = "MEMO_TEXT COLLATE JET";
    for (const auto& d : kDeclarations)
      if (d.type == col.type.type && d.type != Type::Text && d.type != Type::Null && d.sql != "INTEGER" &&
          d.sql != "BYTE_INT" && d.sql != "SHORT_INT" && d.sql != "DECIMAL_REAL")
        declaration = d.sql;
    const Type type = col.type.type == Type::Null ? Type::Text : col.type.type;
    sql += (columns.empty() ? " (" : ", ") + NameSql(col.sql_name) + " " + std::string(declaration);
    if (type == Type::Boolean) sql += " NOT NULL ON CONFLICT REPLACE DEFAULT 0";
    columns.push_back({col.sql_name, type});
  }
  t.steps.push_back(sql + ")");
  t.steps.push_back(WriteInsertOf(c, name, columns, options));
  t.fills = true;
  t.definition = {Definition::What::CreateTable, name, {}, {}, std::move(columns)};
}

}  // namespace jetsql
