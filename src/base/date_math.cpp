// DateAdd, DateDiff, DatePart.
#include <array>
#include <cmath>
#include <string_view>

#include "base/date.h"
#include "base/date_internal.h"
#include "base/error.h"
#include "base/number.h"
#include "base/text.h"

namespace base {
namespace {

using internal::DaySecond;
using internal::kSecondsPerDay;

enum class Interval { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };

Interval ReadInterval(std::string_view text) {
  struct Name {
    std::string_view text;
    Interval interval;
  };
  constexpr std::array<Name, 10> kNames = {{{"yyyy", Interval::Year},
                                            {"q", Interval::Quarter},
                                            {"m", Interval::Month},
                                            {"y", Interval::DayOfYear},
                                            {"d", Interval::Day},
                                            {"w", Interval::Weekday},
                                            {"ww", Interval::Week},
                                            {"h", Interval::Hour},
                                            {"n", Interval::Minute},
                                            {"s", Interval::Second}}};
  for (const auto& n : kNames)
    if (n.text.size() == text.size() && EqualIgnoringCase(n.text, text)) return n.interval;
  throw Error(ErrorDescription(5), 5);
}

// Bounds that keep the sums of days and seconds inside 64 bits.
constexpr long long kMaxCount = 400000000000LL;

// To the same day of another month, or to its last one.
Date AddMonths(Date date, long long months) {
  const DateParts p = PartsOf(date);
  const long long total = p.year * 12LL + p.month - 1 + months;
  if (total < 100 * 12 || total >= 10000 * 12) throw Error(ErrorDescription(5), 5);
  const long long year = total / 12;
  const int month = static_cast<int>(total % 12) + 1;
  const int last = internal::DaysInMonth(year, month);
  const double fraction = std::abs(date.serial - std::trunc(date.serial));
  const bool near_midnight =
      fraction != 0 && internal::SplitDate(date).day != static_cast<long long>(date.serial);
  return internal::JoinDate(internal::DayOf(year, month, p.day < last ? p.day : last),
                            near_midnight ? 0 : fraction);
}

Date AddDays(Date date, long long days) {
  const double integer = std::trunc(date.serial);
  return internal::JoinDate(static_cast<long long>(integer) + days, std::abs(date.serial - integer));
}

Date AddSeconds(Date date, long long seconds) {
  const DaySecond ds = internal::SplitDate(date);
  const long long total = ds.day * kSecondsPerDay + ds.second + seconds;
  long long day = total / kSecondsPerDay;
  if (total % kSecondsPerDay < 0) --day;
  return internal::JoinDate(
      day, static_cast<double>(total - day * kSecondsPerDay) / static_cast<double>(kSecondsPerDay));
}

// The day on which the week of `day` began; `first_day` 0 is the system's, Monday.
long long WeekStart(long long day, int first_day) {
  const int first = first_day == 0 ? 2 : first_day;
  if (first < 1 || first > 7) throw Error(ErrorDescription(5), 5);
  const long long elapsed = (Weekday({static_cast<double>(day)}) - first + 7) % 7;
  return day - elapsed;
}

// First day of week 1 of a year: the week of 1 January (1, and 0 the system's), the first one with four days
// of the year (2), the first whole one (3).
long long FirstWeekStart(long long year, int first_day, int first_week) {
  const long long january1 = internal::DayOf(year, 1, 1);
  const long long start = WeekStart(january1, first_day);
  const long long outside = january1 - start;  // days of that week that belong to the year before
  switch (first_week) {
    case 0:
    case 1:
      return start;
    case 2:
      return outside > 3 ? start + 7 : start;
    case 3:
      return outside > 0 ? start + 7 : start;
    default:
      throw Error(ErrorDescription(5), 5);
  }
}

int Week(long long day, int year, int first_day, int first_week) {
  long long start = FirstWeekStart(year, first_day, first_week);
  if (day < start) start = FirstWeekStart(year - 1, first_day, first_week);
  // The last days of December belong to week 1 of the next year only when weeks are not cut at the year.
  if (first_week > 1) {
    const long long next = FirstWeekStart(year + 1, first_day, first_week);
    if (day >= next) start = next;
  }
  return static_cast<int>((day - start) / 7) + 1;
}

}  // namespace

Date DateAdd(std::string_view interval, double count, Date date) {
  const Interval what = ReadInterval(interval);
  const long long n = BankersInteger(count);
  if (n > kMaxCount || n < -kMaxCount) throw Error(ErrorDescription(5), 5);
  switch (what) {
    case Interval::Year:
      return AddMonths(date, n * 12);
    case Interval::Quarter:
      return AddMonths(date, n * 3);
    case Interval::Month:
      return AddMonths(date, n);
    case Interval::DayOfYear:
    case Interval::Day:
    case Interval::Weekday:
      return AddDays(date, n);
    case Interval::Week:
      return AddDays(date, n * 7);
    case Interval::Hour:
      return AddSeconds(date, n * 3600);
    case Interval::Minute:
      return AddSeconds(date, n * 60);
    case Interval::Second:
      break;
  }
  return AddSeconds(date, n);
}

long long DateDiff(std::string_view interval, Date from, Date to, int first_day, int) {
  const Interval what = ReadInterval(interval);
  const DateParts a = PartsOf(from), b = PartsOf(to);
  const DaySecond da = internal::SplitDate(from), db = internal::SplitDate(to);
  const long long days = db.day - da.day;
  const auto crossings = [&](long long seconds) {
    return (days * kSecondsPerDay + db.second - db.second % seconds - (da.second - da.second % seconds)) /
           seconds;
  };
  switch (what) {
    case Interval::Year:
      return b.year - a.year;
    case Interval::Quarter:
      return (b.year - a.year) * 4LL + (b.month - 1) / 3 - (a.month - 1) / 3;
    case Interval::Month:
      return (b.year - a.year) * 12LL + b.month - a.month;
    case Interval::DayOfYear:
    case Interval::Day:
      return days;
    case Interval::Weekday:
      return days / 7;
    case Interval::Week:
      return (WeekStart(db.day, first_day) - WeekStart(da.day, first_day)) / 7;
    case Interval::Hour:
      return crossings(3600);
    case Interval::Minute:
      return crossings(60);
    case Interval::Second:
      break;
  }
  return crossings(1);
}

int DatePart(std::string_view interval, Date date, int first_day, int first_week) {
  const Interval what = ReadInterval(interval);
  const DateParts p = PartsOf(date);
  const long long day = internal::SplitDate(date).day;
  switch (what) {
    case Interval::Year:
      return p.year;
    case Interval::Quarter:
      return (p.month - 1) / 3 + 1;
    case Interval::Month:
      return p.month;
    case Interval::DayOfYear:
      return static_cast<int>(day - internal::DayOf(p.year, 1, 1)) + 1;
    case Interval::Day:
      return p.day;
    case Interval::Weekday:
      return static_cast<int>(day - WeekStart(day, first_day)) + 1;
    case Interval::Week:
      return Week(day, p.year, first_day, first_week);
    case Interval::Hour:
      return p.hour;
    case Interval::Minute:
      return p.minute;
    case Interval::Second:
      break;
  }
  return p.second;
}

}  // namespace base
