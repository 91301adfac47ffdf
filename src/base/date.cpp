// The calendar of day serials.
#include "base/date.h"

#include <cmath>

#include "base/date_internal.h"
#include "base/error.h"
#include "base/format.h"
#include "base/number.h"
#include "base/text.h"

namespace base {
namespace internal {

bool IsLeapYear(long long year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int DaysInMonth(long long year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

// Years are counted from March, so that the leap day is the last one; an era is 400 years.
long long DayOf(long long year, int month, int day) {
  const long long a = month <= 2 ? year - 1 : year;
  const long long era = a / 400;  // years here are positive
  const long long year_of_era = a - era * 400;
  const long long day_of_year = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  constexpr long long kSinceMarch0 = 693899;  // days from 0000-03-01 to 1899-12-30
  return era * 146097 + year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year - kSinceMarch0;
}

int FullYear(int year) { return year < 0 || year > 99 ? year : year + (year < 30 ? 2000 : 1900); }

DaySecond SplitDate(Date date) {
  constexpr double kOutOfRange = 1e7;  // far beyond the calendar, and what no integer would hold
  if (!(std::abs(date.serial) < kOutOfRange)) throw Error(ErrorDescription(5), 5);
  const double integer = std::trunc(date.serial);
  DaySecond ds{static_cast<long long>(integer),
               std::llround(std::abs(date.serial - integer) * static_cast<double>(kSecondsPerDay))};
  if (ds.second == kSecondsPerDay) {
    ++ds.day;
    ds.second = 0;
  }
  return ds;
}

Date JoinDate(long long day, double fraction) {
  if (day < kMinDay || day > kMaxDay) throw Error(ErrorDescription(5), 5);
  const auto d = static_cast<double>(day);
  return {day < 0 ? d - fraction : d + fraction};
}

}  // namespace internal

using internal::DaySecond;
using internal::kSecondsPerDay;

namespace {

long long FloorDivide(long long a, long long b) { return a / b - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0); }

double FractionOf(long long second) {
  return static_cast<double>(second) / static_cast<double>(kSecondsPerDay);
}

// The year, month and day of a calendar day.
void ToCalendar(long long day, DateParts& p) {
  const long long z = day + 693899;
  const long long era = z / 146097;
  const long long day_of_era = z - era * 146097;
  const long long year_of_era =
      (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  const long long day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const long long m = (5 * day_of_year + 2) / 153;
  p.day = static_cast<int>(day_of_year - (153 * m + 2) / 5 + 1);
  p.month = static_cast<int>(m < 10 ? m + 3 : m - 9);
  p.year = static_cast<int>(year_of_era + era * 400 + (p.month <= 2 ? 1 : 0));
}

}  // namespace

DateParts PartsOf(Date date) {
  const DaySecond ds = internal::SplitDate(date);
  if (ds.day < internal::kMinDay || ds.day > internal::kMaxDay) throw Error(ErrorDescription(5), 5);
  DateParts p{};
  ToCalendar(ds.day, p);
  p.hour = static_cast<int>(ds.second / 3600);
  p.minute = static_cast<int>(ds.second / 60 % 60);
  p.second = static_cast<int>(ds.second % 60);
  return p;
}

Date MakeDate(int year, int month, int day) {
  const long long months = static_cast<long long>(internal::FullYear(year)) * 12 + month - 1;
  const long long a = FloorDivide(months, 12);
  if (a < 1 || a > 10000) throw Error(ErrorDescription(5), 5);
  return internal::JoinDate(internal::DayOf(a, static_cast<int>(months - a * 12) + 1, 1) + day - 1, 0);
}

Date MakeTime(int hour, int minute, int second) {
  const long long total = hour * 3600LL + minute * 60LL + second;
  const long long day = FloorDivide(total, kSecondsPerDay);
  return internal::JoinDate(day, FractionOf(total - day * kSecondsPerDay));
}

int Weekday(Date date) {
  const long long day = internal::SplitDate(date).day + 6;  // day 0 is a Saturday
  return static_cast<int>(day - FloorDivide(day, 7) * 7) + 1;
}

namespace {

void AppendNumber(std::string& text, int number, std::size_t width) {
  const std::string digits = std::to_string(number);
  if (digits.size() < width) text.append(width - digits.size(), '0');
  text += digits;
}

}  // namespace

std::string DateText(Date date, const Locale& locale) {
  const DaySecond ds = internal::SplitDate(date);
  std::string text;
  if (ds.day != 0) text = FormatDate(date, locale.short_date, locale);
  if (ds.second == 0 && ds.day != 0) return text;
  if (!text.empty()) text += ' ';
  return text += FormatDate(date, locale.time, locale);
}

std::string DateMMddyyyy(Date date) {
  const DateParts p = PartsOf(date);
  std::string text;
  AppendNumber(text, p.month, 2);
  text += '/';
  AppendNumber(text, p.day, 2);
  text += '/';
  AppendNumber(text, p.year, 4);
  return text;
}

std::string IsoDate(Date date) {
  const DateParts p = PartsOf(date);
  std::string text;
  AppendNumber(text, p.year, 4);
  text += '-';
  AppendNumber(text, p.month, 2);
  text += '-';
  AppendNumber(text, p.day, 2);
  if (p.hour == 0 && p.minute == 0 && p.second == 0) return text;
  text += ' ';
  AppendNumber(text, p.hour, 2);
  text += ':';
  AppendNumber(text, p.minute, 2);
  text += ':';
  AppendNumber(text, p.second, 2);
  return text;
}

Date FirstDayOfMonth(Date date) {
  const DateParts p = PartsOf(date);
  return MakeDate(p.year, p.month, 1);
}

Date LastDayOfMonth(Date date) {
  const DateParts p = PartsOf(date);
  return MakeDate(p.year, p.month, internal::DaysInMonth(p.year, p.month));
}

}  // namespace base
