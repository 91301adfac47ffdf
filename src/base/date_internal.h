// Days and seconds of a serial.
#pragma once

#include "base/date.h"

namespace base::internal {

constexpr long long kDiaMinimo = -657434;  // 0100-01-01
constexpr long long kDiaMaximo = 2958465;  // 9999-12-31
constexpr long long kSegundosDia = 86400;

// A serial taken apart: the calendar day (0 = 1899-12-30) and the second of the day.
struct DiaSegundo {
  long long dia = 0;
  long long segundo = 0;
};
DiaSegundo Separar(Fecha fecha);
// Throws Error 5 out of range.
Fecha Unir(long long dia, double fraccion);

bool EsBisiesto(long long anio);
int DiasDelMes(long long anio, int mes);
long long DiaDe(long long anio, int mes, int dia);  // of an existing date
int AnioCompleto(int anio);                         // 0-29 are 20xx, 30-99 are 19xx

}  // namespace base::internal
