// Texts to dates. A text is cut into at most one time of day and a run of date numbers with at most one month
// name; the numbers are then tried in the orders that they may stand in, the locale's first.
#include <vector>

#include "base/date.h"
#include "base/date_internal.h"
#include "base/dialect_number.h"
#include "base/text.h"
#include "base/text_internal.h"

namespace base {
namespace {

using internal::IsDigit;

struct Number {
  int value = 0;
  int digits = 0;
};

struct Pieces {
  std::vector<Number> numbers;  // of the date, in their order
  int month = 0;                // by its name
  bool has_time = false;
  long long second = 0;
};

enum class DayHalf { None, Am, Pm };

// The languages a month may be written in.
struct Words {
  const Locale* principal;
  const Locale* other;  // may be null
};

class Reader {
 public:
  Reader(std::string_view text, Words words) : rest_(text), words_(words) {}

  bool Read(Pieces& pieces) {
    SkipBlanks();
    if (rest_.empty()) return false;
    while (!rest_.empty()) {
      const bool had_time = pieces.has_time;
      const bool read = IsDigit(rest_[0]) ? ReadNumberOrTime(pieces) : ReadWord(pieces);
      if (!read) return false;
      const bool is_time = pieces.has_time != had_time;
      if (!is_time && date_closed_) return false;
      const char before = separator_;
      separator_ = ReadSeparator();
      // Only a blank or a comma parts a time from a date.
      if (is_time && (IsDateSign(before) || IsDateSign(separator_))) return false;
    }
    return separator_ == ' ';
  }

 private:
  void SkipBlanks() {
    while (!rest_.empty() && (rest_[0] == ' ' || (rest_[0] >= '\t' && rest_[0] <= '\r')))
      rest_.remove_prefix(1);
  }

  static bool IsDateSign(char c) { return c == '/' || c == '-'; }

  // Blanks and at most one sign among them: that sign, or ' '.
  char ReadSeparator() {
    SkipBlanks();
    if (rest_.empty() || (!IsDateSign(rest_[0]) && rest_[0] != ',')) return ' ';
    const char sign = rest_[0];
    rest_.remove_prefix(1);
    SkipBlanks();
    return sign;
  }

  bool ReadNumber(Number& n) {
    n = {};
    for (; !rest_.empty() && IsDigit(rest_[0]); rest_.remove_prefix(1)) {
      if (++n.digits > 5) return false;
      n.value = n.value * 10 + (rest_[0] - '0');
    }
    return n.digits > 0;
  }

  bool ConsumeDayHalf(DayHalf& day_half) {
    const struct {
      std::string_view text;
      DayHalf day_half;
    } kForms[] = {{"a. m.", DayHalf::Am}, {"p. m.", DayHalf::Pm}, {"a.m.", DayHalf::Am},
                  {"p.m.", DayHalf::Pm},  {"am", DayHalf::Am},    {"pm", DayHalf::Pm},
                  {"a", DayHalf::Am},     {"p", DayHalf::Pm}};
    for (const auto& f : kForms) {
      if (!StartsWith(rest_, f.text, Compare::IgnoringCase)) continue;
      const std::string_view behind = rest_.substr(f.text.size());
      if (!behind.empty() && IsLetter(behind[0])) continue;
      rest_ = behind;
      day_half = f.day_half;
      return true;
    }
    return false;
  }

  static bool IsLetter(char c) {
    const char m = internal::LowerAscii(c);
    return (m >= 'a' && m <= 'z') || static_cast<unsigned char>(c) >= 0x80;
  }

  // am/pm right after a time or a single number; it says nothing once the hour is above 12.
  static int HourWithDayHalf(int hour, DayHalf day_half) {
    if (day_half == DayHalf::Pm && hour < 12) return hour + 12;
    return day_half == DayHalf::Am && hour == 12 ? 0 : hour;
  }

  bool ReadNumberOrTime(Pieces& pieces) {
    Number n;
    if (!ReadNumber(n)) return false;
    Number parts[3] = {n, {}, {}};
    int count = 1;
    for (; !rest_.empty() && (rest_[0] == ':' || rest_[0] == '.'); ++count) {
      rest_.remove_prefix(1);
      if (count == 3 || !ReadNumber(parts[count])) return false;
    }
    const std::string_view before = rest_;
    SkipBlanks();
    DayHalf day_half = DayHalf::None;
    if (!ConsumeDayHalf(day_half)) rest_ = before;
    if (count == 1 && day_half == DayHalf::None) {
      pieces.numbers.push_back(n);
      return true;
    }
    const int hour = HourWithDayHalf(n.value, day_half);
    if (pieces.has_time || n.value > 23 || parts[1].value > 59 || parts[2].value > 59) return false;
    // A time stands before or behind the date, never inside it.
    date_closed_ = !pieces.numbers.empty() || pieces.month != 0;
    pieces.has_time = true;
    pieces.second = hour * 3600LL + parts[1].value * 60LL + parts[2].value;
    return true;
  }

