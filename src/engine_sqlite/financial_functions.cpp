// The financial functions of the dialect: annuities and depreciation, as classic Basic computes them. Money
// that is paid out is negative.
#include <cmath>

#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {
namespace {

double Optional(const Call& l, int i, double if_missing) { return l.Has(i) ? l.Number(i) : if_missing; }

// 1 when payments fall at the start of a period, 0 at its end.
double AtStart(const Call& l, int i) { return Optional(l, i, 0) != 0 ? 1 : 0; }

double Finite(double v) {
  if (!std::isfinite(v)) ThrowNumber(kInvalidCall);
  return v;
}

// All of them stand on one equation: present·f + pay·(1 + rate·start)·(f - 1)/rate + future = 0, f = (1 +
// rate)^n.
struct Annuity {
  double rate, periods, start;

  double Factor() const { return std::pow(1 + rate, periods); }
  double Sum() const {  // of a payment of 1 a period, at the end
    return rate == 0 ? periods : (1 + rate * start) * (Factor() - 1) / rate;
  }
  double Payment(double present, double future) const { return -(present * Factor() + future) / Sum(); }
  double FutureValue(double payment, double present) const { return -(present * Factor() + payment * Sum()); }
  double PresentValue(double payment, double future) const { return -(future + payment * Sum()) / Factor(); }
};

void Pmt(Call& l) {
  const Annuity r{l.Number(0), l.Number(1), AtStart(l, 4)};
  if (r.periods == 0) ThrowNumber(kInvalidCall);
  l.ReturnNumber(Finite(r.Payment(l.Number(2), Optional(l, 3, 0))));
}

void Fv(Call& l) {
  const Annuity r{l.Number(0), l.Number(1), AtStart(l, 4)};
  l.ReturnNumber(Finite(r.FutureValue(l.Number(2), Optional(l, 3, 0))));
}

void Pv(Call& l) {
  const Annuity r{l.Number(0), l.Number(1), AtStart(l, 4)};
  l.ReturnNumber(Finite(r.PresentValue(l.Number(2), Optional(l, 3, 0))));
}

void NPer(Call& l) {
  const double rate = l.Number(0), payment = l.Number(1), present = l.Number(2), future = Optional(l, 3, 0);
  if (rate <= -1) ThrowNumber(kInvalidCall);
  if (rate == 0) return l.ReturnNumber(Finite(-(present + future) / payment));
  const double instalment = payment * (1 + rate * AtStart(l, 4)) / rate;
  l.ReturnNumber(Finite(std::log((instalment - future) / (instalment + present)) / std::log(1 + rate)));
}

// The interest of one payment of many.
double Interest(const Call& l) {
  const double rate = l.Number(0), period = l.Number(1);
  const Annuity r{rate, l.Number(2), AtStart(l, 5)};
  if (!(period >= 1 && period < r.periods + 1)) ThrowNumber(kInvalidCall);
  if (r.start != 0 && period == 1) return 0;
  const double payment = r.Payment(l.Number(3), Optional(l, 4, 0));
  const Annuity before{rate, period - 1 - r.start, 0};
  return before.FutureValue(payment, l.Number(3) + (r.start != 0 ? payment : 0)) * rate;
}

void IPmt(Call& l) { l.ReturnNumber(Finite(Interest(l))); }

void PPmt(Call& l) {
  const Annuity r{l.Number(0), l.Number(2), AtStart(l, 5)};
  l.ReturnNumber(Finite(r.Payment(l.Number(3), Optional(l, 4, 0)) - Interest(l)));
}

// By secants from the guess.
void Rate(Call& l) {
  const double periods = l.Number(0), payment = l.Number(1), present = l.Number(2),
               future = Optional(l, 3, 0), start = AtStart(l, 4);
  if (periods <= 0) ThrowNumber(kInvalidCall);
  const auto residual = [&](double rate) {
    const Annuity r{rate, periods, start};
    return present * r.Factor() + payment * r.Sum() + future;
  };
  constexpr int kRounds = 40;
  constexpr double kClose = 1e-7, kStep = 1e-5;
  double a = Optional(l, 5, 0.1), fa = residual(a);
  double b = fa > 0 ? a / 2 : a * 2;
  double fb = residual(b);
  for (int i = 0; i < kRounds; ++i) {
    if (fb == fa) {
      a += b > a ? -kStep : kStep;
      fa = residual(a);
      if (fb == fa) break;
    }
    const double c = b - (b - a) * fb / (fb - fa);
    const double fc = residual(c);
    if (std::abs(fc) < kClose) return l.ReturnNumber(Finite(c));
    a = b;
    fa = fb;
    b = c;
    fb = fc;
  }
  ThrowNumber(kInvalidCall);
}

void Sln(Call& l) {
  if (l.Number(2) == 0) ThrowNumber(kInvalidCall);
  l.ReturnNumber(Finite((l.Number(0) - l.Number(1)) / l.Number(2)));
}

void Syd(Call& l) {
  const double life = l.Number(2), period = l.Number(3);
  if (l.Number(1) < 0 || period > life || period <= 0) ThrowNumber(kInvalidCall);
  l.ReturnNumber(Finite((l.Number(0) - l.Number(1)) * (life + 1 - period) * 2 / (life * (life + 1))));
}

void Ddb(Call& l) {
  const double cost = l.Number(0), rest = l.Number(1), life = l.Number(2), period = l.Number(3),
               factor = Optional(l, 4, 2);
  if (factor <= 0 || rest < 0 || period <= 0 || period > life || cost < 0) ThrowNumber(kInvalidCall);
  const double rate = std::min(factor / life, 1.0);
  const double before = cost * (1 - std::pow(1 - rate, period - 1));  // written off before the period
  l.ReturnNumber(Finite(std::max(0.0, std::min((cost - before) * rate, cost - rest - before))));
}

template <void (*kBody)(Call&)>
void PropagateNull(Call& l) {
  l.AnyNull() ? l.Null() : kBody(l);
}

constexpr Implementation kFunctions[] = {
    {"DDB", PropagateNull<Ddb>},   {"FV", PropagateNull<Fv>},     {"IPMT", PropagateNull<IPmt>},
    {"NPER", PropagateNull<NPer>}, {"PMT", PropagateNull<Pmt>},   {"PPMT", PropagateNull<PPmt>},
    {"PV", PropagateNull<Pv>},     {"RATE", PropagateNull<Rate>}, {"SLN", PropagateNull<Sln>},
    {"SYD", PropagateNull<Syd>},
};

}  // namespace

std::span<const Implementation> FinancialFunctions() { return kFunctions; }

}  // namespace engine_sqlite
