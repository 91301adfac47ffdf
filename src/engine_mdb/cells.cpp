#include "engine_mdb/cells_internal.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "base/currency.h"
#include "base/error.h"
#include "base/number.h"
#include "base/text.h"

namespace engine_mdb {
namespace {

using mdb::ColumnType;

// A cell that got no memory looks like an empty one.
void NeedMemory(int rc) {
  if (rc == SQLITE_NOMEM) throw base::StorageFault(base::kOutOfMemory);
}

std::string_view TextOf(sqlite3_stmt* row, int column) {
  const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
  if (p == nullptr) {
    NeedMemory(sqlite3_errcode(sqlite3_db_handle(row)));
    return {};
  }
  return {p, static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
}

mdb::View BytesOf(sqlite3_stmt* row, int column) {
  const auto* p = static_cast<const std::uint8_t*>(sqlite3_column_blob(row, column));
  if (p == nullptr) return {};
  return {p, static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
}

double NumberOf(const mdb::Datum& datum) {
  if (const auto* f = std::get_if<float>(&datum)) return base::DoubleOfSingle(*f);
  if (const auto* d = std::get_if<double>(&datum)) return *d;
  if (const auto* m = std::get_if<base::Currency>(&datum))
    return static_cast<double>(m->ten_thousandths) / 10000.0;
  if (const auto* f = std::get_if<base::Date>(&datum)) return f->serial;
  return std::get<mdb::Decimal>(datum).Number();
}

std::int64_t IntegerOf(const mdb::Column& column, sqlite3_stmt* row, int index) {
  if (sqlite3_column_type(row, index) == SQLITE_INTEGER) return sqlite3_column_int64(row, index);
  if (sqlite3_column_type(row, index) == SQLITE_FLOAT)
    return base::BankersInteger(sqlite3_column_double(row, index));
  throw base::Error("El tipo del valor no es el del campo " + column.name + ".", 13);
}

mdb::Datum InRange(const mdb::Column& column, std::int64_t v, std::int64_t from, std::int64_t to) {
  if (v < from || v > to) throw base::Error("El número no cabe en el campo " + column.name + ".", 6);
  return v;
}

double RealOf(const mdb::Column& column, sqlite3_stmt* row, int index) {
  const int type = sqlite3_column_type(row, index);
  if (type != SQLITE_INTEGER && type != SQLITE_FLOAT)
    throw base::Error("El tipo del valor no es el del campo " + column.name + ".", 13);
  return sqlite3_column_double(row, index);
}

mdb::Datum Binary(sqlite3_stmt* row, int index) {
  if (sqlite3_column_type(row, index) != SQLITE_BLOB) return AsUtf16(TextOf(row, index));
  const mdb::View v = BytesOf(row, index);
  return mdb::Bytes(v.begin(), v.end());
}

mdb::Datum Single(const mdb::Column& column, sqlite3_stmt* row, int index) {
  const double v = RealOf(column, row, index);
  if (std::abs(v) > static_cast<double>(std::numeric_limits<float>::max()))
    throw base::Error("El número no cabe en el campo " + column.name + ".", 6);
  return static_cast<float>(v);
}

mdb::Datum Currency(const mdb::Column& column, sqlite3_stmt* row, int index) {
  const double v = RealOf(column, row, index);
  if (std::abs(v) > base::kLastCurrency)
    throw base::Error("El número no cabe en el campo " + column.name + ".", 6);
  return base::CurrencyOf(v);
}

}  // namespace

mdb::Bytes AsUtf16(std::string_view text) {
  mdb::Bytes bytes;
  for (const char32_t c : base::ToPoints(text)) {
    if (c < 0x10000) {
      mdb::Append16(bytes, static_cast<std::uint16_t>(c));
    } else {
      mdb::Append16(bytes, static_cast<std::uint16_t>(0xD800 + ((c - 0x10000) >> 10)));
      mdb::Append16(bytes, static_cast<std::uint16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
    }
  }
  return bytes;
}

base::Type TypeOf(ColumnType type) {
  switch (type) {
    case ColumnType::Boolean:
      return base::Type::Boolean;
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Complex:
    case ColumnType::BigInteger:
      return base::Type::Integer;
    case ColumnType::Currency:
      return base::Type::Currency;
    case ColumnType::Single:
      return base::Type::Single;
    case ColumnType::Double:
    case ColumnType::Decimal:
      return base::Type::Number;
    case ColumnType::Date:
      return base::Type::Date;
    case ColumnType::Text:
    case ColumnType::Memo:
    case ColumnType::Guid:
    case ColumnType::ExtendedDate:
      return base::Type::Text;
    case ColumnType::Binary:
    case ColumnType::Ole:
    case ColumnType::FixedBinary:
      break;
  }
  return base::Type::Null;
}

void Bind(sqlite3_stmt* statement, int index, const mdb::Datum& datum) {
  int rc = SQLITE_OK;
  std::visit(
      [&](const auto& v) {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, base::Null>) {
          rc = sqlite3_bind_null(statement, index);
        } else if constexpr (std::is_same_v<T, bool>) {
          rc = sqlite3_bind_int(statement, index, v ? -1 : 0);
        } else if constexpr (std::is_same_v<T, std::int64_t>) {
          rc = sqlite3_bind_int64(statement, index, v);
        } else if constexpr (std::is_same_v<T, std::string>) {
          rc = sqlite3_bind_text64(statement, index, v.data(), v.size(), SQLITE_STATIC, SQLITE_UTF8);
        } else if constexpr (std::is_same_v<T, mdb::Bytes>) {
          // A null pointer would bind Null.
          if (v.empty())
            rc = sqlite3_bind_zeroblob(statement, index, 0);
          else
            rc = sqlite3_bind_blob64(statement, index, v.data(), v.size(), SQLITE_STATIC);
        } else if constexpr (std::is_same_v<T, mdb::Guid>) {
          const std::string text = v.Text();
          rc = sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
        } else {
          rc = sqlite3_bind_double(statement, index, NumberOf(datum));
        }
      },
      datum);
  NeedMemory(rc);
}

bool SameValue(const mdb::Datum& datum, sqlite3_stmt* row, int column) {
  const int type = sqlite3_column_type(row, column);
  return std::visit(
      [&](const auto& v) -> bool {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, base::Null>) {
          return type == SQLITE_NULL;
        } else if constexpr (std::is_same_v<T, bool>) {
          return type == SQLITE_INTEGER && sqlite3_column_int64(row, column) == (v ? -1 : 0);
        } else if constexpr (std::is_same_v<T, std::int64_t>) {
          return type == SQLITE_INTEGER && sqlite3_column_int64(row, column) == v;
        } else if constexpr (std::is_same_v<T, std::string>) {
          return type == SQLITE_TEXT && TextOf(row, column) == v;
        } else if constexpr (std::is_same_v<T, mdb::Bytes>) {
          const mdb::View b = BytesOf(row, column);
          return type == SQLITE_BLOB && b.size() == v.size() &&
                 (v.empty() || std::memcmp(b.data(), v.data(), v.size()) == 0);
        } else if constexpr (std::is_same_v<T, mdb::Guid>) {
          return type == SQLITE_TEXT && TextOf(row, column) == v.Text();
        } else {
          const double number = NumberOf(datum);
          if (std::isnan(number)) return type == SQLITE_NULL;  // SQLite has no other place for it
          return (type == SQLITE_FLOAT || type == SQLITE_INTEGER) &&
                 sqlite3_column_double(row, column) == number;
        }
      },
      datum);
}

mdb::Datum CellDatum(const mdb::Column& column, sqlite3_stmt* row, int index) {
  constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
  if (sqlite3_column_type(row, index) == SQLITE_NULL) {
    if (column.type == ColumnType::Boolean) return false;
    return base::Null{};
  }
  const auto integer = [&](std::int64_t from, std::int64_t to) {
    return InRange(column, IntegerOf(column, row, index), from, to);
  };
  switch (column.type) {
    case ColumnType::Boolean:
      return IntegerOf(column, row, index) != 0;
    case ColumnType::Byte:
      return integer(0, 255);
    case ColumnType::Integer:
      return integer(-32768, 32767);
    case ColumnType::Long:
    case ColumnType::Complex:
      return integer(-2147483648LL, 2147483647LL);
    case ColumnType::BigInteger:
      return integer(-kMax - 1, kMax);
    case ColumnType::Currency:
      return Currency(column, row, index);
    case ColumnType::Single:
      return Single(column, row, index);
    case ColumnType::Double:
      return RealOf(column, row, index);
    case ColumnType::Date:
      return base::Date{RealOf(column, row, index)};
    case ColumnType::Decimal:
      return mdb::DecimalFromText(base::SqlNumber(RealOf(column, row, index)), column.scale);
    case ColumnType::Guid:
      return mdb::GuidFromText(TextOf(row, index));
    case ColumnType::Text:
    case ColumnType::Memo:
    case ColumnType::ExtendedDate:
      return std::string(TextOf(row, index));
    case ColumnType::Binary:
    case ColumnType::Ole:
    case ColumnType::FixedBinary:
      return Binary(row, index);
  }
  throw base::Error("El campo " + column.name + " es de un tipo que no se escribe.");
}

}  // namespace engine_mdb
