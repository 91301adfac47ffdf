// The arithmetic functions of the dialect. An integer stays one where the function can keep it so.
#include <algorithm>
#include <cmath>

#include "base/number.h"
#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {
namespace {

using Cifra = Llamada::Cifra;

// A number, or Null answered already.
bool Leer(Llamada& l, Cifra& c) {
  if (l.EsNulo(0)) {
    l.Nulo();
    return false;
  }
  // A text counts as a number with decimals, whatever it reads as.
  c = l.EsTexto(0) ? Cifra{false, 0, l.Numero(0)} : l.Numerico(0);
  return true;
}

void Abs(Llamada& l) {
  Cifra c;
  if (!Leer(l, c)) return;
  if (!c.entera) return l.DarNumero(std::abs(c.real));
  if (c.entero == INT64_MIN) LanzarNumero(kDesbordamiento);
  l.DarEntero(c.entero < 0 ? -c.entero : c.entero);
}

void Sgn(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  const double v = l.Numero(0);
  l.DarEntero(v > 0 ? 1 : (v < 0 ? -1 : 0));
}

template <double (*kRegla)(double)>
void Cortar(Llamada& l) {
  Cifra c;
  if (!Leer(l, c)) return;
  if (c.entera) return l.DarEntero(c.entero);
  l.DarNumero(kRegla(c.real));
}

double Suelo(double v) { return std::floor(v); }
double SinFraccion(double v) { return std::trunc(v); }

void Round(Llamada& l) {
  if (l.AlgunNulo()) return l.Nulo();
  constexpr int kMasDecimales = 22;
  const int decimales = l.Opcional(1, 0);
  if (decimales < 0 || decimales > kMasDecimales) LanzarNumero(kLlamadaIncorrecta);
  Cifra c;
  if (!Leer(l, c)) return;
  if (c.entera) return l.DarEntero(c.entero);
  l.DarNumero(base::Redondear(c.real, decimales));
}

template <double (*kFuncion)(double)>
void Analitica(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarNumero(kFuncion(l.Numero(0)));
}

double Raiz(double v) {
  if (v < 0) LanzarNumero(kLlamadaIncorrecta);
  return std::sqrt(v);
}
double Logaritmo(double v) {
  if (v <= 0) LanzarNumero(kLlamadaIncorrecta);
  return std::log(v);
}
double Exponencial(double v) { return std::exp(v); }
double Seno(double v) { return std::sin(v); }
double Coseno(double v) { return std::cos(v); }
double Tangente(double v) { return std::tan(v); }
double Arcotangente(double v) { return std::atan(v); }

// The generator of classic Basic: 24 bits, linear. A negative argument starts the series that belongs to it,
// zero repeats the last number.
void Rnd(Llamada& l) {
  constexpr std::uint32_t kFactor = 0x43FD43FD, kSuma = 0xC39EC3, kMascara = 0xFFFFFF;
  std::uint32_t& azar = l.Alrededor().azar;
  const float argumento = l.Hay(0) && !l.EsNulo(0) ? static_cast<float>(l.Numero(0)) : 1.0F;
  if (argumento < 0) {
    std::uint32_t bits = 0;
    static_assert(sizeof bits == sizeof argumento);
    std::copy_n(reinterpret_cast<const unsigned char*>(&argumento), sizeof bits,
                reinterpret_cast<unsigned char*>(&bits));
    azar = (bits + (bits >> 24)) & kMascara;
  }
  if (argumento != 0) azar = (azar * kFactor + kSuma) & kMascara;
  l.DarNumero(base::DobleDeSimple(static_cast<float>(azar) / 16777216.0F));
}

void Rgb(Llamada& l) {
  if (l.AlgunNulo()) return l.Nulo();
  std::int64_t color = 0;
  for (int i = 2; i >= 0; --i) {
    const std::int32_t parte = l.Entero32(i);
    if (parte < 0) LanzarNumero(kLlamadaIncorrecta);
    color = color << 8 | std::min(parte, 255);
  }
  l.DarEntero(color);
}

// "desde:hasta", each end as wide as the widest end of the whole range.
void Partition(Llamada& l) {
  if (l.AlgunNulo()) return l.Nulo();
  const std::int64_t n = l.Entero32(0), inicio = l.Entero32(1), fin = l.Entero32(2), paso = l.Entero32(3);
  if (inicio < 0 || fin <= inicio || paso < 1) LanzarNumero(kLlamadaIncorrecta);
  std::string desde, hasta;
  if (n < inicio) {
    hasta = std::to_string(inicio - 1);
  } else if (n > fin) {
    desde = std::to_string(fin + 1);
  } else {
    const std::int64_t bajo = (n - inicio) / paso * paso + inicio;
    desde = std::to_string(bajo);
    hasta = std::to_string(std::min(bajo + paso - 1, fin));
  }
  const std::size_t ancho = std::max(std::to_string(fin + 1).size(), std::to_string(inicio - 1).size());
  const auto rellenar = [&](std::string& s) { s.insert(0, ancho > s.size() ? ancho - s.size() : 0, ' '); };
  rellenar(desde);
  rellenar(hasta);
  l.DarTexto(desde + ":" + hasta);
}

constexpr Implementacion kFunciones[] = {
    {"ABS", Abs},
    {"ATN", Analitica<Arcotangente>},
    {"COS", Analitica<Coseno>},
    {"EXP", Analitica<Exponencial>},
    {"FIX", Cortar<SinFraccion>},
    {"INT", Cortar<Suelo>},
    {"LOG", Analitica<Logaritmo>},
    {"PARTITION", Partition},
    {"RGB", Rgb},
    {"RND", Rnd},
    {"ROUND", Round},
    {"SGN", Sgn},
    {"SIN", Analitica<Seno>},
    {"SQR", Analitica<Raiz>},
    {"TAN", Analitica<Tangente>},
};

}  // namespace

std::span<const Implementacion> FuncionesNumericas() { return kFunciones; }

}  // namespace engine_sqlite
