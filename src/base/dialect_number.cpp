// Texts to numbers as the dialect converts them: CDbl, IsNumeric, "&H", and Val.
#include "base/dialect_number.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "base/currency.h"
#include "base/error.h"
#include "base/number_internal.h"
#include "base/text_internal.h"

namespace base {
namespace {

using internal::IsDigit;
using internal::Reading;
using internal::SkipBlanks;

constexpr int kMaxExponent = 100000;  // beyond it nothing changes any more

int DigitValue(char c) {
  if (IsDigit(c)) return c - '0';
  const char m = internal::LowerAscii(c);
  return m >= 'a' && m <= 'f' ? m - 'a' + 10 : 99;
}

int BaseOf(char c) {
  const char m = internal::LowerAscii(c);
  return m == 'h' ? 16 : m == 'o' ? 8 : 0;
}

bool Consume(std::string_view& t, std::string_view what) {
  if (what.empty() || t.substr(0, what.size()) != what) return false;
  t.remove_prefix(what.size());
  return true;
}

// "&H…" or "&O…" with nothing but white space around. None when the text is no such thing; `overflows` past
// 64 bits.
std::optional<std::uint64_t> ReadHexOctal(std::string_view t, bool& overflows) {
  SkipBlanks(t);
  if (t.size() < 3 || t[0] != '&') return std::nullopt;
  const int base = BaseOf(t[1]);
  if (base == 0) return std::nullopt;
  t.remove_prefix(2);
  std::uint64_t value = 0;
  std::size_t n = 0;
  for (; n < t.size() && DigitValue(t[n]) < base; ++n) {
    if (value > std::numeric_limits<std::uint64_t>::max() / static_cast<unsigned>(base)) overflows = true;
    value = value * static_cast<unsigned>(base) + static_cast<unsigned>(DigitValue(t[n]));
  }
  t.remove_prefix(n);
  SkipBlanks(t);
  if (n == 0 || !t.empty()) return std::nullopt;
  return value;
}

// Signs, currency and parentheses in front of or behind the digits, each as often as it may stand there.
struct Adornments {
  bool sign = false, negative = false, currency = false, parenthesis = false, closed = false;

  void TakeLeading(std::string_view& t, const Locale& locale) {
    for (;;) {
      SkipBlanks(t);
      if (!sign && (Consume(t, "-") ? (negative = true) : Consume(t, "+"))) {
        sign = true;
      } else if (!currency && Consume(t, locale.currency)) {
        currency = true;
      } else if (!parenthesis && Consume(t, "(")) {
        parenthesis = true;
      } else {
        return;
      }
    }
  }

  void TakeTrailing(std::string_view& t, const Locale& locale) {
    for (;;) {
      SkipBlanks(t);
      if (!sign && (Consume(t, "-") ? (negative = true) : Consume(t, "+"))) {
        sign = true;
      } else if (parenthesis && !closed && Consume(t, ")")) {
        closed = true;
      } else if (!Consume(t, locale.currency)) {
        return;
      }
    }
  }

