// The conversion functions of the dialect and the questions about a value's type. A conversion of Null is
// Null.
#include <cmath>
#include <limits>
#include <optional>

#include "base/dialect_number.h"
#include "base/number.h"
#include "base/text.h"
#include "engine_sqlite/conversion_internal.h"

namespace engine_sqlite {
namespace {

// The width of "&HFFFF" is that of the target: 65535 as a Long, -1 as an Integer.
void CInt(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarEntero(l.Tipado(0).EnteroCorto(l.Regional()));
}

void CLng(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarEntero(l.Tipado(0).Entero(l.Regional()));
}

void CByte(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  const std::int64_t v = l.Entero(0);
  if (v < 0 || v > 255) LanzarNumero(kDesbordamiento);
  l.DarEntero(v);
}

void CStr(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarTexto(l.Texto(0));
}

// With "." whatever the locale, and a blank where a minus would stand.
void Str(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  const double v = l.Numero(0);
  const std::string texto =
      l.Letra(0) == 'S' ? base::SqlDeSimple(static_cast<float>(v)) : base::SqlDeNumero(v);
  l.DarTexto(v < 0 ? texto : " " + texto);
}

// A single has more digits than it shows, and a double shows them.
void CDbl(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  const double v = l.Numero(0);
  l.DarNumero(l.Letra(0) == 'S' ? static_cast<double>(static_cast<float>(v)) : v);
}

void CVar(Llamada& l) { l.DarArgumento(0); }

// In two's complement: 16 bits of a small negative whole number, which is an Integer, 32 of any other value.
std::uint32_t Bits(const Llamada& l) {
  const std::int64_t v = l.Entero(0);
  const bool corto =
      !l.EsTexto(0) && l.Numerico(0).entera && v < 0 && v > std::numeric_limits<std::int16_t>::min();
  if (corto) return static_cast<std::uint16_t>(v);
  if (v < std::numeric_limits<std::int32_t>::min() || v > std::numeric_limits<std::uint32_t>::max())
    LanzarNumero(kDesbordamiento);
  return static_cast<std::uint32_t>(v);
}

template <unsigned kBitsPorCifra>
void EnBase(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  std::uint32_t v = Bits(l);
  std::string texto;
  do {
    texto.insert(texto.begin(), "0123456789ABCDEF"[v & ((1U << kBitsPorCifra) - 1)]);
    v >>= kBitsPorCifra;
  } while (v != 0);
  l.DarTexto(texto);
}

void IsNumeric(Llamada& l) {
  const char letra = l.Letra(0);
  if (letra == 'T') return l.DarBooleano(base::IsNumeric(l.Texto(0), l.Regional()));
  l.DarBooleano(!l.EsNulo(0) && letra != 'D');
}

void IsDate(Llamada& l) {
  const char letra = l.Letra(0);
  if (letra == 'T') return l.DarBooleano(base::EsFecha(l.Texto(0), l.Hoy(), l.Regional()));
  l.DarBooleano(!l.EsNulo(0) && letra == 'D');
}

// No value of a row is Empty or an error: an error ends the statement.
void IsEmpty(Llamada& l) { l.DarBooleano(false); }

// Files without users of their own have this one.
void CurrentUser(Llamada& l) { l.DarTexto("Admin"); }

// Without a second argument a Null becomes the empty text.
void Nz(Llamada& l) {
  if (!l.EsNulo(0)) return l.DarArgumento(0);
  l.Hay(1) ? l.DarArgumento(1) : l.DarTexto("");
}

struct ClaseDeValor {
  char letra;
  int codigo;
  std::string_view nombre;
};
constexpr ClaseDeValor kClases[] = {
    {'?', 1, "Null"},     {'I', 3, "Long"}, {'S', 4, "Single"}, {'N', 5, "Double"},
    {'C', 6, "Currency"}, {'D', 7, "Date"}, {'T', 8, "String"}, {'B', 11, "Boolean"},
};

const ClaseDeValor& Clase(const Llamada& l) {
  if (!l.EsNulo(0))
    for (const ClaseDeValor& c : kClases)
      if (c.letra == l.Letra(0)) return c;
  return kClases[0];
}

void TypeName(Llamada& l) { l.DarTexto(Clase(l).nombre); }
void VarType(Llamada& l) { l.DarEntero(Clase(l).codigo); }

std::optional<double> ClassicVal(std::string_view texto) {
  try {
    return base::Val(texto);
  } catch (const base::Error&) {
    return std::nullopt;
  }
}

// What stands before the type sign or the letter of the exponent; the whole text where there is none.
std::string_view WithoutTypeSign(std::string_view texto) {
  constexpr std::size_t kMark = 2;  // of "&H"
  const bool hex = !texto.empty() && texto.front() == '&';
  return texto.substr(0, texto.find_first_of("%&!@", hex ? kMark : 0));
}
std::string_view WithoutExponent(std::string_view texto) {
  const bool hex = !texto.empty() && texto.front() == '&';
  return hex ? texto : texto.substr(0, texto.find_first_of("eEdD"));
}

// A number that the function would fail for ends before what it cannot be: its type sign, its exponent, the
// digit that no longer fits. One odd text must not fail a query over a whole table.
double ValThatNeverFails(std::string_view texto) {
  texto = base::TrimVista(texto);
  for (const std::string_view pieza :
       {texto, WithoutTypeSign(texto), WithoutExponent(WithoutTypeSign(texto))})
    if (const auto numero = ClassicVal(pieza)) return *numero;
  const std::string_view cifras = WithoutExponent(WithoutTypeSign(texto));
  std::size_t fits = 0, too_long = cifras.size();
  while (fits + 1 < too_long) {
    const std::size_t middle = fits + (too_long - fits) / 2;
    (ClassicVal(cifras.substr(0, middle)) ? fits : too_long) = middle;
  }
  return ClassicVal(cifras.substr(0, fits)).value_or(0);
}

void Val(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarNumero(ValThatNeverFails(l.Texto(0)));
}

constexpr Implementacion kFunciones[] = {
    {"CBOOL", ABooleano}, {"CBYTE", CByte},         {"CCUR", AMoneda},  {"CDATE", AFecha},
    {"CDBL", CDbl},       {"CDEC", ANumero},        {"CINT", CInt},     {"CLNG", CLng},
    {"CSNG", ASimple},    {"CSTR", CStr},           {"CVAR", CVar},     {"CURRENTUSER", CurrentUser},
    {"CVDATE", AFecha},   {"ISERROR", IsEmpty},     {"HEX", EnBase<4>}, {"ISDATE", IsDate},
    {"ISEMPTY", IsEmpty}, {"ISNUMERIC", IsNumeric}, {"NZ", Nz},         {"OCT", EnBase<3>},
    {"STR", Str},         {"TYPENAME", TypeName},   {"VAL", Val},       {"VARTYPE", VarType},
};

}  // namespace

void ASimple(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  const auto simple = static_cast<float>(l.Numero(0));
  if (!std::isfinite(simple)) LanzarNumero(kDesbordamiento);
  l.DarNumero(base::DobleDeSimple(simple));
}

void ComoSimple(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  const auto simple = static_cast<float>(l.Numero(0));
  std::isfinite(simple) ? l.DarNumero(base::DobleDeSimple(simple)) : l.DarArgumento(0);
}

void AMoneda(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  constexpr double kMaxima = 922337203685477.5807;
  const double v = l.Numero(0);
  if (!(std::abs(v) <= kMaxima)) LanzarNumero(kDesbordamiento);
  l.DarNumero(base::Redondear(v, 4));
}

void ANumero(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarNumero(l.Numero(0));
}

void AFecha(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarFecha(l.Fecha(0));
}

void ABooleano(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarBooleano(l.Tipado(0).Booleano(l.Regional()));
}

std::span<const Implementacion> FuncionesDeConversion() { return kFunciones; }

}  // namespace engine_sqlite
