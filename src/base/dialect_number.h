// Texts to numbers as the SQL dialect converts them: what CDbl, IsNumeric and Val take, which is more than an
// operator's number (base/number.h). For values of a base and for texts that the dialect wrote; what a person
// or a file of hours wrote does not come here.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/locale.h"

namespace base {

// Surrounding white space, one sign in front or behind, digits with the locale's signs, an exponent (1e3),
// the locale's currency sign, parentheses for a negative, &H and &O. With "," for the decimals: with a ","
// present "." are thousands, without one a single "." is a decimal point, and several are thousands in proper
// groups of three; elsewhere thousands signs are passed over behind the first digit.
std::optional<double> DialectNumber(std::string_view text, const Locale& locale = Locale::spanish());
bool IsNumeric(std::string_view text, const Locale& locale = Locale::spanish());
// The same number; throws Error 13 for a text that is none and 6 for one too large.
double CDbl(std::string_view text, const Locale& locale = Locale::spanish());

// A text "&H…" or "&O…" as the signed integer of 16, 32 or 64 bits that CInt, CLng … make of it; none when
// the text is no such thing. Throws Error 6 when it needs more bits.
std::optional<std::int64_t> HexOctalInteger(std::string_view text, int bits);

// Leading number: never the locale, "." alone is the decimal point; 0 when the text starts with no number.
// Blanks, tabs and line ends are skipped everywhere. Throws Error 6 on overflow and 13 for a type sign after
// a fraction.
double Val(std::string_view text);

}  // namespace base
