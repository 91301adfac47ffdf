#include <cmath>

#include "base/text.h"
#include "formula/evaluador/evaluator_internal.h"

namespace formula {
namespace {

// The text as a date, else its value as one.
std::optional<base::Fecha> FechaOValor(Evaluador& ev, std::string_view x) {
  if (const auto fecha = Fecha(ev, x)) return fecha;
  return Fecha(ev, SinAlmohadillas(Evaluar(ev, x)));
}

// The day alone: a time of day does not round up to the next one.
std::string Serie(const Evaluador& ev, base::Fecha fecha) {
  return TextoDeNumero(ev, std::floor(fecha.serie));
}

}  // namespace

std::string FuncionHoy(Evaluador& ev, std::string_view) { return base::TextoDeFecha(Hoy(ev), ev.locale); }

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
  return fecha ? std::to_string(base::Partes(*fecha).anio) : "0";
}

std::string FuncionMes(Evaluador& ev, std::string_view x) {
  const auto fecha = FechaOValor(ev, x);
  return fecha ? std::to_string(base::Partes(*fecha).mes) : "0";
}

}  // namespace formula
