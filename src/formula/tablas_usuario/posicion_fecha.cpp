#include "formula/tablas_usuario/user_tables_internal.h"

namespace formula {

base::Fecha Hoy(const sesion::DbSession& sesion) {
  return sesion.reloj != nullptr ? sesion.reloj->Hoy() : base::Fecha{};
}

base::Fecha FechaDeCelda(const base::Valor& celda, base::Fecha hoy) {
  switch (celda.tipo()) {
    case base::Tipo::Nulo:
      return {};
    case base::Tipo::Fecha:
      return *celda.Si<base::Fecha>();
    case base::Tipo::Texto: {
      const auto fecha = base::FechaDeTexto(*celda.Si<std::string>(), hoy);
      if (!fecha) throw db::Error("Un valor de la tabla de usuario no tiene una fecha válida");
      return *fecha;
    }
    default:
      return {celda.Numero()};
  }
}

int PosicionFecha(const Vector& serie, base::Fecha fecha, std::size_t campo_fecha, base::Fecha hoy) {
  if (serie.dimensiones != 2 || serie.Cantidad() == 0) return -1;
  const auto rige = [&](std::size_t i) {
    return base::FechaDeTexto(serie.Campo(campo_fecha, i), hoy).value_or(base::Fecha{}) <= fecha;
  };
  std::size_t i = serie.Cantidad() - 1;
  while (i > 0 && !rige(i)) --i;  // the earliest answers also for what came before it
  return static_cast<int>(i);
}

}  // namespace formula
