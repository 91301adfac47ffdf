// The tables that every file holds: their columns, and the objects that are there from the start.
#pragma once

#include "mdb/definitions/definition.h"

namespace mdb {

// The objects that are no tables.
inline constexpr std::int32_t kObjectsRoot = 0x0F000000, kTablesContainer = 0x0F000001,
                              kDatabasesContainer = 0x0F000002, kRelationshipsContainer = 0x0F000003,
                              kDatabaseObject = 0x10000000;
inline constexpr std::uint32_t kSystemFlag = 0x80000000;

// Definitions without pages, maps and roots.
Definition MSysObjectsTable(std::uint16_t order);
Definition MSysACEsTable(std::uint16_t order);
Definition MSysQueriesTable(std::uint16_t order);
Definition MSysRelationshipsTable(std::uint16_t order);

}  // namespace mdb
