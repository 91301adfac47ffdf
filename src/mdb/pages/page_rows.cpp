#include "mdb/pages/page_rows.h"

#include <cstring>

namespace mdb {
namespace {

constexpr std::size_t kFree = 2, kOwner = 4, kSlots = 12;
constexpr std::uint16_t kOffset = 0x1FFF;

std::size_t SlotPos(unsigned row) { return Slot::kFirst + 2 * std::size_t{row}; }

std::size_t StartOf(View p, unsigned row) { return U16(p, SlotPos(row)) & kOffset; }

// Where the last row begins; the page's end when there is none.
std::size_t Last(View p) {
  const unsigned n = SlotCount(p);
  return n == 0 ? p.size() : StartOf(p, n - 1);
}

void NoteGap(std::span<std::uint8_t> p) { Put16(p, kFree, static_cast<std::uint16_t>(Gap(p))); }

}  // namespace

void InitializeRowPage(std::span<std::uint8_t> page, std::uint32_t owner) {
  std::fill(page.begin(), page.end(), std::uint8_t{0});
  Put8(page, 0, 1);
  Put8(page, 1, 1);
  Put32(page, kOwner, owner);
  NoteGap(page);
}

void CheckRowPage(PageNumber number, View page) {
  if (U8(page, 0) != 1) ThrowPageDamage(number, "no es una página de filas");
  const unsigned n = SlotCount(page);
  const std::size_t end = SlotPos(n);
  if (end > page.size()) ThrowPageDamage(number, "la cantidad de filas no cabe en la página");
  std::size_t before = page.size();
  for (unsigned i = 0; i < n; ++i) {
    const std::size_t from = StartOf(page, i);
    if (from > before || from < end)
      ThrowPageDamage(number, "la fila " + std::to_string(i) + " está fuera de su lugar");
    before = from;
  }
}

unsigned SlotCount(View page) { return U16(page, kSlots); }

Slot ReadSlot(PageNumber number, View page, unsigned row) {
  if (U8(page, 0) != 1) ThrowPageDamage(number, "no es una página de filas");
  if (row >= SlotCount(page)) ThrowPageDamage(number, "no tiene la fila " + std::to_string(row));
  const std::size_t from = StartOf(page, row), to = row == 0 ? page.size() : StartOf(page, row - 1);
  if (from > to || from < SlotPos(row + 1) || to > page.size())
    ThrowPageDamage(number, "la fila " + std::to_string(row) + " está fuera de su lugar");
  return {from, to - from, static_cast<std::uint16_t>(U16(page, SlotPos(row)) & Slot::kMask)};
}

std::size_t Gap(View page) {
  const std::size_t end = SlotPos(SlotCount(page)), last = Last(page);
  return last > end ? last - end : 0;
}

bool RowFits(View page, std::size_t length) {
  return SlotCount(page) < Slot::kMax && Gap(page) >= length + 2;
}

bool HasNoRows(View page) {
  for (unsigned i = SlotCount(page); i-- > 0;)
    if ((U16(page, SlotPos(i)) & Slot::kMask) != Slot::kDeleted) return false;
  return true;
}

std::uint8_t AddRow(PageNumber number, std::span<std::uint8_t> page, View bytes, std::uint16_t marks) {
  if (!RowFits(page, bytes.size())) ThrowPageDamage(number, "no tiene lugar para una fila más");
  const unsigned n = SlotCount(page);
  const std::size_t from = Last(page) - bytes.size();
  PutBytes(page, from, bytes);
  Put16(page, SlotPos(n), static_cast<std::uint16_t>(from | marks));
  Put16(page, kSlots, static_cast<std::uint16_t>(n + 1));
  NoteGap(page);
  return static_cast<std::uint8_t>(n);
}

bool ChangeRow(PageNumber number, std::span<std::uint8_t> page, unsigned row, View bytes,
               std::uint16_t marks) {
  CheckRowPage(number, page);
  const Slot r = ReadSlot(number, page, row);
  if (bytes.size() > r.length && bytes.size() - r.length > Gap(page)) return false;
  const std::size_t to = r.from + r.length, last = Last(page), from = to - bytes.size();
  std::memmove(page.data() + last + from - r.from, page.data() + last, r.from - last);
  const unsigned n = SlotCount(page);
  for (unsigned i = row + 1; i < n; ++i) {
    const std::uint16_t v = U16(page, SlotPos(i));
    const std::size_t fresh = (v & kOffset) + from - r.from;
    Put16(page, SlotPos(i), static_cast<std::uint16_t>(fresh | (v & Slot::kMask)));
  }
  PutBytes(page, from, bytes);
  Put16(page, SlotPos(row), static_cast<std::uint16_t>(from | marks));
  NoteGap(page);
  return true;
}

void RemoveRow(PageNumber number, std::span<std::uint8_t> page, unsigned row) {
  ChangeRow(number, page, row, {}, Slot::kDeleted);
}

}  // namespace mdb
