// Taking a run back.
#pragma once

#include <string>
#include <vector>

#include "corridas/registro.h"

namespace corridas {

// A row of the run that stays as it is.
struct FilaConservada {
  std::string tabla, clave;                    // "id_Dato 12"
  std::int64_t id_Contrato = 0, concepto = 0;  // 0 where they are not known
  std::string motivo;
};

struct Anulada {
  std::vector<FilaConservada> conservadas;            // by table and key
  std::size_t deshechas = 0;                          // rows that are again as before the run
  std::vector<std::string> actualizaciones_fallidas;  // bulk updates; the rows stand
  bool recalculada = false;  // the month was changed since, and its updates ran again
};

// Inside a transaction of the caller: the rows that the run inserted go, those that it changed or deleted are
// as before, the headers that it made go when nothing stands in them. What belongs to one datum, instalment
// or series stays together: when a row of it was changed since, or its liquidation is finished, all of it
// stays. When nobody touched the month since, it is afterwards row by row what it was before the run; else
// the updates of the month run again. Throws base::Error when a row cannot be put back: nothing of the
// undoing may then stay.
Anulada DeshacerFilas(const sesion::DbSession& sesion, const Corrida& corrida);

}  // namespace corridas
