#include "engine_mdb/mirror_internal.h"

#include <algorithm>

#include "base/text.h"
#include "engine_mdb/cells_internal.h"
#include "mdb/rows/table.h"

namespace engine_mdb {
namespace {

using mdb::ColumnType;

// The days of the years 100 to 9999; below zero the time of day counts forward.
constexpr const char* kBeforeDates = "-657435.0";
constexpr const char* kAfterDates = "2958466.0";

std::string Declaration(const mdb::Column& c, bool jet3) {
  switch (c.type) {
    case ColumnType::Boolean:
      return "YESNO_INT";
    case ColumnType::Byte:
      return "BYTE_INT";
    case ColumnType::Integer:
      return "SHORT_INT";
    case ColumnType::Long:
    case ColumnType::Complex:
      return "LONG_INT";
    case ColumnType::BigInteger:
      return "BIG_INT";
    case ColumnType::Currency:
      return "CURRENCY_REAL";
    case ColumnType::Single:
      return "SINGLE_REAL";
    case ColumnType::Double:
      return "DOUBLE_REAL";
    case ColumnType::Decimal:
      return "DECIMAL_REAL";
    case ColumnType::Date:
      return "DATETIME_REAL";
    case ColumnType::Text:
      return "TEXT(" + std::to_string(jet3 ? c.length : c.length / 2) + ") COLLATE JET";
    case ColumnType::Memo:
    case ColumnType::ExtendedDate:
      return "MEMO_TEXT COLLATE JET";
    case ColumnType::Guid:
      return "GUID_TEXT COLLATE JET";
    case ColumnType::Binary:
    case ColumnType::Ole:
    case ColumnType::FixedBinary:
      break;
  }
  return "BINARY_BLOB";
}

std::string Condition(const std::string& name, const std::string& condition) {
  return " CONSTRAINT " + Quoted(name) + " CHECK (" + condition + ")";
}

std::string Range(const std::string& column, std::string_view from, std::string_view to) {
  return Condition("jet_rango." + column,
                   Quoted(column) + " BETWEEN " + std::string(from) + " AND " + std::string(to));
}

bool IsTrue(const mdb::Properties& properties, const std::string& column, std::string_view which,
            bool if_missing) {
  const mdb::Datum* datum = mdb::Find(properties, column, which);
  const bool* value = datum == nullptr ? nullptr : std::get_if<bool>(datum);
  return value == nullptr ? if_missing : *value;
}

std::string DefaultExpression(const mdb::Properties& properties, const std::string& column) {
  const mdb::Datum* datum = mdb::Find(properties, column, "DefaultValue");
  const auto* text = datum == nullptr ? nullptr : std::get_if<std::string>(datum);
  if (text == nullptr) return {};
  std::string expression = base::Trim(*text);
  if (base::StartsWith(expression, "=")) expression = base::Trim(expression.substr(1));
  for (const char* yes : {"Yes", "On", "Sí", "Si", "Verdadero", "True"})
    if (base::EqualIgnoringCase(expression, yes)) return "True";
  for (const char* no : {"No", "Off", "Falso", "False"})
    if (base::EqualIgnoringCase(expression, no)) return "False";
  return expression;
}

// A default that our dialect does not read must not become a Null in silence: leaving the column out fails.
std::string DefaultClause(const MirrorTable& t, const mdb::Column& c, const mdb::Properties& properties) {
  if ((c.flags & mdb::Column::kAutoGuid) != 0) return " NOT NULL ON CONFLICT REPLACE DEFAULT (idm_guid())";
  if (c.IsAutoNumber() && c.type == ColumnType::Long)
    return " NOT NULL ON CONFLICT REPLACE DEFAULT (idm_next(" + std::to_string(t.number) + "))";
  const std::string expression = DefaultExpression(properties, c.name);
  std::string sql;
  if (!expression.empty()) {
    try {
      sql = " DEFAULT (" + jetsql::TranslateValue(expression, TypeOf(c.type)) + ")";
    } catch (const base::Error&) {
      sql = " DEFAULT (idm_falla(" +
            InQuotes("El valor predeterminado del campo " + c.name + " de la tabla " + t.info.name +
                     " no se puede calcular: dé un valor.") +
            "))";
    }
  }
  if (c.type != ColumnType::Boolean) return sql;
  return " NOT NULL ON CONFLICT REPLACE" + (sql.empty() ? " DEFAULT 0" : sql);  // a Null is stored as False
}

bool IsInAnIndex(const mdb::Definition& d, const mdb::Column& c) {
  for (const mdb::RealIndex& index : d.reals)
    for (const auto& part : index.parts)
      if (part.column == c.number) return true;
  return false;
}

// Conditions are not looked at while the file's rows are read, so that rows that break them stay readable.
// What the file would refuse at the commit, and with it all that the transaction did, is refused here, where
// only the statement fails.
std::string Conditions(const MirrorTable& t, std::size_t position, const mdb::Properties& properties) {
  const mdb::Column& c = t.definition.columns[position];
  std::string sql;
  if (c.type == ColumnType::Byte) sql += Range(c.name, "0", "255");
  if (c.type == ColumnType::Integer) sql += Range(c.name, "-32768", "32767");
  if (c.type == ColumnType::Long) sql += Range(c.name, "-2147483648", "2147483647");
  if (c.type == ColumnType::Text) {
    const int length = t.base->Header().Jet3() ? c.length : c.length / 2;
    sql += Condition("jet_largo." + c.name, "idm_units(" + Quoted(c.name) + ") <= " + std::to_string(length));
    if (IsInAnIndex(t.definition, c) && !t.base->Header().Jet3())
      sql += Condition("jet_index." + c.name, "idm_in_index(" + std::to_string(t.number) + ", " +
                                                  std::to_string(position) + ", " + Quoted(c.name) + ")");
  }
  if (c.type == ColumnType::Double) sql += Range(c.name, "-1.7976931348623157e308", "1.7976931348623157e308");
  if (c.type == ColumnType::Date)
    sql += Condition(std::string(engine_sqlite::kOwnText) + "La fecha del campo " + c.name + " de la tabla " +
                         t.info.name + " está fuera de los años 100 a 9999.",
                     Quoted(c.name) + " > " + kBeforeDates + " AND " + Quoted(c.name) + " < " + kAfterDates);
  const bool its_own = c.IsAutoNumber() || c.type == ColumnType::Boolean;
  if (!its_own && IsTrue(properties, c.name, "Required", false))
    sql += Condition(std::string(engine_sqlite::kOwnText) + "El campo " + c.name + " de la tabla " +
                         t.info.name + " es obligatorio: no puede quedar vacío.",
                     Quoted(c.name) + " IS NOT NULL");
  if (c.IsText() && !IsTrue(properties, c.name, "AllowZeroLength", true))
    sql += Condition(std::string(engine_sqlite::kOwnText) + "El campo " + c.name + " de la tabla " +
                         t.info.name + " no admite un texto sin caracteres.",
                     "idm_units(" + Quoted(c.name) + ") > 0");
  return sql;
}

// A column of an index that takes no Null, with the words of CREATE INDEX … WITH DISALLOW NULL.
std::string IndexConditions(const MirrorTable& t) {
  std::string sql;
  for (const mdb::RealIndex& index : t.definition.reals) {
    if (!index.IsRequired() || index.parts.empty()) continue;
    std::string all, first;
    for (const auto& part : index.parts) {
      const auto position = t.definition.ByNumber(part.column);
      if (!position) continue;
      const std::string& name = t.definition.columns[*position].name;
      if (first.empty()) first = name;
      all += (all.empty() ? "" : " AND ") + Quoted(name) + " IS NOT NULL";
    }
    if (!all.empty()) sql += "," + Condition("jet_nulo." + first, all);
  }
  return sql;
}

class WithoutConditions {
 public:
  explicit WithoutConditions(sqlite3* mirror) : mirror_(mirror) {
    engine_sqlite::ExecuteOwn(mirror_, "PRAGMA ignore_check_constraints=ON");
  }
  WithoutConditions(const WithoutConditions&) = delete;
  WithoutConditions& operator=(const WithoutConditions&) = delete;
  ~WithoutConditions() {
    sqlite3_exec(mirror_, "PRAGMA ignore_check_constraints=OFF", nullptr, nullptr, nullptr);
  }

