// DateAdd, DateDiff, DatePart.
#include <array>
#include <cmath>
#include <string_view>

#include "base/date.h"
#include "base/date_internal.h"
#include "base/error.h"
#include "base/number.h"
#include "base/text.h"

namespace base {
namespace {

using internal::DiaSegundo;
using internal::kSegundosDia;

enum class Intervalo { Anio, Trimestre, Mes, DiaDelAnio, Dia, DiaSemana, Semana, Hora, Minuto, Segundo };

Intervalo LeerIntervalo(std::string_view texto) {
  struct Nombre {
    std::string_view texto;
    Intervalo intervalo;
  };
  constexpr std::array<Nombre, 10> kNombres = {{{"yyyy", Intervalo::Anio},
                                                {"q", Intervalo::Trimestre},
                                                {"m", Intervalo::Mes},
                                                {"y", Intervalo::DiaDelAnio},
                                                {"d", Intervalo::Dia},
                                                {"w", Intervalo::DiaSemana},
                                                {"ww", Intervalo::Semana},
                                                {"h", Intervalo::Hora},
                                                {"n", Intervalo::Minuto},
                                                {"s", Intervalo::Segundo}}};
  for (const auto& n : kNombres)
    if (n.texto.size() == texto.size() && IgualSinCaso(n.texto, texto)) return n.intervalo;
  throw Error(DescripcionDeError(5), 5);
}

// Bounds that keep the sums of days and seconds inside 64 bits.
constexpr long long kCantidadMaxima = 400000000000LL;

// To the same day of another month, or to its last one.
Fecha SumarMeses(Fecha fecha, long long meses) {
  const PartesFecha p = Partes(fecha);
  const long long total = p.anio * 12LL + p.mes - 1 + meses;
  if (total < 100 * 12 || total >= 10000 * 12) throw Error(DescripcionDeError(5), 5);
  const long long anio = total / 12;
  const int mes = static_cast<int>(total % 12) + 1;
  const int ultimo = internal::DiasDelMes(anio, mes);
  const double fraccion = std::abs(fecha.serie - std::trunc(fecha.serie));
  const bool casi_medianoche =
      fraccion != 0 && internal::Separar(fecha).dia != static_cast<long long>(fecha.serie);
  return internal::Unir(internal::DiaDe(anio, mes, p.dia < ultimo ? p.dia : ultimo),
                        casi_medianoche ? 0 : fraccion);
}

Fecha SumarDias(Fecha fecha, long long dias) {
  const double entero = std::trunc(fecha.serie);
  return internal::Unir(static_cast<long long>(entero) + dias, std::abs(fecha.serie - entero));
}

Fecha SumarSegundos(Fecha fecha, long long segundos) {
  const DiaSegundo ds = internal::Separar(fecha);
  const long long total = ds.dia * kSegundosDia + ds.segundo + segundos;
  long long dia = total / kSegundosDia;
  if (total % kSegundosDia < 0) --dia;
  return internal::Unir(dia,
                        static_cast<double>(total - dia * kSegundosDia) / static_cast<double>(kSegundosDia));
}

// The day on which the week of `dia` began; `primer_dia` 0 is the system's, Monday.
long long InicioSemana(long long dia, int primer_dia) {
  const int primero = primer_dia == 0 ? 2 : primer_dia;
  if (primero < 1 || primero > 7) throw Error(DescripcionDeError(5), 5);
  const long long pasados = (DiaSemana({static_cast<double>(dia)}) - primero + 7) % 7;
  return dia - pasados;
}

// First day of week 1 of a year: the week of 1 January (1, and 0 the system's), the first one with four days
// of the year (2), the first whole one (3).
long long InicioPrimeraSemana(long long anio, int primer_dia, int primera_semana) {
  const long long enero1 = internal::DiaDe(anio, 1, 1);
  const long long inicio = InicioSemana(enero1, primer_dia);
  const long long fuera = enero1 - inicio;  // days of that week that belong to the year before
  switch (primera_semana) {
    case 0:
    case 1:
      return inicio;
    case 2:
      return fuera > 3 ? inicio + 7 : inicio;
    case 3:
      return fuera > 0 ? inicio + 7 : inicio;
    default:
      throw Error(DescripcionDeError(5), 5);
  }
}

int Semana(long long dia, int anio, int primer_dia, int primera_semana) {
  long long inicio = InicioPrimeraSemana(anio, primer_dia, primera_semana);
  if (dia < inicio) inicio = InicioPrimeraSemana(anio - 1, primer_dia, primera_semana);
  // The last days of December belong to week 1 of the next year only when weeks are not cut at the year.
  if (primera_semana > 1) {
    const long long siguiente = InicioPrimeraSemana(anio + 1, primer_dia, primera_semana);
    if (dia >= siguiente) inicio = siguiente;
  }
  return static_cast<int>((dia - inicio) / 7) + 1;
}

}  // namespace

Fecha DateAdd(std::string_view intervalo, double cantidad, Fecha fecha) {
  const Intervalo que = LeerIntervalo(intervalo);
  const long long n = EnteroBancario(cantidad);
  if (n > kCantidadMaxima || n < -kCantidadMaxima) throw Error(DescripcionDeError(5), 5);
  switch (que) {
    case Intervalo::Anio:
      return SumarMeses(fecha, n * 12);
    case Intervalo::Trimestre:
      return SumarMeses(fecha, n * 3);
    case Intervalo::Mes:
      return SumarMeses(fecha, n);
    case Intervalo::DiaDelAnio:
    case Intervalo::Dia:
    case Intervalo::DiaSemana:
      return SumarDias(fecha, n);
    case Intervalo::Semana:
      return SumarDias(fecha, n * 7);
    case Intervalo::Hora:
      return SumarSegundos(fecha, n * 3600);
    case Intervalo::Minuto:
      return SumarSegundos(fecha, n * 60);
    case Intervalo::Segundo:
      break;
  }
  return SumarSegundos(fecha, n);
}

long long DateDiff(std::string_view intervalo, Fecha desde, Fecha hasta, int primer_dia, int) {
  const Intervalo que = LeerIntervalo(intervalo);
  const PartesFecha a = Partes(desde), b = Partes(hasta);
  const DiaSegundo da = internal::Separar(desde), db = internal::Separar(hasta);
  const long long dias = db.dia - da.dia;
  const auto cruces = [&](long long segundos) {
    return (dias * kSegundosDia + db.segundo - db.segundo % segundos - (da.segundo - da.segundo % segundos)) /
           segundos;
  };
  switch (que) {
    case Intervalo::Anio:
      return b.anio - a.anio;
    case Intervalo::Trimestre:
      return (b.anio - a.anio) * 4LL + (b.mes - 1) / 3 - (a.mes - 1) / 3;
    case Intervalo::Mes:
      return (b.anio - a.anio) * 12LL + b.mes - a.mes;
    case Intervalo::DiaDelAnio:
    case Intervalo::Dia:
      return dias;
    case Intervalo::DiaSemana:
      return dias / 7;
    case Intervalo::Semana:
      return (InicioSemana(db.dia, primer_dia) - InicioSemana(da.dia, primer_dia)) / 7;
    case Intervalo::Hora:
      return cruces(3600);
    case Intervalo::Minuto:
      return cruces(60);
    case Intervalo::Segundo:
      break;
  }
  return cruces(1);
}

int DatePart(std::string_view intervalo, Fecha fecha, int primer_dia, int primera_semana) {
  const Intervalo que = LeerIntervalo(intervalo);
  const PartesFecha p = Partes(fecha);
  const long long dia = internal::Separar(fecha).dia;
  switch (que) {
    case Intervalo::Anio:
      return p.anio;
    case Intervalo::Trimestre:
      return (p.mes - 1) / 3 + 1;
    case Intervalo::Mes:
      return p.mes;
    case Intervalo::DiaDelAnio:
      return static_cast<int>(dia - internal::DiaDe(p.anio, 1, 1)) + 1;
    case Intervalo::Dia:
      return p.dia;
    case Intervalo::DiaSemana:
      return static_cast<int>(dia - InicioSemana(dia, primer_dia)) + 1;
    case Intervalo::Semana:
      return Semana(dia, p.anio, primer_dia, primera_semana);
    case Intervalo::Hora:
      return p.hora;
    case Intervalo::Minuto:
      return p.minuto;
    case Intervalo::Segundo:
      break;
  }
  return p.segundo;
}

}  // namespace base
