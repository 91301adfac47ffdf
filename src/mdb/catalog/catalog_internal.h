// The system tables behind the catalog.
#pragma once

#include <unordered_map>

#include "mdb/catalog/catalog.h"

namespace mdb::internal {

std::vector<Objeto> LeerObjetos(Paginas& paginas);
// `pagina` is that of the definition of the system table.
// In the order in which their first rows stand, columns in their order within each.
std::vector<RelacionDeTablas> LeerRelaciones(Paginas& paginas, NumPagina pagina);
// By the query's identity in the catalog.
std::unordered_map<std::int32_t, std::vector<FilaDeConsulta>> LeerFilasDeConsultas(Paginas& paginas,
                                                                                   NumPagina pagina);

}  // namespace mdb::internal
