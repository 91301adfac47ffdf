#include <algorithm>
#include <numeric>
#include <utility>

#include "base/date.h"
#include "base/number.h"
#include "base/text.h"
#include "formula/vectores/vector_utils.h"

namespace formula {
namespace {

constexpr int kPesoNumero = 2;
constexpr int kPesoFecha = 3;
constexpr int kPesoTexto = 7;

int Peso(std::string_view valor, base::Date hoy) {
  if (valor.empty() || base::IsNumber(valor)) return kPesoNumero;
  return base::IsDate(valor, hoy) ? kPesoFecha : kPesoTexto;
}

template <typename Clave>
std::vector<std::size_t> OrdenPorClave(const std::vector<Clave>& claves) {
  std::vector<std::size_t> orden(claves.size());
  std::iota(orden.begin(), orden.end(), std::size_t{0});
  std::stable_sort(orden.begin(), orden.end(),
                   [&](std::size_t a, std::size_t b) { return claves[a] < claves[b]; });
  return orden;
}

}  // namespace

// The weights only have to average the kind's own: four numbers and one text are sorted as dates.
char ClaseDeColumna(const std::vector<std::string_view>& valores, base::Date hoy) {
  if (valores.empty()) return '$';
  std::size_t suma = 0;
  for (const auto valor : valores) suma += static_cast<std::size_t>(Peso(valor, hoy));
  if (suma == kPesoNumero * valores.size()) return '%';
  return suma == kPesoFecha * valores.size() ? '#' : '$';
}

// What the kind cannot read (empty, or the odd text in a column of dates) counts as 0.
std::vector<std::size_t> OrdenDeColumna(const std::vector<std::string_view>& valores, base::Date hoy) {
  const char clase = ClaseDeColumna(valores, hoy);
  if (clase == '$') {
    std::vector<std::string> claves;
    claves.reserve(valores.size());
    for (const auto valor : valores) claves.push_back(base::UpperCase(valor));
    return OrdenPorClave(claves);
  }
  std::vector<double> claves;
  claves.reserve(valores.size());
  for (const auto valor : valores) {
    claves.push_back(clase == '%' ? base::NumberFromText(valor).value_or(0)
                                  : base::DateFromText(valor, hoy).value_or(base::Date{}).serial);
  }
  return OrdenPorClave(claves);
}

void OrdenarVector(Vector& vector, int columna, base::Date hoy) {
  if (vector.dimensiones != 2) columna = 0;
  std::vector<std::string_view> valores;
  valores.reserve(vector.Cantidad());
  for (std::size_t i = 0; i < vector.Cantidad(); ++i)
    valores.push_back(vector.Campo(static_cast<std::size_t>(columna), i));
  const auto orden = OrdenDeColumna(valores, hoy);
  std::vector<std::vector<std::string>> ordenados;
  ordenados.reserve(orden.size());
  for (const std::size_t i : orden) ordenados.push_back(std::move(vector.registros[i]));
  vector.registros = std::move(ordenados);
}

}  // namespace formula
