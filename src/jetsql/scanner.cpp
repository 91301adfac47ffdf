#include <array>
#include <charconv>
#include <cmath>

#include "base/date.h"
#include "base/dialect_number.h"
#include "base/text.h"
#include "jetsql/scanner_internal.h"

namespace jetsql {
namespace {

enum : std::uint8_t { kOtro = 0, kBlanco, kLetra, kDigito };

constexpr std::array<std::uint8_t, 256> Clases() {
  std::array<std::uint8_t, 256> t{};
  for (int c = 'a'; c <= 'z'; ++c) t[static_cast<std::size_t>(c)] = kLetra;
  for (int c = 'A'; c <= 'Z'; ++c) t[static_cast<std::size_t>(c)] = kLetra;
  for (int c = 0x80; c <= 0xFF; ++c) t[static_cast<std::size_t>(c)] = kLetra;
  for (int c = '0'; c <= '9'; ++c) t[static_cast<std::size_t>(c)] = kDigito;
  t['_'] = t['$'] = kLetra;
  t[' '] = t['\t'] = t['\n'] = t['\r'] = t['\f'] = t['\v'] = kBlanco;
  return t;
}
constexpr auto kClases = Clases();

std::uint8_t ClaseDe(char c) { return kClases[static_cast<unsigned char>(c)]; }

// "MM/dd/yyyy", the form of nearly every date that reaches us: read without the general parser. Anything
// else, and what it cannot decide (a day and month turned round), is left to that.
bool FechaSimple(std::string_view t, base::Fecha& fecha) {
  if (t.size() != 10 || t[2] != '/' || t[5] != '/') return false;
  const auto dos = [&](std::size_t i) {
    return ClaseDe(t[i]) == kDigito && ClaseDe(t[i + 1]) == kDigito ? (t[i] - '0') * 10 + (t[i + 1] - '0')
                                                                    : -1;
  };
  const int mes = dos(0), dia = dos(3), siglo = dos(6), resto = dos(8);
  if (mes < 1 || mes > 12 || dia < 1 || siglo < 1 || resto < 0) return false;
  const int anio = siglo * 100 + resto;
  static constexpr int kDias[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool bisiesto = (anio % 4 == 0 && anio % 100 != 0) || anio % 400 == 0;
  if (dia > kDias[mes - 1] + (mes == 2 && bisiesto ? 1 : 0)) return false;
  // Days from the civil date (March-based years), then to the serial's origin of 30 December 1899.
  const int a = anio - (mes <= 2 ? 1 : 0), m = mes + (mes <= 2 ? 9 : -3);
  const int dias = 365 * a + a / 4 - a / 100 + a / 400 + (153 * m + 2) / 5 + dia - 1;
  constexpr int kOrigen = 693899;  // the same count for 30 December 1899
  fecha.serie = dias - kOrigen;
  return true;
}

bool LeerFecha(std::string_view dentro, base::Valor& valor) {
  base::Fecha fecha;
  if (FechaSimple(dentro, fecha)) {
    valor = fecha;
    return true;
  }
  // A literal without a year would mean another day each year, and a translation that is kept must not.
  const auto un = base::FechaDeLiteral(dentro, base::Fecha{40000});
  const auto otro = base::FechaDeLiteral(dentro, base::Fecha{42000});
  if (!un || !otro || un->serie != otro->serie) return false;
  valor = *un;
  return true;
}

// Up to 16 bits it is an Integer, so that &HFFFF is -1, unless "&" says that it is a Long.
bool LeerHexOctal(std::string_view t, base::Valor& valor) {
  const bool largo = t.back() == '&';
  if (largo) t.remove_suffix(1);
  constexpr std::size_t kMasLargo = 14;  // digits of 32 bits, with room for zeros in front
  if (t.size() > kMasLargo) return false;
  const auto ancho = base::EnteroHexOctal(t, 64);
  if (!ancho || *ancho < 0 || *ancho > 0xFFFFFFFF) return false;
  valor = *base::EnteroHexOctal(t, largo || *ancho > 0xFFFF ? 32 : 16);
  return true;
}

bool LeerEntero(std::string_view t, base::Valor& valor) {
  if (t.front() == '&') return LeerHexOctal(t, valor);
  if (t.size() > 18) {  // beyond the integers: a number like any other
    double d = 0;
    std::from_chars(t.data(), t.data() + t.size(), d);
    valor = d;
    return true;
  }
  std::int64_t n = 0;
  for (const char c : t) n = n * 10 + (c - '0');
  valor = n;
  return true;
}

}  // namespace

Token Escaner::Hasta(char cierre, ClaseToken clase, std::size_t inicio) {
  const std::size_t fin = sql_.find(cierre, inicio + 1);
  if (fin == std::string_view::npos) {
    i_ = sql_.size();
    return {ClaseToken::Malo, inicio, i_};
  }
  i_ = fin + 1;
  return {clase, inicio, i_};
}

Token Escaner::Cadena(char comilla, std::size_t inicio) {
  std::size_t i = inicio + 1;
  while (true) {
    i = sql_.find(comilla, i);
    if (i == std::string_view::npos) {
      i_ = sql_.size();
      return {ClaseToken::Malo, inicio, i_};
    }
    if (i + 1 >= sql_.size() || sql_[i + 1] != comilla) break;
    i += 2;
  }
  i_ = i + 1;
  return {ClaseToken::Texto, inicio, i_};
}

Token Escaner::Numero(std::size_t inicio) {
  std::size_t i = inicio;
  const auto digitos = [&] {
    while (i < sql_.size() && ClaseDe(sql_[i]) == kDigito) ++i;
  };
  digitos();
  bool real = false;
  if (i < sql_.size() && sql_[i] == '.') {
    real = true;
    ++i;
    digitos();
  }
  if (i < sql_.size() && (sql_[i] == 'e' || sql_[i] == 'E')) {
    std::size_t j = i + 1;
    if (j < sql_.size() && (sql_[j] == '+' || sql_[j] == '-')) ++j;
    if (j < sql_.size() && ClaseDe(sql_[j]) == kDigito) {
      real = true;
      i = j;
      digitos();
    }
  }
  i_ = i;
  // 19 digits and more do not fit an integer: they are numbers, and their mark in the shape says so.
  if (!real && i - inicio > 18) real = true;
  return {real ? ClaseToken::Real : ClaseToken::Entero, inicio, i};
}

// Where an operand may stand "&HFF" is a number, behind one "&" joins texts: "x &Hora" is x & Hora.
bool Escaner::TrasOperando() const {
  switch (anterior_.clase) {
    case ClaseToken::Fin:
      return false;
    case ClaseToken::Nombre: {
      const std::string_view palabra = sql_.substr(anterior_.inicio, anterior_.fin - anterior_.inicio);
      for (const std::string_view valor : {"NULL", "TRUE", "FALSE"})
        if (base::IgualSinCaso(palabra, valor)) return true;
      return !PalabraReservada(palabra);
    }
    case ClaseToken::Signo:
      return sql_[anterior_.inicio] == ')';
    default:
      return true;
  }
}

// "&HFF", "&O17", with "&" behind for a Long; i_ does not move when it is none.
Token Escaner::HexOctal(std::size_t inicio) {
  const char base = inicio + 1 < sql_.size() ? static_cast<char>(sql_[inicio + 1] & ~0x20) : '\0';
  std::size_t i = inicio + 2;
  const auto cifra = [&] {
    if (i >= sql_.size()) return false;
    const char c = static_cast<char>(sql_[i] & ~0x20);
    if (ClaseDe(sql_[i]) == kDigito) return base == 'H' || sql_[i] < '8';
    return base == 'H' && c >= 'A' && c <= 'F' && ClaseDe(sql_[i]) == kLetra;
  };
  if ((base != 'H' && base != 'O') || !cifra() || TrasOperando()) return {};
  while (cifra()) ++i;
  if (i < sql_.size() && sql_[i] == '&') ++i;
  i_ = i;
  return {ClaseToken::Entero, inicio, i_};
}

Token Escaner::Cortar() {
  const std::size_t n = sql_.size();
  while (i_ < n && ClaseDe(sql_[i_]) == kBlanco) ++i_;
  const bool tras_nombre = tras_nombre_;
  tras_nombre_ = false;
  const std::size_t inicio = i_;
  if (i_ >= n) return {ClaseToken::Fin, n, n};
  const char c = sql_[i_];
  switch (ClaseDe(c)) {
    case kLetra:
      while (i_ < n && ClaseDe(sql_[i_]) >= kLetra) ++i_;
      tras_nombre_ = true;
      return {ClaseToken::Nombre, inicio, i_};
    case kDigito:
      return Numero(inicio);
    default:
      break;
  }
  switch (c) {
    case '\'':
    case '"':
      return Cadena(c, inicio);
    case '#':
      return Hasta('#', ClaseToken::Fecha, inicio);
    case '[':
      tras_nombre_ = true;
      return Hasta(']', ClaseToken::Corchetes, inicio);
    case '`':
      tras_nombre_ = true;
      return Hasta('`', ClaseToken::Corchetes, inicio);
    case '&':
      if (const Token hex = HexOctal(inicio); hex.clase != ClaseToken::Fin) return hex;
      break;
    case '.':
      if (!tras_nombre && i_ + 1 < n && ClaseDe(sql_[i_ + 1]) == kDigito) return Numero(inicio);
      break;
    default:
      break;
  }
  return Sign(inicio);
}

Token Escaner::Sign(std::size_t inicio) {
  const char sig = inicio + 1 < sql_.size() ? sql_[inicio + 1] : '\0';
  switch (sql_[inicio]) {
    case '<':
      i_ += sig == '=' || sig == '>' ? 2 : 1;
      return {ClaseToken::Signo, inicio, i_};
    case '>':
      i_ += sig == '=' ? 2 : 1;
      return {ClaseToken::Signo, inicio, i_};
    case '&':
    case '.':
    case '(':
    case ')':
    case ',':
    case ';':
    case '+':
    case '-':
    case '*':
    case '/':
    case '\\':
    case '^':
    case '=':
    case '!':
      ++i_;
      return {ClaseToken::Signo, inicio, i_};
    default:
      ++i_;
      return {ClaseToken::Malo, inicio, i_};
  }
}

bool LeerLiteral(ClaseToken clase, std::string_view texto, base::Valor& valor) {
  switch (clase) {
    case ClaseToken::Entero:
      return LeerEntero(texto, valor);
    case ClaseToken::Real: {
      double d = 0;
      const auto r = std::from_chars(texto.data(), texto.data() + texto.size(), d);
      if (r.ec == std::errc::result_out_of_range) return false;
      valor = d;
      return true;
    }
    case ClaseToken::Fecha:
      return LeerFecha(texto.substr(1, texto.size() - 2), valor);
    case ClaseToken::Texto: {
      const char comilla = texto.front();
      const std::string_view dentro = texto.substr(1, texto.size() - 2);
      std::size_t i = dentro.find(comilla);
      if (i == std::string_view::npos) {
        valor = std::string(dentro);
        return true;
      }
      std::string s(dentro.substr(0, i));
      for (; i < dentro.size(); ++i) {
        s += dentro[i];
        if (dentro[i] == comilla) ++i;
      }
      valor = std::move(s);
      return true;
    }
    default:
      return false;
  }
}

}  // namespace jetsql
