// The undoing of a run as a run of its own: one transaction, noted in the ledger.
#pragma once

#include <optional>

#include "corridas/deshacer.h"

namespace corridas {

struct Anulacion {
  Resumen corrida;           // the run that was to be undone
  std::uint32_t numero = 0;  // of the undoing; 0: every row stays, and nothing was noted
  Anulada anulada;
  std::string aviso;  // what could not be said in the ledger after the commit; "" for nothing
};

// Undoes the run of that number, or the last one that stands. `datos`: moment and users of the undoing.
// Throws base::Error with the reason when there is no such run, when it was undone, and when a step fails:
// then nothing has changed.
Anulacion Anular(const sesion::DbSession& sesion, const LugarDelRegistro& lugar,
                 std::optional<std::uint32_t> numero, Resumen datos);

}  // namespace corridas
