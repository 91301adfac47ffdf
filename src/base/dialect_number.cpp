// Texts to numbers as the dialect converts them: CDbl, IsNumeric, "&H", and Val.
#include "base/dialect_number.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "base/error.h"
#include "base/number_internal.h"
#include "base/text_internal.h"

namespace base {
namespace {

using internal::EsDigito;
using internal::Lectura;
using internal::SaltarBlancos;

constexpr int kExponenteMaximo = 100000;  // beyond it nothing changes any more

int ValorDigito(char c) {
  if (EsDigito(c)) return c - '0';
  const char m = internal::MinAscii(c);
  return m >= 'a' && m <= 'f' ? m - 'a' + 10 : 99;
}

int BaseDe(char c) {
  const char m = internal::MinAscii(c);
  return m == 'h' ? 16 : m == 'o' ? 8 : 0;
}

bool Consumir(std::string_view& t, std::string_view que) {
  if (que.empty() || t.substr(0, que.size()) != que) return false;
  t.remove_prefix(que.size());
  return true;
}

// "&H…" or "&O…" with nothing but white space around. None when the text is no such thing; `desborda` past 64
// bits.
std::optional<std::uint64_t> LeerHexOctal(std::string_view t, bool& desborda) {
  SaltarBlancos(t);
  if (t.size() < 3 || t[0] != '&') return std::nullopt;
  const int base = BaseDe(t[1]);
  if (base == 0) return std::nullopt;
  t.remove_prefix(2);
  std::uint64_t valor = 0;
  std::size_t n = 0;
  for (; n < t.size() && ValorDigito(t[n]) < base; ++n) {
    if (valor > std::numeric_limits<std::uint64_t>::max() / static_cast<unsigned>(base)) desborda = true;
    valor = valor * static_cast<unsigned>(base) + static_cast<unsigned>(ValorDigito(t[n]));
  }
  t.remove_prefix(n);
  SaltarBlancos(t);
  if (n == 0 || !t.empty()) return std::nullopt;
  return valor;
}

// Signs, currency and parentheses in front of or behind the digits, each as often as it may stand there.
struct Adornos {
  bool signo = false, negativo = false, moneda = false, parentesis = false, cerrado = false;

  void Delante(std::string_view& t, const Locale& locale) {
    for (;;) {
      SaltarBlancos(t);
      if (!signo && (Consumir(t, "-") ? (negativo = true) : Consumir(t, "+"))) {
        signo = true;
      } else if (!moneda && Consumir(t, locale.moneda)) {
        moneda = true;
      } else if (!parentesis && Consumir(t, "(")) {
        parentesis = true;
      } else {
        return;
      }
    }
  }

  void Detras(std::string_view& t, const Locale& locale) {
    for (;;) {
      SaltarBlancos(t);
      if (!signo && (Consumir(t, "-") ? (negativo = true) : Consumir(t, "+"))) {
        signo = true;
      } else if (parentesis && !cerrado && Consumir(t, ")")) {
        cerrado = true;
      } else if (!Consumir(t, locale.moneda)) {
        return;
      }
    }
  }

