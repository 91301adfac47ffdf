#include <algorithm>

#include "mdb/schema/schema_internal.h"

namespace mdb {

void Database::CreateIndex(std::string_view table, const NewIndex& index) {
  internal::Attempt attempt(*pages_, catalog_);
  Definition d = internal::TableToChange(*pages_, catalog_, table);
  internal::AddIndex(*pages_, d, index);
  WriteDefinition(*pages_, d);
  attempt.Complete();
}

void Database::DropIndex(std::string_view table, std::string_view index) {
  internal::Attempt attempt(*pages_, catalog_);
  Definition d = internal::TableToChange(*pages_, catalog_, table);
  const auto it = internal::FindLogical(d, index);
  if (it == d.logicals.end())
    throw base::Error("La tabla '" + d.name + "' no tiene un índice '" + std::string(index) + "'");
  if (it->kind == LogicalIndex::Foreign)
    throw base::Error("El índice '" + it->name + "' es de una relación: se borra con ella");
  const std::uint32_t real = it->real;
  for (const auto& l : d.logicals)
    if (l.real == real && l.kind == LogicalIndex::Foreign && l.side == LogicalIndex::Parent)
      throw base::Error("El índice '" + it->name + "' no se puede borrar: una relación se apoya en él");
  d.logicals.erase(it);
  const bool shared = std::any_of(d.logicals.begin(), d.logicals.end(),
                                  [&](const LogicalIndex& l) { return l.real == real; });
  if (!shared) internal::RemoveReal(*pages_, d, real);
  WriteDefinition(*pages_, d);
  attempt.Complete();
}

}  // namespace mdb
