// Number masks.
#include <algorithm>
#include <cmath>

#include "base/format_internal.h"
#include "base/number.h"
#include "base/number_internal.h"
#include "base/text_internal.h"

namespace base::internal {
namespace {

enum class Kind { Literal, Zero, Numeral, Point, Percent, Exponent };

struct Token {
  Kind kind;
  std::string literal;
};

// One section of a mask, with what its signs say together.
struct Section {
  std::vector<Token> tokens;
  int whole_digits = 0;    // places before the decimal sign
  int fixed = 0;           // of them, from the first "0" on
  int decimals = 0;        // places behind it
  int fixed_decimals = 0;  // of them, up to the last "0"
  int scale = 0;           // power of ten that the number is multiplied by
  bool thousands = false;
  bool has_exponent = false;
  bool exponent_sign = false;  // "E+": a plus is printed too
  char exponent_letter = 'E';
  int exponent_digits = 0;
};

class Parser {
 public:
  explicit Parser(std::string_view mask) : mask_(mask) {}

  Section Parse() {
    for (std::size_t i = 0; i < mask_.size();) {
      std::string literal;
      if (TakeLiteral(mask_, i, literal)) {
        Add(Kind::Literal, std::move(literal));
      } else if (!Exponent(i)) {
        Sign(i);
      }
    }
    if (!in_fraction_) s_.scale -= 3 * commas_;
    return std::move(s_);
  }

 private:
  void Add(Kind kind, std::string literal = {}) { s_.tokens.push_back({kind, std::move(literal)}); }

  // "E+00", "e-0" …: once, behind a digit place.
  bool Exponent(std::size_t& i) {
    if (s_.has_exponent || s_.whole_digits + s_.decimals == 0 || LowerAscii(mask_[i]) != 'e') return false;
    if (i + 1 >= mask_.size() || (mask_[i + 1] != '+' && mask_[i + 1] != '-')) return false;
    s_.has_exponent = true;
    s_.exponent_letter = mask_[i];
    s_.exponent_sign = mask_[i + 1] == '+';
    for (i += 2; i < mask_.size() && (mask_[i] == '0' || mask_[i] == '#'); ++i)
      if (mask_[i] == '0') ++s_.exponent_digits;
    Add(Kind::Exponent);
    return true;
  }

  void Place(bool zero) {
    Add(zero ? Kind::Zero : Kind::Numeral);
    if (in_fraction_) {
      ++s_.decimals;
      if (zero) s_.fixed_decimals = s_.decimals;
      return;
    }
    if (commas_ > 0) s_.thousands = true;
    commas_ = 0;
    ++s_.whole_digits;
    if (zero || s_.fixed > 0) ++s_.fixed;
  }

  void Sign(std::size_t& i) {
    const char c = mask_[i];
    if (c == '0' || c == '#') {
      Place(c == '0');
    } else if (c == '.' && !in_fraction_) {
      s_.scale -= 3 * commas_;  // thousands signs right before it scale by 1000 each
      in_fraction_ = true;
      Add(Kind::Point);
    } else if (c == ',') {
      if (!in_fraction_ && s_.whole_digits > 0) ++commas_;
    } else if (c == '%') {
      s_.scale += 2;
      Add(Kind::Percent);
    } else {
      const std::size_t length = CharacterLength(mask_, i);
      Add(Kind::Literal, std::string(mask_.substr(i, length)));
      i += length;
      return;
    }
    ++i;
  }