  bool Validos() const { return parentesis == cerrado && !(parentesis && signo); }
};

// The digits with their separators, cut from the front of `t`.
struct Cuerpo {
  std::string enteros, fraccion;
  int exponente = 0;
};

bool LeerExponente(std::string_view& t, int& exponente) {
  if (t.empty() || internal::MinAscii(t[0]) != 'e') return true;
  t.remove_prefix(1);
  const bool negativo = Consumir(t, "-");
  if (!negativo) Consumir(t, "+");
  if (t.empty() || !EsDigito(t[0])) return false;
  for (; !t.empty() && EsDigito(t[0]); t.remove_prefix(1))
    if (exponente < kExponenteMaximo) exponente = exponente * 10 + (t[0] - '0');
  if (negativo) exponente = -exponente;
  return true;
}

// Thousands signs are passed over anywhere after the first digit and before the decimal sign.
bool LeerCuerpoClasico(std::string_view& t, std::string_view decimal, std::string_view miles, Cuerpo& c) {
  bool en_fraccion = false;
  for (;;) {
    if (!t.empty() && EsDigito(t[0])) {
      (en_fraccion ? c.fraccion : c.enteros) += t[0];
      t.remove_prefix(1);
    } else if (!en_fraccion && Consumir(t, decimal)) {
      en_fraccion = true;
    } else if (en_fraccion || c.enteros.empty() || !Consumir(t, miles)) {
      break;
    }
  }
  return !c.enteros.empty() || !c.fraccion.empty();
}

// Several "." and no ",": one to three digits, then groups of three.
bool GruposDeTres(std::string_view cuerpo) {
  std::size_t punto = cuerpo.find('.');
  if (punto == 0 || punto > 3) return false;
  while (punto != std::string_view::npos) {
    const std::size_t otro = cuerpo.find('.', punto + 1);
    const std::size_t fin = otro == std::string_view::npos ? cuerpo.size() : otro;
    if (fin - punto != 4) return false;
    punto = otro;
  }
  return true;
}

// The operator's rule: what "." means depends on whether there is a "," and on how many "." there are.
bool LeerCuerpoOperador(std::string_view& t, Cuerpo& c) {
  std::size_t fin = 0, puntos = 0;
  bool coma = false;
  for (; fin < t.size() && (EsDigito(t[fin]) || t[fin] == '.' || t[fin] == ','); ++fin) {
    puntos += t[fin] == '.' ? 1 : 0;
    coma = coma || t[fin] == ',';
  }
  const std::string_view cuerpo = t.substr(0, fin);
  std::string_view resto = cuerpo;
  if (!coma && puntos > 1 && !GruposDeTres(cuerpo)) return false;
  const bool punto_decimal = !coma && puntos == 1;
  if (!LeerCuerpoClasico(resto, punto_decimal ? "." : ",", punto_decimal ? "" : ".", c)) return false;
  if (!resto.empty()) return false;
  t.remove_prefix(fin);
  return true;
}

Lectura LeerTexto(std::string_view t, const Locale& locale, double& numero) {
  Adornos adornos;
  adornos.Delante(t, locale);
  Cuerpo cuerpo;
  const bool leido = internal::EsDelOperador(locale)
                         ? LeerCuerpoOperador(t, cuerpo)
                         : LeerCuerpoClasico(t, locale.decimal, locale.miles, cuerpo);
  if (!leido || !LeerExponente(t, cuerpo.exponente)) return Lectura::NoEsNumero;
  adornos.Detras(t, locale);
  if (!t.empty() || !adornos.Validos()) return Lectura::NoEsNumero;
  const Lectura lectura = internal::Componer(cuerpo.enteros, cuerpo.fraccion, cuerpo.exponente, numero);
  if ((adornos.negativo || adornos.parentesis) && numero != 0) numero = -numero;
  return lectura;
}

Lectura Leer(std::string_view texto, const Locale& locale, double& numero) {
  if (internal::EsDelOperador(locale) && internal::LeerLlano(texto, numero)) return Lectura::Bien;
  if (texto.find('&') == std::string_view::npos) return LeerTexto(texto, locale, numero);
  bool desborda = false;
  const auto hex = LeerHexOctal(texto, desborda);
  if (!hex) return Lectura::NoEsNumero;
  numero = static_cast<double>(*hex);
  return desborda ? Lectura::Desborda : Lectura::Bien;
}

// --- Val ---

// A text without the blanks that Val passes over wherever they stand, read one character at a time.
class LectorVal {
 public:
  explicit LectorVal(std::string_view texto) : resto_(texto) { Saltar(); }
  char Ver() const { return resto_.empty() ? '\0' : resto_[0]; }
  // The character right after, blanks included.
  char VerPegado() const { return resto_.size() < 2 ? '\0' : resto_[1]; }
  void Tomar() {
    resto_.remove_prefix(1);
    Saltar();
  }

