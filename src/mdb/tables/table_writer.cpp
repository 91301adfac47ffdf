#include "mdb/tables/table_writer.h"

#include <algorithm>

#include "mdb/indexes/index_key.h"
#include "mdb/tables/index_changes_internal.h"
#include "mdb/tables/row_writer_internal.h"

namespace mdb {
namespace {

using internal::IndexChanges;

bool IsWritten(const Column& c) {
  if ((c.extended_flags & Column::kCalculated) != 0) return false;  // one bit of the two: nobody knows what
  switch (c.type) {
    case ColumnType::Boolean:
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Currency:
    case ColumnType::Single:
    case ColumnType::Double:
    case ColumnType::Date:
    case ColumnType::Guid:
    case ColumnType::Decimal:
    case ColumnType::FixedBinary:
      return true;
    // Nobody has seen one of a fixed length, so how it is filled up is not known.
    case ColumnType::Binary:
    case ColumnType::Text:
    case ColumnType::Ole:
    case ColumnType::Memo:
      return !c.IsFixed();
    default:
      return false;
  }
}

void CheckShape(const Definition& d, const Changes& changes) {
  for (const auto& row : changes.inserted)
    if (row.size() != d.columns.size())
      throw base::Error("Una fila nueva de la tabla '" + d.name + "' no tiene todas sus columnas");
  std::vector<RowId> touched = changes.deleted;
  for (const auto& c : changes.changed) {
    touched.push_back(c.row);
    for (const auto& [column, datum] : c.values)
      if (column >= d.columns.size())
        throw base::Error("La tabla '" + d.name + "' no tiene la columna que se quiere cambiar");
  }
  std::sort(touched.begin(), touched.end());
  if (std::adjacent_find(touched.begin(), touched.end()) != touched.end())
    throw base::Error("Una fila de la tabla '" + d.name + "' se cambia dos veces a la vez");
}

// The stored values of the columns that indexes have; the others are Null.
void ReadColumns(PageFile& pages, const Definition& d, RowId id, const std::vector<std::size_t>& columns,
                 Row& row) {
  const auto bytes = internal::RequireRow(pages, d, id);
  const auto raw_values = SplitRow(pages.Header(), d, bytes.bytes);
  row.assign(d.columns.size(), base::Null{});
  for (const std::size_t c : columns)
    if (raw_values[c]) row[c] = Decode(pages, d.columns[c], *raw_values[c]);
}

void CollectIndexes(PageFile& pages, const Definition& d, const Changes& changes, IndexChanges& indexes) {
  Row before, after;
  for (const RowId id : changes.deleted) {
    ReadColumns(pages, d, id, indexes.Columns(), before);
    indexes.RowLeaves(id, before);
  }
  std::vector<bool> changed;
  for (const auto& change : changes.changed) {
    ReadColumns(pages, d, change.row, indexes.Columns(), before);
    after = before;
    changed.assign(d.columns.size(), false);
    for (const auto& [column, datum] : change.values) {
      after[column] = datum;
      changed[column] = true;
    }
    indexes.RowChanges(change.row, before, after, changed);
  }
  for (std::size_t i = 0; i < changes.inserted.size(); ++i) indexes.RowEnters(i, changes.inserted[i]);
}

void Count(Definition& d, const Changes& changes) {
  const std::size_t rows = d.rows + changes.inserted.size();
  // Files of other programs may say too few.
  d.rows = static_cast<std::uint32_t>(rows - std::min(rows, changes.deleted.size()));
  // The next number is one step on from the last, which goes down where the step does.
  const auto look = [&](std::size_t column, const Datum& datum) {
    const Column& c = d.columns[column];
    const auto* n = std::get_if<std::int64_t>(&datum);
    if (!c.IsAutoNumber() || c.type != ColumnType::Long || n == nullptr) return;
    if (d.increment < 0 ? *n < d.last_auto_number : *n > d.last_auto_number)
      d.last_auto_number = static_cast<std::int32_t>(*n);
  };
  for (const auto& row : changes.inserted)
    for (std::size_t i = 0; i < row.size(); ++i) look(i, row[i]);
  for (const auto& change : changes.changed)
    for (const auto& [column, datum] : change.values) look(column, datum);
}

}  // namespace

std::string NotWritableReason(const FileHeader& header, const Definition& definition) {
  const std::string table = "La tabla '" + definition.name + "' solo se lee: ";
  if (header.Jet3()) return table + "los archivos de Access 97 no se escriben";
  if (header.version != Version::Jet4) return table + "los archivos .accdb no se escriben";
  if (definition.owned_pages.page == 0) return table + "no tiene mapa de páginas";
  for (const auto& c : definition.columns) {
    if (c.IsCalculated()) return table + "la columna '" + c.name + "' es calculada";
    if (!IsWritten(c)) return table + "la columna '" + c.name + "' es de un tipo que no se escribe";
  }
  for (const auto& index : definition.reals)
    if (const std::string reason = NoKeysReason(header, definition, index); !reason.empty())
      return table + reason;
  return {};
}

std::vector<RowId> Apply(PageFile& pages, Definition& definition, const Changes& changes) {
  if (const std::string reason = NotWritableReason(pages.Header(), definition); !reason.empty())
    throw base::Error(reason);
  CheckShape(definition, changes);
  IndexChanges indexes(pages, definition);
  CollectIndexes(pages, definition, changes, indexes);
  indexes.RemoveAndCheck();
  std::vector<RowId> inserted;
  inserted.reserve(changes.inserted.size());
  {
    internal::RowWriter rows(pages, definition);
    for (const RowId id : changes.deleted) rows.Delete(id);
    for (const auto& change : changes.changed) rows.Change(change);
    for (const auto& row : changes.inserted) inserted.push_back(rows.Insert(row));
  }
  indexes.Put(inserted);
  Count(definition, changes);
  WriteCounters(pages, definition);
  return inserted;
}

}  // namespace mdb
