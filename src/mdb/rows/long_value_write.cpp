#include <algorithm>

#include "mdb/pages/data_page_internal.h"
#include "mdb/pages/page_map.h"
#include "mdb/rows/long_value_write_internal.h"

namespace mdb::internal {
namespace {

Bytes Field(std::uint32_t word, RowId row) {
  Bytes field;
  Append32(field, word);
  AppendBytes(field, Pointer4(row));
  Append32(field, 0);
  return field;
}

}  // namespace

Bytes Pointer4(RowId row) {
  Bytes b;
  Append8(b, row.row);
  Append24(b, row.page);
  return b;
}

LongValues::LongValues(PageFile& pages, const Definition& definition, const Column& column)
    : pages_(pages),
      where_("la columna '" + column.name + "' de la tabla '" + definition.name + "'"),
      owned_pages_(column.lv_owned_pages),
      store_(pages, kLongValuesOwner, column.lv_owned_pages, column.lv_free_pages) {}

Bytes LongValues::Store(View value, bool can_be_inline) {
  const auto length = static_cast<std::uint32_t>(value.size());
  if (value.size() <= kInlineLength && can_be_inline) {
    Bytes field = Field(length | kInline, {});
    AppendBytes(field, value);
    return field;
  }
  if (value.size() > kMaxLength)
    throw base::Error("El valor es demasiado largo para " + where_ + ": el formato llega a 1 GB");
  if (owned_pages_.page == 0) throw base::Error("No hay dónde guardar valores largos de " + where_);
  if (value.size() <= kPieceLength) return Field(length | kInOneRow, store_.Add(value));
  // A chain, made from its end: each piece names the next. Only the last one may be short.
  const std::size_t per_piece = kPieceLength - 4;
  RowId next{};
  for (std::size_t end = value.size(); end > 0;) {
    const std::size_t from = (end - 1) / per_piece * per_piece;
    Bytes piece = Pointer4(next);
    AppendBytes(piece, value.subspan(from, end - from));
    next = store_.Add(piece);
    end = from;
  }
  return Field(length, next);
}

void LongValues::Release(View field) {
  if (field.size() < kLongField) return;
  const std::uint32_t word = U32(field, 0);
  if ((word & kInline) != 0) return;
  RowId piece = ReadPointer(field, 4);
  // No longer than its value, so that a damaged chain that comes back ends.
  for (std::size_t remaining = word & kMaxLength; piece.page != 0 && remaining > 0;) {
    if (!IsInMap(pages_, owned_pages_, piece.page)) return;
    RowId next{};
    std::size_t length = remaining;
    if ((word & kInOneRow) == 0) {
      const Image page = pages_.Read(piece.page);
      const auto r = ReadSlot(piece.page, *page, piece.row);
      if (r.length <= 4) ThrowPageDamage(piece.page, "un valor largo tiene una pieza vacía");
      next = ReadPointer(*page, r.from);
      length = std::min(remaining, r.length - 4);
    }
    store_.Remove(piece);
    remaining -= length;
    piece = next;
  }
}

}  // namespace mdb::internal
