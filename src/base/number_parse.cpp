// Texts to numbers by the operator's rule, and what it shares with the dialect's conversions.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "base/error.h"
#include "base/number.h"
#include "base/number_internal.h"
#include "base/text_internal.h"

namespace base {
namespace internal {

namespace {

// Both the digits and the power of ten are exact as doubles: one operation rounds once, as a full read would.
bool ComponerCorto(std::string_view digitos, std::string_view fraccion, int exponente, double& numero) {
  constexpr double kPotencias[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  constexpr int kMaximo = 15;
  if (digitos.size() + fraccion.size() > kMaximo) return false;
  const int lugar = exponente - static_cast<int>(fraccion.size());
  if (lugar < -kMaximo || lugar > kMaximo) return false;
  long long entero = 0;
  for (const char c : digitos) entero = entero * 10 + (c - '0');
  for (const char c : fraccion) entero = entero * 10 + (c - '0');
  const auto valor = static_cast<double>(entero);
  numero = lugar < 0 ? valor / kPotencias[-lugar] : valor * kPotencias[lugar];
  return true;
}

}  // namespace

Lectura Componer(std::string_view digitos, std::string_view fraccion, int exponente, double& numero) {
  while (!digitos.empty() && digitos.front() == '0') digitos.remove_prefix(1);
  if (ComponerCorto(digitos, fraccion, exponente, numero)) return Lectura::Bien;
  std::string texto(digitos);
  texto.append(".").append(fraccion).append("e").append(std::to_string(exponente));
  const auto r = std::from_chars(texto.data(), texto.data() + texto.size(), numero);
  if (r.ec != std::errc::result_out_of_range) return Lectura::Bien;
  // Either way out of range: by the place of the first digit that is not 0.
  const std::size_t primero = fraccion.find_first_not_of('0');
  if (digitos.empty() && primero == std::string_view::npos) {
    numero = 0;
    return Lectura::Bien;
  }
  const auto lugar = digitos.empty() ? -static_cast<long>(primero) : static_cast<long>(digitos.size());
  numero = 0;
  return lugar + exponente > 0 ? Lectura::Desborda : Lectura::Bien;
}

bool EsDelOperador(const Locale& locale) { return locale.decimal == "," && locale.miles == "."; }

bool LeerLlano(std::string_view t, double& numero) {
  constexpr std::size_t kMaximo = 15;  // digits that a double holds exactly
  if (t.empty() || t.size() > kMaximo) return false;
  long long entero = 0;
  std::size_t decimales = 0;
  bool signo = false;
  for (const char c : t) {
    if (EsDigito(c)) {
      entero = entero * 10 + (c - '0');
      decimales += signo ? 1 : 0;
    } else if ((c == ',' || c == '.') && !signo) {
      signo = true;
    } else {
      return false;
    }
  }
  if (signo && t.size() == 1) return false;
  constexpr double kPotencias[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  numero = static_cast<double>(entero) / kPotencias[decimales];
  return true;
}

// Bytes of the white space at the start (the no-break space among it), or 0.
static std::size_t Blanco(std::string_view t) {
  if (t.empty()) return 0;
  if (t[0] == ' ' || (t[0] >= '\t' && t[0] <= '\r')) return 1;
  return t.substr(0, 2) == "\xC2\xA0" ? 2 : 0;
}

void SaltarBlancos(std::string_view& t) {
  while (const std::size_t n = Blanco(t)) t.remove_prefix(n);
}

}  // namespace internal

namespace {

using internal::EsDigito;
using internal::Lectura;

bool TerminaEnBlanco(std::string_view t) { return t.back() == ' ' || (t.back() >= '\t' && t.back() <= '\r'); }

std::string_view SinBlancos(std::string_view t) {
  constexpr std::string_view kDuro = "\xC2\xA0";  // the no-break space
  internal::SaltarBlancos(t);
  while (!t.empty()) {
    if (TerminaEnBlanco(t))
      t.remove_suffix(1);
    else if (t.size() >= kDuro.size() && t.substr(t.size() - kDuro.size()) == kDuro)
      t.remove_suffix(kDuro.size());
    else
      break;
  }
  return t;
}

bool Cifras(std::string_view t) { return std::all_of(t.begin(), t.end(), EsDigito); }

// The sign in front, taken off.
bool TomarMenos(std::string_view& t) {
  const bool menos = !t.empty() && t.front() == '-';
  if (menos || (!t.empty() && t.front() == '+')) t.remove_prefix(1);
  return menos;
}

// Which texts part the whole number from its fraction and its thousands from one another; empty: none does.
struct Signos {
  std::string_view decimal, miles;
};

Signos SignosDe(std::string_view cuerpo, const Locale& locale) {
  if (!internal::EsDelOperador(locale)) return {locale.decimal, locale.miles};
  if (cuerpo.find(',') != std::string_view::npos) return {",", "."};
  const std::size_t punto = cuerpo.find('.');
  const bool varios =
      punto != std::string_view::npos && cuerpo.find('.', punto + 1) != std::string_view::npos;
  return varios ? Signos{"", "."} : Signos{".", ""};
}

// Digits alone, or one to three of them and groups of three behind thousands signs.
bool LeerEnteros(std::string_view t, std::string_view miles, std::string& cifras) {
  std::size_t signo = miles.empty() ? std::string_view::npos : t.find(miles);
  const bool en_grupos = signo != std::string_view::npos;
  if (en_grupos && (signo < 1 || signo > 3)) return false;
  for (bool primero = true;; primero = false) {
    const std::string_view grupo = t.substr(0, signo);
    if (!Cifras(grupo) || (en_grupos && !primero && grupo.size() != 3)) return false;
    cifras += grupo;
    if (signo == std::string_view::npos) return true;
    t.remove_prefix(signo + miles.size());
    signo = t.find(miles);
  }
}

Lectura Leer(std::string_view texto, const Locale& locale, double& numero) {
  if (internal::EsDelOperador(locale) && internal::LeerLlano(texto, numero)) return Lectura::Bien;
  std::string_view t = SinBlancos(texto);
  const bool negativo = TomarMenos(t);
  const Signos signos = SignosDe(t, locale);
  const std::size_t corte = signos.decimal.empty() ? std::string_view::npos : t.find(signos.decimal);
  const std::string_view fraccion =
      corte == std::string_view::npos ? std::string_view() : t.substr(corte + signos.decimal.size());
  const std::string_view entera = t.substr(0, corte);
  std::string enteros;
  if ((entera.empty() && fraccion.empty()) || !Cifras(fraccion) ||
      !LeerEnteros(entera, signos.miles, enteros))
    return Lectura::NoEsNumero;
  const Lectura lectura = internal::Componer(enteros, fraccion, 0, numero);
  if (lectura == Lectura::Desborda) numero = std::numeric_limits<double>::infinity();
  if (negativo && numero != 0) numero = -numero;
  return lectura;
}

}  // namespace

std::optional<double> NumeroDeTexto(std::string_view texto, const Locale& locale) {
  double numero = 0;
  if (Leer(texto, locale, numero) != Lectura::Bien) return std::nullopt;
  return numero;
}

bool EsNumero(std::string_view texto, const Locale& locale) {
  return NumeroDeTexto(texto, locale).has_value();
}

double NumeroDeTextoOError(std::string_view texto, const Locale& locale) {
  double numero = 0;
  const Lectura lectura = Leer(texto, locale, numero);
  if (lectura == Lectura::Bien) return numero;
  const int error = lectura == Lectura::Desborda ? 6 : 13;
  throw Error(DescripcionDeError(error), error);
}

bool IsBlank(std::string_view text) { return SinBlancos(text).empty(); }

double Parse(std::string_view texto) {
  internal::SaltarBlancos(texto);
  const bool negativo = TomarMenos(texto);
  const auto primera_no = [](std::string_view t) {
    return static_cast<std::size_t>(std::find_if_not(t.begin(), t.end(), EsDigito) - t.begin());
  };
  const std::string_view enteros = texto.substr(0, primera_no(texto));
  texto.remove_prefix(enteros.size());
  std::string_view fraccion;
  if (!texto.empty() && texto.front() == '.') {
    texto.remove_prefix(1);
    fraccion = texto.substr(0, primera_no(texto));
  }
  if (enteros.empty() && fraccion.empty()) return 0;
  double numero = 0;
  if (internal::Componer(enteros, fraccion, 0, numero) == Lectura::Desborda)
    numero = std::numeric_limits<double>::infinity();
  return negativo && numero != 0 ? -numero : numero;
}

double ValorNumerico(std::string_view texto) {
  double numero = 0;
  return Leer(texto, Locale::espanol(), numero) != Lectura::NoEsNumero ? numero : Parse(texto);
}

}  // namespace base
