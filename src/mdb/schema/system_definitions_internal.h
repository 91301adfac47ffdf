// The tables that every file holds: their columns, and the objects that are there from the start.
#pragma once

#include "mdb/definitions/definition.h"

namespace mdb {

// The objects that are no tables.
inline constexpr std::int32_t kRaizDeObjetos = 0x0F000000, kContenedorTablas = 0x0F000001,
                              kContenedorBases = 0x0F000002, kContenedorRelaciones = 0x0F000003,
                              kObjetoBase = 0x10000000;
inline constexpr std::uint32_t kBanderaDeSistema = 0x80000000;

// Definitions without pages, maps and roots.
Definicion TablaMSysObjects(std::uint16_t orden);
Definicion TablaMSysACEs(std::uint16_t orden);
Definicion TablaMSysQueries(std::uint16_t orden);
Definicion TablaMSysRelationships(std::uint16_t orden);

}  // namespace mdb
