// Identifiers of new rows.
#pragma once

#include <cstdint>
#include <string_view>

#include "db/connection.h"

namespace db {

// The largest `field` of `table` ("select max(" + field + ")as maxcod from " + table); the caller adds 1. Any
// error, an empty table among them, gives 0; only a fault of the storage travels on, since 1 may be taken.
std::int32_t NextId(Connection& connection, std::string_view table, std::string_view field);

}  // namespace db
