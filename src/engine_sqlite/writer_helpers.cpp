// The helpers that the SQLite text of a translated statement calls: see jetsql/runtime.h for what each must
// do.
#include <cmath>
#include <limits>

#include "base/like.h"
#include "engine_sqlite/conversion_internal.h"

namespace engine_sqlite {
namespace {

void Concatenate(Call& l) {
  bool any = false;
  std::string output;
  for (int i = 0; i < l.Count(); ++i) {
    if (l.IsNull(i)) continue;
    any = true;
    l.AppendText(i, output);
  }
  any ? l.ReturnText(output) : l.Null();
}

void Add(Call& l) {
  if (l.AnyNull()) return l.Null();
  if (l.IsText(0) && l.IsText(1)) {
    std::string output(l.Text(0));
    output += l.Text(1);
    return l.ReturnText(output);
  }
  const Call::Figure a = l.Numeric(0), b = l.Numeric(1);
  std::int64_t sum = 0;
  if (a.whole && b.whole && !__builtin_add_overflow(a.integer, b.integer, &sum)) return l.ReturnInteger(sum);
  l.ReturnNumber(l.Number(0) + l.Number(1));
}

void AsNumber(Call& l) {
  if (l.IsNull(0)) return l.Null();
  if (!l.IsText(0)) return l.ReturnArgument(0);
  l.ReturnFigure(l.Numeric(0));
}

void Divide(Call& l) {
  if (l.AnyNull()) return l.Null();
  const double a = l.Number(0), b = l.Number(1);
  if (b == 0) ThrowNumber(kDivisionByZero);
  l.ReturnNumber(a / b);
}

// Both operands of \ and Mod, rounded to Long; the divisor is not 0.
void RoundedOperands(const Call& l, std::int64_t& a, std::int64_t& b) {
  a = l.Integer32(0);
  b = l.Integer32(1);
  if (b == 0) ThrowNumber(kDivisionByZero);
}

void IntegerDivide(Call& l) {
  if (l.AnyNull()) return l.Null();
  std::int64_t a = 0, b = 0;
  RoundedOperands(l, a, b);
  if (a / b > std::numeric_limits<std::int32_t>::max()) ThrowNumber(kOverflow);
  l.ReturnInteger(a / b);
}

void Remainder(Call& l) {
  if (l.AnyNull()) return l.Null();
  std::int64_t a = 0, b = 0;
  RoundedOperands(l, a, b);
  l.ReturnInteger(a % b);
}

void Power(Call& l) {
  if (l.AnyNull()) return l.Null();
  const double a = l.Number(0), b = l.Number(1);
  if (a == 0 && b < 0) ThrowNumber(kInvalidCall);
  const double r = std::pow(a, b);
  if (std::isnan(r)) ThrowNumber(kInvalidCall);
  l.ReturnNumber(r);
}

void Like(Call& l) {
  if (l.IsNull(0) || l.IsNull(1)) return l.Null();
  const auto wildcards = l.Integer(2) != 0 ? base::Wildcards::Dao : base::Wildcards::Ado;
  const std::string_view text = l.Text(0), pattern = l.Text(1);
  l.ReturnInteger(base::Like(text, pattern, wildcards, base::Equality::Weights, l.Environment().order) ? 1
                                                                                                       : 0);
}

void ToInteger(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnInteger(l.Integer(0));
}

constexpr Record kHelpers[] = {
    {"jet_concat", -1, true, true, Concatenate}, {"jet_add", 3, true, true, Add},
    {"jet_num", 1, false, true, AsNumber},       {"jet_div", 2, false, true, Divide},
    {"jet_idiv", 2, false, true, IntegerDivide}, {"jet_mod", 2, false, true, Remainder},
    {"jet_pow", 2, false, true, Power},          {"jet_like", 3, false, true, Like},
    {"jet_to_int", 1, false, true, ToInteger},   {"jet_to_single", 1, false, true, ToSingle},
    {"jet_as_single", 1, false, true, AsSingle}, {"jet_to_currency", 1, false, true, ToCurrency},
    {"jet_to_number", 1, false, true, ToNumber}, {"jet_to_date", 1, false, true, ToDate},
    {"jet_to_bool", 1, false, true, ToBoolean},
};

}  // namespace

std::span<const Record> TranslatorHelpers() { return kHelpers; }

}  // namespace engine_sqlite
