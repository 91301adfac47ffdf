// Numbers to text, and rounding.
#include "base/number.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "base/error.h"
#include "base/number_internal.h"
#include "base/text_internal.h"

namespace base {
namespace internal {
namespace {

// "d.ddde±xx" as to_chars writes it.
Decimal DeTextoCientifico(std::string_view texto) {
  Decimal d;
  if (texto.front() == '-') {
    d.negativo = true;
    texto.remove_prefix(1);
  }
  const std::size_t e = texto.find('e');
  for (const char c : texto.substr(0, e))
    if (c != '.') d.digitos += c;
  std::string_view exponente = texto.substr(e + 1);
  if (exponente.front() == '+') exponente.remove_prefix(1);
  std::from_chars(exponente.data(), exponente.data() + exponente.size(), d.exponente);
  ++d.exponente;
  while (!d.digitos.empty() && d.digitos.back() == '0') d.digitos.pop_back();
  if (d.digitos.empty()) d = Decimal{};
  return d;
}

// Enough digits after the cut to tell a tie from what lies beside it.
constexpr int kDigitosExactos = 40;

template <typename Flotante>
Decimal DeFlotante(Flotante numero, int maximo) {
  std::array<char, 64> espacio;
  char* const principio = espacio.data();
  char* const limite = principio + espacio.size();
  auto fin = std::to_chars(principio, limite, numero, std::chars_format::scientific).ptr;
  Decimal d = DeTextoCientifico({principio, static_cast<std::size_t>(fin - principio)});
  if (static_cast<int>(d.digitos.size()) <= maximo) return d;
  fin = std::to_chars(principio, limite, static_cast<double>(numero), std::chars_format::scientific,
                      kDigitosExactos)
            .ptr;
  d = DeTextoCientifico({principio, static_cast<std::size_t>(fin - principio)});
  RedondearDecimal(d, maximo - d.exponente, Medio::Afuera);
  return d;
}

bool SubeAlRedondear(const Decimal& d, std::size_t quedan, Medio medio) {
  const char siguiente = d.digitos[quedan];
  if (siguiente != '5') return siguiente > '5';
  const bool justo = quedan + 1 == d.digitos.size();  // no trailing zeros are kept
  if (!justo || medio == Medio::Afuera) return true;
  return quedan > 0 && ((d.digitos[quedan - 1] - '0') & 1) != 0;
}

}  // namespace

Decimal DeDoble(double numero, int maximo) { return DeFlotante(numero, maximo); }
Decimal DeSimple(float numero) { return DeFlotante(numero, 7); }

void RedondearDecimal(Decimal& d, int decimales, Medio medio) {
  const long quedan = static_cast<long>(d.exponente) + decimales;
  if (d.EsCero() || quedan >= static_cast<long>(d.digitos.size())) return;
  if (quedan < 0) {
    d = Decimal{};
    return;
  }
  const auto n = static_cast<std::size_t>(quedan);
  const bool sube = SubeAlRedondear(d, n, medio);
  d.digitos.resize(n);
  if (sube) {
    std::size_t i = n;
    while (i > 0 && d.digitos[i - 1] == '9') --i;
    d.digitos.resize(i);
    if (i > 0) {
      ++d.digitos[i - 1];
    } else {
      d.digitos.assign(1, '1');
      ++d.exponente;
    }
  }
  while (!d.digitos.empty() && d.digitos.back() == '0') d.digitos.pop_back();
  if (d.digitos.empty()) d = Decimal{};
}

double ADoble(const Decimal& d) {
  if (d.EsCero()) return 0;
  const std::string texto = (d.negativo ? "-0." : "0.") + d.digitos + 'e' + std::to_string(d.exponente);
  double numero = 0;
  std::from_chars(texto.data(), texto.data() + texto.size(), numero);
  return numero;
}

std::string TextoPlano(const Decimal& d, std::string_view punto) {
  if (d.EsCero()) return "0";
  std::string texto = d.negativo ? "-" : "";
  const auto n = static_cast<int>(d.digitos.size());
  if (d.exponente <= 0) {
    texto.append("0").append(punto).append(static_cast<std::size_t>(-d.exponente), '0').append(d.digitos);
  } else if (d.exponente >= n) {
    texto.append(d.digitos).append(static_cast<std::size_t>(d.exponente - n), '0');
  } else {
    const auto enteros = static_cast<std::size_t>(d.exponente);
    texto.append(d.digitos, 0, enteros).append(punto).append(d.digitos, enteros);
  }
  return texto;
}

std::string TextoExponente(const Decimal& d, std::string_view punto) {
  std::string texto = d.negativo ? "-" : "";
  texto += d.EsCero() ? '0' : d.digitos[0];
  if (d.digitos.size() > 1) texto.append(punto).append(d.digitos, 1);
  const int exponente = d.EsCero() ? 0 : d.exponente - 1;
  texto += exponente < 0 ? "E-" : "E+";
  if (std::abs(exponente) < 10) texto += '0';
  return texto += std::to_string(std::abs(exponente));
}

}  // namespace internal

namespace {

// What the classic runtime prints for what is no finite number.
std::string TextoNoFinito(double numero, const std::string& punto) {
  if (std::isnan(numero)) return "-1" + punto + "#IND";
  return (numero < 0 ? "-1" : "1") + punto + "#INF";
}

std::string TextoGeneral(const internal::Decimal& d, int maximo, std::string_view punto) {
  const int decimales = static_cast<int>(d.digitos.size()) - d.exponente;
  if (d.exponente > maximo || decimales > maximo) return internal::TextoExponente(d, punto);
  return internal::TextoPlano(d, punto);
}

// SQL reads both forms; plain digits are kept wherever they are short.
std::string TextoSql(const internal::Decimal& d) {
  const int decimales = static_cast<int>(d.digitos.size()) - d.exponente;
  if (d.exponente > 15 || decimales > 30) return internal::TextoExponente(d, ".");
  return internal::TextoPlano(d, ".");
}

constexpr double kLimitePlano = 1e15;

bool EsEnteroCorto(double numero) { return std::abs(numero) < kLimitePlano && numero == std::trunc(numero); }

// A number of few decimals, which most are, as a whole number of parts: parts / 10^decimales reads back as
// the number, and no other decimal that short does, so that the general way would find the same digits.
struct Partida {
  bool hay = false;
  long long partes = 0;
};

constexpr int kDecimalesCortos = 5;
constexpr double kEscalaCorta = 1e5;

// At most 15 digits, 5 of them decimals.
Partida Partir(double numero) {
  const double escalado = numero * kEscalaCorta;
  if (!(std::abs(escalado) < kLimitePlano)) return {};
  const long long partes = std::llround(escalado);
  return {static_cast<double>(partes) / kEscalaCorta == numero, partes};
}

// The same of a single: two decimals and at most 6 digits, which no two singles share.
constexpr double kEscalaSimple = 100;
Partida PartirSimple(float numero) {
  const double escalado = static_cast<double>(numero) * kEscalaSimple;
  if (!(std::abs(escalado) < 999999)) return {};
  const long long partes = std::llround(escalado);
  return {static_cast<float>(static_cast<double>(partes) / kEscalaSimple) == numero, partes};
}

std::string TextoDePartes(long long partes, int decimales, std::string_view punto) {
  std::array<char, 40> espacio;
  char* const limite = espacio.data() + espacio.size();
  char* p = limite;
  unsigned long long resto =
      partes < 0 ? 0ULL - static_cast<unsigned long long>(partes) : static_cast<unsigned long long>(partes);
  while (decimales > 0 && resto % 10 == 0) {
    resto /= 10;
    --decimales;
  }
  const bool con_punto = decimales > 0;
  for (; decimales > 0; --decimales, resto /= 10) *--p = static_cast<char>('0' + resto % 10);
  if (con_punto) {
    p -= punto.size();
    punto.copy(p, punto.size());
  }
  do {
    *--p = static_cast<char>('0' + resto % 10);
    resto /= 10;
  } while (resto != 0);
  if (partes < 0) *--p = '-';
  return {p, static_cast<std::size_t>(limite - p)};
}

// Half to even, of whole parts.
double RedondearPartes(double numero, long long partes, int decimales) {
  if (decimales >= kDecimalesCortos) return numero;
  constexpr long long kPotencias[] = {1, 10, 100, 1000, 10000, 100000};
  const long long sobra = kPotencias[kDecimalesCortos - decimales];
  long long cociente = partes / sobra;
  const long long doble_resto = 2 * std::abs(partes % sobra);
  if (doble_resto > sobra || (doble_resto == sobra && cociente % 2 != 0)) cociente += partes < 0 ? -1 : 1;
  return static_cast<double>(cociente) / static_cast<double>(kPotencias[decimales]);
}

constexpr std::size_t kPuntoMasLargo = 8;  // bytes of a decimal sign that TextoDePartes has room for

}  // namespace

std::string TextoDeNumero(double numero, const Locale& locale) {
  if (!std::isfinite(numero)) return TextoNoFinito(numero, locale.decimal);
  if (EsEnteroCorto(numero)) return std::to_string(static_cast<long long>(numero));
  if (const Partida p = Partir(numero); p.hay && locale.decimal.size() <= kPuntoMasLargo)
    return TextoDePartes(p.partes, kDecimalesCortos, locale.decimal);
  return TextoGeneral(internal::DeDoble(numero), 15, locale.decimal);
}

std::string TextoDeSimple(float numero, const Locale& locale) {
  if (!std::isfinite(numero)) return TextoNoFinito(static_cast<double>(numero), locale.decimal);
  return TextoGeneral(internal::DeSimple(numero), 7, locale.decimal);
}

std::string PlainNumber(double number, std::string_view decimal_sign) {
  if (!std::isfinite(number)) throw Error(DescripcionDeError(6), 6);
  if (EsEnteroCorto(number)) return std::to_string(static_cast<long long>(number));
  if (const Partida p = Partir(number); p.hay && decimal_sign.size() <= kPuntoMasLargo)
    return TextoDePartes(p.partes, kDecimalesCortos, decimal_sign);
  return internal::TextoPlano(internal::DeDoble(number), decimal_sign);
}

std::string PlainSingle(float number, std::string_view decimal_sign) {
  if (!std::isfinite(number)) throw Error(DescripcionDeError(6), 6);
  if (const Partida p = PartirSimple(number); p.hay && decimal_sign.size() <= kPuntoMasLargo)
    return TextoDePartes(p.partes, 2, decimal_sign);
  return internal::TextoPlano(internal::DeSimple(number), decimal_sign);
}

std::string SqlDeNumero(double numero) {
  if (!std::isfinite(numero)) throw Error(DescripcionDeError(6), 6);
  if (EsEnteroCorto(numero)) return std::to_string(static_cast<long long>(numero));
  if (const Partida p = Partir(numero); p.hay) return TextoDePartes(p.partes, kDecimalesCortos, ".");
  return TextoSql(internal::DeDoble(numero));
}

std::string SqlDeSimple(float numero) {
  if (!std::isfinite(numero)) throw Error(DescripcionDeError(6), 6);
  if (const Partida p = PartirSimple(numero); p.hay) return TextoDePartes(p.partes, 2, ".");
  return TextoSql(internal::DeSimple(numero));
}

double DobleDeSimple(float numero) {
  if (!std::isfinite(numero)) return static_cast<double>(numero);
  if (const Partida p = PartirSimple(numero); p.hay) return static_cast<double>(p.partes) / kEscalaSimple;
  return internal::ADoble(internal::DeSimple(numero));
}

double Redondear(double numero, int decimales) {
  if (decimales < 0 || decimales > 22) throw Error(DescripcionDeError(5), 5);
  if (!std::isfinite(numero)) return numero;
  if (std::abs(numero) >= kLimitePlano) return numero;
  if (EsEnteroCorto(numero)) return numero == 0 ? 0 : numero;
  if (const Partida p = Partir(numero); p.hay) return RedondearPartes(numero, p.partes, decimales);
  internal::Decimal d = internal::DeDoble(numero);
  // Nothing to cut: the number keeps the bits beyond its fifteenth digit.
  if (d.exponente + decimales >= static_cast<int>(d.digitos.size())) return numero;
  internal::RedondearDecimal(d, decimales, internal::Medio::AlPar);
  return internal::ADoble(d);
}

long long EnteroBancario(double numero) {
  const double abajo = std::floor(numero);
  const double resto = numero - abajo;
  double entero = resto < 0.5 ? abajo : abajo + 1;
  if (resto == 0.5 && std::fmod(abajo, 2.0) == 0) entero = abajo;
  constexpr double kLimite = 9223372036854775808.0;  // 2^63
  if (!(entero >= -kLimite && entero < kLimite)) throw Error(DescripcionDeError(6), 6);
  return static_cast<long long>(entero);
}

namespace {

template <typename Entero>
Entero Estrechar(double numero) {
  const long long entero = EnteroBancario(numero);
  if (entero < std::numeric_limits<Entero>::min() || entero > std::numeric_limits<Entero>::max())
    throw Error(DescripcionDeError(6), 6);
  return static_cast<Entero>(entero);
}

}  // namespace

int Entero32(double numero) { return Estrechar<int>(numero); }
short Entero16(double numero) { return Estrechar<short>(numero); }

}  // namespace base