 private:
  sqlite3* mirror_;
};

engine_sqlite::Statement PrepareFill(sqlite3* mirror, const MirrorTable& t) {
  std::string sql = "INSERT INTO " + Quoted(t.info.name) + " VALUES (";
  for (std::size_t i = 0; i < t.columns.size(); ++i) sql += i == 0 ? "?" : ",?";
  return engine_sqlite::Prepare(mirror, sql + ")");
}

}  // namespace

std::string Quoted(std::string_view name) { return "\"" + base::Replace(name, "\"", "\"\"") + "\""; }

std::string InQuotes(std::string_view text) { return "'" + base::EscapeQuotes(text) + "'"; }

std::string QuotedList(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& n : names) list += (list.empty() ? "" : ", ") + Quoted(n);
  return list;
}

std::string CreateTableText(const MirrorTable& t, const mdb::Properties& properties) {
  std::string sql = "CREATE TABLE " + Quoted(t.info.name) + " (";
  for (std::size_t i = 0; i < t.columns.size(); ++i) {
    const mdb::Column& c = t.definition.columns[t.columns[i]];
    if (i > 0) sql += ", ";
    sql += Quoted(c.name) + " " + Declaration(c, t.base->Header().Jet3()) + DefaultClause(t, c, properties) +
           Conditions(t, t.columns[i], properties);
  }
  return sql + IndexConditions(t) + ")";
}

