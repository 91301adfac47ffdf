#include <algorithm>
#include <set>

#include "mdb/rows/table.h"
#include "mdb/schema/schema_internal.h"
#include "mdb/schema/system_definitions_internal.h"

namespace mdb::internal {
namespace {

constexpr std::int64_t kAllAllowed = 0xFFFFF;

// The SID that owns what the file's user makes: that of the database's own object.
Datum OwnerDatum(PageFile& pages, const SystemCatalog& catalog, const Definition& objects) {
  for (const auto& o : catalog.Objects()) {
    if (o.id != kDatabaseObject) continue;
    const auto row = ReadRow(pages, objects, o.row);
    const auto position = objects.ByName("Owner");
    if (row && position) return (*row)[*position];
  }
  return {};
}

// Whoever has a row for the container, once each, in the order in which they stand.
std::vector<Datum> SidsOf(PageFile& pages, const Definition& permissions, std::int32_t container) {
  std::vector<Datum> sids;
  const auto object = permissions.ByName("ObjectId"), sid = permissions.ByName("SID");
  if (!object || !sid) return sids;
  WalkRows(pages, permissions,
           [&](RowId, const Row& row) {
             if (row[*object] == Datum(std::int64_t{container}) &&
                 std::find(sids.begin(), sids.end(), row[*sid]) == sids.end())
               sids.push_back(row[*sid]);
             return true;
           },
           {*object, *sid});
  return sids;
}

void AddPermissions(PageFile& pages, const NewObject& object) {
  Definition permissions = ReadSystemTable(pages, pages.Header().permissions);
  Changes changes;
  for (auto& sid : SidsOf(pages, permissions, object.parent))
    changes.inserted.push_back(RowByName(permissions)
                                   .Set("ObjectId", std::int64_t{object.id})
                                   .Set("SID", std::move(sid))
                                   .Set("ACM", kAllAllowed)
                                   .Set("FInheritable", false)
                                   .Take());
  Apply(pages, permissions, changes);
}

Datum PropertiesDatum(const Properties& properties) {
  if (properties.empty()) return {};
  return SerializeProperties(properties);
}

}  // namespace

Definition ReadSystemTable(PageFile& pages, PageNumber page) {
  const FileHeader& c = pages.Header();
  Definition d = ReadDefinition(pages, page);
  d.name = page == c.objects       ? "MSysObjects"
           : page == c.permissions ? "MSysACEs"
           : page == c.queries     ? "MSysQueries"
                                   : "MSysRelationships";
  return d;
}

RowByName& RowByName::Set(const char* column, Datum datum) {
  const auto position = definition_.ByName(column);
  if (!position)
    ThrowPageDamage(definition_.Page(), "la tabla de sistema no tiene la columna " + std::string(column));
  row_[*position] = std::move(datum);
  return *this;
}

std::int32_t FreeId(const SystemCatalog& catalog) {
  std::set<std::int32_t> taken;
  for (const auto& o : catalog.Objects())
    if (o.id < 0) taken.insert(o.id);
  std::int32_t id = INT32_MIN;
  while (taken.contains(id)) ++id;
  return id;
}

void AddObject(PageFile& pages, const SystemCatalog& catalog, const NewObject& object, base::Date now) {
  Definition objects = ReadSystemTable(pages, pages.Header().objects);
  Changes changes;
  changes.inserted.push_back(RowByName(objects)
                                 .Set("Id", std::int64_t{object.id})
                                 .Set("ParentId", std::int64_t{object.parent})
                                 .Set("Name", object.name)
                                 .Set("Type", std::int64_t{object.type})
                                 .Set("DateCreate", now)
                                 .Set("DateUpdate", now)
                                 .Set("Owner", OwnerDatum(pages, catalog, objects))
                                 .Set("Flags", std::int64_t{static_cast<std::int32_t>(object.flags)})
                                 .Set("LvProp", PropertiesDatum(object.properties))
                                 .Take());
  Apply(pages, objects, changes);
  AddPermissions(pages, object);
}

void RemoveObject(PageFile& pages, const Object& object) {
  Definition objects = ReadSystemTable(pages, pages.Header().objects);
  Changes changes;
  changes.deleted.push_back(object.row);
  Apply(pages, objects, changes);
  DeleteRowsWhere(pages, pages.Header().permissions, "ObjectId", std::int64_t{object.id});
}

void ChangeProperties(PageFile& pages, const Object& object, const Properties& properties) {
  Definition objects = ReadSystemTable(pages, pages.Header().objects);
  const auto position = objects.ByName("LvProp");
  if (!position) ThrowPageDamage(objects.Page(), "la tabla de sistema no tiene la columna LvProp");
  RowChange change;
  change.row = object.row;
  change.values.emplace_back(*position, PropertiesDatum(properties));
  Changes changes;
  changes.changed.push_back(std::move(change));
  Apply(pages, objects, changes);
}

void DeleteRowsWhere(PageFile& pages, PageNumber table, const char* column, const Datum& value) {
  Definition d = ReadSystemTable(pages, table);
  const auto position = d.ByName(column);
  if (!position) ThrowPageDamage(table, "la tabla de sistema no tiene la columna " + std::string(column));
  Changes changes;
  WalkRows(pages, d,
           [&](RowId id, const Row& row) {
             if (row[*position] == value) changes.deleted.push_back(id);
             return true;
           },
           {*position});
  if (!changes.deleted.empty()) Apply(pages, d, changes);
}

}  // namespace mdb::internal
