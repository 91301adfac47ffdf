// Dates as day serials: a double, 0 = 30 December 1899, the fraction is always a positive time of day even
// below zero. Range 0100-01-01 to 9999-12-31. Times are rounded to whole seconds when taken apart.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/locale.h"

namespace base {

struct Date {  // a serial with a type of its own, so that it is not taken for a quantity
  double serial = 0;
  auto operator<=>(const Date&) const = default;
};

struct DateParts {
  int year, month, day, hour, minute, second;
};

DateParts PartsOf(Date date);
// Carries over (month 13, day 0, hour 25); years 0-29 are 20xx, 30-99 are 19xx. Throws Error 5 out of range.
Date MakeDate(int year, int month, int day);
Date MakeTime(int hour, int minute, int second);
int Weekday(Date date);  // 1 = Sunday .. 7

// CDate / IsDate on text by the locale's order; `today` gives the year of a date without one. A plain number
// is no date for IsDate, while DateFromText reads it as a serial (CDate). None when unreadable.
std::optional<Date> DateFromText(std::string_view text, Date today, const Locale& locale = Locale::spanish());
bool IsDate(std::string_view text, Date today, const Locale& locale = Locale::spanish());
// The inside of a #…# literal: month/day/year whatever the locale, turned round only if impossible; ISO; with
// time.
std::optional<Date> DateFromLiteral(std::string_view text, Date today);

// Short date, then the time when it is not midnight; day 0 shows the time alone (CStr of a date).
std::string DateText(Date date, const Locale& locale = Locale::spanish());
std::string DateMMddyyyy(Date date);  // "MM/dd/yyyy", for literals
std::string IsoDate(Date date);       // AAAA-MM-DD, and " hh:mm:ss" when not midnight

// Intervals yyyy q m y d w ww h n s, any case. Throws Error 5 for another one or out of range.
Date DateAdd(std::string_view interval, double count, Date date);
long long DateDiff(std::string_view interval, Date from, Date to, int first_day = 1, int first_week = 1);
int DatePart(std::string_view interval, Date date, int first_day = 1, int first_week = 1);

Date FirstDayOfMonth(Date date);
// Last day of the month of the date: "MM/yyyy", one month on, one day back.
Date LastDayOfMonth(Date date);

}  // namespace base