 private:
  void Saltar() {
    for (;;) {
      if (!resto_.empty() &&
          (resto_[0] == ' ' || resto_[0] == '\t' || resto_[0] == '\n' || resto_[0] == '\r')) {
        resto_.remove_prefix(1);
      } else if (!Consumir(resto_, "\xE3\x80\x80")) {  // the ideographic space
        return;
      }
    }
  }
  std::string_view resto_;
};

struct ResultadoVal {
  double numero = 0;
  int error = 0;
};

bool Cabe(double numero, double limite) { return numero >= -limite - 1 && numero <= limite; }

// A type sign ends the number: "%" 16 bits, "&" 32, "@" currency, "!" single. `con_punto`: a fraction was
// read.
ResultadoVal AplicarTipo(char signo, double numero, bool con_punto) {
  switch (signo) {
    case '%':
    case '&':
      if (con_punto) return {0, 13};
      if (!Cabe(std::nearbyint(numero), signo == '%' ? 32767.0 : 2147483647.0)) return {0, 6};
      return {std::nearbyint(numero), 0};
    case '@':
      if (!(std::abs(numero) < 922337203685477.6)) return {0, 6};
      return {numero, 0};
    case '!': {
      if (std::abs(numero) > static_cast<double>(std::numeric_limits<float>::max())) return {0, 6};
      return {static_cast<double>(static_cast<float>(numero)), 0};
    }
    default:
      return {numero, 0};
  }
}

// Up to 16 bits it is a 16-bit signed value, up to 32 a 32-bit one; "&" behind keeps 32 bits, "%" asks
// for 16.
ResultadoVal ValHexOctal(LectorVal& lector, int base) {
  std::uint64_t valor = 0;
  for (; ValorDigito(lector.Ver()) < base; lector.Tomar()) {
    if (valor > std::numeric_limits<std::uint64_t>::max() / static_cast<unsigned>(base)) return {0, 6};
    valor = valor * static_cast<unsigned>(base) + static_cast<unsigned>(ValorDigito(lector.Ver()));
  }
  const char signo = lector.Ver();
  if ((signo == '%' && valor > 0xFFFF) || (signo == '&' && valor > 0xFFFFFFFFU)) return {0, 6};
  if (valor <= 0xFFFF && signo != '&') return {static_cast<double>(static_cast<std::int16_t>(valor)), 0};
  if (valor <= 0xFFFFFFFFU) return {static_cast<double>(static_cast<std::int32_t>(valor)), 0};
  return {static_cast<double>(static_cast<std::int64_t>(valor)), 0};
}

int ExponenteVal(LectorVal lector) {  // by value: an incomplete exponent is not consumed
  const char e = internal::MinAscii(lector.Ver());
  if (e != 'e' && e != 'd') return 0;
  lector.Tomar();
  const bool negativo = lector.Ver() == '-';
  if (negativo || lector.Ver() == '+') lector.Tomar();
  int exponente = 0;
  for (; EsDigito(lector.Ver()); lector.Tomar())
    if (exponente < kExponenteMaximo) exponente = exponente * 10 + (lector.Ver() - '0');
  return negativo ? -exponente : exponente;
}

ResultadoVal ValCrudo(std::string_view texto) {
  LectorVal lector(texto);
  if (lector.Ver() == '&') {
    const int base = BaseDe(lector.VerPegado());
    if (base == 0) return {};
    lector.Tomar();
    lector.Tomar();
    return ValHexOctal(lector, base);
  }
  const bool negativo = lector.Ver() == '-';
  if (negativo || lector.Ver() == '+') lector.Tomar();
  std::string enteros, fraccion;
  for (; EsDigito(lector.Ver()); lector.Tomar()) enteros += lector.Ver();
  const bool con_punto = lector.Ver() == '.';
  if (con_punto) {
    lector.Tomar();
    for (; EsDigito(lector.Ver()); lector.Tomar()) fraccion += lector.Ver();
  }
  if (enteros.empty() && fraccion.empty()) return {};
  double numero = 0;
  if (internal::Componer(enteros, fraccion, ExponenteVal(lector), numero) == Lectura::Desborda) return {0, 6};
  if (negativo && numero != 0) numero = -numero;
  return AplicarTipo(lector.Ver(), numero, con_punto);
}

}  // namespace

std::optional<double> DialectNumber(std::string_view texto, const Locale& locale) {
  double numero = 0;
  if (Leer(texto, locale, numero) != Lectura::Bien) return std::nullopt;
  return numero;
}

bool IsNumeric(std::string_view texto, const Locale& locale) {
  return DialectNumber(texto, locale).has_value();
}

double CDbl(std::string_view texto, const Locale& locale) {
  double numero = 0;
  switch (Leer(texto, locale, numero)) {
    case Lectura::Bien:
      return numero;
    case Lectura::Desborda:
      throw Error(DescripcionDeError(6), 6);
    case Lectura::NoEsNumero:
      break;
  }
  throw Error(DescripcionDeError(13), 13);
}

std::optional<std::int64_t> EnteroHexOctal(std::string_view texto, int bits) {
  if (texto.find('&') == std::string_view::npos) return std::nullopt;
  bool desborda = false;
  const auto valor = LeerHexOctal(texto, desborda);
  if (!valor) return std::nullopt;
  if (desborda || (bits < 64 && *valor >> bits != 0)) throw Error(DescripcionDeError(6), 6);
  const int corrimiento = 64 - bits;
  return static_cast<std::int64_t>(*valor << corrimiento) >> corrimiento;
}

double Val(std::string_view texto) {
  const ResultadoVal r = ValCrudo(texto);
  if (r.error != 0) throw Error(DescripcionDeError(r.error), r.error);
  return r.numero;
}

}  // namespace base
