#include "base/value.h"

#include <cmath>

#include "base/date_internal.h"
#include "base/dialect_number.h"
#include "base/error.h"
#include "base/number.h"
#include "base/text.h"

namespace base {
namespace {

constexpr double kTenThousand = 10000;
constexpr double kHalfSecond = 0.5 / static_cast<double>(internal::kSecondsPerDay);

std::string CurrencyText(Currency currency, std::string_view point) {
  const bool negative = currency.ten_thousandths < 0;
  const auto raw = static_cast<std::uint64_t>(currency.ten_thousandths);
  const std::uint64_t value = negative ? 0 - raw : raw;
  std::string text(negative ? 1 : 0, '-');
  text += std::to_string(value / 10000);
  std::string fraction = std::to_string(value % 10000 + 10000).substr(1);
  while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
  if (!fraction.empty()) text.append(point).append(fraction);
  return text;
}

// A column of dates may hold a number that is no day of the calendar; what shows a value must not fail on it.
bool IsInCalendar(Date date) {
  return date.serial > static_cast<double>(internal::kMinDay) - 1 &&
         date.serial < static_cast<double>(internal::kMaxDay) + 1 - kHalfSecond;
}

[[noreturn]] void Fail(int number) { throw Error(ErrorDescription(number), number); }

}  // namespace

std::string Value::Text(const Locale& locale) const {
  switch (type()) {
    case Type::Null:
      return {};
    case Type::Boolean:
      return std::get<bool>(v_) ? locale.true_word : locale.false_word;
    case Type::Integer:
      return std::to_string(std::get<std::int64_t>(v_));
    case Type::Single:
      return SingleText(std::get<float>(v_), locale);
    case Type::Number:
      return NumberText(std::get<double>(v_), locale);
    case Type::Currency:
      return CurrencyText(std::get<Currency>(v_), locale.decimal);
    case Type::Date: {
      const Date date = std::get<Date>(v_);
      return IsInCalendar(date) ? DateText(date, locale) : NumberText(date.serial, locale);
    }
    case Type::Text:
      break;
  }
  return std::get<std::string>(v_);
}

std::string Value::CsvText() const {
  switch (type()) {
    case Type::Boolean:
      return std::get<bool>(v_) ? "-1" : "0";
    case Type::Single:
      if (!std::isfinite(std::get<float>(v_))) return Text(Locale::english());
      return SqlSingle(std::get<float>(v_));
    case Type::Number:
      if (!std::isfinite(std::get<double>(v_))) return Text(Locale::english());
      return SqlNumber(std::get<double>(v_));
    case Type::Currency:
      return CurrencyText(std::get<Currency>(v_), ".");
    case Type::Date:
      if (!IsInCalendar(std::get<Date>(v_))) return Text(Locale::english());
      return IsoDate(std::get<Date>(v_));
    default:
      return Text();
  }
}

double Value::Number(const Locale& locale) const {
  switch (type()) {
    case Type::Null:
      Fail(94);
    case Type::Boolean:
      return std::get<bool>(v_) ? -1 : 0;
    case Type::Integer:
      return static_cast<double>(std::get<std::int64_t>(v_));
    case Type::Single:
      return static_cast<double>(std::get<float>(v_));
    case Type::Number:
      return std::get<double>(v_);
    case Type::Currency:
      return static_cast<double>(std::get<Currency>(v_).ten_thousandths) / kTenThousand;
    case Type::Date:
      return std::get<Date>(v_).serial;
    case Type::Text:
      break;
  }
  return CDbl(std::get<std::string>(v_), locale);
}

double Value::NumberOrZero(const Locale& locale) const {
  if (IsNull()) return 0;
  if (const auto* text = GetIf<std::string>()) return DialectNumber(*text, locale).value_or(0);
  return Number(locale);
}

std::int32_t Value::Integer(const Locale& locale) const {
  if (const auto* text = GetIf<std::string>())
    if (const auto hex = HexOctalInteger(*text, 32)) return static_cast<std::int32_t>(*hex);
  return Integer32(Number(locale));
}

std::int16_t Value::ShortInteger(const Locale& locale) const {
  if (const auto* text = GetIf<std::string>())
    if (const auto hex = HexOctalInteger(*text, 16)) return static_cast<std::int16_t>(*hex);
  return Integer16(Number(locale));
}

bool Value::Boolean(const Locale& locale) const {
  if (IsNull()) return false;
  if (const auto* text = GetIf<std::string>()) {
    std::string_view word = *text;
    if (word.size() > 2 && word.front() == '#' && word.back() == '#')
      word = word.substr(1, word.size() - 2);  // as the runtime writes them to files: #TRUE#
    if (EqualIgnoringCase(word, "True") || EqualIgnoringCase(word, locale.true_word)) return true;
    if (EqualIgnoringCase(word, "False") || EqualIgnoringCase(word, locale.false_word)) return false;
  }
  return Number(locale) != 0;
}

}  // namespace base
