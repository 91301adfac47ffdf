#include "mdb/queries/saved_query.h"

#include "base/error.h"

namespace mdb {
namespace {

struct Kind {
  QueryKind kind;
  std::int16_t code;
  std::uint32_t flags;
};
constexpr Kind kKinds[] = {
    {QueryKind::Select, 1, 0},        {QueryKind::CreateTable, 2, 0x50}, {QueryKind::Append, 3, 0x40},
    {QueryKind::Update, 4, 0x30},     {QueryKind::Delete, 5, 0x20},      {QueryKind::Crosstab, 6, 0x10},
    {QueryKind::Definition, 7, 0x60}, {QueryKind::PassThrough, 8, 0x70}, {QueryKind::Union, 9, 0x80},
};

const Kind& Of(QueryKind kind) { return kKinds[static_cast<std::size_t>(kind)]; }

}  // namespace

std::int16_t CodeOf(QueryKind kind) { return Of(kind).code; }

std::uint32_t ObjectFlagsOf(QueryKind kind) { return Of(kind).flags; }

QueryKind KindOf(const SavedQuery& query) {
  for (const auto& f : query.rows) {
    if (f.attribute != query_codes::kKind || !f.flag) continue;
    for (const Kind& k : kKinds)
      if (k.code == *f.flag) return k.kind;
    throw base::Error("La consulta '" + query.name + "' es de una clase que no se conoce");
  }
  for (const Kind& k : kKinds)
    if (k.flags == (query.flags & kKindBits)) return k.kind;
  return QueryKind::Select;
}

}  // namespace mdb