  bool AreValid() const { return parenthesis == closed && !(parenthesis && sign); }
};

// The digits with their separators, cut from the front of `t`.
struct Body {
  std::string whole_digits, fraction;
  int exponent = 0;
};

bool ReadExponent(std::string_view& t, int& exponent) {
  if (t.empty() || internal::LowerAscii(t[0]) != 'e') return true;
  t.remove_prefix(1);
  const bool negative = Consume(t, "-");
  if (!negative) Consume(t, "+");
  if (t.empty() || !IsDigit(t[0])) return false;
  for (; !t.empty() && IsDigit(t[0]); t.remove_prefix(1))
    if (exponent < kMaxExponent) exponent = exponent * 10 + (t[0] - '0');
  if (negative) exponent = -exponent;
  return true;
}

// Thousands signs are passed over anywhere after the first digit and before the decimal sign.
bool ReadClassicBody(std::string_view& t, std::string_view decimal, std::string_view thousands, Body& c) {
  bool in_fraction = false;
  for (;;) {
    if (!t.empty() && IsDigit(t[0])) {
      (in_fraction ? c.fraction : c.whole_digits) += t[0];
      t.remove_prefix(1);
    } else if (!in_fraction && Consume(t, decimal)) {
      in_fraction = true;
    } else if (in_fraction || c.whole_digits.empty() || !Consume(t, thousands)) {
      break;
    }
  }
  return !c.whole_digits.empty() || !c.fraction.empty();
}

// Several "." and no ",": one to three digits, then groups of three.
bool AreGroupsOfThree(std::string_view body) {
  std::size_t point = body.find('.');
  if (point == 0 || point > 3) return false;
  while (point != std::string_view::npos) {
    const std::size_t other = body.find('.', point + 1);
    const std::size_t end = other == std::string_view::npos ? body.size() : other;
    if (end - point != 4) return false;
    point = other;
  }
  return true;
}

// The operator's rule: what "." means depends on whether there is a "," and on how many "." there are.
bool ReadOperatorBody(std::string_view& t, Body& c) {
  std::size_t end = 0, points = 0;
  bool comma = false;
  for (; end < t.size() && (IsDigit(t[end]) || t[end] == '.' || t[end] == ','); ++end) {
    points += t[end] == '.' ? 1 : 0;
    comma = comma || t[end] == ',';
  }
  const std::string_view body = t.substr(0, end);
  std::string_view rest = body;
  if (!comma && points > 1 && !AreGroupsOfThree(body)) return false;
  const bool decimal_point = !comma && points == 1;
  if (!ReadClassicBody(rest, decimal_point ? "." : ",", decimal_point ? "" : ".", c)) return false;
  if (!rest.empty()) return false;
  t.remove_prefix(end);
  return true;
}

Reading ReadText(std::string_view t, const Locale& locale, double& number) {
  Adornments trimmings;
  trimmings.TakeLeading(t, locale);
  Body body;
  const bool read = internal::IsOperatorLocale(locale)
                        ? ReadOperatorBody(t, body)
                        : ReadClassicBody(t, locale.decimal, locale.thousands, body);
  if (!read || !ReadExponent(t, body.exponent)) return Reading::NotANumber;
  trimmings.TakeTrailing(t, locale);
  if (!t.empty() || !trimmings.AreValid()) return Reading::NotANumber;
  const Reading reading = internal::Compose(body.whole_digits, body.fraction, body.exponent, number);
  if ((trimmings.negative || trimmings.parenthesis) && number != 0) number = -number;
  return reading;
}

Reading Read(std::string_view text, const Locale& locale, double& number) {
  if (internal::IsOperatorLocale(locale) && internal::ReadPlain(text, number)) return Reading::Ok;
  if (text.find('&') == std::string_view::npos) return ReadText(text, locale, number);
  bool overflows = false;
  const auto hex = ReadHexOctal(text, overflows);
  if (!hex) return Reading::NotANumber;
  number = static_cast<double>(*hex);
  return overflows ? Reading::Overflow : Reading::Ok;
}

// --- Val ---

// A text without the blanks that Val passes over wherever they stand, read one character at a time.
class ValReader {
 public:
  explicit ValReader(std::string_view text) : rest_(text) { Skip(); }
  char Peek() const { return rest_.empty() ? '\0' : rest_[0]; }
  // The character right after, blanks included.
  char PeekNext() const { return rest_.size() < 2 ? '\0' : rest_[1]; }
  void Take() {
    rest_.remove_prefix(1);
    Skip();
  }

 private:
  void Skip() {
    for (;;) {
      if (!rest_.empty() && (rest_[0] == ' ' || rest_[0] == '\t' || rest_[0] == '\n' || rest_[0] == '\r')) {
        rest_.remove_prefix(1);
      } else if (!Consume(rest_, "\xE3\x80\x80")) {  // the ideographic space
        return;
      }
    }
  }
  std::string_view rest_;
};

struct ValResult {
  double number = 0;
  int error = 0;
};

bool Fits(double number, double limit) { return number >= -limit - 1 && number <= limit; }

// A type sign ends the number: "%" 16 bits, "&" 32, "@" currency, "!" single. `with_point`: a fraction was
// read.
ValResult ApplyType(char sign, double number, bool with_point) {
  switch (sign) {
    case '%':
    case '&':
      if (with_point) return {0, 13};
      if (!Fits(std::nearbyint(number), sign == '%' ? 32767.0 : 2147483647.0)) return {0, 6};
      return {std::nearbyint(number), 0};
    case '@':
      if (!(std::abs(number) < kLastCurrency)) return {0, 6};
      return {number, 0};
    case '!': {
      if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max())) return {0, 6};
      return {static_cast<double>(static_cast<float>(number)), 0};
    }
    default:
      return {number, 0};
  }
}

