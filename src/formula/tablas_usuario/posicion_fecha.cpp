#include "formula/tablas_usuario/user_tables_internal.h"

namespace formula {

base::Date Hoy(const sesion::DbSession& sesion) {
  return sesion.reloj != nullptr ? sesion.reloj->Today() : base::Date{};
}

base::Date FechaDeCelda(const base::Value& celda, base::Date hoy) {
  switch (celda.type()) {
    case base::Type::Null:
      return {};
    case base::Type::Date:
      return *celda.GetIf<base::Date>();
    case base::Type::Text: {
      const auto fecha = base::DateFromText(*celda.GetIf<std::string>(), hoy);
      if (!fecha) throw db::Error("Un valor de la tabla de usuario no tiene una fecha válida");
      return *fecha;
    }
    default:
      return {celda.Number()};
  }
}

int PosicionFecha(const Vector& serie, base::Date fecha, std::size_t campo_fecha, base::Date hoy) {
  if (serie.dimensiones != 2 || serie.Cantidad() == 0) return -1;
  const auto rige = [&](std::size_t i) {
    return base::DateFromText(serie.Campo(campo_fecha, i), hoy).value_or(base::Date{}) <= fecha;
  };
  std::size_t i = serie.Cantidad() - 1;
  while (i > 0 && !rige(i)) --i;  // the earliest answers also for what came before it
  return static_cast<int>(i);
}

}  // namespace formula