std::string RowIdName(const MirrorTable& t) {
  for (const char* name : {"rowid", "_rowid_", "oid"}) {
    const bool taken = std::any_of(t.info.columns.begin(), t.info.columns.end(),
                                   [&](const auto& c) { return base::EqualIgnoringCase(c.name, name); });
    if (!taken) return name;
  }
  throw base::Error("La tabla " + t.info.name +
                    " tiene campos con todos los nombres que nombran a sus filas: no se puede escribir.");
}

std::int64_t Fill(sqlite3* mirror, MirrorTable& t) {
  const WithoutConditions without_conditions(
      mirror);  // to the end: a change of it makes SQLite prepare its statements again
  const engine_sqlite::Statement statement = PrepareFill(mirror, t);
  sqlite3_stmt* s = statement.get();
  auto rows = std::make_shared<std::vector<mdb::RowId>>();
  rows->reserve(t.definition.rows + 1);
  rows->push_back({});
  std::int64_t last = t.definition.last_auto_number;
  const int width = static_cast<int>(t.columns.size());
  mdb::WalkRows(t.base->Pages(), t.definition, [&](mdb::RowId id, const mdb::Row& row) {
    for (int i = 0; i < width; ++i) Bind(s, i + 1, row[t.columns[static_cast<std::size_t>(i)]]);
    if (sqlite3_step(s) != SQLITE_DONE) {
      const std::string reason = sqlite3_errmsg(mirror);
      sqlite3_reset(s);
      throw base::StorageFault("No se puede leer la tabla " + t.info.name + " (" + reason + ").");
    }
    sqlite3_reset(s);
    rows->push_back(id);
    if (t.autonumber >= 0) {
      const auto* value = std::get_if<std::int64_t>(&row[t.columns[static_cast<std::size_t>(t.autonumber)]]);
      if (value != nullptr) last = std::max(last, *value);
    }
    return true;
  });
  const auto count = static_cast<std::int64_t>(rows->size()) - 1;
  t.state.rows = std::move(rows);
  t.state.last_auto_number = last;
  return count;
}

sqlite3_stmt* RowReader(sqlite3* mirror, MirrorTable& t) {
  if (t.by_row == nullptr) {
    std::vector<std::string> names;
    for (const auto& c : t.info.columns) names.push_back(c.name);
    t.by_row = engine_sqlite::Prepare(mirror, "SELECT " + QuotedList(names) + " FROM " + Quoted(t.info.name) +
                                                  " WHERE " + RowIdName(t) + " = ?1");
  }
  return t.by_row.get();
}

}  // namespace engine_mdb
