#include "mdb/definitions/definition.h"

namespace mdb {

// All of it stands on the first page, whatever the length of the definition: 32 indexes end long before the
// page does.
void WriteCounters(PageFile& pages, const Definition& definition) {
  constexpr std::size_t kRows = 16, kLastAutoNumber = 20, kIndices = 63, kIndexCounters = 12, kDistinct = 4;
  if (pages.Header().Jet3()) throw base::Error("Los archivos de Access 97 solo se leen");
  Bytes& p = pages.Modify(definition.Page());
  if (U8(p, 0) != 2) ThrowPageDamage(definition.Page(), "no es la definición de una tabla");
  Put32(p, kRows, definition.rows);
  Put32(p, kLastAutoNumber, static_cast<std::uint32_t>(definition.last_auto_number));
  for (std::size_t i = 0; i < definition.reals.size(); ++i) {
    Put32(p, kIndices + i * kIndexCounters, definition.reals[i].entries);
    Put32(p, kIndices + i * kIndexCounters + kDistinct, definition.reals[i].distinct);
  }
}

}  // namespace mdb
