// Properties that hold over many numbers and every day.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <random>

#include "base/date.h"
#include "base/error.h"
#include "base/number.h"

namespace {

using base::Fecha;
using base::Locale;

// Numbers of up to `cifras` digits, of both signs and many magnitudes.
double Azar(std::mt19937_64& azar, int cifras) {
  const auto tope = static_cast<long long>(std::pow(10.0, 1 + static_cast<double>(azar() % cifras)));
  const auto entero = static_cast<double>(static_cast<long long>(azar() % tope));
  const double escala = std::pow(10.0, static_cast<double>(azar() % 16));
  return (azar() % 2 == 0 ? entero : -entero) / escala;
}

TEST(Number, ATextOfFifteenDigitsReadsBack) {
  std::mt19937_64 azar(20260520);
  for (int i = 0; i < 200000; ++i) {
    const double n = Azar(azar, 15);
    const std::string texto = base::SqlDeNumero(n);
    ASSERT_EQ(std::stod(texto), n) << texto;
    // With a comma, or a single point, the operator's rule reads the same number.
    ASSERT_EQ(base::NumeroDeTexto(base::TextoDeNumero(n)), n) << texto;
    ASSERT_EQ(base::NumeroDeTexto(texto), n) << texto;
    ASSERT_EQ(base::NumeroDeTexto(base::TextoDeNumero(n, Locale::ingles()), Locale::ingles()), n) << texto;
    ASSERT_EQ(base::Val(texto), n) << texto;
  }
}

TEST(Number, ASingleOfSixDigitsShowsThem) {
  std::mt19937_64 azar(7);
  for (int i = 0; i < 100000; ++i) {
    const auto n = static_cast<float>(Azar(azar, 6));
    ASSERT_EQ(std::stof(base::SqlDeSimple(n)), n);
    ASSERT_EQ(static_cast<float>(base::DobleDeSimple(n)), n);
    ASSERT_EQ(base::SqlDeNumero(base::DobleDeSimple(n)), base::SqlDeSimple(n));
  }
}

TEST(Date, EveryDayOfTheCalendar) {
  using namespace std::chrono;
  const sys_days cero = year{1899} / December / 30;
  int antes = 0;
  for (int dia = -657434; dia <= 2958465; ++dia) {
    const base::PartesFecha p = base::Partes({static_cast<double>(dia)});
    const year_month_day ymd{cero + days{dia}};
    ASSERT_EQ(p.anio, static_cast<int>(ymd.year()));
    ASSERT_EQ(p.mes, static_cast<int>(static_cast<unsigned>(ymd.month())));
    ASSERT_EQ(p.dia, static_cast<int>(static_cast<unsigned>(ymd.day())));
    ASSERT_EQ(base::FechaDe(p.anio, p.mes, p.dia).serie, dia);
    const int semana = base::DiaSemana({static_cast<double>(dia)});
    ASSERT_EQ(semana, static_cast<int>(weekday{cero + days{dia}}.c_encoding()) + 1);
    if (dia > -657434) {
      ASSERT_EQ(semana, antes % 7 + 1);
    }
    antes = semana;
  }
}

TEST(Date, EverySecondOfADayBeforeAndAfterDayZero) {
  for (const int dia : {-3, 0, 43861}) {
    for (int s = 0; s < 86400; ++s) {
      const double f = s / 86400.0;
      const base::PartesFecha p = base::Partes({dia < 0 ? dia - f : dia + f});
      ASSERT_EQ(p.hora * 3600 + p.minuto * 60 + p.segundo, s);
      ASSERT_EQ(base::FechaDe(p.anio, p.mes, p.dia).serie, dia);
    }
  }
}

TEST(Date, TextsReadBack) {
  std::mt19937_64 azar(99);
  const Fecha hoy = base::FechaDe(2026, 5, 20);
  for (int i = 0; i < 50000; ++i) {
    const Fecha f{static_cast<double>(static_cast<long long>(azar() % 3615900) - 657434)};
    ASSERT_EQ(base::FechaDeLiteral(base::FechaMMddyyyy(f), hoy), f);
    ASSERT_EQ(base::FechaDeLiteral(base::FechaIso(f), hoy), f);
    if (f.serie == 0) continue;  // shows as a time alone
    ASSERT_EQ(base::FechaDeTexto(base::TextoDeFecha(f), hoy), f) << base::TextoDeFecha(f);
    ASSERT_EQ(base::FechaDeTexto(base::TextoDeFecha(f, Locale::ingles()), hoy, Locale::ingles()), f);
  }
}

}  // namespace
