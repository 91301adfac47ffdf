// The system tables behind the catalog.
#pragma once

#include <unordered_map>

#include "mdb/catalog/catalog.h"

namespace mdb::internal {

std::vector<Object> ReadObjects(PageFile& pages);
// `page` is that of the definition of the system table.
// In the order in which their first rows stand, columns in their order within each.
std::vector<TableRelationship> ReadRelationships(PageFile& pages, PageNumber page);
// By the query's identity in the catalog.
std::unordered_map<std::int32_t, std::vector<QueryRow>> ReadQueryRows(PageFile& pages, PageNumber page);

}  // namespace mdb::internal
