// From what a driver says of a column, and from the texts it gives, to typed values.
#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

#include "base/number.h"
#include "base/text.h"
#include "engine_odbc/reader_internal.h"

namespace engine_odbc {
namespace {

constexpr int kCurrencyDecimals = 4;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Takes one more digit; false when it does not fit. The sum is kept negative: that side reaches one further.
bool Add(std::int64_t& sum, int digit) {
  constexpr std::int64_t kMinimum = std::numeric_limits<std::int64_t>::min();
  if (sum < (kMinimum + digit) / 10) return false;
  sum = sum * 10 - digit;
  return true;
}

// "-12.5" in ten-thousandths, half to even; none when the text is something else or does not fit.
std::optional<std::int64_t> TenThousandths(std::string_view text) {
  const bool negative = !text.empty() && text[0] == '-';
  if (negative || (!text.empty() && text[0] == '+')) text.remove_prefix(1);
  std::int64_t sum = 0;
  int decimals = -1;  // -1: before the point
  int rounding = 0;   // the first digit that is cut
  bool found = false, rest = false;
  for (const char c : text) {
    if ((c == '.' || c == ',') && decimals < 0) {
      decimals = 0;
      continue;
    }
    if (!IsDigit(c)) return std::nullopt;
    found = true;
    if (decimals < kCurrencyDecimals) {
      if (!Add(sum, c - '0')) return std::nullopt;
      if (decimals >= 0) ++decimals;
    } else if (decimals++ == kCurrencyDecimals) {
      rounding = c - '0';
    } else {
      rest = rest || c != '0';
    }
  }
  if (!found) return std::nullopt;
  for (int d = std::max(decimals, 0); d < kCurrencyDecimals; ++d)
    if (!Add(sum, 0)) return std::nullopt;
  constexpr std::int64_t kMinimum = std::numeric_limits<std::int64_t>::min();
  const bool rounds_up = rounding > 5 || (rounding == 5 && (rest || sum % 2 != 0));
  if (sum == kMinimum && (rounds_up || !negative)) return std::nullopt;
  if (rounds_up) --sum;
  if (negative) return sum;
  if (sum == kMinimum) return std::nullopt;
  return -sum;
}

std::optional<double> Double(std::string_view text) {
  if (!text.empty() && text[0] == '+') text.remove_prefix(1);
  std::string with_point(text);
  if (with_point.find('.') == std::string::npos)  // a driver that writes by the machine's settings
    if (const std::size_t comma = with_point.find(','); comma != std::string::npos) with_point[comma] = '.';
  double v = 0;
  const char* end = with_point.data() + with_point.size();
  const auto r = std::from_chars(with_point.data(), end, v);
  if (r.ec != std::errc() || r.ptr != end) return std::nullopt;
  return v;
}

std::optional<std::int64_t> Integer(std::string_view text) {
  if (!text.empty() && text[0] == '+') text.remove_prefix(1);
  std::int64_t v = 0;
  const char* end = text.data() + text.size();
  const auto r = std::from_chars(text.data(), end, v);
  if (r.ec != std::errc() || r.ptr != end) return std::nullopt;
  return v;
}

bool IsWord(std::string_view text, std::initializer_list<std::string_view> words) {
  return std::any_of(words.begin(), words.end(),
                     [&](std::string_view p) { return base::EqualIgnoringCase(text, p); });
}

}  // namespace

Reading ReadingOf(SQLSMALLINT sql_type, std::string_view type_name, bool fixed_precision) {
  switch (sql_type) {
    case SQL_BIT:
      return Reading::Boolean;
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
      return Reading::Integer;
    case SQL_REAL:
      return Reading::Single;
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return Reading::Double;
    case SQL_NUMERIC:
    case SQL_DECIMAL: {
      const bool currency = fixed_precision ||
                            base::Contains(type_name, "CURRENCY", base::Compare::IgnoringCase) ||
                            base::Contains(type_name, "MONEY", base::Compare::IgnoringCase);
      return currency ? Reading::Currency : Reading::Decimal;
    }
    case SQL_TYPE_TIMESTAMP:
    case SQL_TIMESTAMP:
      return Reading::Moment;
    case SQL_TYPE_DATE:
    case SQL_DATETIME:  // SQL_DATE of ODBC 2
      return Reading::Date;
    case SQL_TYPE_TIME:
    case SQL_TIME:
      return Reading::Time;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      return Reading::Binary;
    case SQL_GUID:
      return Reading::Guid;
    default:
      return Reading::Text;
  }
}

base::Type TypeOf(Reading reading) {
  switch (reading) {
    case Reading::Boolean:
      return base::Type::Boolean;
    case Reading::Integer:
      return base::Type::Integer;
    case Reading::Single:
      return base::Type::Single;
    case Reading::Double:
    case Reading::Decimal:
      return base::Type::Number;
    case Reading::Currency:
      return base::Type::Currency;
    case Reading::Moment:
    case Reading::Date:
    case Reading::Time:
      return base::Type::Date;
    case Reading::Text:
    case Reading::Guid:
    case Reading::Binary:
      break;
  }
  return base::Type::Text;
}

base::Value ValueOfDigits(std::string_view text, Reading reading) {
  const std::string_view trimmed = base::TrimView(text);
  if (reading == Reading::Boolean) {
    if (const auto v = Double(trimmed)) return *v != 0;
    if (IsWord(trimmed, {"true", "t", "yes", "y"})) return true;
    if (IsWord(trimmed, {"false", "f", "no", "n"})) return false;
  } else if (reading == Reading::Integer) {
    if (const auto v = Integer(trimmed)) return *v;
    if (const auto v = Double(trimmed)) return *v;
  } else {
    if (reading == Reading::Currency)
      if (const auto v = TenThousandths(trimmed)) return base::Currency{*v};
    if (const auto v = Double(trimmed)) return *v;
  }
  return std::string(text);
}

base::Date DateOfMoment(const SQL_TIMESTAMP_STRUCT& m, std::string_view column) {
  const bool in_calendar = m.year >= 100 && m.year <= 9999 && m.month >= 1 && m.month <= 12 && m.day >= 1 &&
                           m.day <= 31 && m.hour <= 23 && m.minute <= 59 && m.second <= 61;
  if (!in_calendar) throw db::Error("El campo " + std::string(column) + " trae una fecha que no existe.");
  const double day = base::MakeDate(m.year, m.month, m.day).serial;
  double time = base::MakeTime(m.hour, m.minute, m.second).serial;
  if (m.fraction != 0) time += static_cast<double>(m.fraction) / 1e9 / 86400.0;
  return {day < 0 ? day - time : day + time};  // below zero the time is still counted away from zero
}

}  // namespace engine_odbc
