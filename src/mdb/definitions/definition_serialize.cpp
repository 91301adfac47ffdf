#include "base/encoding.h"
#include "mdb/definitions/definition_internal.h"

namespace mdb {
namespace {

constexpr std::uint32_t kMark = 1625, kIndexMark = 1923;
constexpr std::size_t kParts = 10;  // columns of one index

void AppendPointer(Bytes& v, Pointer p) {
  Append8(v, p.row);
  Append24(v, p.page);
}

void AppendName(Bytes& v, const std::string& name) {
  const std::u16string text = base::ToUtf16(name);
  Append16(v, static_cast<std::uint16_t>(text.size() * 2));
  for (const char16_t u : text) Append16(v, static_cast<std::uint16_t>(u));
}

void AppendStart(Bytes& v, const Definition& d) {
  Append64(v, 0);  // the page's header
  Append32(v, 0);  // total length, known at the end
  Append32(v, kMark);
  Append32(v, d.rows);
  Append32(v, static_cast<std::uint32_t>(d.last_auto_number));
  Append32(v, static_cast<std::uint32_t>(d.increment));
  Append32(v, 0);  // last autonumber of a complex column, which Jet 4 does not have
  Append64(v, 0);
  Append8(v, d.kind);
  Append16(v, d.max_columns);
  Append16(v, d.variables);
  Append16(v, static_cast<std::uint16_t>(d.columns.size()));
  Append32(v, static_cast<std::uint32_t>(d.logicals.size()));
  Append32(v, static_cast<std::uint32_t>(d.reals.size()));
  AppendPointer(v, d.owned_pages);
  AppendPointer(v, d.free_pages);
  for (const auto& r : d.reals) {
    Append32(v, r.entries);
    Append32(v, r.distinct);
    Append32(v, 0);
  }
}

void AddColumn(Bytes& v, const Column& c) {
  Append8(v, static_cast<std::uint8_t>(c.type));
  Append32(v, kMark);
  Append16(v, c.number);
  Append16(v, c.variable);
  Append16(v, c.position);
  if (c.type == ColumnType::Decimal) {
    Append8(v, c.precision);
    Append8(v, c.scale);
  } else {
    Append16(v, c.lcid);
  }
  Append8(v, 0);
  Append8(v, c.order_version);
  Append8(v, c.flags);
  Append8(v, c.extended_flags);
  Append32(v, 0);
  Append16(v, c.offset);
  Append16(v, c.length);
}

void AppendReal(Bytes& v, const RealIndex& r) {
  if (r.parts.size() > kParts) throw base::Error("Un índice no puede tener más de 10 columnas");
  Append32(v, kIndexMark);
  for (std::size_t i = 0; i < kParts; ++i) {
    const bool found = i < r.parts.size();
    Append16(v, found ? r.parts[i].column : std::uint16_t{0xFFFF});
    Append8(v, found && !r.parts[i].descending ? 1 : 0);
  }
  AppendPointer(v, r.map);
  Append32(v, r.root);
  Append32(v, 0);
  Append8(v, r.flags);
  Append8(v, 0);
  Append32(v, 0);
}

void AppendLogical(Bytes& v, const LogicalIndex& l) {
  Append32(v, kMark);
  Append32(v, l.number);
  Append32(v, l.real);
  Append8(v, l.side);
  Append32(v, static_cast<std::uint32_t>(l.other_index));
  Append32(v, l.other_table);
  Append8(v, l.cascades_updates);
  Append8(v, l.cascades_deletes);
  Append8(v, l.kind);
  Append32(v, 0);
}

}  // namespace

Bytes SerializeDefinition(const Definition& d) {
  if (d.columns.size() > Definition::kColumns || d.max_columns > Definition::kColumns)
    throw base::Error("Una tabla no puede tener más de 255 columnas, contando las que tuvo antes");
  Bytes v;
  AppendStart(v, d);
  for (const auto& c : d.columns) AddColumn(v, c);
  for (const auto& c : d.columns) AppendName(v, c.name);
  for (const auto& r : d.reals) AppendReal(v, r);
  for (const auto& l : d.logicals) AppendLogical(v, l);
  for (const auto& l : d.logicals) AppendName(v, l.name);
  for (const auto& c : d.columns) {
    if (!c.IsLong()) continue;
    Append16(v, c.number);
    AppendPointer(v, c.lv_owned_pages);
    AppendPointer(v, c.lv_free_pages);
  }
  Append16(v, 0xFFFF);
  Put32(v, 8, static_cast<std::uint32_t>(v.size()));
  return v;
}

void PutDefinitionHeader(std::span<std::uint8_t> page, std::size_t used, PageNumber next) {
  Put16(page, 0, 0x0102);
  // Counted without 8 bytes that nothing seems to use; a page filled beyond them has none.
  const std::size_t full = page.size() - 8;
  Put16(page, 2, static_cast<std::uint16_t>(used < full ? full - used : 0));
  Put32(page, 4, next);
}

}  // namespace mdb
