// The arithmetic functions of the dialect. An integer stays one where the function can keep it so.
#include <algorithm>
#include <cmath>

#include "base/number.h"
#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {
namespace {

using Figure = Call::Figure;

// A number, or Null answered already.
bool Read(Call& l, Figure& c) {
  if (l.IsNull(0)) {
    l.Null();
    return false;
  }
  // A text counts as a number with decimals, whatever it reads as.
  c = l.IsText(0) ? Figure{false, 0, l.Number(0)} : l.Numeric(0);
  return true;
}

void Abs(Call& l) {
  Figure c;
  if (!Read(l, c)) return;
  if (!c.whole) return l.ReturnNumber(std::abs(c.real));
  if (c.integer == INT64_MIN) ThrowNumber(kOverflow);
  l.ReturnInteger(c.integer < 0 ? -c.integer : c.integer);
}

void Sgn(Call& l) {
  if (l.IsNull(0)) return l.Null();
  const double v = l.Number(0);
  l.ReturnInteger(v > 0 ? 1 : (v < 0 ? -1 : 0));
}

template <double (*kRule)(double)>
void Truncate(Call& l) {
  Figure c;
  if (!Read(l, c)) return;
  if (c.whole) return l.ReturnInteger(c.integer);
  l.ReturnNumber(kRule(c.real));
}

double Floor(double v) { return std::floor(v); }
double WithoutFraction(double v) { return std::trunc(v); }

void Round(Call& l) {
  if (l.AnyNull()) return l.Null();
  constexpr int kMostDecimals = 22;
  const int decimals = l.Optional(1, 0);
  if (decimals < 0 || decimals > kMostDecimals) ThrowNumber(kInvalidCall);
  Figure c;
  if (!Read(l, c)) return;
  if (c.whole) return l.ReturnInteger(c.integer);
  l.ReturnNumber(base::Round(c.real, decimals));
}

template <double (*kFunction)(double)>
void Analytic(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnNumber(kFunction(l.Number(0)));
}

double SquareRoot(double v) {
  if (v < 0) ThrowNumber(kInvalidCall);
  return std::sqrt(v);
}
double Logarithm(double v) {
  if (v <= 0) ThrowNumber(kInvalidCall);
  return std::log(v);
}
double Exponential(double v) { return std::exp(v); }
double Sine(double v) { return std::sin(v); }
double Cosine(double v) { return std::cos(v); }
double Tangent(double v) { return std::tan(v); }
double Arctangent(double v) { return std::atan(v); }

// The generator of classic Basic: 24 bits, linear. A negative argument starts the series that belongs to it,
// zero repeats the last number.
void Rnd(Call& l) {
  constexpr std::uint32_t kFactor = 0x43FD43FD, kSum = 0xC39EC3, kMask = 0xFFFFFF;
  std::uint32_t& random = l.Environment().random;
  const float argument = l.Has(0) && !l.IsNull(0) ? static_cast<float>(l.Number(0)) : 1.0F;
  if (argument < 0) {
    std::uint32_t bits = 0;
    static_assert(sizeof bits == sizeof argument);
    std::copy_n(reinterpret_cast<const unsigned char*>(&argument), sizeof bits,
                reinterpret_cast<unsigned char*>(&bits));
    random = (bits + (bits >> 24)) & kMask;
  }
  if (argument != 0) random = (random * kFactor + kSum) & kMask;
  l.ReturnNumber(base::DoubleOfSingle(static_cast<float>(random) / 16777216.0F));
}

void Rgb(Call& l) {
  if (l.AnyNull()) return l.Null();
  std::int64_t color = 0;
  for (int i = 2; i >= 0; --i) {
    const std::int32_t part = l.Integer32(i);
    if (part < 0) ThrowNumber(kInvalidCall);
    color = color << 8 | std::min(part, 255);
  }
  l.ReturnInteger(color);
}

// "desde:hasta", each end as wide as the widest end of the whole range.
void Partition(Call& l) {
  if (l.AnyNull()) return l.Null();
  const std::int64_t n = l.Integer32(0), start = l.Integer32(1), end = l.Integer32(2), step = l.Integer32(3);
  if (start < 0 || end <= start || step < 1) ThrowNumber(kInvalidCall);
  std::string from, to;
  if (n < start) {
    to = std::to_string(start - 1);
  } else if (n > end) {
    from = std::to_string(end + 1);
  } else {
    const std::int64_t low = (n - start) / step * step + start;
    from = std::to_string(low);
    to = std::to_string(std::min(low + step - 1, end));
  }
  const std::size_t width = std::max(std::to_string(end + 1).size(), std::to_string(start - 1).size());
  const auto pad = [&](std::string& s) { s.insert(0, width > s.size() ? width - s.size() : 0, ' '); };
  pad(from);
  pad(to);
  l.ReturnText(from + ":" + to);
}

constexpr Implementation kFunctions[] = {
    {"ABS", Abs},
    {"ATN", Analytic<Arctangent>},
    {"COS", Analytic<Cosine>},
    {"EXP", Analytic<Exponential>},
    {"FIX", Truncate<WithoutFraction>},
    {"INT", Truncate<Floor>},
    {"LOG", Analytic<Logarithm>},
    {"PARTITION", Partition},
    {"RGB", Rgb},
    {"RND", Rnd},
    {"ROUND", Round},
    {"SGN", Sgn},
    {"SIN", Analytic<Sine>},
    {"SQR", Analytic<SquareRoot>},
    {"TAN", Analytic<Tangent>},
};

}  // namespace

std::span<const Implementation> NumericFunctions() { return kFunctions; }

}  // namespace engine_sqlite
