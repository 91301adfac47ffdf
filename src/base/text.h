// Text primitives. Text is UTF-8; positions and lengths count characters (code points), never bytes, and
// start at 1 where they are positions. Malformed UTF-8 is passed through, a stray byte counting as one
// character.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace base {

inline constexpr std::string_view kCrLf = "\r\n";

// Case by character: ASCII, Latin-1, Latin Extended-A, Greek and Cyrillic letters with a one-to-one partner.
std::string Mayusculas(std::string_view texto);
std::string Minusculas(std::string_view texto);
bool IgualSinCaso(std::string_view a, std::string_view b);

// Blanks (U+0020) alone are cut; tabs and line ends stay.
std::string_view TrimVista(std::string_view texto);
std::string Trim(std::string_view texto);

std::size_t Longitud(std::string_view texto);
// At most `cantidad` characters from position `desde` (1-based); past the end gives "", never an error.
// desde < 1 counts as 1.
std::string Mid(std::string_view texto, std::ptrdiff_t desde, std::ptrdiff_t cantidad = -1);
std::string Left(std::string_view texto, std::ptrdiff_t cantidad);
std::string Right(std::string_view texto, std::ptrdiff_t cantidad);

enum class Comparar { Exacto, SinCaso };

// Byte offset of the first occurrence at or after byte `desde`, or npos. An empty needle is found at `desde`.
std::size_t Buscar(std::string_view texto, std::string_view aguja, std::size_t desde = 0,
                   Comparar modo = Comparar::Exacto);
bool Contiene(std::string_view texto, std::string_view aguja, Comparar modo = Comparar::Exacto);
// All occurrences, left to right, not overlapping; an empty `de` returns the text unchanged.
std::string Reemplazar(std::string_view texto, std::string_view de, std::string_view por,
                       Comparar modo = Comparar::Exacto);

// Empty pieces are kept, also at the end; an empty text gives one empty piece; an empty separator one piece.
std::vector<std::string> Split(std::string_view texto, std::string_view separador);
// The same as views into `texto`.
void SplitVistas(std::string_view texto, std::string_view separador, std::vector<std::string_view>& piezas);
// The lines of a text as views into it: CR LF, LF and CR each end one, whichever the text mixes; nothing else
// does. What follows the last end is a line too, empty or not, so that an empty text has one. Linear.
std::vector<std::string_view> SplitLines(std::string_view text);
std::vector<std::string_view> SplitLines(std::string&&) = delete;
// Split of classic Basic: an empty text gives no piece at all. At most `limite` pieces, the last one with all
// that is left; -1: any number, 0: none.
std::vector<std::string> Partir(std::string_view texto, std::string_view separador, int limite = -1,
                                Comparar modo = Comparar::Exacto);
std::string Join(const std::vector<std::string>& piezas, std::string_view separador);

bool EmpiezaCon(std::string_view texto, std::string_view prefijo, Comparar modo = Comparar::Exacto);
bool TerminaCon(std::string_view texto, std::string_view sufijo);

// For a text spliced between single quotes: every "'" doubled.
std::string DoblarComillas(std::string_view texto);

// Code points of a text and back; a stray byte b is U+DC00 + b on the way in and comes back as that byte.
std::u32string APuntos(std::string_view texto);
std::string DePuntos(std::u32string_view puntos);

}  // namespace base
