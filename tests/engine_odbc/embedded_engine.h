// The embedded engine as the database behind the driver of the tests: a driver that speaks the dialect, as
// the Access driver does, with values that cross as ODBC's own types.
#pragma once

#include <array>
#include <charconv>
#include <cstdio>
#include <memory>
#include <string>

#include "base/encoding.h"
#include "engine_odbc/fake_driver.h"
#include "engine_sqlite/render.h"
#include "engine_sqlite/sqlite_connection.h"

namespace fake {

struct OdbcType {
  SQLSMALLINT type;
  const char16_t* name;
};
inline OdbcType ToOdbc(base::Type type) {
  switch (type) {
    case base::Type::Boolean:
      return {SQL_BIT, u"BIT"};
    case base::Type::Integer:
      return {SQL_INTEGER, u"INTEGER"};
    case base::Type::Single:
      return {SQL_REAL, u"REAL"};
    case base::Type::Number:
      return {SQL_DOUBLE, u"DOUBLE"};
    case base::Type::Currency:
      return {SQL_NUMERIC, u"CURRENCY"};
    case base::Type::Date:
      return {SQL_TYPE_TIMESTAMP, u"DATETIME"};
    case base::Type::Null:
    case base::Type::Text:
      break;
  }
  return {SQL_WVARCHAR, u"VARCHAR"};
}

inline std::string Digits(double v) {
  std::array<char, 40> b{};
  return {b.data(), std::to_chars(b.data(), b.data() + b.size(), v).ptr};
}

inline Cell ToCell(const base::Value& v) {
  if (v.IsNull()) return {true, {}};
  std::string text;
  if (const auto* b = v.GetIf<bool>()) {
    text = *b ? "1" : "0";
  } else if (const auto* f = v.GetIf<base::Date>()) {
    const base::DateParts p = base::PartsOf(*f);
    std::array<char, 40> line{};
    std::snprintf(line.data(), line.size(), "%04d-%02d-%02d %02d:%02d:%02d", p.year, p.month, p.day, p.hour,
                  p.minute, p.second);
    text = line.data();
  } else if (const auto* d = v.GetIf<double>()) {
    text = Digits(*d);
  } else {
    text = v.CsvText();
  }
  return {false, base::ToUtf16(text)};
}

class EmbeddedEngine final : public Engine {
 public:
  explicit EmbeddedEngine(const std::string& path, const engine_sqlite::Options& options = {})
      : base_(engine_sqlite::Open(path, options)) {}

  bool Run(Cursor& c, const WideString& sql) override {
    try {
      const db::Recordset rows = base_->Execute(base::FromUtf16(sql));
      c.changed = base_->AffectedRows();
      const std::size_t width = rows.Fields().size();
      for (std::size_t i = 0; i < width; ++i) {
        base::Type type = rows.Fields()[i].type;
        if (type == base::Type::Null && !rows.IsEmpty()) type = rows.At(i, 0).type();
        const OdbcType t = ToOdbc(type);
        c.columns.push_back({base::ToUtf16(rows.Fields()[i].name), t.name, t.type});
      }
      for (std::size_t f = 0; f < rows.Count(); ++f) {
        c.rows.emplace_back();
        for (std::size_t i = 0; i < width; ++i) c.rows.back().push_back(ToCell(rows.At(i, f)));
      }
      return true;
    } catch (const base::Error& e) {
      c.records.push_back({e.IsStorageFault() ? "58030" : "HY000", base::ToUtf16(support::ErrorText(e))});
      return false;
    }
  }
  bool Begin() override {
    return base::AnyErrorNoted("Empezar", nullptr, [&] { base_->BeginTrans(); });
  }
  bool End(bool commit) override {
    return base::AnyErrorNoted("Terminar", nullptr,
                               [&] { commit ? base_->CommitTrans() : base_->RollbackTrans(); });
  }

 private:
  std::unique_ptr<db::Connection> base_;
};

}  // namespace fake
