// Numbers to text, and rounding.
#include "base/number.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "base/error.h"
#include "base/number_internal.h"
#include "base/text_internal.h"

namespace base {
namespace internal {
namespace {

// "d.ddde±xx" as to_chars writes it.
Decimal FromScientificText(std::string_view text) {
  Decimal d;
  if (text.front() == '-') {
    d.negative = true;
    text.remove_prefix(1);
  }
  const std::size_t e = text.find('e');
  for (const char c : text.substr(0, e))
    if (c != '.') d.digits += c;
  std::string_view exponent = text.substr(e + 1);
  if (exponent.front() == '+') exponent.remove_prefix(1);
  std::from_chars(exponent.data(), exponent.data() + exponent.size(), d.exponent);
  ++d.exponent;
  while (!d.digits.empty() && d.digits.back() == '0') d.digits.pop_back();
  if (d.digits.empty()) d = Decimal{};
  return d;
}

// Enough digits after the cut to tell a tie from what lies beside it.
constexpr int kExactDigits = 40;

template <typename Floating>
Decimal FromFloating(Floating number, int maximum) {
  std::array<char, 64> buffer;
  char* const beginning = buffer.data();
  char* const limit = beginning + buffer.size();
  auto end = std::to_chars(beginning, limit, number, std::chars_format::scientific).ptr;
  Decimal d = FromScientificText({beginning, static_cast<std::size_t>(end - beginning)});
  if (static_cast<int>(d.digits.size()) <= maximum) return d;
  end = std::to_chars(beginning, limit, static_cast<double>(number), std::chars_format::scientific,
                      kExactDigits)
            .ptr;
  d = FromScientificText({beginning, static_cast<std::size_t>(end - beginning)});
  RoundDecimal(d, maximum - d.exponent, Half::AwayFromZero);
  return d;
}

bool RoundsUp(const Decimal& d, std::size_t remaining, Half half) {
  const char next = d.digits[remaining];
  if (next != '5') return next > '5';
  const bool exact = remaining + 1 == d.digits.size();  // no trailing zeros are kept
  if (!exact || half == Half::AwayFromZero) return true;
  return remaining > 0 && ((d.digits[remaining - 1] - '0') & 1) != 0;
}

}  // namespace

Decimal FromDouble(double number, int maximum) { return FromFloating(number, maximum); }
Decimal FromSingle(float number) { return FromFloating(number, 7); }

void RoundDecimal(Decimal& d, int decimals, Half half) {
  const long remaining = static_cast<long>(d.exponent) + decimals;
  if (d.IsZero() || remaining >= static_cast<long>(d.digits.size())) return;
  if (remaining < 0) {
    d = Decimal{};
    return;
  }
  const auto n = static_cast<std::size_t>(remaining);
  const bool rounds_up = RoundsUp(d, n, half);
  d.digits.resize(n);
  if (rounds_up) {
    std::size_t i = n;
    while (i > 0 && d.digits[i - 1] == '9') --i;
    d.digits.resize(i);
    if (i > 0) {
      ++d.digits[i - 1];
    } else {
      d.digits.assign(1, '1');
      ++d.exponent;
    }
  }
  while (!d.digits.empty() && d.digits.back() == '0') d.digits.pop_back();
  if (d.digits.empty()) d = Decimal{};
}

double ToDouble(const Decimal& d) {
  if (d.IsZero()) return 0;
  const std::string text = (d.negative ? "-0." : "0.") + d.digits + 'e' + std::to_string(d.exponent);
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

std::string PlainText(const Decimal& d, std::string_view point) {
  if (d.IsZero()) return "0";
  std::string text = d.negative ? "-" : "";
  const auto n = static_cast<int>(d.digits.size());
  if (d.exponent <= 0) {
    text.append("0").append(point).append(static_cast<std::size_t>(-d.exponent), '0').append(d.digits);
  } else if (d.exponent >= n) {
    text.append(d.digits).append(static_cast<std::size_t>(d.exponent - n), '0');
  } else {
    const auto whole_digits = static_cast<std::size_t>(d.exponent);
    text.append(d.digits, 0, whole_digits).append(point).append(d.digits, whole_digits);
  }
  return text;
}

std::string ExponentText(const Decimal& d, std::string_view point) {
  std::string text = d.negative ? "-" : "";
  text += d.IsZero() ? '0' : d.digits[0];
  if (d.digits.size() > 1) text.append(point).append(d.digits, 1);
  const int exponent = d.IsZero() ? 0 : d.exponent - 1;
  text += exponent < 0 ? "E-" : "E+";
  if (std::abs(exponent) < 10) text += '0';
  return text += std::to_string(std::abs(exponent));
}

}  // namespace internal

namespace {

// What the classic runtime prints for what is no finite number.
std::string NonFiniteText(double number, const std::string& point) {
  if (std::isnan(number)) return "-1" + point + "#IND";
  return (number < 0 ? "-1" : "1") + point + "#INF";
}

std::string GeneralText(const internal::Decimal& d, int maximum, std::string_view point) {
  const int decimals = static_cast<int>(d.digits.size()) - d.exponent;
  if (d.exponent > maximum || decimals > maximum) return internal::ExponentText(d, point);
  return internal::PlainText(d, point);
}

// SQL reads both forms; plain digits are kept wherever they are short.
std::string SqlText(const internal::Decimal& d) {
  const int decimals = static_cast<int>(d.digits.size()) - d.exponent;
  if (d.exponent > 15 || decimals > 30) return internal::ExponentText(d, ".");
  return internal::PlainText(d, ".");
}

constexpr double kPlainLimit = 1e15;

bool IsPlainInteger(double number) { return std::abs(number) < kPlainLimit && number == std::trunc(number); }

// A number of few decimals, which most are, as a whole number of parts: parts / 10^decimals reads back as
// the number, and no other decimal that short does, so that the general way would find the same digits.
struct Parts {
  bool found = false;
  long long parts = 0;
};

constexpr int kShortDecimals = 5;
constexpr double kShortScale = 1e5;

// At most 15 digits, 5 of them decimals.
Parts ToParts(double number) {
  const double scaled = number * kShortScale;
  if (!(std::abs(scaled) < kPlainLimit)) return {};
  const long long parts = std::llround(scaled);
  return {static_cast<double>(parts) / kShortScale == number, parts};
}

// The same of a single: two decimals and at most 6 digits, which no two singles share.
constexpr double kSingleScale = 100;
Parts SingleToParts(float number) {
  const double scaled = static_cast<double>(number) * kSingleScale;
  if (!(std::abs(scaled) < 999999)) return {};
  const long long parts = std::llround(scaled);
  return {static_cast<float>(static_cast<double>(parts) / kSingleScale) == number, parts};
}

std::string PartsText(long long parts, int decimals, std::string_view point) {
  std::array<char, 40> buffer;
  char* const limit = buffer.data() + buffer.size();
  char* p = limit;
  unsigned long long rest =
      parts < 0 ? 0ULL - static_cast<unsigned long long>(parts) : static_cast<unsigned long long>(parts);
  while (decimals > 0 && rest % 10 == 0) {
    rest /= 10;
    --decimals;
  }
  const bool with_point = decimals > 0;
  for (; decimals > 0; --decimals, rest /= 10) *--p = static_cast<char>('0' + rest % 10);
  if (with_point) {
    p -= point.size();
    point.copy(p, point.size());
  }
  do {
    *--p = static_cast<char>('0' + rest % 10);
    rest /= 10;
  } while (rest != 0);
  if (parts < 0) *--p = '-';
  return {p, static_cast<std::size_t>(limit - p)};
}

// Half to even, of whole parts.
double RoundParts(double number, long long parts, int decimals) {
  if (decimals >= kShortDecimals) return number;
  constexpr long long kPowers[] = {1, 10, 100, 1000, 10000, 100000};
  const long long excess = kPowers[kShortDecimals - decimals];
  long long quotient = parts / excess;
  const long long twice_rest = 2 * std::abs(parts % excess);
  if (twice_rest > excess || (twice_rest == excess && quotient % 2 != 0)) quotient += parts < 0 ? -1 : 1;
  return static_cast<double>(quotient) / static_cast<double>(kPowers[decimals]);
}

constexpr std::size_t kLongestPoint = 8;  // bytes of a decimal sign that PartsText has room for

}  // namespace

std::string NumberText(double number, const Locale& locale) {
  if (!std::isfinite(number)) return NonFiniteText(number, locale.decimal);
  if (IsPlainInteger(number)) return std::to_string(static_cast<long long>(number));
  if (const Parts p = ToParts(number); p.found && locale.decimal.size() <= kLongestPoint)
    return PartsText(p.parts, kShortDecimals, locale.decimal);
  return GeneralText(internal::FromDouble(number), 15, locale.decimal);
}

std::string SingleText(float number, const Locale& locale) {
  if (!std::isfinite(number)) return NonFiniteText(static_cast<double>(number), locale.decimal);
  return GeneralText(internal::FromSingle(number), 7, locale.decimal);
}

std::string PlainNumber(double number, std::string_view decimal_sign) {
  if (!std::isfinite(number)) throw Error(ErrorDescription(6), 6);
  if (IsPlainInteger(number)) return std::to_string(static_cast<long long>(number));
  if (const Parts p = ToParts(number); p.found && decimal_sign.size() <= kLongestPoint)
    return PartsText(p.parts, kShortDecimals, decimal_sign);
  return internal::PlainText(internal::FromDouble(number), decimal_sign);
}

std::string PlainSingle(float number, std::string_view decimal_sign) {
  if (!std::isfinite(number)) throw Error(ErrorDescription(6), 6);
  if (const Parts p = SingleToParts(number); p.found && decimal_sign.size() <= kLongestPoint)
    return PartsText(p.parts, 2, decimal_sign);
  return internal::PlainText(internal::FromSingle(number), decimal_sign);
}

std::string SqlNumber(double number) {
  if (!std::isfinite(number)) throw Error(ErrorDescription(6), 6);
  if (IsPlainInteger(number)) return std::to_string(static_cast<long long>(number));
  if (const Parts p = ToParts(number); p.found) return PartsText(p.parts, kShortDecimals, ".");
  return SqlText(internal::FromDouble(number));
}

std::string SqlSingle(float number) {
  if (!std::isfinite(number)) throw Error(ErrorDescription(6), 6);
  if (const Parts p = SingleToParts(number); p.found) return PartsText(p.parts, 2, ".");
  return SqlText(internal::FromSingle(number));
}

double DoubleOfSingle(float number) {
  if (!std::isfinite(number)) return static_cast<double>(number);
  if (const Parts p = SingleToParts(number); p.found) return static_cast<double>(p.parts) / kSingleScale;
  return internal::ToDouble(internal::FromSingle(number));
}

double Round(double number, int decimals) {
  if (decimals < 0 || decimals > 22) throw Error(ErrorDescription(5), 5);
  if (!std::isfinite(number)) return number;
  if (std::abs(number) >= kPlainLimit) return number;
  if (IsPlainInteger(number)) return number == 0 ? 0 : number;
  if (const Parts p = ToParts(number); p.found) return RoundParts(number, p.parts, decimals);
  internal::Decimal d = internal::FromDouble(number);
  // Nothing to cut: the number keeps the bits beyond its fifteenth digit.
  if (d.exponent + decimals >= static_cast<int>(d.digits.size())) return number;
  internal::RoundDecimal(d, decimals, internal::Half::ToEven);
  return internal::ToDouble(d);
}

long long BankersInteger(double number) {
  const double below = std::floor(number);
  const double rest = number - below;
  double integer = rest < 0.5 ? below : below + 1;
  if (rest == 0.5 && std::fmod(below, 2.0) == 0) integer = below;
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  if (!(integer >= -kLimit && integer < kLimit)) throw Error(ErrorDescription(6), 6);
  return static_cast<long long>(integer);
}

namespace {

template <typename Integer>
Integer Narrow(double number) {
  const long long integer = BankersInteger(number);
  if (integer < std::numeric_limits<Integer>::min() || integer > std::numeric_limits<Integer>::max())
    throw Error(ErrorDescription(6), 6);
  return static_cast<Integer>(integer);
}

}  // namespace

int Integer32(double number) { return Narrow<int>(number); }
short Integer16(double number) { return Narrow<short>(number); }

}  // namespace base
