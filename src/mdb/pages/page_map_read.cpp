#include "mdb/pages/data_page_internal.h"
#include "mdb/pages/page_map.h"

namespace mdb {
namespace {

constexpr std::uint8_t kInline = 0, kByPages = 1;
constexpr std::size_t kInlineBits = 5, kPageBits = 4;

struct MapRow {
  Image image;
  View bytes;
};

MapRow FindMap(PageFile& pages, Pointer map) {
  auto place = internal::Follow(pages, map);
  if (place.slot.flags != 0) ThrowPageDamage(map.page, "un mapa de páginas está borrado");
  const View bytes = place.slot.bytes;
  if (bytes.empty() || bytes[0] > kByPages || (bytes[0] == kInline && bytes.size() < kInlineBits))
    ThrowPageDamage(map.page, "un mapa de páginas de otra clase");
  return {std::move(place.image), bytes};
}

std::size_t PagesPerMap(const PageFile& pages) { return (pages.PageSize() - kPageBits) * 8; }

// The bitmap page of the k-th pointer, or 0. Negative numbers stand for none as 0 does.
PageNumber MapPage(const PageFile& pages, PageNumber from, View bytes, std::size_t k) {
  const std::int32_t number = I32(bytes, 1 + 4 * k);
  if (number <= 0) return 0;
  const auto page = static_cast<PageNumber>(number);
  if (page >= pages.Count())
    ThrowPageDamage(from, "un mapa lleva a la página " + std::to_string(page) + ", que no hay");
  return page;
}

Image ReadMapPage(PageFile& pages, PageNumber number) {
  Image image = pages.Read(number);
  if (image->at(0) != internal::kMapPage) ThrowPageDamage(number, "no es una página de mapa");
  return image;
}

// Calls `visit` with each page of the map, rising, those beyond the end of the file too.
template <typename Visitor>
void ForEachBit(View bits, std::uint64_t first, Visitor&& visit) {
  for (std::size_t i = 0; i < bits.size(); ++i) {
    if (bits[i] == 0) continue;
    for (unsigned b = 0; b < 8; ++b)
      if ((bits[i] >> b & 1) != 0) visit(first + 8 * i + b);
  }
}

template <typename Visitor>
void ForEachPage(PageFile& pages, Pointer map, Visitor&& visit) {
  if (map.page == 0) return;
  const auto row = FindMap(pages, map);
  if (row.bytes[0] == kInline) {
    ForEachBit(row.bytes.subspan(kInlineBits), U32(row.bytes, 1), visit);
    return;
  }
  for (std::size_t k = 0; 1 + 4 * (k + 1) <= row.bytes.size(); ++k) {
    const PageNumber number = MapPage(pages, map.page, row.bytes, k);
    if (number == 0) continue;
    const Image image = ReadMapPage(pages, number);
    ForEachBit(View(*image).subspan(kPageBits), k * PagesPerMap(pages), visit);
  }
}

bool Bit(View bits, std::uint64_t n) { return n / 8 < bits.size() && (bits[n / 8] >> (n % 8) & 1) != 0; }

}  // namespace

std::vector<PageNumber> ReadMap(PageFile& pages, Pointer map) {
  std::vector<PageNumber> output;
  const PageNumber end = pages.Count();
  ForEachPage(pages, map, [&](std::uint64_t page) {
    if (page < end) output.push_back(static_cast<PageNumber>(page));
  });
  return output;
}

std::vector<PageNumber> ReadWholeMap(PageFile& pages, Pointer map) {
  std::vector<PageNumber> output;
  const PageNumber end = pages.Count();
  ForEachPage(pages, map, [&](std::uint64_t page) {
    if (page >= end)
      ThrowPageDamage(map.page, "una tabla tiene la página " + std::to_string(page) +
                                    " y el archivo termina antes: está cortado");
    output.push_back(static_cast<PageNumber>(page));
  });
  return output;
}

std::vector<PageNumber> PagesOfMap(PageFile& pages, Pointer map) {
  std::vector<PageNumber> output;
  if (map.page == 0) return output;
  const auto row = FindMap(pages, map);
  if (row.bytes[0] == kInline) return output;
  for (std::size_t k = 0; 1 + 4 * (k + 1) <= row.bytes.size(); ++k)
    if (const PageNumber n = MapPage(pages, map.page, row.bytes, k); n != 0) output.push_back(n);
  return output;
}

bool IsInMap(PageFile& pages, Pointer map, PageNumber page) {
  if (map.page == 0) return false;
  const auto row = FindMap(pages, map);
  if (row.bytes[0] == kInline) {
    const std::uint32_t first = U32(row.bytes, 1);
    return page >= first && Bit(row.bytes.subspan(kInlineBits), page - first);
  }
  const std::size_t per_map = PagesPerMap(pages), k = page / per_map;
  if (1 + 4 * (k + 1) > row.bytes.size()) return false;
  const PageNumber number = MapPage(pages, map.page, row.bytes, k);
  if (number == 0) return false;
  const Image image = ReadMapPage(pages, number);
  return Bit(View(*image).subspan(kPageBits), page % per_map);
}

}  // namespace mdb
