#include "corridas/restaurar_sql.h"

#include <array>
#include <charconv>
#include <cmath>

#include "base/error.h"
#include "base/text.h"

namespace corridas::sql {
namespace {

// The shortest text that reads back as the same number.
template <typename T>
std::string Exacto(T numero) {
  if (!std::isfinite(numero)) throw base::Error("Un número guardado no se puede escribir en la base");
  std::array<char, 64> texto{};
  const auto fin = std::to_chars(texto.data(), texto.data() + texto.size(), numero);
  return {texto.data(), fin.ptr};
}

std::string DeMoneda(base::Currency c) {
  const bool negativa = c.ten_thousandths < 0;
  const std::uint64_t n = negativa ? 0 - static_cast<std::uint64_t>(c.ten_thousandths)
                                   : static_cast<std::uint64_t>(c.ten_thousandths);
  std::string decimales = std::to_string(n % 10000);
  decimales.insert(0, 4 - decimales.size(), '0');
  return (negativa ? "-" : "") + std::to_string(n / 10000) + "." + decimales;
}

std::string DeFecha(base::Date fecha) {
  // A day needs no arithmetic; a time of day may be finer than the seconds of a literal.
  if (fecha.serial == std::floor(fecha.serial)) return "#" + base::DateMMddyyyy(fecha) + "#";
  return "CDate(" + Exacto(fecha.serial) + ")";
}

std::string Donde(const CambiosDeTabla& t, const Fila& fila) {
  std::string texto;
  for (const std::size_t i : t.clave) {
    texto += texto.empty() ? " Where " : " and ";
    texto += "[" + t.columnas[i] + "]" + (fila[i].IsNull() ? " Is Null" : "=" + Literal(fila[i]));
  }
  return texto;
}

}  // namespace

std::string Literal(const base::Value& v) {
  switch (v.type()) {
    case base::Type::Null:
      return "Null";
    case base::Type::Boolean:
      return *v.GetIf<bool>() ? "True" : "False";
    case base::Type::Integer:
      return std::to_string(*v.GetIf<std::int64_t>());
    case base::Type::Single:
      return Exacto(*v.GetIf<float>());
    case base::Type::Number:
      return Exacto(*v.GetIf<double>());
    case base::Type::Currency:
      return DeMoneda(*v.GetIf<base::Currency>());
    case base::Type::Date:
      return DeFecha(*v.GetIf<base::Date>());
    case base::Type::Text:
      break;
  }
  return "'" + base::EscapeQuotes(*v.GetIf<std::string>()) + "'";
}

std::string Borrar(const CambiosDeTabla& t, const Fila& fila) {
  return "Delete * From " + t.tabla + Donde(t, fila);
}

std::string Insertar(const CambiosDeTabla& t, const Fila& fila) {
  std::string columnas, valores;
  for (std::size_t i = 0; i < t.columnas.size(); ++i) {
    columnas += (i > 0 ? ",[" : "[") + t.columnas[i] + "]";
    valores += (i > 0 ? "," : "") + Literal(fila[i]);
  }
  return "Insert into " + t.tabla + " (" + columnas + ") Values(" + valores + ")";
}

std::string Actualizar(const CambiosDeTabla& t, const Fila& ahora, const Fila& debe) {
  std::string cambios;
  for (std::size_t i = 0; i < t.columnas.size(); ++i) {
    if (ahora[i] == debe[i]) continue;
    cambios += (cambios.empty() ? " Set [" : ",[") + t.columnas[i] + "]=" + Literal(debe[i]);
  }
  return "Update " + t.tabla + cambios + Donde(t, debe);
}

}  // namespace corridas::sql
