#include <cmath>

#include "base/text.h"
#include "formula/evaluador/evaluator_internal.h"

namespace formula {
namespace {

// The text as a date, else its value as one.
std::optional<base::Date> FechaOValor(Evaluador& ev, std::string_view x) {
  if (const auto fecha = Fecha(ev, x)) return fecha;
  return Fecha(ev, SinAlmohadillas(Evaluar(ev, x)));
}

// The day alone: a time of day does not round up to the next one.
std::string Serie(const Evaluador& ev, base::Date fecha) {
  return TextoDeNumero(ev, std::floor(fecha.serial));
}

}  // namespace

std::string FuncionHoy(Evaluador& ev, std::string_view) { return base::DateText(Hoy(ev), ev.locale); }

std::string FuncionCFecha(Evaluador& ev, std::string_view x) {
  const std::string_view texto = SinAlmohadillas(x);
  if (const auto fecha = Fecha(ev, texto)) return Serie(ev, *fecha);
  const std::string valor = Evaluar(ev, texto);
  const std::string_view limpio = SinAlmohadillas(valor);
  if (const auto fecha = Fecha(ev, limpio)) return Serie(ev, *fecha);
  return std::string(limpio);
}

std::string FuncionAnio(Evaluador& ev, std::string_view x) {
  const auto fecha = FechaOValor(ev, x);
  return fecha ? std::to_string(base::PartsOf(*fecha).year) : "0";
}

std::string FuncionMes(Evaluador& ev, std::string_view x) {
  const auto fecha = FechaOValor(ev, x);
  return fecha ? std::to_string(base::PartsOf(*fecha).month) : "0";
}

}  // namespace formula
