// The calendar of day serials.
#include "base/date.h"

#include <cmath>

#include "base/date_internal.h"
#include "base/error.h"
#include "base/format.h"
#include "base/number.h"
#include "base/text.h"

namespace base {
namespace internal {

bool EsBisiesto(long long anio) { return (anio % 4 == 0 && anio % 100 != 0) || anio % 400 == 0; }

int DiasDelMes(long long anio, int mes) {
  constexpr int kDias[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return mes == 2 && EsBisiesto(anio) ? 29 : kDias[mes - 1];
}

// Years are counted from March, so that the leap day is the last one; an era is 400 years.
long long DiaDe(long long anio, int mes, int dia) {
  const long long a = mes <= 2 ? anio - 1 : anio;
  const long long era = a / 400;  // years here are positive
  const long long en_era = a - era * 400;
  const long long dia_anio = (153 * (mes > 2 ? mes - 3 : mes + 9) + 2) / 5 + dia - 1;
  constexpr long long kDesdeMarzo0 = 693899;  // days from 0000-03-01 to 1899-12-30
  return era * 146097 + en_era * 365 + en_era / 4 - en_era / 100 + dia_anio - kDesdeMarzo0;
}

int AnioCompleto(int anio) { return anio < 0 || anio > 99 ? anio : anio + (anio < 30 ? 2000 : 1900); }

DiaSegundo Separar(Fecha fecha) {
  constexpr double kFuera = 1e7;  // far beyond the calendar, and what no integer would hold
  if (!(std::abs(fecha.serie) < kFuera)) throw Error(DescripcionDeError(5), 5);
  const double entero = std::trunc(fecha.serie);
  DiaSegundo ds{static_cast<long long>(entero),
                std::llround(std::abs(fecha.serie - entero) * static_cast<double>(kSegundosDia))};
  if (ds.segundo == kSegundosDia) {
    ++ds.dia;
    ds.segundo = 0;
  }
  return ds;
}

Fecha Unir(long long dia, double fraccion) {
  if (dia < kDiaMinimo || dia > kDiaMaximo) throw Error(DescripcionDeError(5), 5);
  const auto d = static_cast<double>(dia);
  return {dia < 0 ? d - fraccion : d + fraccion};
}

}  // namespace internal

using internal::DiaSegundo;
using internal::kSegundosDia;

namespace {

long long DividirAbajo(long long a, long long b) {
  return a / b - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0);
}

double FraccionDe(long long segundo) {
  return static_cast<double>(segundo) / static_cast<double>(kSegundosDia);
}

// The year, month and day of a calendar day.
void Calendario(long long dia, PartesFecha& p) {
  const long long z = dia + 693899;
  const long long era = z / 146097;
  const long long de_era = z - era * 146097;
  const long long anio_era = (de_era - de_era / 1460 + de_era / 36524 - de_era / 146096) / 365;
  const long long de_anio = de_era - (365 * anio_era + anio_era / 4 - anio_era / 100);
  const long long m = (5 * de_anio + 2) / 153;
  p.dia = static_cast<int>(de_anio - (153 * m + 2) / 5 + 1);
  p.mes = static_cast<int>(m < 10 ? m + 3 : m - 9);
  p.anio = static_cast<int>(anio_era + era * 400 + (p.mes <= 2 ? 1 : 0));
}

}  // namespace

PartesFecha Partes(Fecha fecha) {
  const DiaSegundo ds = internal::Separar(fecha);
  if (ds.dia < internal::kDiaMinimo || ds.dia > internal::kDiaMaximo) throw Error(DescripcionDeError(5), 5);
  PartesFecha p{};
  Calendario(ds.dia, p);
  p.hora = static_cast<int>(ds.segundo / 3600);
  p.minuto = static_cast<int>(ds.segundo / 60 % 60);
  p.segundo = static_cast<int>(ds.segundo % 60);
  return p;
}

Fecha FechaDe(int anio, int mes, int dia) {
  const long long meses = static_cast<long long>(internal::AnioCompleto(anio)) * 12 + mes - 1;
  const long long a = DividirAbajo(meses, 12);
  if (a < 1 || a > 10000) throw Error(DescripcionDeError(5), 5);
  return internal::Unir(internal::DiaDe(a, static_cast<int>(meses - a * 12) + 1, 1) + dia - 1, 0);
}

Fecha HoraDe(int hora, int minuto, int segundo) {
  const long long total = hora * 3600LL + minuto * 60LL + segundo;
  const long long dia = DividirAbajo(total, kSegundosDia);
  return internal::Unir(dia, FraccionDe(total - dia * kSegundosDia));
}

int DiaSemana(Fecha fecha) {
  const long long dia = internal::Separar(fecha).dia + 6;  // day 0 is a Saturday
  return static_cast<int>(dia - DividirAbajo(dia, 7) * 7) + 1;
}

namespace {

void AgregarNumero(std::string& texto, int numero, std::size_t cifras) {
  const std::string digitos = std::to_string(numero);
  if (digitos.size() < cifras) texto.append(cifras - digitos.size(), '0');
  texto += digitos;
}

}  // namespace

std::string TextoDeFecha(Fecha fecha, const Locale& locale) {
  const DiaSegundo ds = internal::Separar(fecha);
  std::string texto;
  if (ds.dia != 0) texto = FormatFecha(fecha, locale.fecha_corta, locale);
  if (ds.segundo == 0 && ds.dia != 0) return texto;
  if (!texto.empty()) texto += ' ';
  return texto += FormatFecha(fecha, locale.hora, locale);
}

std::string FechaMMddyyyy(Fecha fecha) {
  const PartesFecha p = Partes(fecha);
  std::string texto;
  AgregarNumero(texto, p.mes, 2);
  texto += '/';
  AgregarNumero(texto, p.dia, 2);
  texto += '/';
  AgregarNumero(texto, p.anio, 4);
  return texto;
}

std::string FechaIso(Fecha fecha) {
  const PartesFecha p = Partes(fecha);
  std::string texto;
  AgregarNumero(texto, p.anio, 4);
  texto += '-';
  AgregarNumero(texto, p.mes, 2);
  texto += '-';
  AgregarNumero(texto, p.dia, 2);
  if (p.hora == 0 && p.minuto == 0 && p.segundo == 0) return texto;
  texto += ' ';
  AgregarNumero(texto, p.hora, 2);
  texto += ':';
  AgregarNumero(texto, p.minuto, 2);
  texto += ':';
  AgregarNumero(texto, p.segundo, 2);
  return texto;
}

Fecha PrimerDiaDelMes(Fecha fecha) {
  const PartesFecha p = Partes(fecha);
  return FechaDe(p.anio, p.mes, 1);
}

Fecha LastDayOfMonth(Fecha fecha) {
  const PartesFecha p = Partes(fecha);
  return FechaDe(p.anio, p.mes, internal::DiasDelMes(p.anio, p.mes));
}

}  // namespace base
