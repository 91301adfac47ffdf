// From what a driver says of a column, and from the texts it gives, to typed values.
#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

#include "base/number.h"
#include "base/text.h"
#include "engine_odbc/rows_internal.h"

namespace engine_odbc {
namespace {

constexpr int kDecimalesDeMoneda = 4;

bool EsCifra(char c) { return c >= '0' && c <= '9'; }

// Takes one more digit; false when it does not fit. The sum is kept negative: that side reaches one further.
bool Agregar(std::int64_t& suma, int cifra) {
  constexpr std::int64_t kMinimo = std::numeric_limits<std::int64_t>::min();
  if (suma < (kMinimo + cifra) / 10) return false;
  suma = suma * 10 - cifra;
  return true;
}

// "-12.5" in ten-thousandths, half to even; none when the text is something else or does not fit.
std::optional<std::int64_t> Diezmilesimas(std::string_view texto) {
  const bool negativo = !texto.empty() && texto[0] == '-';
  if (negativo || (!texto.empty() && texto[0] == '+')) texto.remove_prefix(1);
  std::int64_t suma = 0;
  int decimales = -1;  // -1: before the point
  int redondeo = 0;    // the first digit that is cut
  bool hay = false, resto = false;
  for (const char c : texto) {
    if ((c == '.' || c == ',') && decimales < 0) {
      decimales = 0;
      continue;
    }
    if (!EsCifra(c)) return std::nullopt;
    hay = true;
    if (decimales < kDecimalesDeMoneda) {
      if (!Agregar(suma, c - '0')) return std::nullopt;
      if (decimales >= 0) ++decimales;
    } else if (decimales++ == kDecimalesDeMoneda) {
      redondeo = c - '0';
    } else {
      resto = resto || c != '0';
    }
  }
  if (!hay) return std::nullopt;
  for (int d = std::max(decimales, 0); d < kDecimalesDeMoneda; ++d)
    if (!Agregar(suma, 0)) return std::nullopt;
  constexpr std::int64_t kMinimo = std::numeric_limits<std::int64_t>::min();
  const bool sube = redondeo > 5 || (redondeo == 5 && (resto || suma % 2 != 0));
  if (suma == kMinimo && (sube || !negativo)) return std::nullopt;
  if (sube) --suma;
  if (negativo) return suma;
  if (suma == kMinimo) return std::nullopt;
  return -suma;
}

std::optional<double> Doble(std::string_view texto) {
  if (!texto.empty() && texto[0] == '+') texto.remove_prefix(1);
  std::string con_punto(texto);
  if (con_punto.find('.') == std::string::npos)  // a driver that writes by the machine's settings
    if (const std::size_t coma = con_punto.find(','); coma != std::string::npos) con_punto[coma] = '.';
  double v = 0;
  const char* fin = con_punto.data() + con_punto.size();
  const auto r = std::from_chars(con_punto.data(), fin, v);
  if (r.ec != std::errc() || r.ptr != fin) return std::nullopt;
  return v;
}

std::optional<std::int64_t> Entero(std::string_view texto) {
  if (!texto.empty() && texto[0] == '+') texto.remove_prefix(1);
  std::int64_t v = 0;
  const char* fin = texto.data() + texto.size();
  const auto r = std::from_chars(texto.data(), fin, v);
  if (r.ec != std::errc() || r.ptr != fin) return std::nullopt;
  return v;
}

bool EsPalabra(std::string_view texto, std::initializer_list<std::string_view> palabras) {
  return std::any_of(palabras.begin(), palabras.end(),
                     [&](std::string_view p) { return base::IgualSinCaso(texto, p); });
}

}  // namespace

Lectura LecturaDe(SQLSMALLINT tipo_sql, std::string_view nombre_de_tipo, bool precision_fija) {
  switch (tipo_sql) {
    case SQL_BIT:
      return Lectura::Booleano;
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
      return Lectura::Entero;
    case SQL_REAL:
      return Lectura::Simple;
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return Lectura::Doble;
    case SQL_NUMERIC:
    case SQL_DECIMAL: {
      const bool moneda = precision_fija ||
                          base::Contiene(nombre_de_tipo, "CURRENCY", base::Comparar::SinCaso) ||
                          base::Contiene(nombre_de_tipo, "MONEY", base::Comparar::SinCaso);
      return moneda ? Lectura::Moneda : Lectura::Decimal;
    }
    case SQL_TYPE_TIMESTAMP:
    case SQL_TIMESTAMP:
      return Lectura::Momento;
    case SQL_TYPE_DATE:
    case SQL_DATETIME:  // SQL_DATE of ODBC 2
      return Lectura::Dia;
    case SQL_TYPE_TIME:
    case SQL_TIME:
      return Lectura::Hora;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      return Lectura::Binario;
    case SQL_GUID:
      return Lectura::Guid;
    default:
      return Lectura::Texto;
  }
}

base::Tipo TipoDe(Lectura lectura) {
  switch (lectura) {
    case Lectura::Booleano:
      return base::Tipo::Booleano;
    case Lectura::Entero:
      return base::Tipo::Entero;
    case Lectura::Simple:
      return base::Tipo::Simple;
    case Lectura::Doble:
    case Lectura::Decimal:
      return base::Tipo::Numero;
    case Lectura::Moneda:
      return base::Tipo::Moneda;
    case Lectura::Momento:
    case Lectura::Dia:
    case Lectura::Hora:
      return base::Tipo::Fecha;
    case Lectura::Texto:
    case Lectura::Guid:
    case Lectura::Binario:
      break;
  }
  return base::Tipo::Texto;
}

base::Valor ValorDeCifras(std::string_view texto, Lectura lectura) {
  const std::string_view limpio = base::TrimVista(texto);
  if (lectura == Lectura::Booleano) {
    if (const auto v = Doble(limpio)) return *v != 0;
    if (EsPalabra(limpio, {"true", "t", "yes", "y"})) return true;
    if (EsPalabra(limpio, {"false", "f", "no", "n"})) return false;
  } else if (lectura == Lectura::Entero) {
    if (const auto v = Entero(limpio)) return *v;
    if (const auto v = Doble(limpio)) return *v;
  } else {
    if (lectura == Lectura::Moneda)
      if (const auto v = Diezmilesimas(limpio)) return base::Moneda{*v};
    if (const auto v = Doble(limpio)) return *v;
  }
  return std::string(texto);
}

base::Fecha FechaDeMomento(const SQL_TIMESTAMP_STRUCT& m, std::string_view columna) {
  const bool en_calendario = m.year >= 100 && m.year <= 9999 && m.month >= 1 && m.month <= 12 && m.day >= 1 &&
                             m.day <= 31 && m.hour <= 23 && m.minute <= 59 && m.second <= 61;
  if (!en_calendario) throw db::Error("El campo " + std::string(columna) + " trae una fecha que no existe.");
  const double dia = base::FechaDe(m.year, m.month, m.day).serie;
  double hora = base::HoraDe(m.hour, m.minute, m.second).serie;
  if (m.fraction != 0) hora += static_cast<double>(m.fraction) / 1e9 / 86400.0;
  return {dia < 0 ? dia - hora : dia + hora};  // below zero the time is still counted away from zero
}

}  // namespace engine_odbc
