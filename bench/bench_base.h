// The payroll base and the file of hours that the benchmark works on.
#pragma once

#include <cstddef>
#include <string>

#include "base/date.h"
#include "db/connection.h"

namespace bench {

inline constexpr std::size_t kLineasPorContrato = 5;

// The demo base with `contratos` more contracts in force, of which every second one has its liquidation of
// the month open, and every tenth one overtime entered in it.
void LlenarBase(db::Connection& conexion, base::Fecha mes, std::size_t contratos);

// Five lines a contract (HC, HE, HN, HF, VI) by card, the contracts in no order, lines ended by CR LF.
std::string ArchivoDeHoras(std::size_t contratos);

}  // namespace bench
