// Properties that hold over many numbers and every day.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>

#include "base/date.h"
#include "base/dialect_number.h"
#include "base/error.h"
#include "base/number.h"

namespace {

using base::Date;
using base::Locale;

// Numbers of up to `digits` digits, of both signs and many magnitudes.
double Random(std::mt19937_64& random, int digits) {
  const auto limit = static_cast<long long>(std::pow(10.0, 1 + static_cast<double>(random() % digits)));
  const auto integer = static_cast<double>(static_cast<long long>(random() % limit));
  const double scale = std::pow(10.0, static_cast<double>(random() % 16));
  return (random() % 2 == 0 ? integer : -integer) / scale;
}

TEST(Number, ATextOfFifteenDigitsReadsBack) {
  std::mt19937_64 random(20260520);
  for (int i = 0; i < 200000; ++i) {
    const double n = Random(random, 15);
    const std::string text = base::SqlNumber(n);
    ASSERT_EQ(std::stod(text), n) << text;
    // With a comma, or a single point, the operator's rule reads the same number.
    ASSERT_EQ(base::DialectNumber(base::NumberText(n)), n) << text;
    ASSERT_EQ(base::DialectNumber(text), n) << text;
    ASSERT_EQ(base::DialectNumber(base::NumberText(n, Locale::english()), Locale::english()), n) << text;
    ASSERT_EQ(base::NumberFromText(base::PlainNumber(n)), n) << text;
    ASSERT_EQ(base::NumberFromText(base::PlainNumber(n, ",")), n) << text;
    ASSERT_EQ(base::NumberFromText(base::PlainNumber(n), Locale::english()), n) << text;
    ASSERT_EQ(base::Val(text), n) << text;
  }
}

TEST(Number, ASingleOfSixDigitsShowsThem) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 100000; ++i) {
    const auto n = static_cast<float>(Random(random, 6));
    ASSERT_EQ(std::stof(base::SqlSingle(n)), n);
    ASSERT_EQ(std::stof(base::PlainSingle(n)), n);
    ASSERT_EQ(base::PlainSingle(n).find('E'), std::string::npos);
    ASSERT_EQ(static_cast<float>(base::DoubleOfSingle(n)), n);
    ASSERT_EQ(base::SqlNumber(base::DoubleOfSingle(n)), base::SqlSingle(n));
  }
}

// The digits of a number of at most fifteen, without zeros at its end: [-]ddd[.ddd].
std::string Digits(double n) {
  std::array<char, 64> buffer{};
  const int length =
      std::snprintf(buffer.data(), buffer.size(), "%.*f",
                    n == 0 ? 0 : std::max(0, 14 - static_cast<int>(std::floor(std::log10(std::abs(n))))), n);
  std::string text(buffer.data(), static_cast<std::size_t>(length));
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  return text == "-0" ? "0" : text;
}

// Half to even, on the digits.
std::string RoundDigits(std::string text, std::size_t decimals) {
  const bool negative = text[0] == '-';
  if (negative) text.erase(0, 1);
  const std::size_t point = std::min(text.find('.'), text.size());
  std::string digits = "0" + text.substr(0, point) + (point < text.size() ? text.substr(point + 1) : "");
  const std::size_t remaining = 1 + point + decimals;
  if (remaining >= digits.size()) return negative ? "-" + text : text;
  const std::string excess = digits.substr(remaining);
  const bool half = excess[0] == '5' && excess.find_first_not_of('0', 1) == std::string::npos;
  digits.resize(remaining);
  if (half ? (digits.back() - '0') % 2 == 1 : excess[0] >= '5') {
    std::size_t i = digits.size() - 1;
    for (; digits[i] == '9'; --i) digits[i] = '0';
    ++digits[i];
  }
  digits.insert(1 + point, ".");
  return negative ? "-" + digits : digits;
}

