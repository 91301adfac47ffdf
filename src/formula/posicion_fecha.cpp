#include "formula/user_tables.h"

namespace formula {

int PosicionFecha(const Vector& serie, base::Fecha fecha, std::size_t campo_fecha, base::Fecha hoy) {
  if (serie.dimensiones != 2 || serie.Cantidad() == 0) return -1;
  for (std::size_t i = serie.Cantidad(); i-- > 0;) {
    const auto desde = base::FechaDeTexto(serie.Campo(campo_fecha, i), hoy);
    if (desde.value_or(base::Fecha{}) <= fecha) return static_cast<int>(i);
  }
  return 0;  // all are later: the earliest answers for what came before it
}

}  // namespace formula
