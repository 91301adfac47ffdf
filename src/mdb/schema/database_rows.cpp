#include "mdb/schema/database.h"

namespace mdb {

std::vector<RowId> Database::Apply(std::string_view table, const Changes& changes) {
  const auto known = catalog_.Table(table);
  if (!known) throw base::Error("No existe la tabla '" + std::string(table) + "'", 3078);
  // The catalog's definition is of when it was read: counters and maps have gone on since.
  Definition definition = ReadDefinition(*pages_, known->Page());
  definition.name = known->name;
  auto point = pages_->Save();
  try {
    return mdb::Apply(*pages_, definition, changes);
  } catch (const base::Error&) {
    pages_->RollbackTo(std::move(point));
    throw;
  }
}

}  // namespace mdb
