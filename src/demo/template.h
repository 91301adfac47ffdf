// The texts of the demo name days of a month that is chosen later.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"

namespace demo {

// Every placeholder replaced for the month of `mes`:
//   {MES} {MES+n} {MES-n}     the first day of the month, or of the month n months away, as #MM/dd/yyyy#
//   {MES:dd} {MES+n:dd} …     day dd of it (01 to 28); {MES:FIN} its last day
//   {ANIO} {ANIO+n} {ANIO-n}  the year
//   {MES_NOMBRE}              the month's Spanish name
// Anything else between braces throws base::Error.
std::string ExpandirPlantilla(std::string_view plantilla, base::Date mes);

// The statements of a text: each ends with ";" at the end of a line, which is dropped; lines that start with
// "--" are comments. A last statement without ";" throws base::Error.
std::vector<std::string> SepararSentencias(std::string_view sql);

}  // namespace demo