  bool ReadWord(Pieces& pieces) {
    std::size_t length = 0;
    while (length < rest_.size() && IsLetter(rest_[length])) ++length;
    if (length == 0 || pieces.month != 0) return false;
    const std::string_view word = rest_.substr(0, length);
    pieces.month = MonthOf(word, *words_.principal);
    if (pieces.month == 0 && words_.other != nullptr) pieces.month = MonthOf(word, *words_.other);
    rest_.remove_prefix(length);
    return pieces.month != 0;
  }

  static int MonthOf(std::string_view word, const Locale& locale) {
    for (std::size_t m = 0; m < 12; ++m)
      if (EqualIgnoringCase(word, locale.months[m]) || EqualIgnoringCase(word, locale.short_months[m]))
        return static_cast<int>(m) + 1;
    return EqualIgnoringCase(word, "sept") ? 9 : 0;
  }

  std::string_view rest_;
  Words words_;
  char separator_ = ' ';      // what was read last between two pieces
  bool date_closed_ = false;  // a time followed the date: no more of the date may come
};

// A number above 31 or written with four digits can only be a year.
bool YearOnly(const Number& n) { return n.value > 31 || n.digits > 3; }

std::optional<long long> Day(int year, const Number& month, const Number& day) {
  if (YearOnly(month) || YearOnly(day) || month.value < 1 || month.value > 12) return std::nullopt;
  if (year < 100 || year > 9999) return std::nullopt;
  if (day.value < 1 || day.value > internal::DaysInMonth(year, month.value)) return std::nullopt;
  return internal::DayOf(year, month.value, day.value);
}

std::optional<long long> Day(const Number& year, const Number& month, const Number& day) {
  return Day(internal::FullYear(year.value), month, day);
}

constexpr Number kFirst{1, 1};

std::optional<long long> FromTwoNumbers(const Number& a, const Number& b, int current_year, DateOrder order) {
  const bool day_first = order == DateOrder::DayMonthYear;
  if (const auto d = day_first ? Day(current_year, b, a) : Day(current_year, a, b)) return d;
  if (const auto d = day_first ? Day(current_year, a, b) : Day(current_year, b, a)) return d;
  // Month and year, whichever of the two can be the month.
  if (const auto d = Day(b, a, kFirst)) return d;
  return Day(a, b, kFirst);
}

std::optional<long long> FromThreeNumbers(const Number& a, const Number& b, const Number& c,
                                          DateOrder order) {
  const auto dmy = [&] { return Day(c, b, a); };
  const auto mdy = [&] { return Day(c, a, b); };
  const bool day_first = order == DateOrder::DayMonthYear;
  if (const auto d = day_first ? dmy() : mdy()) return d;
  if (const auto d = Day(a, b, c)) return d;  // year, month, day
  if (const auto d = Day(a, c, b)) return d;  // year, day, month
  if (const auto d = day_first ? mdy() : dmy()) return d;
  return Day(b, a, c);  // month, year, day
}

std::optional<long long> DayFromPieces(const Pieces& p, int current_year, DateOrder order) {
  const auto& n = p.numbers;
  if (p.month != 0) {
    const Number month{p.month, 1};
    if (n.size() == 1) {
      if (const auto d = Day(current_year, month, n[0])) return d;
      return Day(n[0], month, kFirst);
    }
    if (n.size() != 2) return std::nullopt;
    if (const auto d = Day(n[1], month, n[0])) return d;
    return Day(n[0], month, n[1]);
  }
  if (n.size() == 2) return FromTwoNumbers(n[0], n[1], current_year, order);
  if (n.size() == 3) return FromThreeNumbers(n[0], n[1], n[2], order);
  return std::nullopt;
}

std::optional<Date> Read(std::string_view text, Date today, DateOrder order, Words words) {
  Pieces pieces;
  if (!Reader(text, words).Read(pieces)) return std::nullopt;
  long long day = 0;
  if (!pieces.numbers.empty() || pieces.month != 0) {
    const auto read = DayFromPieces(pieces, PartsOf(today).year, order);
    if (!read) return std::nullopt;
    day = *read;
  }
  return internal::JoinDate(
      day, static_cast<double>(pieces.second) / static_cast<double>(internal::kSecondsPerDay));
}

}  // namespace

std::optional<Date> DateFromText(std::string_view text, Date today, const Locale& locale) {
  if (const auto date = Read(text, today, locale.order, {&locale, nullptr})) return date;
  const auto serial = DialectNumber(text, locale);
  if (!serial || *serial <= static_cast<double>(internal::kMinDay) - 1 ||
      *serial >= static_cast<double>(internal::kMaxDay) + 1)
    return std::nullopt;
  return Date{*serial};
}

bool IsDate(std::string_view text, Date today, const Locale& locale) {
  return Read(text, today, locale.order, {&locale, nullptr}).has_value();
}

std::optional<Date> DateFromLiteral(std::string_view text, Date today) {
  return Read(text, today, DateOrder::MonthDayYear, {&Locale::english(), &Locale::spanish()});
}

}  // namespace base
