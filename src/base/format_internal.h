// The pieces of Format.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "base/locale.h"

namespace base::internal {

enum class ClaseMascara { Numero, Fecha, Texto };

// The mask behind a named format ("Short Date", "Fixed" …, any case); the same mask when it is no name.
// Names whose result is no mask (General Number, Currency, Yes/No …) are left alone.
std::string_view MascaraDeNombre(std::string_view mascara, const Locale& locale);

// By the first sign that means something outside literals.
ClaseMascara ClaseDe(std::string_view mascara);

// A literal at `i` ("\x" or a quoted run) is appended to `salida` and passed; false when there is none.
bool TomarLiteral(std::string_view mascara, std::size_t& i, std::string& salida);

// The sections parted by ";" outside literals.
std::vector<std::string_view> Secciones(std::string_view mascara);

std::string FormatearFecha(Fecha fecha, std::string_view mascara, const Locale& locale, int primer_dia,
                           int primera_semana);
std::string FormatearNumero(double numero, std::string_view mascara, const Locale& locale);
std::string FormatearTexto(std::string_view texto, std::string_view mascara);
// AM/PM, am/pm, A/P, a/p or AMPM at `i` of a date mask: its length, or 0.
std::size_t LargoFranja(std::string_view mascara, std::size_t i);

}  // namespace base::internal