TEST(Number, TextAndRoundingFollowTheDigits) {
  std::mt19937_64 random(20240601);
  for (int i = 0; i < 200000; ++i) {
    const double n = Random(random, 13);
    const std::string digits = Digits(n);
    if (std::abs(n) >= 1e-4) {
      ASSERT_EQ(base::SqlNumber(n), digits);
    }
    for (const int decimals : {0, 1, 2, 5, 7}) {
      const double rounded = base::Round(n, decimals);
      ASSERT_EQ(rounded, std::stod(RoundDigits(digits, static_cast<std::size_t>(decimals))))
          << digits << " at " << decimals;
      ASSERT_FALSE(std::signbit(rounded) && rounded == 0) << digits;
    }
  }
  // A quotient keeps its own bits: it is no short decimal.
  EXPECT_EQ(base::SqlNumber(1.0 / 3), "0.333333333333333");
  EXPECT_EQ(base::SqlNumber(0.1 + 0.2), "0.3");
  EXPECT_EQ(base::SqlNumber(50.10000000000001), "50.1");
  EXPECT_EQ(base::Round(2.675, 2), 2.68);
  EXPECT_EQ(base::Round(0.125, 2), 0.12);
  EXPECT_EQ(base::Round(-0.375, 2), -0.38);
}

TEST(Number, PlainDigitsAreReadAlikeInEveryPlace) {
  std::mt19937_64 random(99);
  for (int i = 0; i < 100000; ++i) {
    const double n = std::abs(Random(random, 12));
    const std::string digits = Digits(n);
    if (digits.size() > 20) continue;
    std::string with_comma = digits;
    if (const std::size_t point = with_comma.find('.'); point != std::string::npos) with_comma[point] = ',';
    const double read = std::stod(digits);
    // With a blank or a sign the general way reads it.
    for (const std::string& t : {digits, with_comma, " " + with_comma, "+" + digits, "000" + with_comma}) {
      ASSERT_EQ(base::NumberFromText(t), read) << t;
      ASSERT_EQ(base::NumericValue(t), read) << t;
    }
  }
  EXPECT_EQ(base::NumberFromText("5,"), 5);
  EXPECT_EQ(base::NumberFromText(",5"), 0.5);
  EXPECT_EQ(base::NumberFromText("5."), 5);
  EXPECT_FALSE(base::NumberFromText(",").has_value());
  EXPECT_FALSE(base::NumberFromText(".").has_value());
  EXPECT_FALSE(base::NumberFromText("1,2,3").has_value());
  EXPECT_EQ(base::NumberFromText("1.234,5"), 1234.5);
}

TEST(Date, EveryDayOfTheCalendar) {
  using namespace std::chrono;
  const sys_days zero = year{1899} / December / 30;
  int before = 0;
  for (int day = -657434; day <= 2958465; ++day) {
    const base::DateParts p = base::PartsOf({static_cast<double>(day)});
    const year_month_day ymd{zero + days{day}};
    ASSERT_EQ(p.year, static_cast<int>(ymd.year()));
    ASSERT_EQ(p.month, static_cast<int>(static_cast<unsigned>(ymd.month())));
    ASSERT_EQ(p.day, static_cast<int>(static_cast<unsigned>(ymd.day())));
    ASSERT_EQ(base::MakeDate(p.year, p.month, p.day).serial, day);
    const int of_week = base::Weekday({static_cast<double>(day)});
    ASSERT_EQ(of_week, static_cast<int>(weekday{zero + days{day}}.c_encoding()) + 1);
    if (day > -657434) {
      ASSERT_EQ(of_week, before % 7 + 1);
    }
    before = of_week;
  }
}

TEST(Date, EverySecondOfADayBeforeAndAfterDayZero) {
  for (const int day : {-3, 0, 43861}) {
    for (int s = 0; s < 86400; ++s) {
      const double f = s / 86400.0;
      const base::DateParts p = base::PartsOf({day < 0 ? day - f : day + f});
      ASSERT_EQ(p.hour * 3600 + p.minute * 60 + p.second, s);
      ASSERT_EQ(base::MakeDate(p.year, p.month, p.day).serial, day);
    }
  }
}

TEST(Date, TextsReadBack) {
  std::mt19937_64 random(99);
  const Date today = base::MakeDate(2026, 5, 20);
  for (int i = 0; i < 50000; ++i) {
    const Date f{static_cast<double>(static_cast<long long>(random() % 3615900) - 657434)};
    ASSERT_EQ(base::DateFromLiteral(base::DateMMddyyyy(f), today), f);
    ASSERT_EQ(base::DateFromLiteral(base::IsoDate(f), today), f);
    if (f.serial == 0) continue;  // shows as a time alone
    ASSERT_EQ(base::DateFromText(base::DateText(f), today), f) << base::DateText(f);
    ASSERT_EQ(base::DateFromText(base::DateText(f, Locale::english()), today, Locale::english()), f);
  }
}

}  // namespace
