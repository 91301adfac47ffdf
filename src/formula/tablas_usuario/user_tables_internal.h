// What reading and writing the user tables share.
#pragma once

#include "formula/tablas_usuario/user_tables.h"

namespace formula {

base::Date Hoy(const sesion::DbSession& sesion);

// The date of a cell: a date, its serial number, or a text that reads as one; Null is day 0. Throws db::Error
// for anything else, because a series is written back whole and would lose the date.
base::Date FechaDeCelda(const base::Value& celda, base::Date hoy);

}  // namespace formula
