// The financial functions of the dialect: annuities and depreciation, as classic Basic computes them. Money
// that is paid out is negative.
#include <cmath>

#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {
namespace {

double Opcional(const Llamada& l, int i, double si_falta) { return l.Hay(i) ? l.Numero(i) : si_falta; }

// 1 when payments fall at the start of a period, 0 at its end.
double Adelantado(const Llamada& l, int i) { return Opcional(l, i, 0) != 0 ? 1 : 0; }

double Finito(double v) {
  if (!std::isfinite(v)) LanzarNumero(kLlamadaIncorrecta);
  return v;
}

// All of them stand on one equation: present·f + pay·(1 + rate·start)·(f - 1)/rate + future = 0, f = (1 +
// rate)^n.
struct Renta {
  double tasa, periodos, inicio;

  double Factor() const { return std::pow(1 + tasa, periodos); }
  double Suma() const {  // of a payment of 1 a period, at the end
    return tasa == 0 ? periodos : (1 + tasa * inicio) * (Factor() - 1) / tasa;
  }
  double Pago(double presente, double futuro) const { return -(presente * Factor() + futuro) / Suma(); }
  double Futuro(double pago, double presente) const { return -(presente * Factor() + pago * Suma()); }
  double Presente(double pago, double futuro) const { return -(futuro + pago * Suma()) / Factor(); }
};

void Pmt(Llamada& l) {
  const Renta r{l.Numero(0), l.Numero(1), Adelantado(l, 4)};
  if (r.periodos == 0) LanzarNumero(kLlamadaIncorrecta);
  l.DarNumero(Finito(r.Pago(l.Numero(2), Opcional(l, 3, 0))));
}

void Fv(Llamada& l) {
  const Renta r{l.Numero(0), l.Numero(1), Adelantado(l, 4)};
  l.DarNumero(Finito(r.Futuro(l.Numero(2), Opcional(l, 3, 0))));
}

void Pv(Llamada& l) {
  const Renta r{l.Numero(0), l.Numero(1), Adelantado(l, 4)};
  l.DarNumero(Finito(r.Presente(l.Numero(2), Opcional(l, 3, 0))));
}

void NPer(Llamada& l) {
  const double tasa = l.Numero(0), pago = l.Numero(1), presente = l.Numero(2), futuro = Opcional(l, 3, 0);
  if (tasa <= -1) LanzarNumero(kLlamadaIncorrecta);
  if (tasa == 0) return l.DarNumero(Finito(-(presente + futuro) / pago));
  const double cuota = pago * (1 + tasa * Adelantado(l, 4)) / tasa;
  l.DarNumero(Finito(std::log((cuota - futuro) / (cuota + presente)) / std::log(1 + tasa)));
}

// The interest of one payment of many.
double Interes(const Llamada& l) {
  const double tasa = l.Numero(0), periodo = l.Numero(1);
  const Renta r{tasa, l.Numero(2), Adelantado(l, 5)};
  if (!(periodo >= 1 && periodo < r.periodos + 1)) LanzarNumero(kLlamadaIncorrecta);
  if (r.inicio != 0 && periodo == 1) return 0;
  const double pago = r.Pago(l.Numero(3), Opcional(l, 4, 0));
  const Renta antes{tasa, periodo - 1 - r.inicio, 0};
  return antes.Futuro(pago, l.Numero(3) + (r.inicio != 0 ? pago : 0)) * tasa;
}

void IPmt(Llamada& l) { l.DarNumero(Finito(Interes(l))); }

void PPmt(Llamada& l) {
  const Renta r{l.Numero(0), l.Numero(2), Adelantado(l, 5)};
  l.DarNumero(Finito(r.Pago(l.Numero(3), Opcional(l, 4, 0)) - Interes(l)));
}

// By secants from the guess.
void Rate(Llamada& l) {
  const double periodos = l.Numero(0), pago = l.Numero(1), presente = l.Numero(2), futuro = Opcional(l, 3, 0),
               inicio = Adelantado(l, 4);
  if (periodos <= 0) LanzarNumero(kLlamadaIncorrecta);
  const auto falta = [&](double tasa) {
    const Renta r{tasa, periodos, inicio};
    return presente * r.Factor() + pago * r.Suma() + futuro;
  };
  constexpr int kVueltas = 40;
  constexpr double kCerca = 1e-7, kPaso = 1e-5;
  double a = Opcional(l, 5, 0.1), fa = falta(a);
  double b = fa > 0 ? a / 2 : a * 2;
  double fb = falta(b);
  for (int i = 0; i < kVueltas; ++i) {
    if (fb == fa) {
      a += b > a ? -kPaso : kPaso;
      fa = falta(a);
      if (fb == fa) break;
    }
    const double c = b - (b - a) * fb / (fb - fa);
    const double fc = falta(c);
    if (std::abs(fc) < kCerca) return l.DarNumero(Finito(c));
    a = b;
    fa = fb;
    b = c;
    fb = fc;
  }
  LanzarNumero(kLlamadaIncorrecta);
}

void Sln(Llamada& l) {
  if (l.Numero(2) == 0) LanzarNumero(kLlamadaIncorrecta);
  l.DarNumero(Finito((l.Numero(0) - l.Numero(1)) / l.Numero(2)));
}

void Syd(Llamada& l) {
  const double vida = l.Numero(2), periodo = l.Numero(3);
  if (l.Numero(1) < 0 || periodo > vida || periodo <= 0) LanzarNumero(kLlamadaIncorrecta);
  l.DarNumero(Finito((l.Numero(0) - l.Numero(1)) * (vida + 1 - periodo) * 2 / (vida * (vida + 1))));
}

void Ddb(Llamada& l) {
  const double costo = l.Numero(0), resto = l.Numero(1), vida = l.Numero(2), periodo = l.Numero(3),
               factor = Opcional(l, 4, 2);
  if (factor <= 0 || resto < 0 || periodo <= 0 || periodo > vida || costo < 0)
    LanzarNumero(kLlamadaIncorrecta);
  const double tasa = std::min(factor / vida, 1.0);
  const double antes = costo * (1 - std::pow(1 - tasa, periodo - 1));  // written off before the period
  l.DarNumero(Finito(std::max(0.0, std::min((costo - antes) * tasa, costo - resto - antes))));
}

template <void (*kCuerpo)(Llamada&)>
void SinNulos(Llamada& l) {
  l.AlgunNulo() ? l.Nulo() : kCuerpo(l);
}

constexpr Implementacion kFunciones[] = {
    {"DDB", SinNulos<Ddb>}, {"FV", SinNulos<Fv>},     {"IPMT", SinNulos<IPmt>}, {"NPER", SinNulos<NPer>},
    {"PMT", SinNulos<Pmt>}, {"PPMT", SinNulos<PPmt>}, {"PV", SinNulos<Pv>},     {"RATE", SinNulos<Rate>},
    {"SLN", SinNulos<Sln>}, {"SYD", SinNulos<Syd>},
};

}  // namespace

std::span<const Implementacion> FuncionesFinancieras() { return kFunciones; }

}  // namespace engine_sqlite
