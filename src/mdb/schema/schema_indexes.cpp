#include <algorithm>

#include "mdb/indexes/index_key.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/pages/page_map.h"
#include "mdb/rows/table.h"
#include "mdb/schema/schema_internal.h"

namespace mdb::internal {
namespace {

constexpr std::size_t kIndexColumns = 10;

std::vector<std::size_t> PositionsOf(const Definition& d, const RealIndex& index) {
  std::vector<std::size_t> positions;
  for (const auto& part : index.parts) positions.push_back(d.ByNumber(part.column).value());
  return positions;
}

// The entries of all rows, sorted. Throws KeyError for what the index refuses.
std::vector<Entry> EntriesOf(PageFile& pages, const Definition& d, RealIndex& index,
                             const std::string& name) {
  std::vector<Entry> entries;
  WalkRows(
      pages, d,
      [&](RowId id, const Row& row) {
        if (index.IsRequired() && AnyNull(d, index, row))
          throw KeyError(
              "El índice '" + name + "' de la tabla '" + d.name + "' no admite nulos, y la tabla los tiene",
              3058, name);
        if (index.IgnoresNulls() && AllNull(d, index, row)) return true;
        Entry e;
        e.row = id;
        MakeRowKey(pages.Header(), d, index, row, e.key);
        entries.push_back(std::move(e));
        return true;
      },
      PositionsOf(d, index));
  std::sort(entries.begin(), entries.end());
  return entries;
}

// The key of a row that is Null in all columns of the index: the one key that may repeat in a unique one.
Bytes NullKey(const FileHeader& header, const Definition& d, const RealIndex& index) {
  Bytes key;
  const Row nulls(d.columns.size());
  if (AllNull(d, index, nulls)) MakeRowKey(header, d, index, nulls, key);
  return key;
}

void Count(const FileHeader& header, const Definition& d, RealIndex& index, const std::vector<Entry>& entries,
           const std::string& name) {
  const Bytes nulls = NullKey(header, d, index);
  index.entries = index.distinct = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (i == 0 || entries[i].key != entries[i - 1].key) {
      ++index.distinct;
    } else if (index.IsUnique() && entries[i].key != nulls) {
      throw KeyError(
          "El índice '" + name + "' de la tabla '" + d.name + "' no admite repetidos, y la tabla los tiene",
          3022, name);
    }
  }
}

}  // namespace

std::uint32_t AddReal(PageFile& pages, Definition& d, RealIndex index, const std::string& name) {
  if (const std::string reason = NoKeysReason(pages.Header(), d, index); !reason.empty())
    throw base::Error(reason);
  const auto entries = EntriesOf(pages, d, index, name);
  Count(pages.Header(), d, index, entries, name);
  index.map = CreateMap(pages);
  index.root = CreateRoot(pages, d.Page(), index.map);
  if (!entries.empty()) IndexTree(pages, d.Page(), index).Build(entries);
  d.reals.push_back(std::move(index));
  return static_cast<std::uint32_t>(d.reals.size() - 1);
}

void RemoveReal(PageFile& pages, Definition& d, std::uint32_t real) {
  const RealIndex& index = d.reals.at(real);
  IndexTree(pages, d.Page(), index).Clear();
  FreePage(pages, index.root);
  if (index.map.page != 0) DeleteMap(pages, index.map);
  d.reals.erase(d.reals.begin() + real);
  for (auto& l : d.logicals)
    if (l.real > real) --l.real;
}

void AddIndex(PageFile& pages, Definition& d, const NewIndex& fresh) {
  CheckName(fresh.name, "un índice");
  if (FindLogical(d, fresh.name) != d.logicals.end())
    throw base::Error("La tabla '" + d.name + "' ya tiene un índice '" + fresh.name + "'");
  if (fresh.primary && d.PrimaryKey() != nullptr)
    throw base::Error("La tabla '" + d.name + "' ya tiene una clave principal");
  if (fresh.parts.empty() || fresh.parts.size() > kIndexColumns)
    throw base::Error("El índice '" + fresh.name + "' debe tener de 1 a 10 columnas");
  if (d.logicals.size() >= Definition::kIndices)
    throw base::Error("La tabla '" + d.name + "' ya tiene 32 índices, los que puede tener");
  RealIndex real;
  for (const auto& part : fresh.parts) {
    const Column& column = d.columns[ColumnOf(d, part.column)];
    for (const auto& other : real.parts)
      if (other.column == column.number)
        throw base::Error("El índice '" + fresh.name + "' tiene dos veces la columna '" + column.name + "'");
    if (column.type == ColumnType::Ole)
      throw base::Error("La columna '" + column.name + "' no puede estar en un índice");
    real.parts.push_back({column.number, part.descending});
  }
  if (fresh.unique || fresh.primary) real.flags |= RealIndex::kUnique;
  if (fresh.required || fresh.primary) real.flags |= RealIndex::kRequired;
  if (fresh.ignores_nulls && !fresh.primary) real.flags |= RealIndex::kIgnoresNulls;
  LogicalIndex logical;
  logical.name = fresh.name;
  logical.number = FreeNumber(d);
  logical.kind = fresh.primary ? LogicalIndex::Primary : LogicalIndex::Normal;
  logical.real = AddReal(pages, d, std::move(real), fresh.name);
  InsertLogical(d, std::move(logical));
}

}  // namespace mdb::internal
