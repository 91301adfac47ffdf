// Properties that hold over many numbers and every day.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>

#include "base/date.h"
#include "base/dialect_number.h"
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
    ASSERT_EQ(base::DialectNumber(base::TextoDeNumero(n)), n) << texto;
    ASSERT_EQ(base::DialectNumber(texto), n) << texto;
    ASSERT_EQ(base::DialectNumber(base::TextoDeNumero(n, Locale::ingles()), Locale::ingles()), n) << texto;
    ASSERT_EQ(base::NumeroDeTexto(base::PlainNumber(n)), n) << texto;
    ASSERT_EQ(base::NumeroDeTexto(base::PlainNumber(n, ",")), n) << texto;
    ASSERT_EQ(base::NumeroDeTexto(base::PlainNumber(n), Locale::ingles()), n) << texto;
    ASSERT_EQ(base::Val(texto), n) << texto;
  }
}

TEST(Number, ASingleOfSixDigitsShowsThem) {
  std::mt19937_64 azar(7);
  for (int i = 0; i < 100000; ++i) {
    const auto n = static_cast<float>(Azar(azar, 6));
    ASSERT_EQ(std::stof(base::SqlDeSimple(n)), n);
    ASSERT_EQ(std::stof(base::PlainSingle(n)), n);
    ASSERT_EQ(base::PlainSingle(n).find('E'), std::string::npos);
    ASSERT_EQ(static_cast<float>(base::DobleDeSimple(n)), n);
    ASSERT_EQ(base::SqlDeNumero(base::DobleDeSimple(n)), base::SqlDeSimple(n));
  }
}

// The digits of a number of at most fifteen, without zeros at its end: [-]ddd[.ddd].
std::string Digitos(double n) {
  std::array<char, 64> espacio{};
  const int largo =
      std::snprintf(espacio.data(), espacio.size(), "%.*f",
                    n == 0 ? 0 : std::max(0, 14 - static_cast<int>(std::floor(std::log10(std::abs(n))))), n);
  std::string texto(espacio.data(), static_cast<std::size_t>(largo));
  if (texto.find('.') != std::string::npos) {
    texto.erase(texto.find_last_not_of('0') + 1);
    if (texto.back() == '.') texto.pop_back();
  }
  return texto == "-0" ? "0" : texto;
}

// Half to even, on the digits.
std::string RedondearDigitos(std::string texto, std::size_t decimales) {
  const bool negativo = texto[0] == '-';
  if (negativo) texto.erase(0, 1);
  const std::size_t punto = std::min(texto.find('.'), texto.size());
  std::string digitos = "0" + texto.substr(0, punto) + (punto < texto.size() ? texto.substr(punto + 1) : "");
  const std::size_t quedan = 1 + punto + decimales;
  if (quedan >= digitos.size()) return negativo ? "-" + texto : texto;
  const std::string sobra = digitos.substr(quedan);
  const bool mitad = sobra[0] == '5' && sobra.find_first_not_of('0', 1) == std::string::npos;
  digitos.resize(quedan);
  if (mitad ? (digitos.back() - '0') % 2 == 1 : sobra[0] >= '5') {
    std::size_t i = digitos.size() - 1;
    for (; digitos[i] == '9'; --i) digitos[i] = '0';
    ++digitos[i];
  }
  digitos.insert(1 + punto, ".");
  return negativo ? "-" + digitos : digitos;
}

TEST(Number, TextAndRoundingFollowTheDigits) {
  std::mt19937_64 azar(20240601);
  for (int i = 0; i < 200000; ++i) {
    const double n = Azar(azar, 13);
    const std::string digitos = Digitos(n);
    if (std::abs(n) >= 1e-4) {
      ASSERT_EQ(base::SqlDeNumero(n), digitos);
    }
    for (const int decimales : {0, 1, 2, 5, 7}) {
      const double redondeado = base::Redondear(n, decimales);
      ASSERT_EQ(redondeado, std::stod(RedondearDigitos(digitos, static_cast<std::size_t>(decimales))))
          << digitos << " at " << decimales;
      ASSERT_FALSE(std::signbit(redondeado) && redondeado == 0) << digitos;
    }
  }
  // A quotient keeps its own bits: it is no short decimal.
  EXPECT_EQ(base::SqlDeNumero(1.0 / 3), "0.333333333333333");
  EXPECT_EQ(base::SqlDeNumero(0.1 + 0.2), "0.3");
  EXPECT_EQ(base::SqlDeNumero(50.10000000000001), "50.1");
  EXPECT_EQ(base::Redondear(2.675, 2), 2.68);
  EXPECT_EQ(base::Redondear(0.125, 2), 0.12);
  EXPECT_EQ(base::Redondear(-0.375, 2), -0.38);
}

TEST(Number, PlainDigitsAreReadAlikeInEveryPlace) {
  std::mt19937_64 azar(99);
  for (int i = 0; i < 100000; ++i) {
    const double n = std::abs(Azar(azar, 12));
    const std::string digitos = Digitos(n);
    if (digitos.size() > 20) continue;
    std::string con_coma = digitos;
    if (const std::size_t punto = con_coma.find('.'); punto != std::string::npos) con_coma[punto] = ',';
    const double leido = std::stod(digitos);
    // With a blank or a sign the general way reads it.
    for (const std::string& t : {digitos, con_coma, " " + con_coma, "+" + digitos, "000" + con_coma}) {
      ASSERT_EQ(base::NumeroDeTexto(t), leido) << t;
      ASSERT_EQ(base::ValorNumerico(t), leido) << t;
    }
  }
  EXPECT_EQ(base::NumeroDeTexto("5,"), 5);
  EXPECT_EQ(base::NumeroDeTexto(",5"), 0.5);
  EXPECT_EQ(base::NumeroDeTexto("5."), 5);
  EXPECT_FALSE(base::NumeroDeTexto(",").has_value());
  EXPECT_FALSE(base::NumeroDeTexto(".").has_value());
  EXPECT_FALSE(base::NumeroDeTexto("1,2,3").has_value());
  EXPECT_EQ(base::NumeroDeTexto("1.234,5"), 1234.5);
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
