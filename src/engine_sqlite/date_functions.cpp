// The date functions of the dialect. Dates are day serials.
#include <cmath>

#include "base/date.h"
#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {
namespace {

// The fraction of a serial is a positive time of day, also below zero.
base::Date DayOnly(base::Date f) { return {std::trunc(f.serial)}; }
base::Date TimeOnly(base::Date f) { return {std::abs(f.serial - std::trunc(f.serial))}; }

void Date(Call& l) { l.ReturnDate(l.Today()); }
void Now(Call& l) { l.ReturnDate(l.Now()); }
void Time(Call& l) { l.ReturnDate(TimeOnly(l.Now())); }

void Timer(Call& l) {
  constexpr double kSecondsPerDay = 86400;
  l.ReturnNumber(std::floor(TimeOnly(l.Now()).serial * kSecondsPerDay * 100 + 0.5) / 100);
}

template <int base::DateParts::*kPart>
void PartOf(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnInteger(base::PartsOf(l.Date(0)).*kPart);
}

void Weekday(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnInteger((base::Weekday(l.Date(0)) - l.FirstDay(1) + 7) % 7 + 1);
}

// The interval of DateAdd and its kin, which may not be Null while the dates may.
std::string_view Interval(Call& l) {
  if (l.IsNull(0)) ThrowNumber(kInvalidUseOfNull);
  return l.Text(0);
}

void DateAdd(Call& l) {
  const std::string_view interval = Interval(l);
  const double count = l.Number(1);
  if (l.IsNull(2)) return l.Null();
  l.ReturnDate(base::DateAdd(interval, count, l.Date(2)));
}

void DateDiff(Call& l) {
  const std::string_view interval = Interval(l);
  if (l.IsNull(1) || l.IsNull(2)) return l.Null();
  l.ReturnInteger(base::DateDiff(interval, l.Date(1), l.Date(2), l.FirstDay(3), l.FirstWeek(4)));
}

void DatePart(Call& l) {
  const std::string_view interval = Interval(l);
  if (l.IsNull(1)) return l.Null();
  l.ReturnInteger(base::DatePart(interval, l.Date(1), l.FirstDay(2), l.FirstWeek(3)));
}

void DateSerial(Call& l) { l.ReturnDate(base::MakeDate(l.Integer32(0), l.Integer32(1), l.Integer32(2))); }

void TimeSerial(Call& l) { l.ReturnDate(base::MakeTime(l.Integer32(0), l.Integer32(1), l.Integer32(2))); }

void DateValue(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnDate(DayOnly(l.Date(0)));
}

void TimeValue(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnDate(TimeOnly(l.Date(0)));
}

void MonthName(Call& l) {
  const std::int32_t month = l.Integer32(0);
  if (month < 1 || month > 12) ThrowNumber(kInvalidCall);
  const auto& names = l.Optional(1, 0) != 0 ? l.Locale().short_months : l.Locale().months;
  l.ReturnText(names[month - 1]);
}

void WeekdayName(Call& l) {
  const std::int32_t day = l.Integer32(0);
  if (day < 1 || day > 7) ThrowNumber(kInvalidCall);
  const auto& names = l.Optional(1, 0) != 0 ? l.Locale().short_days : l.Locale().days;
  l.ReturnText(names[(day - 1 + l.FirstDay(2) - 1) % 7]);
}

using base::DateParts;

constexpr Implementation kFunctions[] = {
    {"DATE", Date},
    {"DATEADD", DateAdd},
    {"DATEDIFF", DateDiff},
    {"DATEPART", DatePart},
    {"DATESERIAL", DateSerial},
    {"DATEVALUE", DateValue},
    {"DAY", PartOf<&DateParts::day>},
    {"HOUR", PartOf<&DateParts::hour>},
    {"MINUTE", PartOf<&DateParts::minute>},
    {"MONTH", PartOf<&DateParts::month>},
    {"MONTHNAME", MonthName},
    {"NOW", Now},
    {"SECOND", PartOf<&DateParts::second>},
    {"TIME", Time},
    {"TIMER", Timer},
    {"TIMESERIAL", TimeSerial},
    {"TIMEVALUE", TimeValue},
    {"WEEKDAY", Weekday},
    {"WEEKDAYNAME", WeekdayName},
    {"YEAR", PartOf<&DateParts::year>},
};

}  // namespace

std::span<const Implementation> DateFunctions() { return kFunctions; }

}  // namespace engine_sqlite
