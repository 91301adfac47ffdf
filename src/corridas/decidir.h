// What became of a run that the ledger holds as pending: a crash came between its record and its mark.
#pragma once

#include "corridas/registro.h"

namespace corridas {

// Asked of the base: its rows are as after the run, or as before it, or tell neither. `ahora` was read inside
// a transaction, so that no other program is in the middle of that run.
EstadoCorrida Decidir(const Corrida& corrida, const Foto& ahora);

// Decides each pending run of the session's company and returns the runs as they are then. With `apunte` the
// outcome is written down. The caller holds a transaction. Throws base::Error.
std::vector<Resumen> DecidirPendientes(const sesion::DbSession& sesion, const LugarDelRegistro& lugar,
                                       Apunte* apunte);

}  // namespace corridas
