// The system tables behind the catalog.
#pragma once

#include <unordered_map>

#include "mdb/catalog.h"

namespace mdb::internal {

std::vector<Objeto> LeerObjetos(Paginas& paginas);
// In the order in which their first rows stand, columns in their order within each.
std::vector<RelacionDeTablas> LeerRelaciones(Paginas& paginas);
// By the query's identity in the catalog.
std::unordered_map<std::int32_t, std::vector<FilaDeConsulta>> LeerFilasDeConsultas(Paginas& paginas);

}  // namespace mdb::internal
