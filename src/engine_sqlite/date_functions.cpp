// The date functions of the dialect. Dates are day serials.
#include <cmath>

#include "base/date.h"
#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {
namespace {

// The fraction of a serial is a positive time of day, also below zero.
base::Fecha SoloDia(base::Fecha f) { return {std::trunc(f.serie)}; }
base::Fecha SoloHora(base::Fecha f) { return {std::abs(f.serie - std::trunc(f.serie))}; }

void Date(Llamada& l) { l.DarFecha(l.Hoy()); }
void Now(Llamada& l) { l.DarFecha(l.Ahora()); }
void Time(Llamada& l) { l.DarFecha(SoloHora(l.Ahora())); }

void Timer(Llamada& l) {
  constexpr double kSegundosDelDia = 86400;
  l.DarNumero(std::floor(SoloHora(l.Ahora()).serie * kSegundosDelDia * 100 + 0.5) / 100);
}

template <int base::PartesFecha::*kParte>
void Parte(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarEntero(base::Partes(l.Fecha(0)).*kParte);
}

void Weekday(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarEntero((base::DiaSemana(l.Fecha(0)) - l.PrimerDia(1) + 7) % 7 + 1);
}

// The interval of DateAdd and its kin, which may not be Null while the dates may.
std::string_view Intervalo(Llamada& l) {
  if (l.EsNulo(0)) LanzarNumero(kUsoDeNulo);
  return l.Texto(0);
}

void DateAdd(Llamada& l) {
  const std::string_view intervalo = Intervalo(l);
  const double cantidad = l.Numero(1);
  if (l.EsNulo(2)) return l.Nulo();
  l.DarFecha(base::DateAdd(intervalo, cantidad, l.Fecha(2)));
}

void DateDiff(Llamada& l) {
  const std::string_view intervalo = Intervalo(l);
  if (l.EsNulo(1) || l.EsNulo(2)) return l.Nulo();
  l.DarEntero(base::DateDiff(intervalo, l.Fecha(1), l.Fecha(2), l.PrimerDia(3), l.PrimeraSemana(4)));
}

void DatePart(Llamada& l) {
  const std::string_view intervalo = Intervalo(l);
  if (l.EsNulo(1)) return l.Nulo();
  l.DarEntero(base::DatePart(intervalo, l.Fecha(1), l.PrimerDia(2), l.PrimeraSemana(3)));
}

void DateSerial(Llamada& l) { l.DarFecha(base::FechaDe(l.Entero32(0), l.Entero32(1), l.Entero32(2))); }

void TimeSerial(Llamada& l) { l.DarFecha(base::HoraDe(l.Entero32(0), l.Entero32(1), l.Entero32(2))); }

void DateValue(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarFecha(SoloDia(l.Fecha(0)));
}

void TimeValue(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarFecha(SoloHora(l.Fecha(0)));
}

void MonthName(Llamada& l) {
  const std::int32_t mes = l.Entero32(0);
  if (mes < 1 || mes > 12) LanzarNumero(kLlamadaIncorrecta);
  const auto& nombres = l.Opcional(1, 0) != 0 ? l.Regional().meses_cortos : l.Regional().meses;
  l.DarTexto(nombres[mes - 1]);
}

void WeekdayName(Llamada& l) {
  const std::int32_t dia = l.Entero32(0);
  if (dia < 1 || dia > 7) LanzarNumero(kLlamadaIncorrecta);
  const auto& nombres = l.Opcional(1, 0) != 0 ? l.Regional().dias_cortos : l.Regional().dias;
  l.DarTexto(nombres[(dia - 1 + l.PrimerDia(2) - 1) % 7]);
}

using base::PartesFecha;

constexpr Implementacion kFunciones[] = {
    {"DATE", Date},
    {"DATEADD", DateAdd},
    {"DATEDIFF", DateDiff},
    {"DATEPART", DatePart},
    {"DATESERIAL", DateSerial},
    {"DATEVALUE", DateValue},
    {"DAY", Parte<&PartesFecha::dia>},
    {"HOUR", Parte<&PartesFecha::hora>},
    {"MINUTE", Parte<&PartesFecha::minuto>},
    {"MONTH", Parte<&PartesFecha::mes>},
    {"MONTHNAME", MonthName},
    {"NOW", Now},
    {"SECOND", Parte<&PartesFecha::segundo>},
    {"TIME", Time},
    {"TIMER", Timer},
    {"TIMESERIAL", TimeSerial},
    {"TIMEVALUE", TimeValue},
    {"WEEKDAY", Weekday},
    {"WEEKDAYNAME", WeekdayName},
    {"YEAR", Parte<&PartesFecha::anio>},
};

}  // namespace

std::span<const Implementacion> FuncionesDeFecha() { return kFunciones; }

}  // namespace engine_sqlite
