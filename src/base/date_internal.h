// Days and seconds of a serial.
#pragma once

#include "base/date.h"

namespace base::internal {

constexpr long long kMinDay = -657434;  // 0100-01-01
constexpr long long kMaxDay = 2958465;  // 9999-12-31
constexpr long long kSecondsPerDay = 86400;

// A serial taken apart: the calendar day (0 = 1899-12-30) and the second of the day.
struct DaySecond {
  long long day = 0;
  long long second = 0;
};
DaySecond SplitDate(Date date);
// Throws Error 5 out of range.
Date JoinDate(long long day, double fraction);

bool IsLeapYear(long long year);
int DaysInMonth(long long year, int month);
long long DayOf(long long year, int month, int day);  // of an existing date
int FullYear(int year);                               // 0-29 are 20xx, 30-99 are 19xx

}  // namespace base::internal
