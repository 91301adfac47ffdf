#include "mdb/pages/page_map.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "mdb/pages/page_rows.h"

namespace mdb {
namespace {

constexpr std::uint8_t kBitMap = 0, kPageMap = 1, kMapPageType = 5;
constexpr std::size_t kBits = 5, kPointers = 1;  // where they begin in the row
constexpr std::size_t kMapLength = 69;           // of a new one
constexpr std::size_t kMapPageHeader = 4;
constexpr PageNumber kLastPage = 0xFFFFFF;
constexpr Pointer kGlobal{1, 0};  // of the free pages
// How much longer the global map gets at a time (512 pages), where page 1 has the room.
constexpr std::size_t kExtension = 64;
// The longest bitmap of another map (4096 pages, 16 MB): those of files that Access compacted are as long as
// their file needs. New maps leave some room on their page for it.
constexpr std::size_t kMaxLength = kBits + 512, kReserve = 1500;
// New maps go to a page of maps among the first and the last pages of the file, or to a new one: a walk over
// the whole file for each new map would be slow, and half-full pages of maps in its middle do no harm.
constexpr PageNumber kMapSearch = 512;

// The row of a map and what it says.
struct MapRow {
  PageNumber page = 0;
  unsigned row = 0;
  std::size_t from = 0, length = 0;
  std::uint8_t kind = kBitMap;
  PageNumber start = 0;  // of a bitmap
  bool global = false;
  PageNumber BitCount() const { return static_cast<PageNumber>((length - kBits) * 8); }
  PageNumber PointerCount() const { return static_cast<PageNumber>((length - kPointers) / 4); }
  std::size_t PointerPos(PageNumber k) const { return from + kPointers + 4 * std::size_t{k}; }
};

MapRow Find(PageFile& pages, Pointer map) {
  if (pages.Header().Jet3()) throw base::Error("Los archivos de Access 97 solo se leen");
  const Image image = pages.Read(map.page);
  const Slot r = ReadSlot(map.page, *image, map.row);
  MapRow f{map.page, map.row, r.from, r.length, 0, 0, map == kGlobal};
  if (r.marks != 0 || r.length < kBits) ThrowPageDamage(map.page, "un mapa de páginas no es tal");
  f.kind = U8(*image, r.from);
  if (f.kind > kPageMap) ThrowPageDamage(map.page, "un mapa de páginas es de clase desconocida");
  if (f.kind == kBitMap) f.start = U32(*image, r.from + 1);
  // A page number has three bytes: beyond them a bitmap's numbers would come round to 0.
  if (f.start > kLastPage) ThrowPageDamage(map.page, "un mapa de páginas empieza tras la última posible");
  return f;
}

PageNumber PagesPerPage(const PageFile& pages) {
  return static_cast<PageNumber>((pages.PageSize() - kMapPageHeader) * 8);
}

void SetBit(std::span<std::uint8_t> bits, std::size_t n, bool value) {
  const auto mask = static_cast<std::uint8_t>(1U << (n % 8));
  std::uint8_t& b = bits[n / 8];
  b = static_cast<std::uint8_t>(value ? b | mask : b & ~mask);
}

bool Bit(View bits, std::size_t n) { return (bits[n / 8] >> (n % 8) & 1) != 0; }

// The first bit set at or after `from`, or the count of bits.
std::size_t FirstBit(View bits, std::size_t from) {
  std::size_t n = from;
  while (n < bits.size() * 8) {
    if (n % 64 == 0 && n / 8 + 8 <= bits.size()) {
      std::uint64_t word = 0;
      std::memcpy(&word, bits.data() + n / 8, 8);
      if (word == 0) {
        n += 64;
        continue;
      }
    }
    if (Bit(bits, n)) return n;
    ++n;
  }
  return bits.size() * 8;
}

std::vector<PageNumber> PagesOfBits(const MapRow& f, View page) {
  std::vector<PageNumber> set_pages;
  const View bits = Slice(page, f.from + kBits, f.length - kBits);
  for (std::size_t n = FirstBit(bits, 0); n < bits.size() * 8; n = FirstBit(bits, n + 1))
    set_pages.push_back(f.start + static_cast<PageNumber>(n));
  return set_pages;
}

void Change(PageFile& pages, Pointer map, PageNumber page, bool value);

// The bitmap page that covers the k-th range, made when there is none. In the global map a set bit is a free
// page: a new page of it has the bits of all pages that the file does not have yet.
PageNumber RangePage(PageFile& pages, const MapRow& f, PageNumber k) {
  if (k >= f.PointerCount())
    throw base::StorageFault("Un mapa de páginas no alcanza para el tamaño del archivo: compacte la base");
  const std::int32_t pointer = I32(*pages.Read(f.page), f.PointerPos(k));
  if (pointer > 0) {
    const auto number = static_cast<PageNumber>(pointer);
    if (U8(*pages.Read(number), 0) != kMapPageType)
      ThrowPageDamage(number, "no es una página de un mapa de páginas");
    return number;
  }
  const PageNumber fresh = f.global ? pages.Add() : ReservePage(pages);
  Bytes& p = pages.Modify(fresh);
  Put8(p, 0, kMapPageType);
  Put8(p, 1, 1);
  if (f.global) {
    const std::size_t per_page = PagesPerPage(pages), base = k * per_page;
    const auto bits = std::span(p).subspan(kMapPageHeader);
    for (std::size_t n = 0; n < per_page; ++n)
      if (base + n >= pages.Count()) SetBit(bits, n, true);
  }
  Put32(pages.Modify(f.page), f.PointerPos(k), fresh);
  // It may stand in a range that has its bitmap page already, where it still counts as free.
  if (f.global) Change(pages, kGlobal, fresh, false);
  return fresh;
}

void ChangeInRange(PageFile& pages, const MapRow& f, PageNumber page, bool value) {
  const PageNumber per_page = PagesPerPage(pages), k = page / per_page;
  const bool found = k < f.PointerCount() && I32(*pages.Read(f.page), f.PointerPos(k)) > 0;
  if (!value && !found && !f.global) return;
  const PageNumber number = RangePage(pages, f, k);
  SetBit(std::span(pages.Modify(number)).subspan(kMapPageHeader), page % per_page, value);
}

// Turns a bitmap into a list of bitmap pages, in place.
void ConvertToPages(PageFile& pages, Pointer map) {
  MapRow f = Find(pages, map);
  const PageNumber count = pages.Count();  // the bitmap pages to come are not free, whatever it says
  const std::vector<PageNumber> set_pages = PagesOfBits(f, *pages.Read(f.page));
  const auto row = std::span(pages.Modify(f.page)).subspan(f.from, f.length);
  std::fill(row.begin(), row.end(), std::uint8_t{0});
  row[0] = f.kind = kPageMap;
  if (f.global) {
    const PageNumber per_page = PagesPerPage(pages);
    for (PageNumber k = 0; k <= (pages.Count() - 1) / per_page; ++k) RangePage(pages, f, k);
  }
  for (const PageNumber p : set_pages)
    if (!f.global || p < count) ChangeInRange(pages, f, p, true);
}

// Moves the window of a bitmap so that it holds the page too, or makes it longer where its page has room;
// false when neither will do.
bool ShiftWindow(PageFile& pages, const MapRow& f, PageNumber page) {
  const Image image = pages.Read(f.page);
  const std::vector<PageNumber> set_pages = PagesOfBits(f, *image);
  const PageNumber first = set_pages.empty() ? page : std::min(page, set_pages.front());
  const PageNumber last = set_pages.empty() ? page : std::max(page, set_pages.back());
  const PageNumber start = first & ~PageNumber{7};
  const std::size_t length = std::max(f.length, ((last - start) / 8 + 4) / 4 * 4 + kBits);
  if (length > f.length && (length > kMaxLength || length - f.length > Gap(*image))) return false;
  Bytes row(length, 0);
  Put32(row, 1, start);
  const auto bits = std::span(row).subspan(kBits);
  for (const PageNumber p : set_pages) SetBit(bits, p - start, true);
  SetBit(bits, page - start, true);
  return ChangeRow(f.page, pages.Modify(f.page), f.row, row);
}

// A longer bitmap for the global map, while page 1 has room: the pages that the file does not have yet are
// free, others that the map did not name are not to be trusted. False when there is no room.
bool Extend(PageFile& pages, const MapRow& f, PageNumber page) {
  const std::size_t needed = ((page - f.start) / 8 + 4) / 4 * 4 + kBits;
  const Image image = pages.Read(f.page);
  const std::size_t more = f.length + Gap(*image);
  if (needed > more) return false;
  const View row = Slice(*image, f.from, f.length);
  Bytes longer(row.begin(), row.end());
  longer.resize(needed + kExtension <= more ? needed + kExtension : needed);
  for (std::size_t n = f.BitCount(); n < (longer.size() - kBits) * 8; ++n)
    if (f.start + n >= pages.Count()) SetBit(std::span(longer).subspan(kBits), n, true);
  return ChangeRow(f.page, pages.Modify(f.page), f.row, longer);
}

void ChangeOutsideWindow(PageFile& pages, const MapRow& f, Pointer map, PageNumber page, bool value) {
  const bool in_front = page < f.start;
  if (f.global) {
    // Pages before the window of the global map (other programs move it) cannot be told from used ones.
    if (in_front && !value) return;
    if (!in_front && Extend(pages, f, page)) return Change(pages, map, page, value);
  } else {
    if (!value || ShiftWindow(pages, f, page)) return;
  }
  ConvertToPages(pages, map);
  Change(pages, map, page, value);
}

void Change(PageFile& pages, Pointer map, PageNumber page, bool value) {
  const MapRow f = Find(pages, map);
  if (f.kind == kPageMap) return ChangeInRange(pages, f, page, value);
  if (page < f.start || page - f.start >= f.BitCount())
    return ChangeOutsideWindow(pages, f, map, page, value);
  const auto bits = std::span(pages.Modify(f.page)).subspan(f.from + kBits, f.length - kBits);
  SetBit(bits, page - f.start, value);
}

// The lowest free page that the file has, or 0. Pages 0 to 2 are never free, whatever a damaged map says.
PageNumber FindFree(PageFile& pages) {
  const MapRow f = Find(pages, kGlobal);
  const Image image = pages.Read(f.page);
  const auto free_in = [&](View bits, PageNumber base) -> PageNumber {
    const std::size_t n = FirstBit(bits, base < 3 ? 3 - base : 0);
    const std::size_t page = base + n;
    return n < bits.size() * 8 && page < pages.Count() ? static_cast<PageNumber>(page) : 0;
  };
  if (f.kind == kBitMap) return free_in(Slice(*image, f.from + kBits, f.length - kBits), f.start);
  const PageNumber per_page = PagesPerPage(pages);
  for (PageNumber k = 0; k < f.PointerCount(); ++k) {
    const std::int32_t pointer = I32(*image, f.PointerPos(k));
    if (pointer <= 0) continue;
    const Image bits = pages.Read(static_cast<PageNumber>(pointer));
    if (const PageNumber p = free_in(View(*bits).subspan(kMapPageHeader), k * per_page); p != 0) return p;
  }
  return 0;
}

bool IsMapsPage(PageFile& pages, PageNumber number) {
  const Image p = pages.Read(number);
  return U8(*p, 0) == 1 && U8(*p, 1) == 1 && OwnerOf(*p) == kMapsOwner && RowFits(*p, kMapLength + kReserve);
}

PageNumber PageForMaps(PageFile& pages) {
  const PageNumber count = pages.Count();
  for (PageNumber p = 2; p < std::min(count, kMapSearch); ++p)
    if (IsMapsPage(pages, p)) return p;
  for (PageNumber p = count; p > kMapSearch && p + kMapSearch > count; --p)
    if (IsMapsPage(pages, p - 1)) return p - 1;
  const PageNumber fresh = ReservePage(pages);
  InitializeRowPage(pages.Modify(fresh), kMapsOwner);
  return fresh;
}

}  // namespace

void AddToMap(PageFile& pages, Pointer map, PageNumber page) { Change(pages, map, page, true); }

void RemoveFromMap(PageFile& pages, Pointer map, PageNumber page) {
  if (map.page != 0) Change(pages, map, page, false);
}

Pointer CreateMap(PageFile& pages) {
  const PageNumber page = PageForMaps(pages);
  const Bytes empty(kMapLength, std::uint8_t{0});
  return {page, AddRow(page, pages.Modify(page), empty)};
}

void DeleteMap(PageFile& pages, Pointer map) {
  if (map.page == 0) return;
  for (const PageNumber p : PagesOfMap(pages, map)) FreePage(pages, p);
  Bytes& page = pages.Modify(map.page);
  RemoveRow(map.page, page, map.row);
  if (map.page > 2 && HasNoRows(page)) FreePage(pages, map.page);
}

PageNumber ReservePage(PageFile& pages) {
  PageNumber page = FindFree(pages);
  if (page != 0) {
    Bytes& bytes = pages.Modify(page);
    std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
  } else {
    page = pages.Add();
  }
  Change(pages, kGlobal, page, false);
  return page;
}

void FreePage(PageFile& pages, PageNumber page) {
  Put32(pages.Modify(page), 0, 0);
  Change(pages, kGlobal, page, true);
}

}  // namespace mdb
