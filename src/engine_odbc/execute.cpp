// From a text to its rows.
#include <algorithm>

#include "base/text.h"
#include "engine_odbc/connection_internal.h"
#include "engine_odbc/qualifiers_internal.h"
#include "engine_odbc/reader_internal.h"
#include "engine_odbc/reading_internal.h"
#include "jetsql/parser.h"
#include "jetsql/statement_kind.h"

namespace engine_odbc {
namespace {

constexpr std::size_t kRememberedShapes = 500;
constexpr std::size_t kLongestText = 1U << 28;  // bytes; the driver manager counts with 32 bits

// What only a driver knows may define, too.
bool MayDefine(std::string_view sql) {
  return jetsql::KindOfText(sql).value_or(jetsql::Kind::Definition) == jetsql::Kind::Definition;
}

// A character beyond U+FFFF takes four bytes.
bool HasFarCharacters(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0xF0; });
}

}  // namespace

db::Recordset OdbcConnection::Execute(std::string_view sql) {
  return db::AsConnectionErrors([&] {
    VerifyUsable();
    affected_ = 0;
    if (!read_only_) return Run(sql, nullptr);
    jetsql::Statement tree = CheckOnlyReads(sql);
    return Run(sql, &tree);
  });
}

db::Recordset OdbcConnection::Query(std::string_view sql) {
  return db::AsConnectionErrors([&] {
    VerifyUsable();
    affected_ = 0;
    jetsql::Statement tree = CheckOnlyReads(sql);
    return Run(sql, &tree);
  });
}

db::Recordset OdbcConnection::QueryBounded(std::string_view sql, db::QueryBudget& budget) {
  const db::BudgetInUse lent(budget_, budget);
  try {
    return Query(sql);
  } catch (const OdbcError& e) {
    if (e.TimedOut()) throw db::QueryInterrupted(db::QueryInterrupted::By::Work);
    throw;
  }
}

std::string OdbcConnection::TextForDriver(std::string_view sql, jetsql::Statement* tree) {
  jetsql::Shape shape;
  if (!jetsql::SeparateLiterals(sql, shape) || untouched_.contains(shape.key)) return std::string(sql);
  std::string text(sql);
  bool change = false;
  // What the dialect does not know is for the driver to judge.
  base::PassOverError("ODBC: calificadores", nullptr, [&] {
    jetsql::Statement own;
    if (tree == nullptr) {
      own = jetsql::Parse(sql);
      tree = &own;
    }
    change = Qualifiers(catalog_).Resolve(*tree);
    if (change) text = jetsql::Print(*tree);
  });
  if (!change) {
    if (untouched_.size() >= kRememberedShapes) untouched_.clear();
    untouched_.insert(std::move(shape.key));
  }
  return text;
}

db::Recordset OdbcConnection::Run(std::string_view sql, jetsql::Statement* tree) {
  if (base::TrimView(sql).empty()) throw db::Error("La sentencia está vacía.");
  // A driver that ends the text at a NUL would run a DELETE without its condition.
  if (sql.find('\0') != std::string_view::npos)
    throw db::Error("La sentencia tiene un carácter nulo, que la base no admite.");
  if (sql.size() > kLongestText) throw db::Error("La sentencia es demasiado larga.");
  const std::string text = TextForDriver(sql, tree);
  OpenCursor();
  StatementLimits limits(cursor_, budget_);
  const CloseCursor close(cursor_);  // before the limits go: a driver may refuse to change them else
  const SQLRETURN rc = Send(text);
  if (rc != SQL_NO_DATA && !SQL_SUCCEEDED(rc))  // no data: a change that found no row
    FailOnce(SQL_HANDLE_STMT, cursor_.Raw(), "La base no pudo ejecutar la sentencia");
  if (MayDefine(sql)) {
    catalog_.Forget();
    untouched_.clear();
  }
  if (rc == SQL_NO_DATA) return {nullptr, {}, std::string(sql)};
  const db::Recordset rows = Fetch(sql, limits);
  if (rows.Fields().empty()) NoteChange(text, rows_of_last_);
  return rows;
}

void OdbcConnection::OpenCursor() {
  if (cursor_) return;
  cursor_ = MakeCursor(link_);
  // Braces inside a text are the text's own. A driver that cannot be told so keeps its habit.
  SQLSetStmtAttrW(cursor_.Raw(), SQL_ATTR_NOSCAN, reinterpret_cast<SQLPOINTER>(SQL_NOSCAN_ON),
                  SQL_IS_UINTEGER);
}

SQLRETURN OdbcConnection::Send(const std::string& text) {
  if (HasFarCharacters(text)) {
    if (!loses_characters_) loses_characters_ = LosesCharacters(link_.Raw());
    // Then the driver takes bytes, and the driver manager hands over ours untouched.
    if (*loses_characters_) {
      std::string bytes = text;
      return SQLExecDirectA(cursor_.Raw(), reinterpret_cast<SQLCHAR*>(bytes.data()),
                            static_cast<SQLINTEGER>(bytes.size()));
    }
  }
  WideText width(text);
  return SQLExecDirectW(cursor_.Raw(), width.Data(), width.Length());
}

db::Recordset OdbcConnection::Fetch(std::string_view sql, StatementLimits& limits) {
  try {
    Reader reader(cursor_.Raw());
    if (reader.Columns()->empty()) {
      rows_of_last_ = RowCount();
      if (rows_of_last_ > 0) affected_ = rows_of_last_;
      return {reader.Columns(), {}, std::string(sql)};
    }
    return {reader.Columns(), reader.Rows(&limits), std::string(sql)};
  } catch (const OdbcError& e) {
    if (!e.Lost() && !IsDead()) throw;
    Lose();
    throw db::Error(base::StorageFault(e.Description(), e.Number(), e.Source()));
  }
}

SQLLEN OdbcConnection::RowCount() const {
  SQLLEN rows = -1;
  return SQL_SUCCEEDED(SQLRowCount(cursor_.Raw(), &rows)) ? rows : -1;
}

}  // namespace engine_odbc
