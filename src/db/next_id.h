// Identifiers of new rows.
#pragma once

#include <cstdint>
#include <string_view>

#include "db/connection.h"

namespace db {

// The largest `campo` of `tabla` ("select max(" + campo + ")as maxcod from " + tabla); the caller adds 1. Any
// error, an empty table among them, gives 0; only a fault of the storage travels on, since 1 may be taken.
std::int32_t NextId(Connection& conexion, std::string_view tabla, std::string_view campo);

}  // namespace db
