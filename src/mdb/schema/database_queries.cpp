#include <algorithm>
#include <array>

#include "mdb/schema/schema_internal.h"
#include "mdb/schema/system_definitions_internal.h"

namespace mdb {
namespace {

// A row each for the start and the end, and a counter of its own for each row within its attribute.
std::vector<QueryRow> CompleteRows(const SavedQuery& query) {
  std::vector<QueryRow> rows = query.rows;
  const auto ensure = [&](std::uint8_t attribute, std::optional<std::int16_t> flag) {
    if (std::any_of(rows.begin(), rows.end(), [&](const auto& f) { return f.attribute == attribute; }))
      return;
    QueryRow f;
    f.attribute = attribute;
    f.flag = flag;
    rows.push_back(std::move(f));
  };
  ensure(query_codes::kStart, std::int16_t{0});
  ensure(query_codes::kEnd, std::nullopt);
  std::array<std::uint32_t, 256> last{};
  for (const auto& f : rows) last[f.attribute] = std::max(last[f.attribute], f.order);
  for (auto& f : rows)
    if (f.order == 0) f.order = ++last[f.attribute];
  return rows;
}

// The counter as the table keeps it: four bytes, highest first.
Bytes StoredOrder(std::uint32_t order) {
  return {static_cast<std::uint8_t>(order >> 24), static_cast<std::uint8_t>(order >> 16),
          static_cast<std::uint8_t>(order >> 8), static_cast<std::uint8_t>(order)};
}

template <typename T, typename Value>
Datum DatumOf(const std::optional<Value>& value) {
  if (!value) return {};
  return T{*value};
}

void AddRows(PageFile& pages, std::int32_t id, const SavedQuery& query) {
  Definition d = internal::ReadSystemTable(pages, pages.Header().queries);
  Changes changes;
  for (const auto& f : CompleteRows(query))
    changes.inserted.push_back(internal::RowByName(d)
                                   .Set("ObjectId", std::int64_t{id})
                                   .Set("Attribute", std::int64_t{f.attribute})
                                   .Set("Order", StoredOrder(f.order))
                                   .Set("Name1", DatumOf<std::string>(f.name1))
                                   .Set("Name2", DatumOf<std::string>(f.name2))
                                   .Set("Expression", DatumOf<std::string>(f.expression))
                                   .Set("Flag", DatumOf<std::int64_t>(f.flag))
                                   .Set("LvExtra", DatumOf<std::int64_t>(f.extra))
                                   .Take());
  Apply(pages, d, changes);
}

}  // namespace

void Database::CreateQuery(const SavedQuery& query, base::Date now) {
  internal::CheckName(query.name, "una consulta");
  internal::CheckNameIsFree(catalog_, query.name);
  internal::Attempt attempt(*pages_, catalog_);
  internal::NewObject object;
  object.id = internal::FreeId(catalog_);
  object.parent = kTablesContainer;
  object.name = query.name;
  object.type = Object::Query;
  object.flags = (query.flags & ~kKindBits) | ObjectFlagsOf(KindOf(query));
  internal::AddObject(*pages_, catalog_, object, now);
  AddRows(*pages_, object.id, query);
  attempt.Complete();
}

void Database::DropQuery(std::string_view name) {
  const Object* object = catalog_.Find(name);
  if (object == nullptr || object->type != Object::Query)
    throw base::Error("La base no tiene una consulta '" + std::string(name) + "'");
  internal::Attempt attempt(*pages_, catalog_);
  internal::DeleteRowsWhere(*pages_, pages_->Header().queries, "ObjectId", std::int64_t{object->id});
  internal::RemoveObject(*pages_, *object);
  attempt.Complete();
}

}  // namespace mdb
