// The pieces of Format.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "base/locale.h"

namespace base::internal {

enum class MaskKind { Number, Date, Text };

// The mask behind a named format ("Short Date", "Fixed" …, any case); the same mask when it is no name.
// Names whose result is no mask (General Number, Currency, Yes/No …) are left alone.
std::string_view MaskOfName(std::string_view mask, const Locale& locale);

// By the first sign that means something outside literals.
MaskKind KindOf(std::string_view mask);

// A literal at `i` ("\x" or a quoted run) is appended to `output` and passed; false when there is none.
bool TakeLiteral(std::string_view mask, std::size_t& i, std::string& output);

// The sections parted by ";" outside literals.
std::vector<std::string_view> Sections(std::string_view mask);

std::string ApplyDateMask(Date date, std::string_view mask, const Locale& locale, int first_day,
                          int first_week);
std::string ApplyNumberMask(double number, std::string_view mask, const Locale& locale);
std::string ApplyTextMask(std::string_view text, std::string_view mask);
// AM/PM, am/pm, A/P, a/p or AMPM at `i` of a date mask: its length, or 0.
std::size_t DayHalfLength(std::string_view mask, std::size_t i);

}  // namespace base::internal
