#include "engine_sqlite/sqlite_internal.h"

namespace engine_sqlite {

void ThrowError(sqlite3* base, int number) {
  const int code = sqlite3_extended_errcode(base);
  throw db::Error(DescriptionOf(code, sqlite3_errmsg(base)), number, {},
                  KindOf(code, sqlite3_get_autocommit(base) == 0));
}

Statement Prepare(sqlite3* base, std::string_view sql) {
  sqlite3_stmt* raw = nullptr;
  const int rc = sqlite3_prepare_v3(base, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                                    &raw, nullptr);
  Statement statement(raw);
  if (rc != SQLITE_OK) ThrowError(base);
  return statement;
}

void ExecuteOwn(sqlite3* base, const char* sql) {
  if (sqlite3_exec(base, sql, nullptr, nullptr, nullptr) != SQLITE_OK) ThrowError(base);
}

void Bind(sqlite3_stmt* statement, int index, const base::Value& value) {
  if (index > sqlite3_bind_parameter_count(statement)) return;
  int rc = SQLITE_OK;
  switch (value.type()) {
    case base::Type::Null:
      rc = sqlite3_bind_null(statement, index);
      break;
    case base::Type::Boolean:
      rc = sqlite3_bind_int(statement, index, *value.GetIf<bool>() ? -1 : 0);
      break;
    case base::Type::Integer:
      rc = sqlite3_bind_int64(statement, index, *value.GetIf<std::int64_t>());
      break;
    case base::Type::Single:
      rc = sqlite3_bind_double(statement, index, static_cast<double>(*value.GetIf<float>()));
      break;
    case base::Type::Number:
      rc = sqlite3_bind_double(statement, index, *value.GetIf<double>());
      break;
    case base::Type::Currency:
      rc = sqlite3_bind_double(statement, index,
                               static_cast<double>(value.GetIf<base::Currency>()->ten_thousandths) / 10000.0);
      break;
    case base::Type::Date:
      rc = sqlite3_bind_double(statement, index, value.GetIf<base::Date>()->serial);
      break;
    case base::Type::Text: {
      const std::string& t = *value.GetIf<std::string>();
      rc = sqlite3_bind_text64(statement, index, t.data(), t.size(), SQLITE_STATIC, SQLITE_UTF8);
      break;
    }
  }
  if (rc != SQLITE_OK) ThrowError(sqlite3_db_handle(statement));
}

std::string_view TextOf(sqlite3_stmt* row, int column) {
  const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
  if (p != nullptr) return {p, static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
  if (sqlite3_errcode(sqlite3_db_handle(row)) == SQLITE_NOMEM) ThrowError(sqlite3_db_handle(row));
  return {};
}

}  // namespace engine_sqlite