  std::string_view mask_;
  Section s_;
  bool in_fraction_ = false;
  int commas_ = 0;  // since the last place: thousands when a place follows, a scale otherwise
};

// The digits that a section prints.
struct Digits {
  std::string whole_digits, fraction;
  int exponent = 0;
};

Digits Distribute(Decimal& d, const Section& s) {
  Digits c;
  d.exponent += d.IsZero() ? 0 : s.scale;
  if (s.has_exponent && !d.IsZero()) {
    c.exponent = d.exponent - s.whole_digits;
    d.exponent = s.whole_digits;
    RoundDecimal(d, s.decimals, Half::AwayFromZero);
    if (d.exponent > s.whole_digits) {  // 9.99 became 10.0
      ++c.exponent;
      --d.exponent;
    }
  } else {
    RoundDecimal(d, s.decimals, Half::AwayFromZero);
  }
  const auto n = static_cast<int>(d.digits.size());
  const int whole_digits = std::max(d.exponent, 0);
  c.whole_digits = d.digits.substr(0, static_cast<std::size_t>(std::min(whole_digits, n)));
  c.whole_digits.append(static_cast<std::size_t>(whole_digits) - c.whole_digits.size(), '0');
  if (d.exponent < 0) c.fraction.assign(static_cast<std::size_t>(-d.exponent), '0');
  if (n > whole_digits) c.fraction += d.digits.substr(static_cast<std::size_t>(whole_digits));
  if (static_cast<int>(c.whole_digits.size()) < s.fixed)
    c.whole_digits.insert(0, static_cast<std::size_t>(s.fixed) - c.whole_digits.size(), '0');
  if (static_cast<int>(c.fraction.size()) < s.fixed_decimals)
    c.fraction.append(static_cast<std::size_t>(s.fixed_decimals) - c.fraction.size(), '0');
  return c;
}

class NumberWriter {
 public:
  NumberWriter(const Section& section, const Digits& digits, const Locale& locale)
      : s_(section), c_(digits), locale_(locale), remaining_(section.whole_digits) {}

  std::string Write() {
    for (const auto& token : s_.tokens) {
      switch (token.kind) {
        case Kind::Literal:
          output_ += token.literal;
          break;
        case Kind::Zero:
        case Kind::Numeral:
          Place();
          break;
        case Kind::Point:
          WriteWholeDigits(c_.whole_digits.size());  // a mask without places in front drops nothing
          output_ += locale_.decimal;
          in_fraction_ = true;
          break;
        case Kind::Percent:
          output_ += '%';
          break;
        case Kind::Exponent:
          Exponent();
          break;
      }
    }
    return std::move(output_);
  }

 private:
  void Place() {
    if (in_fraction_) {
      if (k_ < c_.fraction.size()) output_ += c_.fraction[k_++];
      return;
    }
    // Digits in excess of the places all stand at the first one.
    --remaining_;
    const auto remaining = static_cast<std::size_t>(remaining_);
    if (c_.whole_digits.size() > remaining) WriteWholeDigits(c_.whole_digits.size() - remaining);
  }

  // Prints integer digits up to the `to`-th.
  void WriteWholeDigits(std::size_t to) {
    for (; i_ < to; ++i_) {
      output_ += c_.whole_digits[i_];
      const std::size_t behind = c_.whole_digits.size() - i_ - 1;
      if (s_.thousands && behind > 0 && behind % 3 == 0) output_ += locale_.thousands;
    }
  }

  void Exponent() {
    output_ += s_.exponent_letter;
    if (c_.exponent < 0) {
      output_ += '-';
    } else if (s_.exponent_sign) {
      output_ += '+';
    }
    const std::string digits = std::to_string(std::abs(c_.exponent));
    const auto minimum = static_cast<std::size_t>(s_.exponent_digits);
    if (digits.size() < minimum) output_.append(minimum - digits.size(), '0');
    output_ += digits;
  }

  const Section& s_;
  const Digits& c_;
  const Locale& locale_;
  std::string output_;
  int remaining_;
  std::size_t i_ = 0, k_ = 0;
  bool in_fraction_ = false;
};

}  // namespace

std::string ApplyNumberMask(double number, std::string_view mask, const Locale& locale) {
  if (!std::isfinite(number)) return NumberText(number, locale);
  const auto sections = Sections(mask);
  // An empty section prints as the first one does.
  const bool use_negative = number < 0 && sections.size() > 1 && !sections[1].empty();
  const bool zero = number == 0 && sections.size() > 2 && !sections[2].empty();
  const Section section = Parser(use_negative ? sections[1] : zero ? sections[2] : sections[0]).Parse();
  Decimal d = FromDouble(number);
  const bool sign = d.negative && !use_negative;
  const Digits digits = Distribute(d, section);
  // What rounds to zero loses its sign.
  std::string text(sign && !d.IsZero() ? 1 : 0, '-');
  return text += NumberWriter(section, digits, locale).Write();
}

}  // namespace base::internal
