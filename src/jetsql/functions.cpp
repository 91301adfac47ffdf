#include "jetsql/functions.h"

#include <algorithm>
#include <array>
#include <string>

namespace jetsql {
namespace {

using enum base::Tipo;
constexpr ReglaTipo kFijo = ReglaTipo::Fijo;
constexpr bool kEtiquetada = true;
constexpr bool kLlana = false;
constexpr bool kCambia = false;  // not deterministic

// Sorted by name.
constexpr Funcion kFunciones[] = {
    {"ABS", 1, 1, ReglaTipo::DelPrimero, Nulo, kLlana},
    {"ASC", 1, 1, kFijo, Entero, kEtiquetada},
    {"ASCW", 1, 1, kFijo, Entero, kEtiquetada},
    {"ATN", 1, 1, kFijo, Numero, kLlana},
    {"CBOOL", 1, 1, kFijo, Booleano, kLlana},
    {"CBYTE", 1, 1, kFijo, Entero, kLlana},
    {"CCUR", 1, 1, kFijo, Moneda, kLlana},
    {"CDATE", 1, 1, kFijo, Fecha, kLlana},
    {"CDBL", 1, 1, kFijo, Numero, kEtiquetada},
    {"CDEC", 1, 1, kFijo, Numero, kLlana},
    {"CHR", 1, 1, kFijo, Texto, kLlana},
    {"CHRW", 1, 1, kFijo, Texto, kLlana},
    {"CINT", 1, 1, kFijo, Entero, kLlana},
    {"CLNG", 1, 1, kFijo, Entero, kLlana},
    {"COS", 1, 1, kFijo, Numero, kLlana},
    {"CSNG", 1, 1, kFijo, base::Tipo::Simple, kLlana},
    {"CSTR", 1, 1, kFijo, Texto, kEtiquetada},
    {"CURRENTUSER", 0, 0, kFijo, Texto, kLlana},
    {"CVAR", 1, 1, ReglaTipo::Comun, Nulo, kLlana},
    {"CVDATE", 1, 1, kFijo, Fecha, kLlana},
    {"DATE", 0, 0, kFijo, Fecha, kLlana, kCambia},
    {"DATEADD", 3, 3, kFijo, Fecha, kLlana},
    {"DATEDIFF", 3, 5, kFijo, Entero, kLlana},
    {"DATEPART", 2, 4, kFijo, Entero, kLlana},
    {"DATESERIAL", 3, 3, kFijo, Fecha, kLlana},
    {"DATEVALUE", 1, 1, kFijo, Fecha, kLlana},
    {"DAY", 1, 1, kFijo, Entero, kLlana},
    {"DDB", 4, 5, kFijo, Numero, kLlana},
    {"EXP", 1, 1, kFijo, Numero, kLlana},
    {"FIX", 1, 1, ReglaTipo::DelPrimero, Nulo, kLlana},
    {"FORMAT", 1, 4, kFijo, Texto, kEtiquetada},
    {"FORMATCURRENCY", 1, 5, kFijo, Texto, kEtiquetada},
    {"FORMATDATETIME", 1, 2, kFijo, Texto, kEtiquetada},
    {"FORMATNUMBER", 1, 5, kFijo, Texto, kEtiquetada},
    {"FORMATPERCENT", 1, 5, kFijo, Texto, kEtiquetada},
    {"FV", 3, 5, kFijo, Numero, kLlana},
    {"HEX", 1, 1, kFijo, Texto, kLlana},
    {"HOUR", 1, 1, kFijo, Entero, kLlana},
    {"INSTR", 2, 4, kFijo, Entero, kEtiquetada},
    {"INSTRREV", 2, 4, kFijo, Entero, kEtiquetada},
    {"INT", 1, 1, ReglaTipo::DelPrimero, Nulo, kLlana},
    {"IPMT", 4, 6, kFijo, Numero, kLlana},
    {"ISDATE", 1, 1, kFijo, Booleano, kEtiquetada},
    {"ISEMPTY", 1, 1, kFijo, Booleano, kLlana},
    {"ISERROR", 1, 1, kFijo, Booleano, kLlana},
    {"ISNUMERIC", 1, 1, kFijo, Booleano, kEtiquetada},
    {"LCASE", 1, 1, kFijo, Texto, kEtiquetada},
    {"LEFT", 2, 2, kFijo, Texto, kEtiquetada},
    {"LEN", 1, 1, kFijo, Entero, kEtiquetada},
    {"LOG", 1, 1, kFijo, Numero, kLlana},
    {"LTRIM", 1, 1, kFijo, Texto, kEtiquetada},
    {"MID", 2, 3, kFijo, Texto, kEtiquetada},
    {"MINUTE", 1, 1, kFijo, Entero, kLlana},
    {"MONTH", 1, 1, kFijo, Entero, kLlana},
    {"MONTHNAME", 1, 2, kFijo, Texto, kLlana},
    {"NOW", 0, 0, kFijo, Fecha, kLlana, kCambia},
    {"NPER", 3, 5, kFijo, Numero, kLlana},
    {"NZ", 1, 2, ReglaTipo::Comun, Nulo, kLlana},
    {"OCT", 1, 1, kFijo, Texto, kLlana},
    {"PARTITION", 4, 4, kFijo, Texto, kLlana},
    {"PMT", 3, 5, kFijo, Numero, kLlana},
    {"PPMT", 4, 6, kFijo, Numero, kLlana},
    {"PV", 3, 5, kFijo, Numero, kLlana},
    {"RATE", 3, 6, kFijo, Numero, kLlana},
    {"REPLACE", 3, 6, kFijo, Texto, kEtiquetada},
    {"RGB", 3, 3, kFijo, Entero, kLlana},
    {"RIGHT", 2, 2, kFijo, Texto, kEtiquetada},
    {"RND", 0, 1, kFijo, base::Tipo::Simple, kLlana, kCambia},
    {"ROUND", 1, 2, ReglaTipo::DelPrimero, Nulo, kLlana},
    {"RTRIM", 1, 1, kFijo, Texto, kEtiquetada},
    {"SECOND", 1, 1, kFijo, Entero, kLlana},
    {"SGN", 1, 1, kFijo, Entero, kLlana},
    {"SIN", 1, 1, kFijo, Numero, kLlana},
    {"SLN", 3, 3, kFijo, Numero, kLlana},
    {"SPACE", 1, 1, kFijo, Texto, kLlana},
    {"SQR", 1, 1, kFijo, Numero, kLlana},
    {"STR", 1, 1, kFijo, Texto, kEtiquetada},
    {"STRCOMP", 2, 3, kFijo, Entero, kEtiquetada},
    {"STRCONV", 2, 3, kFijo, Texto, kEtiquetada},
    {"STRING", 2, 2, kFijo, Texto, kLlana},
    {"STRREVERSE", 1, 1, kFijo, Texto, kEtiquetada},
    {"SYD", 4, 4, kFijo, Numero, kLlana},
    {"TAN", 1, 1, kFijo, Numero, kLlana},
    {"TIME", 0, 0, kFijo, Fecha, kLlana, kCambia},
    {"TIMER", 0, 0, kFijo, base::Tipo::Simple, kLlana, kCambia},
    {"TIMESERIAL", 3, 3, kFijo, Fecha, kLlana},
    {"TIMEVALUE", 1, 1, kFijo, Fecha, kLlana},
    {"TRIM", 1, 1, kFijo, Texto, kEtiquetada},
    {"TYPENAME", 1, 1, kFijo, Texto, kEtiquetada},
    {"UCASE", 1, 1, kFijo, Texto, kEtiquetada},
    {"VAL", 1, 1, kFijo, Numero, kEtiquetada},
    {"VARTYPE", 1, 1, kFijo, Entero, kEtiquetada},
    {"WEEKDAY", 1, 2, kFijo, Entero, kLlana},
    {"WEEKDAYNAME", 1, 3, kFijo, Texto, kLlana},
    {"YEAR", 1, 1, kFijo, Entero, kLlana},
};

constexpr bool PorNombre(const Funcion& a, const Funcion& b) { return a.nombre < b.nombre; }
static_assert(std::is_sorted(std::begin(kFunciones), std::end(kFunciones), PorNombre));

constexpr std::size_t kNombreMasLargo = 14;

}  // namespace

const Funcion* BuscarFuncion(std::string_view nombre) {
  if (!nombre.empty() && nombre.back() == '$') nombre.remove_suffix(1);
  if (nombre.empty() || nombre.size() > kNombreMasLargo) return nullptr;
  std::array<char, kNombreMasLargo> mayusculas{};
  std::transform(nombre.begin(), nombre.end(), mayusculas.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 0x20) : c; });
  const std::string_view buscado(mayusculas.data(), nombre.size());
  const auto* it = std::lower_bound(std::begin(kFunciones), std::end(kFunciones), buscado,
                                    [](const Funcion& f, std::string_view n) { return f.nombre < n; });
  return it != std::end(kFunciones) && it->nombre == buscado ? it : nullptr;
}

std::span<const Funcion> Funciones() { return kFunciones; }

}  // namespace jetsql
