// Dates as day serials: a double, 0 = 30 December 1899, the fraction is always a positive time of day even
// below zero. Range 0100-01-01 to 9999-12-31. Times are rounded to whole seconds when taken apart.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/locale.h"

namespace base {

struct Fecha {  // a serial with a type of its own, so that it is not taken for a quantity
  double serie = 0;
  auto operator<=>(const Fecha&) const = default;
};

struct PartesFecha {
  int anio, mes, dia, hora, minuto, segundo;
};

PartesFecha Partes(Fecha fecha);
// Carries over (month 13, day 0, hour 25); years 0-29 are 20xx, 30-99 are 19xx. Throws Error 5 out of range.
Fecha FechaDe(int anio, int mes, int dia);
Fecha HoraDe(int hora, int minuto, int segundo);
int DiaSemana(Fecha fecha);  // 1 = Sunday .. 7

// CDate / IsDate on text by the locale's order; `hoy` gives the year of a date without one. A plain number is
// no date for EsFecha, while FechaDeTexto reads it as a serial (CDate). None when unreadable.
std::optional<Fecha> FechaDeTexto(std::string_view texto, Fecha hoy,
                                  const Locale& locale = Locale::espanol());
bool EsFecha(std::string_view texto, Fecha hoy, const Locale& locale = Locale::espanol());
// The inside of a #…# literal: month/day/year whatever the locale, turned round only if impossible; ISO; with
// time.
std::optional<Fecha> FechaDeLiteral(std::string_view texto, Fecha hoy);

// Short date, then the time when it is not midnight; day 0 shows the time alone (CStr of a date).
std::string TextoDeFecha(Fecha fecha, const Locale& locale = Locale::espanol());
std::string FechaMMddyyyy(Fecha fecha);  // "MM/dd/yyyy", for literals
std::string FechaIso(Fecha fecha);       // AAAA-MM-DD, and " hh:mm:ss" when not midnight

// Intervals yyyy q m y d w ww h n s, any case. Throws Error 5 for another one or out of range.
Fecha DateAdd(std::string_view intervalo, double cantidad, Fecha fecha);
long long DateDiff(std::string_view intervalo, Fecha desde, Fecha hasta, int primer_dia = 1,
                   int primera_semana = 1);
int DatePart(std::string_view intervalo, Fecha fecha, int primer_dia = 1, int primera_semana = 1);

Fecha PrimerDiaDelMes(Fecha fecha);
// Last day of the month of the date: "MM/yyyy", one month on, one day back.
Fecha LastDayOfMonth(Fecha fecha);

}  // namespace base
