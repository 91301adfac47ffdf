// Format(): named and user formats for numbers, dates and texts.
#pragma once

#include <string>
#include <string_view>

#include "base/locale.h"
#include "base/value.h"

namespace base {

// The value by the mask, in the locale. Text that reads as a number or date is converted first for a number
// or date mask. An empty mask is CStr. `today` completes date texts without a year. Weeks as in DatePart.
std::string Format(const Value& value, std::string_view mask, Date today,
                   const Locale& locale = Locale::spanish(), int first_day = 1, int first_week = 1);
std::string FormatDate(Date date, std::string_view mask, const Locale& locale = Locale::spanish());
std::string FormatNumber(double number, std::string_view mask, const Locale& locale = Locale::spanish());

}  // namespace base
