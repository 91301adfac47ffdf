#include "base/valor.h"

#include <cmath>

#include "base/date_internal.h"
#include "base/dialect_number.h"
#include "base/error.h"
#include "base/number.h"
#include "base/text.h"

namespace base {
namespace {

constexpr double kDiezmil = 10000;
constexpr double kMedioSegundo = 0.5 / static_cast<double>(internal::kSegundosDia);

std::string TextoDeMoneda(Moneda moneda, std::string_view punto) {
  const bool negativo = moneda.diezmilesimas < 0;
  const auto crudo = static_cast<std::uint64_t>(moneda.diezmilesimas);
  const std::uint64_t valor = negativo ? 0 - crudo : crudo;
  std::string texto(negativo ? 1 : 0, '-');
  texto += std::to_string(valor / 10000);
  std::string fraccion = std::to_string(valor % 10000 + 10000).substr(1);
  while (!fraccion.empty() && fraccion.back() == '0') fraccion.pop_back();
  if (!fraccion.empty()) texto.append(punto).append(fraccion);
  return texto;
}

// A column of dates may hold a number that is no day of the calendar; what shows a value must not fail on it.
bool EnElCalendario(Fecha fecha) {
  return fecha.serie > static_cast<double>(internal::kDiaMinimo) - 1 &&
         fecha.serie < static_cast<double>(internal::kDiaMaximo) + 1 - kMedioSegundo;
}

[[noreturn]] void Fallar(int numero) { throw Error(DescripcionDeError(numero), numero); }

}  // namespace

std::string Valor::Texto(const Locale& locale) const {
  switch (tipo()) {
    case Tipo::Nulo:
      return {};
    case Tipo::Booleano:
      return std::get<bool>(v_) ? locale.verdadero : locale.falso;
    case Tipo::Entero:
      return std::to_string(std::get<std::int64_t>(v_));
    case Tipo::Simple:
      return TextoDeSimple(std::get<float>(v_), locale);
    case Tipo::Numero:
      return TextoDeNumero(std::get<double>(v_), locale);
    case Tipo::Moneda:
      return TextoDeMoneda(std::get<Moneda>(v_), locale.decimal);
    case Tipo::Fecha: {
      const Fecha fecha = std::get<Fecha>(v_);
      return EnElCalendario(fecha) ? TextoDeFecha(fecha, locale) : TextoDeNumero(fecha.serie, locale);
    }
    case Tipo::Texto:
      break;
  }
  return std::get<std::string>(v_);
}

std::string Valor::TextoCsv() const {
  switch (tipo()) {
    case Tipo::Booleano:
      return std::get<bool>(v_) ? "-1" : "0";
    case Tipo::Simple:
      if (!std::isfinite(std::get<float>(v_))) return Texto(Locale::ingles());
      return SqlDeSimple(std::get<float>(v_));
    case Tipo::Numero:
      if (!std::isfinite(std::get<double>(v_))) return Texto(Locale::ingles());
      return SqlDeNumero(std::get<double>(v_));
    case Tipo::Moneda:
      return TextoDeMoneda(std::get<Moneda>(v_), ".");
    case Tipo::Fecha:
      if (!EnElCalendario(std::get<Fecha>(v_))) return Texto(Locale::ingles());
      return FechaIso(std::get<Fecha>(v_));
    default:
      return Texto();
  }
}

double Valor::Numero(const Locale& locale) const {
  switch (tipo()) {
    case Tipo::Nulo:
      Fallar(94);
    case Tipo::Booleano:
      return std::get<bool>(v_) ? -1 : 0;
    case Tipo::Entero:
      return static_cast<double>(std::get<std::int64_t>(v_));
    case Tipo::Simple:
      return static_cast<double>(std::get<float>(v_));
    case Tipo::Numero:
      return std::get<double>(v_);
    case Tipo::Moneda:
      return static_cast<double>(std::get<Moneda>(v_).diezmilesimas) / kDiezmil;
    case Tipo::Fecha:
      return std::get<Fecha>(v_).serie;
    case Tipo::Texto:
      break;
  }
  return CDbl(std::get<std::string>(v_), locale);
}

double Valor::NumeroOCero(const Locale& locale) const {
  if (EsNulo()) return 0;
  if (const auto* texto = Si<std::string>()) return DialectNumber(*texto, locale).value_or(0);
  return Numero(locale);
}

std::int32_t Valor::Entero(const Locale& locale) const {
  if (const auto* texto = Si<std::string>())
    if (const auto hex = EnteroHexOctal(*texto, 32)) return static_cast<std::int32_t>(*hex);
  return Entero32(Numero(locale));
}

std::int16_t Valor::EnteroCorto(const Locale& locale) const {
  if (const auto* texto = Si<std::string>())
    if (const auto hex = EnteroHexOctal(*texto, 16)) return static_cast<std::int16_t>(*hex);
  return Entero16(Numero(locale));
}

bool Valor::Booleano(const Locale& locale) const {
  if (EsNulo()) return false;
  if (const auto* texto = Si<std::string>()) {
    std::string_view palabra = *texto;
    if (palabra.size() > 2 && palabra.front() == '#' && palabra.back() == '#')
      palabra = palabra.substr(1, palabra.size() - 2);  // as the runtime writes them to files: #TRUE#
    if (IgualSinCaso(palabra, "True") || IgualSinCaso(palabra, locale.verdadero)) return true;
    if (IgualSinCaso(palabra, "False") || IgualSinCaso(palabra, locale.falso)) return false;
  }
  return Numero(locale) != 0;
}

}  // namespace base
