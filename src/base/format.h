// Format(): named and user formats for numbers, dates and texts.
#pragma once

#include <string>
#include <string_view>

#include "base/locale.h"
#include "base/valor.h"

namespace base {

// The value by the mask, in the locale. Text that reads as a number or date is converted first for a number
// or date mask. An empty mask is CStr. `hoy` completes date texts without a year. Weeks as in DatePart.
std::string Format(const Valor& valor, std::string_view mascara, Fecha hoy,
                   const Locale& locale = Locale::espanol(), int primer_dia = 1, int primera_semana = 1);
std::string FormatFecha(Fecha fecha, std::string_view mascara, const Locale& locale = Locale::espanol());
std::string FormatNumero(double numero, std::string_view mascara, const Locale& locale = Locale::espanol());

}  // namespace base
