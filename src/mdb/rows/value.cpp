#include "mdb/rows/value.h"

#include <algorithm>
#include <charconv>

namespace mdb {
namespace {

constexpr std::string_view kHex = "0123456789ABCDEF";
constexpr std::size_t kMaxDigits = 28;

int HexDigit(char c) {
  if (c >= 'a' && c <= 'f') c = static_cast<char>(c - 32);
  const auto pos = kHex.find(c);
  return pos == std::string_view::npos ? -1 : static_cast<int>(pos);
}

// Dashes of the printed form stand before these bytes.
bool HyphenBefore(std::size_t byte) { return byte == 4 || byte == 6 || byte == 8 || byte == 10; }

// magnitude = magnitude * by + plus, and what runs over; magnitude /= by, and what is left.
std::uint32_t Multiply(std::array<std::uint32_t, 4>& m, std::uint32_t by, std::uint32_t more) {
  std::uint64_t carry = more;
  for (std::size_t i = 4; i-- > 0;) {
    carry += std::uint64_t{m[i]} * by;
    m[i] = static_cast<std::uint32_t>(carry);
    carry >>= 32;
  }
  return static_cast<std::uint32_t>(carry);
}
std::uint32_t Divide(std::array<std::uint32_t, 4>& m, std::uint32_t by) {
  std::uint64_t rest = 0;
  for (auto& word : m) {
    rest = rest << 32 | word;
    word = static_cast<std::uint32_t>(rest / by);
    rest %= by;
  }
  return static_cast<std::uint32_t>(rest);
}

[[noreturn]] void ThrowNotANumber(std::string_view text) {
  throw base::Error("'" + std::string(text) + "' no es un número", 13);
}

// A decimal text taken apart: digits, and how many of them stand before the point (may be below 0).
struct SplitNumber {
  bool negative = false;
  std::string digits;
  int before = 0;
};

int ReadExponent(std::string_view text, std::string_view exponent) {
  if (!exponent.empty() && exponent[0] == '+') exponent.remove_prefix(1);
  int n = 0;
  const auto [end, error] = std::from_chars(exponent.data(), exponent.data() + exponent.size(), n);
  if (error != std::errc() || end != exponent.data() + exponent.size() || n > 1000 || n < -1000)
    ThrowNotANumber(text);
  return n;
}

SplitNumber Split(std::string_view text) {
  SplitNumber p;
  std::string_view rest = text;
  if (!rest.empty() && (rest[0] == '-' || rest[0] == '+')) {
    p.negative = rest[0] == '-';
    rest.remove_prefix(1);
  }
  bool point = false;
  std::size_t i = 0;
  for (; i < rest.size(); ++i) {
    if (rest[i] == '.' && !point) {
      point = true;
    } else if (rest[i] >= '0' && rest[i] <= '9') {
      p.digits += rest[i];
      if (!point) ++p.before;
    } else {
      break;
    }
  }
  if (p.digits.empty()) ThrowNotANumber(text);
  if (i < rest.size()) {
    if (rest[i] != 'e' && rest[i] != 'E') ThrowNotANumber(text);
    p.before += ReadExponent(text, rest.substr(i + 1));
  }
  return p;
}

// Whether the digits from `remaining` on round the ones before it up: more than a half, or a half behind an
// odd digit.
bool RoundsUp(const std::string& digits, std::ptrdiff_t remaining) {
  if (remaining < 0) return false;
  const auto n = static_cast<std::size_t>(remaining);
  if (n >= digits.size() || digits[n] < '5') return false;
  if (digits[n] > '5' || digits.find_first_not_of('0', n + 1) != std::string::npos) return true;
  return n > 0 && (digits[n - 1] - '0') % 2 == 1;
}

}  // namespace

std::string Guid::Text() const {
  std::string text = "{";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (HyphenBefore(i)) text += '-';
    text += kHex[bytes[i] >> 4];
    text += kHex[bytes[i] & 15];
  }
  return text + "}";
}

Guid GuidFromText(std::string_view text) {
  const auto fail = [&] { throw base::Error("'" + std::string(text) + "' no es un GUID", 13); };
  std::string_view s = text;
  if (s.size() == 38 && s.front() == '{' && s.back() == '}') s = s.substr(1, 36);
  if (s.size() != 36) fail();
  Guid g;
  std::size_t p = 0;
  for (std::size_t i = 0; i < 16; ++i) {
    if (HyphenBefore(i) && s[p++] != '-') fail();
    const int high = HexDigit(s[p]), low = HexDigit(s[p + 1]);
    if (high < 0 || low < 0) fail();
    g.bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    p += 2;
  }
  return g;
}

std::string Decimal::Text() const {
  auto m = magnitude;
  const auto is_zero = [&] { return std::all_of(m.begin(), m.end(), [](auto w) { return w == 0; }); };
  const bool zero = is_zero();
  std::string text;  // last digit first
  while (!is_zero()) text += static_cast<char>('0' + Divide(m, 10));
  if (text.size() <= scale) text.append(scale + 1U - text.size(), '0');
  if (scale > 0) text.insert(scale, 1, '.');
  if (negative && !zero) text += '-';
  std::reverse(text.begin(), text.end());
  return text;
}

double Decimal::Number() const {
  const std::string text = Text();
  double n = 0;
  std::from_chars(text.data(), text.data() + text.size(), n);
  return n;
}

Decimal DecimalFromText(std::string_view text, std::uint8_t scale) {
  SplitNumber p = Split(text);
  const std::ptrdiff_t remaining = std::ptrdiff_t{p.before} + scale;  // digits of the magnitude
  const bool rounds_up = RoundsUp(p.digits, remaining);
  std::string whole_digits;
  if (remaining > 0) {
    whole_digits = p.digits.substr(0, static_cast<std::size_t>(remaining));
    const auto significant = whole_digits.find_first_not_of('0');
    if (significant == std::string::npos) {
      whole_digits.clear();
    } else {
      whole_digits.append(static_cast<std::size_t>(remaining) - whole_digits.size(), '0');
      whole_digits.erase(0, significant);
    }
  }
  Decimal d;
  d.scale = scale;
  const auto throw_overflow = [&] {
    throw base::Error("El número " + std::string(text) + " no cabe en una columna decimal", 6);
  };
  if (whole_digits.size() > kMaxDigits) throw_overflow();
  for (const char c : whole_digits) Multiply(d.magnitude, 10, static_cast<std::uint32_t>(c - '0'));
  if (rounds_up) {
    Multiply(d.magnitude, 1, 1);
    if (whole_digits.size() == kMaxDigits && whole_digits.find_first_not_of('9') == std::string::npos)
      throw_overflow();
  }
  const bool zero = std::all_of(d.magnitude.begin(), d.magnitude.end(), [](auto w) { return w == 0; });
  d.negative = p.negative && !zero;
  return d;
}

}  // namespace mdb
