#include <algorithm>
#include <bit>

#include "mdb/pages/data_page_internal.h"
#include "mdb/pages/text.h"
#include "mdb/rows/row_internal.h"

namespace mdb {
namespace {

constexpr std::size_t kLongField = 12;
constexpr std::uint32_t kInline = 0x80000000, kInOneRow = 0x40000000, kLength = 0x3FFFFFFF;

// One row of a page of long values.
internal::Place ReadPiece(PageFile& pages, Pointer pointer) {
  std::uint32_t owner = 0;
  auto place = internal::Follow(pages, pointer, &owner);
  if (owner != internal::kLval || place.slot.flags != 0)
    ThrowPageDamage(pointer.page, "un valor largo lleva a una fila que no lo es");
  return place;
}

// Rows that each start with the pointer to the next. A chain that comes back ends at the value's length.
Bytes ReadChain(PageFile& pages, Pointer pointer, std::size_t length) {
  Bytes value;
  while (value.size() < length) {
    if (pointer.page == 0) ThrowFileDamage("un valor largo está incompleto");
    const auto piece = ReadPiece(pages, pointer);
    if (piece.slot.bytes.size() <= 4) ThrowPageDamage(pointer.page, "un valor largo tiene una pieza vacía");
    AppendBytes(value, piece.slot.bytes.subspan(4));
    pointer = internal::ReadPointer(piece.slot.bytes, 0);
  }
  value.resize(length);
  return value;
}

// Calls `use` with the value's bytes, which stay where they are as long as they stand in one piece.
template <typename Use>
void WithLongValue(PageFile& pages, View field, Use&& use) {
  const std::uint32_t word = U32(field, 0);
  const std::size_t length = word & kLength;
  if ((word & kInline) != 0) return use(Slice(field, kLongField, length));
  const Pointer pointer = internal::ReadPointer(field, 4);
  Slice(field, 8, 4);
  if (length == 0) return use(View());
  // No value is longer than its file: what a damaged length could make us allocate ends there.
  if (length > pages.Count() * pages.PageSize())
    ThrowFileDamage("un valor largo es más largo que el archivo");
  if ((word & kInOneRow) == 0) return use(View(ReadChain(pages, pointer, length)));
  const auto piece = ReadPiece(pages, pointer);
  internal::NamingPage(pointer.page, "un valor largo está incompleto",
                       [&] { Slice(piece.slot.bytes, 0, length); });
  use(piece.slot.bytes.first(length));
}

template <typename T>
T& Reuse(Datum& d) {
  if (auto* t = std::get_if<T>(&d)) return *t;
  return d.emplace<T>();
}

void PutBytesInto(View bytes, Datum& target) { Reuse<Bytes>(target).assign(bytes.begin(), bytes.end()); }

Guid ReadGuid(View v) {
  constexpr std::array<std::uint8_t, 16> kOrder = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  Guid g;
  Slice(v, 0, 16);
  for (std::size_t i = 0; i < 16; ++i) g.bytes[i] = v[kOrder[i]];
  return g;
}

Decimal ReadDecimal(View v, std::uint8_t scale) {
  Decimal d;
  d.negative = U8(v, 0) != 0;
  for (std::size_t i = 0; i < 4; ++i) d.magnitude[i] = U32(v, 1 + 4 * i);
  d.scale = scale;
  return d;
}

// A calculated column keeps its result with its length in front, behind 16 bytes of its own.
View Unwrap(View v) {
  const std::size_t length = U32(v, 16);
  return Slice(v, 20, length);
}

void ReadLong(PageFile& pages, const Column& column, View bytes, Datum& target) {
  WithLongValue(pages, bytes, [&](View value) {
    if (column.IsCalculated()) value = Unwrap(value);
    if (column.type == ColumnType::Memo) {
      internal::ReadText(pages.Header(), value, Reuse<std::string>(target));
    } else {
      PutBytesInto(value, target);
    }
  });
}

}  // namespace

namespace internal {

void DecodeInto(PageFile& pages, const Column& column, View bytes, Datum& target) {
  if (column.IsLong()) return ReadLong(pages, column, bytes, target);
  if (column.IsCalculated()) bytes = Unwrap(bytes);
  switch (column.type) {
    case ColumnType::Boolean:
      target = U8(bytes, 0) != 0;
      return;
    case ColumnType::Byte:
      target = std::int64_t{U8(bytes, 0)};
      return;
    case ColumnType::Integer:
      target = std::int64_t{I16(bytes, 0)};
      return;
    case ColumnType::Long:
    case ColumnType::Complex:
      target = std::int64_t{I32(bytes, 0)};
      return;
    case ColumnType::BigInteger:
      target = I64(bytes, 0);
      return;
    case ColumnType::Currency:
      target = base::Currency{I64(bytes, 0)};
      return;
    case ColumnType::Single:
      target = F32(bytes, 0);
      return;
    case ColumnType::Double:
      target = F64(bytes, 0);
      return;
    case ColumnType::Date:
      target = base::Date{F64(bytes, 0)};
      return;
    case ColumnType::Text:
      return ReadText(pages.Header(), bytes, Reuse<std::string>(target));
    case ColumnType::Guid:
      target = ReadGuid(bytes);
      return;
    case ColumnType::Decimal:
      target = ReadDecimal(bytes, column.scale);
      return;
    case ColumnType::ExtendedDate: {
      const auto end = std::find(bytes.begin(), bytes.end(), 0);
      Reuse<std::string>(target).assign(bytes.begin(), end);
      return;
    }
    default:  // Binary, and types that later versions may bring: their bytes
      PutBytesInto(bytes, target);
  }
}

}  // namespace internal

Datum Decode(PageFile& pages, const Column& column, View bytes) {
  Datum d;
  internal::DecodeInto(pages, column, bytes, d);
  return d;
}

}  // namespace mdb
