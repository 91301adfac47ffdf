// Decimal digits of a number: what rounding, texts and masks work on.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/locale.h"

namespace base::internal {

// 0.d1d2d3… x 10^exponent. No leading zero digit; zero has no digits at all.
struct Decimal {
  bool negative = false;
  std::string digits;
  int exponent = 0;

  bool IsZero() const { return digits.empty(); }
};

// At most `maximum` significant digits (15 of a double): the shortest text that reads back when that is short
// enough, else the exact value with its last digit rounded half away. Not for infinities.
Decimal FromDouble(double number, int maximum = 15);
Decimal FromSingle(float number);  // 7 digits

enum class Half { ToEven, AwayFromZero };
// Rounds to `decimals` digits after the point (negative ones before it).
void RoundDecimal(Decimal& decimal, int decimals, Half half);

double ToDouble(const Decimal& decimal);
// Plain digits with `point` as decimal sign, or the exponent form.
std::string PlainText(const Decimal& decimal, std::string_view point);
std::string ExponentText(const Decimal& decimal, std::string_view point);

enum class Reading { Ok, NotANumber, Overflow };
// digits + digits of the fraction x 10^exponent, both parts without signs. Too small is 0.
Reading Compose(std::string_view digits, std::string_view fraction, int exponent, double& number);

// White space at the start, the no-break space among it, taken off.
void SkipBlanks(std::string_view& text);
// "," for the decimals and "." for the thousands: texts that an operator of this program writes.
bool IsOperatorLocale(const Locale& locale);
// Digits with at most one decimal sign among them, as nearly every number is written: the operator's rule and
// the dialect read both signs alike. False leaves it to the general way.
bool ReadPlain(std::string_view text, double& number);

}  // namespace base::internal
