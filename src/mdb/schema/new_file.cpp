#include "mdb/schema/new_file.h"

#include <algorithm>
#include <array>
#include <bit>

#include "base/sort_order.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/schema/schema_internal.h"
#include "mdb/schema/system_definitions_internal.h"

namespace mdb {
namespace {

// Who owns and may do what is told by SIDs of two bytes, stored XORed with a stream that each file derives
// from its header, in a way that we do not know. So every new file carries one header date and seal, and the
// first bytes of the stream that go with them; the objects carry the real date.
constexpr auto kHeaderDate = std::bit_cast<double>(std::uint64_t{0x40E4AB3E3BD3853E});  // 42329.9448…
constexpr std::uint32_t kStamp = 0x261C;
constexpr std::array<std::uint8_t, 2> kKeystream{0x67, 0x8A};

Bytes Sid(std::uint8_t a, std::uint8_t b) {
  return {static_cast<std::uint8_t>(a ^ kKeystream[0]), static_cast<std::uint8_t>(b ^ kKeystream[1])};
}
Bytes EngineSid() { return Sid(0x02, 0x03); }
Bytes AdministratorSid() { return Sid(0x03, 0x01); }
Bytes UsersSid() { return Sid(0x02, 0x01); }
Bytes CreatorSid() { return Sid(0x02, 0x04); }

constexpr PageNumber kGlobalMap = 1, kMaps = 6;
constexpr std::size_t kMapLength = 69;  // one byte of kind, the start page, 512 pages
constexpr PageNumber kMapPages = 512;

// A page of `count` empty maps.
void WriteMapsPage(PageFile& pages, PageNumber number, PageNumber owner, std::size_t count) {
  Bytes& p = pages.Modify(number);
  Put16(p, 0, 0x0101);
  Put16(p, 2, static_cast<std::uint16_t>(p.size() - 14 - count * (2 + kMapLength)));
  Put32(p, 4, owner);
  Put16(p, 12, static_cast<std::uint16_t>(count));
  for (std::size_t i = 0; i < count; ++i)
    Put16(p, 14 + 2 * i, static_cast<std::uint16_t>(p.size() - (i + 1) * kMapLength));
}

// Page 1: the map of free pages, which names those beyond the end too, and a second one, empty.
void WriteGlobalMap(PageFile& pages) {
  WriteMapsPage(pages, kGlobalMap, kGlobalMap, 2);
  Bytes& p = pages.Modify(kGlobalMap);
  const std::size_t bitmap = p.size() - kMapLength + 5;
  for (PageNumber free_page = pages.Count(); free_page < kMapPages; ++free_page)
    p[bitmap + free_page / 8] = static_cast<std::uint8_t>(p[bitmap + free_page / 8] | 1U << (free_page % 8));
}

// Gives each table its maps, row after row of the page of maps.
void AssignMaps(std::span<Definition> tables, std::uint8_t& count) {
  const auto map = [&] { return Pointer{kMaps, count++}; };
  for (auto& d : tables) {
    d.owned_pages = map();
    d.free_pages = map();
    std::vector<Column*> long_columns;
    for (auto& c : d.columns)
      if (c.IsLong()) long_columns.push_back(&c);
    std::sort(long_columns.begin(), long_columns.end(),
              [](auto* a, auto* b) { return a->number < b->number; });
    for (auto* c : long_columns) {
      c->lv_owned_pages = map();
      c->lv_free_pages = map();
    }
    for (auto& r : d.reals) r.map = map();
  }
}

Changes ObjectsOf(const Definition& table, base::Date now) {
  struct Object {
    std::int32_t id, parent;
    const char* name;
    std::int64_t type;
  };
  constexpr std::int64_t kContainer = 3, kBase = 2, kTable = 1;
  const Object objects[] = {{kTablesContainer, kObjectsRoot, "Tables", kContainer},
                            {kDatabasesContainer, kObjectsRoot, "Databases", kContainer},
                            {kRelationshipsContainer, kObjectsRoot, "Relationships", kContainer},
                            {kDatabaseObject, kDatabasesContainer, "MSysDb", kBase},
                            {2, kTablesContainer, "MSysObjects", kTable},
                            {3, kTablesContainer, "MSysACEs", kTable},
                            {4, kTablesContainer, "MSysQueries", kTable},
                            {5, kTablesContainer, "MSysRelationships", kTable}};
  Changes changes;
  for (const auto& o : objects)
    changes.inserted.push_back(internal::RowByName(table)
                                   .Set("Id", std::int64_t{o.id})
                                   .Set("ParentId", std::int64_t{o.parent})
                                   .Set("Name", std::string(o.name))
                                   .Set("Type", o.type)
                                   .Set("DateCreate", now)
                                   .Set("DateUpdate", now)
                                   .Set("Owner", o.id == kDatabaseObject ? AdministratorSid() : EngineSid())
                                   .Set("Flags", std::int64_t{static_cast<std::int32_t>(kSystemFlag)})
                                   .Take());
  return changes;
}

Changes PermissionsOf(const Definition& table) {
  Changes changes;
  const auto permission = [&](std::int32_t object, Bytes sid, std::int64_t mask, bool inheritable = false) {
    changes.inserted.push_back(internal::RowByName(table)
                                   .Set("ObjectId", std::int64_t{object})
                                   .Set("SID", std::move(sid))
                                   .Set("ACM", mask)
                                   .Set("FInheritable", inheritable)
                                   .Take());
  };
  for (const std::int32_t system_object : {2, 3, 4}) permission(system_object, AdministratorSid(), 0x60000);
  permission(5, AdministratorSid(), 0xE0000);
  for (const std::int32_t container : {kTablesContainer, kRelationshipsContainer}) {
    permission(container, CreatorSid(), 0xF00FE, true);
    permission(container, AdministratorSid(), 0x60001);
  }
  permission(kDatabasesContainer, AdministratorSid(), 0x60000);
  permission(kDatabaseObject, AdministratorSid(), 0x6000E);
  permission(kDatabaseObject, UsersSid(), 0x0E);
  for (const std::int32_t system_object : {4, 5, 2}) permission(system_object, UsersSid(), 0x14);
  permission(kTablesContainer, UsersSid(), 0xFFEFF, true);
  permission(kRelationshipsContainer, UsersSid(), 0xFFFFF, true);
  return changes;
}

}  // namespace

Bytes MakeDatabase(std::uint16_t order, base::Date now) {
  if (!base::OrderOfLanguage(order))
    throw base::Error("No se crean bases con el orden de texto " + std::to_string(order));
  FileHeader header;
  header.order = order;
  header.created = kHeaderDate;
  header.stamp = kStamp;
  MemoryPages pages(header, MakeHeader(header));
  while (pages.Count() <= kMaps) pages.Add();
  WriteGlobalMap(pages);

  std::array<Definition, 4> tables{MSysObjectsTable(order), MSysACEsTable(order), MSysQueriesTable(order),
                                   MSysRelationshipsTable(order)};
  const std::array<PageNumber, 4> where{header.objects, header.permissions, header.queries,
                                        header.relationships};
  std::uint8_t maps = 0;
  AssignMaps(tables, maps);
  WriteMapsPage(pages, kMaps, 0, maps);
  for (std::size_t i = 0; i < tables.size(); ++i) {
    tables[i].pages = {where[i]};
    for (auto& r : tables[i].reals) r.root = CreateRoot(pages, where[i], r.map);
    WriteDefinition(pages, tables[i]);
  }
  Apply(pages, tables[0], ObjectsOf(tables[0], now));
  Apply(pages, tables[1], PermissionsOf(tables[1]));
  pages.Commit();
  return pages.Stored();
}

}  // namespace mdb
