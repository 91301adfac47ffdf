// Texts to numbers by the operator's rule, and what it shares with the dialect's conversions.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "base/error.h"
#include "base/number.h"
#include "base/number_internal.h"
#include "base/text_internal.h"

namespace base {
namespace internal {

namespace {

// Both the digits and the power of ten are exact as doubles: one operation rounds once, as a full read would.
bool ComposeShort(std::string_view digits, std::string_view fraction, int exponent, double& number) {
  constexpr double kPowers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  constexpr int kMaximum = 15;
  if (digits.size() + fraction.size() > kMaximum) return false;
  const int place = exponent - static_cast<int>(fraction.size());
  if (place < -kMaximum || place > kMaximum) return false;
  long long integer = 0;
  for (const char c : digits) integer = integer * 10 + (c - '0');
  for (const char c : fraction) integer = integer * 10 + (c - '0');
  const auto value = static_cast<double>(integer);
  number = place < 0 ? value / kPowers[-place] : value * kPowers[place];
  return true;
}

}  // namespace

Reading Compose(std::string_view digits, std::string_view fraction, int exponent, double& number) {
  while (!digits.empty() && digits.front() == '0') digits.remove_prefix(1);
  if (ComposeShort(digits, fraction, exponent, number)) return Reading::Ok;
  std::string text(digits);
  text.append(".").append(fraction).append("e").append(std::to_string(exponent));
  const auto r = std::from_chars(text.data(), text.data() + text.size(), number);
  if (r.ec != std::errc::result_out_of_range) return Reading::Ok;
  // Either way out of range: by the place of the first digit that is not 0.
  const std::size_t first = fraction.find_first_not_of('0');
  if (digits.empty() && first == std::string_view::npos) {
    number = 0;
    return Reading::Ok;
  }
  const auto place = digits.empty() ? -static_cast<long>(first) : static_cast<long>(digits.size());
  number = 0;
  return place + exponent > 0 ? Reading::Overflow : Reading::Ok;
}

bool IsOperatorLocale(const Locale& locale) { return locale.decimal == "," && locale.thousands == "."; }

bool ReadPlain(std::string_view t, double& number) {
  constexpr std::size_t kMaximum = 15;  // digits that a double holds exactly
  if (t.empty() || t.size() > kMaximum) return false;
  long long integer = 0;
  std::size_t decimals = 0;
  bool sign = false;
  for (const char c : t) {
    if (IsDigit(c)) {
      integer = integer * 10 + (c - '0');
      decimals += sign ? 1 : 0;
    } else if ((c == ',' || c == '.') && !sign) {
      sign = true;
    } else {
      return false;
    }
  }
  if (sign && t.size() == 1) return false;
  constexpr double kPowers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  number = static_cast<double>(integer) / kPowers[decimals];
  return true;
}

// Bytes of the white space at the start (the no-break space among it), or 0.
static std::size_t BlankLength(std::string_view t) {
  if (t.empty()) return 0;
  if (t[0] == ' ' || (t[0] >= '\t' && t[0] <= '\r')) return 1;
  return t.substr(0, 2) == "\xC2\xA0" ? 2 : 0;
}

void SkipBlanks(std::string_view& t) {
  while (const std::size_t n = BlankLength(t)) t.remove_prefix(n);
}

}  // namespace internal

namespace {

using internal::IsDigit;
using internal::Reading;

bool EndsWithBlank(std::string_view t) { return t.back() == ' ' || (t.back() >= '\t' && t.back() <= '\r'); }

std::string_view WithoutBlanks(std::string_view t) {
  constexpr std::string_view kNoBreakSpace = "\xC2\xA0";  // the no-break space
  internal::SkipBlanks(t);
  while (!t.empty()) {
    if (EndsWithBlank(t))
      t.remove_suffix(1);
    else if (t.size() >= kNoBreakSpace.size() && t.substr(t.size() - kNoBreakSpace.size()) == kNoBreakSpace)
      t.remove_suffix(kNoBreakSpace.size());
    else
      break;
  }
  return t;
}

bool AreDigits(std::string_view t) { return std::all_of(t.begin(), t.end(), IsDigit); }

// The sign in front, taken off.
bool TakeMinus(std::string_view& t) {
  const bool minus = !t.empty() && t.front() == '-';
  if (minus || (!t.empty() && t.front() == '+')) t.remove_prefix(1);
  return minus;
}

// Which texts part the whole number from its fraction and its thousands from one another; empty: none does.
struct Signs {
  std::string_view decimal, thousands;
};

Signs SignsOf(std::string_view body, const Locale& locale) {
  if (!internal::IsOperatorLocale(locale)) return {locale.decimal, locale.thousands};
  if (body.find(',') != std::string_view::npos) return {",", "."};
  const std::size_t point = body.find('.');
  const bool several = point != std::string_view::npos && body.find('.', point + 1) != std::string_view::npos;
  return several ? Signs{"", "."} : Signs{".", ""};
}

// Digits alone, or one to three of them and groups of three behind thousands signs.
bool ReadWholeDigits(std::string_view t, std::string_view thousands, std::string& digits) {
  std::size_t sign = thousands.empty() ? std::string_view::npos : t.find(thousands);
  const bool in_groups = sign != std::string_view::npos;
  if (in_groups && (sign < 1 || sign > 3)) return false;
  for (bool first = true;; first = false) {
    const std::string_view group = t.substr(0, sign);
    if (!AreDigits(group) || (in_groups && !first && group.size() != 3)) return false;
    digits += group;
    if (sign == std::string_view::npos) return true;
    t.remove_prefix(sign + thousands.size());
    sign = t.find(thousands);
  }
}

Reading Read(std::string_view text, const Locale& locale, double& number) {
  if (internal::IsOperatorLocale(locale) && internal::ReadPlain(text, number)) return Reading::Ok;
  std::string_view t = WithoutBlanks(text);
  const bool negative = TakeMinus(t);
  const Signs signs = SignsOf(t, locale);
  const std::size_t cut = signs.decimal.empty() ? std::string_view::npos : t.find(signs.decimal);
  const std::string_view fraction =
      cut == std::string_view::npos ? std::string_view() : t.substr(cut + signs.decimal.size());
  const std::string_view whole = t.substr(0, cut);
  std::string whole_digits;
  if ((whole.empty() && fraction.empty()) || !AreDigits(fraction) ||
      !ReadWholeDigits(whole, signs.thousands, whole_digits))
    return Reading::NotANumber;
  const Reading reading = internal::Compose(whole_digits, fraction, 0, number);
  if (reading == Reading::Overflow) number = std::numeric_limits<double>::infinity();
  if (negative && number != 0) number = -number;
  return reading;
}

}  // namespace

std::optional<double> NumberFromText(std::string_view text, const Locale& locale) {
  double number = 0;
  if (Read(text, locale, number) != Reading::Ok) return std::nullopt;
  return number;
}

bool IsNumber(std::string_view text, const Locale& locale) {
  return NumberFromText(text, locale).has_value();
}

double NumberFromTextOrThrow(std::string_view text, const Locale& locale) {
  double number = 0;
  const Reading reading = Read(text, locale, number);
  if (reading == Reading::Ok) return number;
  const int error = reading == Reading::Overflow ? 6 : 13;
  throw Error(ErrorDescription(error), error);
}

bool IsBlank(std::string_view text) { return WithoutBlanks(text).empty(); }

double Parse(std::string_view text) {
  internal::SkipBlanks(text);
  const bool negative = TakeMinus(text);
  const auto first_other = [](std::string_view t) {
    return static_cast<std::size_t>(std::find_if_not(t.begin(), t.end(), IsDigit) - t.begin());
  };
  const std::string_view whole_digits = text.substr(0, first_other(text));
  text.remove_prefix(whole_digits.size());
  std::string_view fraction;
  if (!text.empty() && text.front() == '.') {
    text.remove_prefix(1);
    fraction = text.substr(0, first_other(text));
  }
  if (whole_digits.empty() && fraction.empty()) return 0;
  double number = 0;
  if (internal::Compose(whole_digits, fraction, 0, number) == Reading::Overflow)
    number = std::numeric_limits<double>::infinity();
  return negative && number != 0 ? -number : number;
}

double NumericValue(std::string_view text) {
  double number = 0;
  return Read(text, Locale::spanish(), number) != Reading::NotANumber ? number : Parse(text);
}

}  // namespace base