// Up to 16 bits it is a 16-bit signed value, up to 32 a 32-bit one; "&" behind keeps 32 bits, "%" asks
// for 16.
ValResult ValHexOctal(ValReader& reader, int base) {
  std::uint64_t value = 0;
  for (; DigitValue(reader.Peek()) < base; reader.Take()) {
    if (value > std::numeric_limits<std::uint64_t>::max() / static_cast<unsigned>(base)) return {0, 6};
    value = value * static_cast<unsigned>(base) + static_cast<unsigned>(DigitValue(reader.Peek()));
  }
  const char sign = reader.Peek();
  if ((sign == '%' && value > 0xFFFF) || (sign == '&' && value > 0xFFFFFFFFU)) return {0, 6};
  if (value <= 0xFFFF && sign != '&') return {static_cast<double>(static_cast<std::int16_t>(value)), 0};
  if (value <= 0xFFFFFFFFU) return {static_cast<double>(static_cast<std::int32_t>(value)), 0};
  return {static_cast<double>(static_cast<std::int64_t>(value)), 0};
}

int ValExponent(ValReader reader) {  // by value: an incomplete exponent is not consumed
  const char e = internal::LowerAscii(reader.Peek());
  if (e != 'e' && e != 'd') return 0;
  reader.Take();
  const bool negative = reader.Peek() == '-';
  if (negative || reader.Peek() == '+') reader.Take();
  int exponent = 0;
  for (; IsDigit(reader.Peek()); reader.Take())
    if (exponent < kMaxExponent) exponent = exponent * 10 + (reader.Peek() - '0');
  return negative ? -exponent : exponent;
}

ValResult RawVal(std::string_view text) {
  ValReader reader(text);
  if (reader.Peek() == '&') {
    const int base = BaseOf(reader.PeekNext());
    if (base == 0) return {};
    reader.Take();
    reader.Take();
    return ValHexOctal(reader, base);
  }
  const bool negative = reader.Peek() == '-';
  if (negative || reader.Peek() == '+') reader.Take();
  std::string whole_digits, fraction;
  for (; IsDigit(reader.Peek()); reader.Take()) whole_digits += reader.Peek();
  const bool with_point = reader.Peek() == '.';
  if (with_point) {
    reader.Take();
    for (; IsDigit(reader.Peek()); reader.Take()) fraction += reader.Peek();
  }
  if (whole_digits.empty() && fraction.empty()) return {};
  double number = 0;
  if (internal::Compose(whole_digits, fraction, ValExponent(reader), number) == Reading::Overflow)
    return {0, 6};
  if (negative && number != 0) number = -number;
  return ApplyType(reader.Peek(), number, with_point);
}

}  // namespace

std::optional<double> DialectNumber(std::string_view text, const Locale& locale) {
  double number = 0;
  if (Read(text, locale, number) != Reading::Ok) return std::nullopt;
  return number;
}

bool IsNumeric(std::string_view text, const Locale& locale) {
  return DialectNumber(text, locale).has_value();
}

double CDbl(std::string_view text, const Locale& locale) {
  double number = 0;
  switch (Read(text, locale, number)) {
    case Reading::Ok:
      return number;
    case Reading::Overflow:
      throw Error(ErrorDescription(6), 6);
    case Reading::NotANumber:
      break;
  }
  throw Error(ErrorDescription(13), 13);
}

std::optional<std::int64_t> HexOctalInteger(std::string_view text, int bits) {
  if (text.find('&') == std::string_view::npos) return std::nullopt;
  bool overflows = false;
  const auto value = ReadHexOctal(text, overflows);
  if (!value) return std::nullopt;
  if (overflows || (bits < 64 && *value >> bits != 0)) throw Error(ErrorDescription(6), 6);
  const int shift = 64 - bits;
  return static_cast<std::int64_t>(*value << shift) >> shift;
}

double Val(std::string_view text) {
  const ValResult r = RawVal(text);
  if (r.error != 0) throw Error(ErrorDescription(r.error), r.error);
  return r.number;
}

}  // namespace base
