#include <algorithm>

#include "mdb/pages/page_map.h"
#include "mdb/rows/row_store_internal.h"

namespace mdb::internal {
namespace {

// Bytes left with which a page leaves the map at once, with which it leaves when a row found no room on it,
// and with which it comes back.
constexpr std::size_t kFull = 64, kNearlyFull = 200, kWithRoom = 200;
constexpr std::size_t kOpen = 8;      // pages in hand
constexpr std::size_t kAttempts = 4;  // pages of the map looked at for one row

}  // namespace

Bytes& RowStore::Open(PageNumber number) {
  Bytes& page = pages_.Modify(number);
  if (U8(page, 0) != 1 || OwnerOf(page) != owner_)
    ThrowPageDamage(number, "no es de las filas que dice el mapa de páginas");
  return page;
}

RowId RowStore::Add(View bytes, std::uint16_t marks) {
  const PageNumber number = Choose(bytes.size());
  Bytes& page = Open(number);
  const RowId row{number, AddRow(number, page, bytes, marks)};
  Note(number, page);
  return row;
}

bool RowStore::Change(RowId row, View bytes, std::uint16_t marks) {
  Bytes& page = Open(row.page);
  if (!ChangeRow(row.page, page, row.row, bytes, marks)) return false;
  Note(row.page, page);
  return true;
}

void RowStore::Remove(RowId row) {
  Bytes& page = Open(row.page);
  if (ReadSlot(row.page, page, row.row).IsDeleted())
    ThrowPageDamage(row.page, "la fila " + std::to_string(row.row) + " ya estaba borrada");
  RemoveRow(row.page, page, row.row);
  if (HasNoRows(page)) return Release(row.page);
  Note(row.page, page);
}

PageNumber RowStore::Choose(std::size_t length) {
  for (auto a = open_.rbegin(); a != open_.rend(); ++a)
    if (a->gap >= length + 2) return a->number;
  if (const PageNumber p = FindPending(length); p != 0) return p;
  return NewPage();
}

// Looks at a few pages of the map, the newest first; those without room for the row are kept in hand for
// shorter ones, or leave the map when hardly any row would find room there.
PageNumber RowStore::FindPending(std::size_t length) {
  if (!loaded_) pending_ = ReadMap(pages_, free_pages_);
  loaded_ = true;
  for (std::size_t i = 0; i < kAttempts && !pending_.empty(); ++i) {
    const PageNumber number = pending_.back();
    pending_.pop_back();
    if (released_.contains(number)) continue;
    const Image page = pages_.Read(number);
    CheckRowPage(number, *page);
    if (OwnerOf(*page) != owner_) ThrowPageDamage(number, "es de otra tabla");
    const bool fits = RowFits(*page, length);
    if (!fits && (Gap(*page) < kNearlyFull || !RowFits(*page, 0))) {
      RemoveFromMap(pages_, free_pages_, number);
      continue;
    }
    Note(number, *page);
    if (fits) return number;
  }
  return 0;
}

PageNumber RowStore::NewPage() {
  const PageNumber number = ReservePage(pages_);
  InitializeRowPage(pages_.Modify(number), owner_);
  AddToMap(pages_, owned_pages_, number);
  released_.erase(number);
  return number;
}

// Brings the map of pages with room, and the pages in hand, up to what the page has now.
void RowStore::Note(PageNumber number, View page) {
  const std::size_t gap = Gap(page);
  const auto in_hand =
      std::find_if(open_.begin(), open_.end(), [&](const OpenPage& a) { return a.number == number; });
  if (gap < kFull || !RowFits(page, 0)) {
    Close(number);
    if (free_pages_.page != 0 && IsInMap(pages_, free_pages_, number))
      RemoveFromMap(pages_, free_pages_, number);
    return;
  }
  if (in_hand != open_.end()) {
    in_hand->gap = gap;
    return;
  }
  const bool in_map = free_pages_.page != 0 && IsInMap(pages_, free_pages_, number);
  if (!in_map && gap < kWithRoom) return;
  if (!in_map && free_pages_.page != 0) AddToMap(pages_, free_pages_, number);
  if (open_.size() == kOpen) {
    if (open_.front().gap < kNearlyFull) RemoveFromMap(pages_, free_pages_, open_.front().number);
    open_.erase(open_.begin());
  }
  open_.push_back({number, gap});
}

void RowStore::Close(PageNumber number) {
  std::erase_if(open_, [&](const OpenPage& a) { return a.number == number; });
}

void RowStore::Release(PageNumber number) {
  Close(number);
  RemoveFromMap(pages_, free_pages_, number);
  RemoveFromMap(pages_, owned_pages_, number);
  FreePage(pages_, number);
  released_.insert(number);
}

}  // namespace mdb::internal
