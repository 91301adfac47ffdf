#include <algorithm>

#include "base/text.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/pages/data_page_internal.h"
#include "mdb/pages/page_map.h"
#include "mdb/rows/table.h"
#include "mdb/schema/schema_internal.h"
#include "mdb/schema/system_definitions_internal.h"

namespace mdb {
namespace {

// Frees the data pages that a map names. In a damaged file one may be another table's: then nothing goes.
void FreeMap(PageFile& pages, Pointer map, std::uint32_t owner) {
  for (const PageNumber p : ReadMap(pages, map)) {
    const Image image = pages.Read(p);
    if (U8(*image, 0) != internal::kDataPage || U32(*image, 4) != owner)
      ThrowPageDamage(p, "está en el mapa de una tabla y no es de ella");
    FreePage(pages, p);
  }
}

void FreeLongValues(PageFile& pages, const Column& column) {
  FreeMap(pages, column.lv_owned_pages, internal::kLval);
  for (const Pointer map : {column.lv_owned_pages, column.lv_free_pages})
    if (map.page != 0) DeleteMap(pages, map);
}

void FreeTable(PageFile& pages, Definition& d) {
  while (!d.reals.empty()) internal::RemoveReal(pages, d, static_cast<std::uint32_t>(d.reals.size() - 1));
  for (const auto& c : d.columns)
    if (c.IsLong()) FreeLongValues(pages, c);
  FreeMap(pages, d.owned_pages, d.Page());
  for (const Pointer map : {d.owned_pages, d.free_pages})
    if (map.page != 0) DeleteMap(pages, map);
  for (const PageNumber p : d.pages) FreePage(pages, p);
}

bool NamesTable(const TableRelationship& relationship, const std::string& table) {
  return base::EqualIgnoringCase(relationship.table, table) ||
         base::EqualIgnoringCase(relationship.referenced_table, table);
}

// An autonumber in a table with rows: each gets the next number, in the order of the pages.
void NumberRows(PageFile& pages, Definition& d, std::size_t column) {
  Changes changes;
  WalkRows(pages, d,
           [&](RowId id, const Row&) {
             d.last_auto_number = static_cast<std::int32_t>(static_cast<std::uint32_t>(d.last_auto_number) +
                                                            static_cast<std::uint32_t>(d.increment));
             RowChange change;
             change.row = id;
             change.values.emplace_back(column, std::int64_t{d.last_auto_number});
             changes.changed.push_back(std::move(change));
             return true;
           },
           {column});
  if (changes.changed.empty()) return;
  const std::int32_t last = d.last_auto_number;
  Apply(pages, d, changes);
  d.last_auto_number = last;  // with a step below 0 the last number is the smallest
  WriteCounters(pages, d);
}

// Rows from before a table had columns of variable length have no place for their count, and readers that
// know only the definition would look for it. Such rows are written anew.
void GiveVariablePart(PageFile& pages, Definition& d) {
  Changes changes;
  const std::size_t column = d.columns.size() - 1;
  WalkRows(pages, d,
           [&](RowId id, const Row&) {
             RowChange change;
             change.row = id;
             change.values.emplace_back(column, Datum());
             changes.changed.push_back(std::move(change));
             return true;
           },
           {column});
  if (!changes.changed.empty()) Apply(pages, d, changes);
}

void CheckNobodyUsesIt(const SystemCatalog& catalog, const Definition& d, const Column& column) {
  const std::string start = "La columna '" + column.name + "' no se puede quitar: la usa ";
  for (const auto& l : d.logicals)
    for (const auto& part : d.reals.at(l.real).parts)
      if (part.column == column.number && l.kind != LogicalIndex::Foreign)
        throw base::Error(start + "el índice '" + l.name + "'");
  const auto names_it = [&](const std::string& table, const std::vector<std::string>& columns) {
    return base::EqualIgnoringCase(table, d.name) &&
           std::any_of(columns.begin(), columns.end(),
                       [&](const auto& c) { return base::EqualIgnoringCase(c, column.name); });
  };
  for (const auto& r : catalog.Relationships())
    if (names_it(r.table, r.columns) || names_it(r.referenced_table, r.referenced_columns))
      throw base::Error(start + "la relación '" + r.name + "'");
  for (const auto& real : d.reals)  // of a relationship that the catalog no longer tells
    for (const auto& part : real.parts)
      if (part.column == column.number) throw base::Error(start + "un índice");
}

}  // namespace

void Database::CreateTable(const NewTable& table, base::Date now) {
  internal::CheckName(table.name, "una tabla");
  internal::CheckNameIsFree(catalog_, table.name);
  if (table.columns.empty()) throw base::Error("La tabla '" + table.name + "' no tiene columnas");
  internal::Attempt attempt(*pages_, catalog_);
  Definition d;
  d.name = table.name;
  d.pages = {ReservePage(*pages_)};
  d.owned_pages = CreateMap(*pages_);
  d.free_pages = CreateMap(*pages_);
  internal::NewObject object;
  for (const auto& c : table.columns) {
    internal::AddColumn(*pages_, d, c);
    internal::AddProperties(object.properties, c);
  }
  for (const auto& i : table.indexes) internal::AddIndex(*pages_, d, i);
  WriteDefinition(*pages_, d);
  object.id = static_cast<std::int32_t>(d.Page());
  object.parent = kTablesContainer;
  object.name = table.name;
  object.type = Object::Table;
  internal::AddObject(*pages_, catalog_, object, now);
  attempt.Complete();
}

void Database::DropTable(std::string_view table) {
  const Object* object = catalog_.Find(table);
  internal::Attempt attempt(*pages_, catalog_);
  if (object != nullptr && (object->type == Object::Linked || object->type == Object::LinkedOdbc)) {
    internal::RemoveObject(*pages_, *object);  // the link goes, the table that it names stays
    attempt.Complete();
    return;
  }
  Definition d = internal::TableToChange(*pages_, catalog_, table);
  for (const auto& r : catalog_.Relationships())
    if (r.IsEnforced() && NamesTable(r, d.name))
      throw base::Error("La tabla '" + d.name + "' no se puede borrar: está en la relación '" + r.name + "'");
  for (const auto& r : catalog_.Relationships())
    if (NamesTable(r, d.name)) internal::RemoveRelationship(*pages_, catalog_, r);
  FreeTable(*pages_, d);
  internal::RemoveObject(*pages_, *object);
  attempt.Complete();
}

void Database::AddColumn(std::string_view table, const NewColumn& column) {
  internal::Attempt attempt(*pages_, catalog_);
  Definition d = internal::TableToChange(*pages_, catalog_, table);
  if (column.auto_number && column.type == ColumnType::Guid && !ReadMap(*pages_, d.owned_pages).empty())
    throw base::Error("Una columna autonumérica de identificadores solo se agrega a una tabla nueva");
  const bool without_variables = d.variables == 0;
  internal::AddColumn(*pages_, d, column);
  WriteDefinition(*pages_, d);
  if (without_variables && d.variables != 0) GiveVariablePart(*pages_, d);
  if (column.auto_number && column.type == ColumnType::Long) NumberRows(*pages_, d, d.columns.size() - 1);
  Properties properties = catalog_.PropertiesOf(table);
  const std::size_t before = properties.size();
  internal::AddProperties(properties, column);
  if (properties.size() != before) internal::ChangeProperties(*pages_, *catalog_.Find(table), properties);
  attempt.Complete();
}

void Database::DropColumn(std::string_view table, std::string_view column) {
  internal::Attempt attempt(*pages_, catalog_);
  Definition d = internal::TableToChange(*pages_, catalog_, table);
  const std::size_t position = internal::ColumnOf(d, column);
  const Column removed = d.columns[position];
  if (d.columns.size() == 1)
    throw base::Error("La columna '" + removed.name + "' es la única de la tabla '" + d.name + "'");
  CheckNobodyUsesIt(catalog_, d, removed);
  if (removed.IsLong()) FreeLongValues(*pages_, removed);
  d.columns.erase(d.columns.begin() + static_cast<std::ptrdiff_t>(position));
  WriteDefinition(*pages_, d);
  Properties properties = catalog_.PropertiesOf(table);
  if (std::erase_if(properties,
                    [&](const auto& p) { return base::EqualIgnoringCase(p.first, removed.name); }) > 0)
    internal::ChangeProperties(*pages_, *catalog_.Find(table), properties);
  attempt.Complete();
}

}  // namespace mdb
