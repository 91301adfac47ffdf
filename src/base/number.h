// Numbers and their texts: one rule each. All arithmetic texts are ASCII inside UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/locale.h"

namespace base {

// *Number of a text*, the operator's rule: surrounding blanks, one sign in front or behind, digits. With a
// "," present
// "." are thousands and "," is the decimal point; without one a single "." is a decimal point, and several
// "." are thousands only in proper groups of three. "8,5" "8.5" "1.234,5" are 8.5, 8.5, 1234.5; "8.5.3" ""
// "-" are none. Exponents (1e3), the locale's currency sign, parentheses for a negative and &H/&O are read as
// CDbl reads them.
std::optional<double> NumeroDeTexto(std::string_view texto, const Locale& locale = Locale::espanol());
bool EsNumero(std::string_view texto, const Locale& locale = Locale::espanol());
// CDbl of a text: the same number; throws Error 13 for a text that is none and 6 for one too large.
double NumeroDeTextoOError(std::string_view texto, const Locale& locale = Locale::espanol());
// A text "&H…" or "&O…" as the signed integer of 16, 32 or 64 bits that CInt, CLng … make of it; none when
// the text is no such thing. Throws Error 6 when it needs more bits.
std::optional<std::int64_t> EnteroHexOctal(std::string_view texto, int bits);

// Leading-number parse (Val): never the locale, "." alone is the decimal point; 0 when the text starts with
// no number. Blanks, tabs and line ends are skipped everywhere. Throws Error 6 on overflow and 13 for a type
// sign after a fraction.
double Val(std::string_view texto);
// The *parse* of loading and formulas: the same, but a type sign only ends the number ("1.5%" is 1.5), so
// does a line end (what stands on two lines is never one number), and a number too large is 0.
double Parse(std::string_view texto);

// The numeric value of a quantity of the import: number of the text when it is one, else its parse.
double ValorNumerico(std::string_view texto);

// Shortest general form: at most 15 (Single: 7) significant digits, the locale's decimal sign, exponent form
// from 1E+15 (1E+07) up and for long fractions. Never "-0".
std::string TextoDeNumero(double numero, const Locale& locale = Locale::espanol());
std::string TextoDeSimple(float numero, const Locale& locale = Locale::espanol());
// The forms that are spliced into SQL: "." whatever the locale.
std::string SqlDeNumero(double numero);
std::string SqlDeSimple(float numero);
// A single as the shortest text of at most 7 significant digits reads it back: 0.1f -> 0.1.
double DobleDeSimple(float numero);

// Half to even at `decimales` places (0..22), on the decimal text of at most 15 digits.
double Redondear(double numero, int decimales);
// Half to even to a whole number (CInt, CLng, \ and Mod operands). Throws Error 6 outside 64 bits.
long long EnteroBancario(double numero);
// Half to even to 32 and 16 bits; throws Error 6 outside them.
int Entero32(double numero);
short Entero16(double numero);

}  // namespace base
