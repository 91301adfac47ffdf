#include "mdb/tables/row_writer_internal.h"

namespace mdb::internal {

RowBytes RequireRow(PageFile& pages, const Definition& definition, RowId row) {
  auto bytes = FindRow(pages, definition, row);
  if (!bytes) throw base::StorageFault("La fila ya no está en la tabla '" + definition.name + "'", 3167);
  return std::move(*bytes);
}

RowWriter::RowWriter(PageFile& pages, const Definition& definition)
    : pages_(pages),
      definition_(definition),
      builder_(definition),
      store_(pages, definition.Page(), definition.owned_pages, definition.free_pages),
      bytes_(definition.columns.size()) {}

LongValues& RowWriter::LongsOf(std::size_t column) {
  auto& l = long_values_[column];
  if (!l) l = std::make_unique<LongValues>(pages_, definition_, definition_.columns[column]);
  return *l;
}

void RowWriter::PutValue(std::size_t column, const Datum& datum) {
  const Column& c = definition_.columns[column];
  Bytes& bytes = bytes_[column];
  bytes.clear();
  raw_values_[column].reset();
  if (IsNull(datum)) return;
  EncodeValue(definition_, c, datum, bytes);
  if (c.IsLong()) bytes = LongsOf(column).Store(bytes);
  raw_values_[column] = bytes;
}

// Long values that stand in the row leave it, the longest first, until the row has its place on a page.
void RowWriter::Shorten() {
  std::size_t length = builder_.Length(raw_values_);
  while (length > kLongestRow) {
    std::size_t which = raw_values_.size();
    for (std::size_t i = 0; i < raw_values_.size(); ++i)
      if (raw_values_[i] && definition_.columns[i].IsLong() && IsInline(*raw_values_[i]) &&
          (which == raw_values_.size() || raw_values_[i]->size() > raw_values_[which]->size()))
        which = i;
    if (which == raw_values_.size())
      throw base::Error("La fila es demasiado larga para la tabla '" + definition_.name + "': ocupa " +
                            std::to_string(length) + " bytes y caben " + std::to_string(kLongestRow),
                        3047);
    Bytes external = LongsOf(which).Store(raw_values_[which]->subspan(kLongField), false);
    bytes_[which] = std::move(external);
    raw_values_[which] = bytes_[which];
    length = builder_.Length(raw_values_);
  }
}

void RowWriter::Build() {
  Shorten();
  builder_.Build(raw_values_, row_);
}

RowId RowWriter::Insert(const Row& row) {
  raw_values_.assign(definition_.columns.size(), {});
  for (std::size_t i = 0; i < row.size(); ++i) PutValue(i, row[i]);
  Build();
  return store_.Add(row_);
}

void RowWriter::Change(const RowChange& change) {
  RowId place;
  {
    // The image must be gone before its page is written, or the page would be copied.
    const auto old = RequireRow(pages_, definition_, change.row);
    place = old.place;
    raw_values_ = SplitRow(pages_.Header(), definition_, old.bytes);
    for (const auto& [column, datum] : change.values) {
      if (definition_.columns[column].IsLong() && raw_values_[column])
        LongsOf(column).Release(*raw_values_[column]);
      PutValue(column, datum);
    }
    Build();
  }
  PutAt(change.row, place);
}

// The row goes home when it has room there, else it stays where it was moved to, else it moves on. Its
// identity always is its first slot, which then only says where the row is.
void RowWriter::PutAt(RowId row, RowId place) {
  const bool moved = place != row;
  if (store_.Change(row, row_)) {
    if (moved) store_.Remove(place);
    return;
  }
  if (moved && store_.Change(place, row_, Slot::kTarget)) return;
  const RowId fresh = store_.Add(row_, Slot::kTarget);
  if (!store_.Change(row, Pointer4(fresh), Slot::kMoved))
    throw base::StorageFault("Una fila de la tabla '" + definition_.name +
                             "' no cabe en su página: compacte la base");
  if (moved) store_.Remove(place);
}

void RowWriter::Delete(RowId row) {
  RowId place;
  {
    const auto old = RequireRow(pages_, definition_, row);
    place = old.place;
    const auto raw_values = SplitRow(pages_.Header(), definition_, old.bytes);
    for (std::size_t i = 0; i < raw_values.size(); ++i)
      if (definition_.columns[i].IsLong() && raw_values[i]) LongsOf(i).Release(*raw_values[i]);
  }
  if (place != row) store_.Remove(place);
  store_.Remove(row);
}

}  // namespace mdb::internal
