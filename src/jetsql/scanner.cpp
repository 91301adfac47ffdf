#include <array>
#include <charconv>
#include <cmath>

#include "base/date.h"
#include "base/dialect_number.h"
#include "base/text.h"
#include "jetsql/scanner_internal.h"

namespace jetsql {
namespace {

enum : std::uint8_t { kOther = 0, kBlank, kLetter, kDigit };

constexpr std::array<std::uint8_t, 256> MakeKinds() {
  std::array<std::uint8_t, 256> t{};
  for (int c = 'a'; c <= 'z'; ++c) t[static_cast<std::size_t>(c)] = kLetter;
  for (int c = 'A'; c <= 'Z'; ++c) t[static_cast<std::size_t>(c)] = kLetter;
  for (int c = 0x80; c <= 0xFF; ++c) t[static_cast<std::size_t>(c)] = kLetter;
  for (int c = '0'; c <= '9'; ++c) t[static_cast<std::size_t>(c)] = kDigit;
  t['_'] = t['$'] = kLetter;
  t[' '] = t['\t'] = t['\n'] = t['\r'] = t['\f'] = t['\v'] = kBlank;
  return t;
}
constexpr auto kKinds = MakeKinds();

std::uint8_t KindOf(char c) { return kKinds[static_cast<unsigned char>(c)]; }

// "MM/dd/yyyy", the form of nearly every date that reaches us: read without the general parser. Anything
// else, and what it cannot decide (a day and month turned round), is left to that.
bool ReadSimpleDate(std::string_view t, base::Date& date) {
  if (t.size() != 10 || t[2] != '/' || t[5] != '/') return false;
  const auto two = [&](std::size_t i) {
    return KindOf(t[i]) == kDigit && KindOf(t[i + 1]) == kDigit ? (t[i] - '0') * 10 + (t[i + 1] - '0') : -1;
  };
  const int month = two(0), day = two(3), century = two(6), rest = two(8);
  if (month < 1 || month > 12 || day < 1 || century < 1 || rest < 0) return false;
  const int year = century * 100 + rest;
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  if (day > kDays[month - 1] + (month == 2 && leap ? 1 : 0)) return false;
  // Days from the civil date (March-based years), then to the serial's origin of 30 December 1899.
  const int a = year - (month <= 2 ? 1 : 0), m = month + (month <= 2 ? 9 : -3);
  const int days = 365 * a + a / 4 - a / 100 + a / 400 + (153 * m + 2) / 5 + day - 1;
  constexpr int kOrigin = 693899;  // the same count for 30 December 1899
  date.serial = days - kOrigin;
  return true;
}

bool ReadDate(std::string_view inside, base::Value& value) {
  base::Date date;
  if (ReadSimpleDate(inside, date)) {
    value = date;
    return true;
  }
  // A literal without a year would mean another day each year, and a translation that is kept must not.
  const auto one = base::DateFromLiteral(inside, base::Date{40000});
  const auto other = base::DateFromLiteral(inside, base::Date{42000});
  if (!one || !other || one->serial != other->serial) return false;
  value = *one;
  return true;
}

// Up to 16 bits it is an Integer, so that &HFFFF is -1, unless "&" says that it is a Long.
bool ReadHexOctal(std::string_view t, base::Value& value) {
  const bool length = t.back() == '&';
  if (length) t.remove_suffix(1);
  constexpr std::size_t kMaxLength = 14;  // digits of 32 bits, with room for zeros in front
  if (t.size() > kMaxLength) return false;
  const auto width = base::HexOctalInteger(t, 64);
  if (!width || *width < 0 || *width > 0xFFFFFFFF) return false;
  value = *base::HexOctalInteger(t, length || *width > 0xFFFF ? 32 : 16);
  return true;
}

bool ReadInteger(std::string_view t, base::Value& value) {
  if (t.front() == '&') return ReadHexOctal(t, value);
  if (t.size() > 18) {  // beyond the integers: a number like any other
    double d = 0;
    std::from_chars(t.data(), t.data() + t.size(), d);
    value = d;
    return true;
  }
  std::int64_t n = 0;
  for (const char c : t) n = n * 10 + (c - '0');
  value = n;
  return true;
}

}  // namespace

Token Scanner::ReadUntil(char closing, TokenKind kind, std::size_t start) {
  const std::size_t end = sql_.find(closing, start + 1);
  if (end == std::string_view::npos) {
    i_ = sql_.size();
    return {TokenKind::Malformed, start, i_};
  }
  i_ = end + 1;
  return {kind, start, i_};
}

Token Scanner::String(char quote, std::size_t start) {
  std::size_t i = start + 1;
  while (true) {
    i = sql_.find(quote, i);
    if (i == std::string_view::npos) {
      i_ = sql_.size();
      return {TokenKind::Malformed, start, i_};
    }
    if (i + 1 >= sql_.size() || sql_[i + 1] != quote) break;
    i += 2;
  }
  i_ = i + 1;
  return {TokenKind::Text, start, i_};
}

Token Scanner::Number(std::size_t start) {
  std::size_t i = start;
  const auto digits = [&] {
    while (i < sql_.size() && KindOf(sql_[i]) == kDigit) ++i;
  };
  digits();
  bool real = false;
  if (i < sql_.size() && sql_[i] == '.') {
    real = true;
    ++i;
    digits();
  }
  if (i < sql_.size() && (sql_[i] == 'e' || sql_[i] == 'E')) {
    std::size_t j = i + 1;
    if (j < sql_.size() && (sql_[j] == '+' || sql_[j] == '-')) ++j;
    if (j < sql_.size() && KindOf(sql_[j]) == kDigit) {
      real = true;
      i = j;
      digits();
    }
  }
  i_ = i;
  // 19 digits and more do not fit an integer: they are numbers, and their mark in the shape says so.
  if (!real && i - start > 18) real = true;
  return {real ? TokenKind::Real : TokenKind::Integer, start, i};
}

// Where an operand may stand "&HFF" is a number, behind one "&" joins texts: "x &Hour" is x & Hour.
bool Scanner::IsAfterOperand() const {
  switch (previous_.kind) {
    case TokenKind::End:
      return false;
    case TokenKind::Name: {
      const std::string_view word = sql_.substr(previous_.start, previous_.end - previous_.start);
      for (const std::string_view value : {"NULL", "TRUE", "FALSE"})
        if (base::EqualIgnoringCase(word, value)) return true;
      return !IsReservedWord(word);
    }
    case TokenKind::Sign:
      return sql_[previous_.start] == ')';
    default:
      return true;
  }
}

// "&HFF", "&O17", with "&" behind for a Long; i_ does not move when it is none.
Token Scanner::HexOctal(std::size_t start) {
  const char base = start + 1 < sql_.size() ? static_cast<char>(sql_[start + 1] & ~0x20) : '\0';
  std::size_t i = start + 2;
  const auto digit = [&] {
    if (i >= sql_.size()) return false;
    const char c = static_cast<char>(sql_[i] & ~0x20);
    if (KindOf(sql_[i]) == kDigit) return base == 'H' || sql_[i] < '8';
    return base == 'H' && c >= 'A' && c <= 'F' && KindOf(sql_[i]) == kLetter;
  };
  if ((base != 'H' && base != 'O') || !digit() || IsAfterOperand()) return {};
  while (digit()) ++i;
  if (i < sql_.size() && sql_[i] == '&') ++i;
  i_ = i;
  return {TokenKind::Integer, start, i_};
}

Token Scanner::Cut() {
  const std::size_t n = sql_.size();
  while (i_ < n && KindOf(sql_[i_]) == kBlank) ++i_;
  const bool after_name = after_name_;
  after_name_ = false;
  const std::size_t start = i_;
  if (i_ >= n) return {TokenKind::End, n, n};
  const char c = sql_[i_];
  switch (KindOf(c)) {
    case kLetter:
      while (i_ < n && KindOf(sql_[i_]) >= kLetter) ++i_;
      after_name_ = true;
      return {TokenKind::Name, start, i_};
    case kDigit:
      return Number(start);
    default:
      break;
  }
  switch (c) {
    case '\'':
    case '"':
      return String(c, start);
    case '#':
      return ReadUntil('#', TokenKind::Date, start);
    case '[':
      after_name_ = true;
      return ReadUntil(']', TokenKind::Brackets, start);
    case '`':
      after_name_ = true;
      return ReadUntil('`', TokenKind::Brackets, start);
    case '&':
      if (const Token hex = HexOctal(start); hex.kind != TokenKind::End) return hex;
      break;
    case '.':
      if (!after_name && i_ + 1 < n && KindOf(sql_[i_ + 1]) == kDigit) return Number(start);
      break;
    default:
      break;
  }
  return Sign(start);
}

Token Scanner::Sign(std::size_t start) {
  const char sig = start + 1 < sql_.size() ? sql_[start + 1] : '\0';
  switch (sql_[start]) {
    case '<':
      i_ += sig == '=' || sig == '>' ? 2 : 1;
      return {TokenKind::Sign, start, i_};
    case '>':
      i_ += sig == '=' ? 2 : 1;
      return {TokenKind::Sign, start, i_};
    case '&':
    case '.':
    case '(':
    case ')':
    case ',':
    case ';':
    case '+':
    case '-':
    case '*':
    case '/':
    case '\\':
    case '^':
    case '=':
    case '!':
      ++i_;
      return {TokenKind::Sign, start, i_};
    default:
      ++i_;
      return {TokenKind::Malformed, start, i_};
  }
}

bool ReadLiteral(TokenKind kind, std::string_view text, base::Value& value) {
  switch (kind) {
    case TokenKind::Integer:
      return ReadInteger(text, value);
    case TokenKind::Real: {
      double d = 0;
      const auto r = std::from_chars(text.data(), text.data() + text.size(), d);
      if (r.ec == std::errc::result_out_of_range) return false;
      value = d;
      return true;
    }
    case TokenKind::Date:
      return ReadDate(text.substr(1, text.size() - 2), value);
    case TokenKind::Text: {
      const char quote = text.front();
      const std::string_view inside = text.substr(1, text.size() - 2);
      std::size_t i = inside.find(quote);
      if (i == std::string_view::npos) {
        value = std::string(inside);
        return true;
      }
      std::string s(inside.substr(0, i));
      for (; i < inside.size(); ++i) {
        s += inside[i];
        if (inside[i] == quote) ++i;
      }
      value = std::move(s);
      return true;
    }
    default:
      return false;
  }
}

}  // namespace jetsql
