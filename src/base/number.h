// Numbers and their texts: one rule each. All arithmetic texts are ASCII inside UTF-8. How the SQL dialect
// reads a number is another matter: base/dialect_number.h.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/locale.h"

namespace base {

// The number that an operator, a file or a formula wrote, and nothing wider, because a text that is misread
// is somebody's wage. For a locale whose decimal sign is "," and whose thousands sign is ".":
//
//   number := white* sign? body white*           white: blank, tab, line ends, no-break space
//   body   := digits | groups                    groups: 1 to 3 digits, then at least one "." + 3 digits
//           | (digits | groups)? "," digits?     at least one digit in all
//           | digits? "." digits?                a lone "." is a decimal sign
//
// So "8,5" "8.5" "1.234,5" "1.234.567" are 8.5, 8.5, 1234.5 and 1234567, and "1.234" is 1.234. None: "8.5.3"
// "12.34,5" "1,234.5" "1e3" "&H10" "(5)" "5-" "- 5" "8 5" "5 €" "" "-". Other locales: the second form alone
// of the last two, with their signs. None as well for a number that a double cannot hold.
std::optional<double> NumberFromText(std::string_view text, const Locale& locale = Locale::spanish());
bool IsNumber(std::string_view text, const Locale& locale = Locale::spanish());
// The same number; throws Error 13 for a text that is none and 6 for one too large.
double NumberFromTextOrThrow(std::string_view text, const Locale& locale = Locale::spanish());
// Nothing but the white space that may stand around a number.
bool IsBlank(std::string_view text);

// The leading number: white space skipped, a sign, digits with at most one "." (never a ",") among them; what
// follows does not matter ("8 30" is 8, "1e3" is 1). 0 when there is none, ±infinity when a double cannot
// hold it.
double Parse(std::string_view text);

// Number of the text when it is one, else its leading number. ±infinity when a double cannot hold it.
double NumericValue(std::string_view text);

// Shortest general form: at most 15 (Single: 7) significant digits, the locale's decimal sign, exponent form
// from 1E+15 (1E+07) up and for long fractions. Never "-0".
std::string NumberText(double number, const Locale& locale = Locale::spanish());
std::string SingleText(float number, const Locale& locale = Locale::spanish());
// The same digits without an exponent ever, so that the rule above reads them back. Throw Error 6 for what is
// not finite.
std::string PlainNumber(double number, std::string_view decimal_sign = ".");
std::string PlainSingle(float number, std::string_view decimal_sign = ".");
// The forms that are spliced into SQL: "." whatever the locale.
std::string SqlNumber(double number);
std::string SqlSingle(float number);
// A single as the shortest text of at most 7 significant digits reads it back: 0.1f -> 0.1.
double DoubleOfSingle(float number);

// Half to even at `decimals` places (0..22), on the decimal text of at most 15 digits.
double Round(double number, int decimals);
// Half to even to a whole number (CInt, CLng, \ and Mod operands). Throws Error 6 outside 64 bits.
long long BankersInteger(double number);
// Half to even to 32 and 16 bits; throws Error 6 outside them.
int Integer32(double number);
short Integer16(double number);

}  // namespace base
