#include <algorithm>
#include <limits>

#include "mdb/pages/data_page_internal.h"
#include "mdb/verify/verify_internal.h"

namespace mdb::internal {
namespace {

constexpr std::uint16_t kPosition = 0x1FFF;
constexpr std::size_t kRowsPerPage = 255;
constexpr PageNumber kGlobalPage = 1;

std::string Capitalized(std::string text) {
  if (!text.empty() && text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 'a' + 'A');
  return text;
}

// "de" before the name of an owner.
std::string Of(const std::string& name) { return name.compare(0, 3, "el ") == 0 ? "d" + name : "de " + name; }

}  // namespace

std::string Quoted(const std::string& name) { return "'" + name + "'"; }

std::string Counted(std::size_t n, const char* one, const char* several) {
  return n == 1 ? one : std::to_string(n) + " " + several;
}

std::string OfRow(RowId row) {
  return "la fila " + std::to_string(row.row) + " de la página " + std::to_string(row.page);
}

Revision::Revision(PageFile& from, std::size_t limit)
    : pages(from),
      limit_(std::max<std::size_t>(limit, 1)),
      owners_(from.Count(), kNobody),
      names_({"nadie", "los mapas de páginas", "el comienzo del archivo"}) {}

void Revision::Add(Finding::Severity severity, PageNumber page, const std::string& where,
                   const std::string& reason) {
  auto& list = report.findings;
  if (list.size() >= limit_) {
    // An error is worth more than a note.
    if (severity != Finding::Severity::Error) return;
    const auto note = std::find_if(list.rbegin(), list.rend(),
                                   [](const Finding& h) { return h.severity == Finding::Severity::Note; });
    if (note == list.rend()) return;
    list.erase(std::next(note).base());
  }
  std::string place = page == 0 ? "" : "página " + std::to_string(page);
  if (!where.empty()) place += (place.empty() ? "" : ", ") + where;
  list.push_back({severity, page, Capitalized(place.empty() ? reason : place + ": " + reason)});
}

void Revision::Error(PageNumber page, const std::string& where, const std::string& reason) {
  Add(Finding::Severity::Error, page, where, reason);
}

void Revision::Note(PageNumber page, const std::string& where, const std::string& reason) {
  Add(Finding::Severity::Note, page, where, reason);
}

void Revision::AddFinding(PageNumber page, const std::string& where, const Damage& damage) {
  const PageNumber named = damage.Page().value_or(0);  // page 0 is the file as a whole
  Error(named != 0 ? named : page, where, damage.Reason());
}

Revision::Owner Revision::AddOwner(std::string name) {
  names_.push_back(std::move(name));
  return static_cast<Owner>(names_.size() - 1);
}

bool Revision::Take(PageNumber page, Owner owner, const std::string& where) {
  if (page >= owners_.size()) {
    Error(0, where,
          "nombra la página " + std::to_string(page) + ", y el archivo tiene " +
              std::to_string(owners_.size()));
    return false;
  }
  const Owner before = owners_[page];
  if (before == kNobody) {
    owners_[page] = owner;
    return true;
  }
  if (before == owner && owner == kMaps) return true;
  Error(page, where,
        before == owner ? "está dos veces entre las páginas " + Of(names_[owner])
                        : "la reclaman dos: " + names_[before] + " y " + names_[owner]);
  return false;
}

void Revision::ReadBits(Pointer map, const std::string& where, Owner owner, SeenMap& seen) {
  const Place place = Follow(pages, map);
  const View row = place.slot.bytes;
  const PageNumber count = pages.Count();
  std::uint64_t outside = 0;
  const auto bits = [&](View v, std::uint64_t first) {
    for (std::size_t i = 0; i < v.size(); ++i)
      for (unsigned b = v[i]; b != 0; b &= b - 1) {
        const std::uint64_t p = first + 8 * i + static_cast<unsigned>(std::countr_zero(b));
        if (p < count)
          seen.pages.push_back(static_cast<PageNumber>(p));
        else if (outside == 0)
          outside = p;
      }
  };
  if (place.slot.flags != 0 || row.empty() || row[0] > 1 || (row[0] == 0 && row.size() < 5))
    ThrowPageDamage(map.page, "la fila " + std::to_string(map.row) + " no es un mapa de páginas");
  seen.readable = true;
  if (row[0] == 0) {
    seen.start = U32(row, 1);
    seen.end = seen.start + std::uint64_t{8} * (row.size() - 5);
    bits(row.subspan(5), seen.start);
  } else {
    const std::uint64_t per_page = (pages.PageSize() - 4) * 8;
    seen.end = std::numeric_limits<std::uint64_t>::max();
    for (std::size_t k = 0; 4 * k + 5 <= row.size(); ++k) {
      const std::int32_t number = I32(row, 1 + 4 * k);
      if (number <= 0 || !Take(static_cast<PageNumber>(number), owner, where)) continue;
      const Image image = pages.Read(static_cast<PageNumber>(number));
      if ((*image)[0] != kMapPage)
        ThrowPageDamage(static_cast<PageNumber>(number), "se esperaba una página de un mapa de páginas");
      bits(View(*image).subspan(4), k * per_page);
    }
  }
  // The map of free pages says of all pages to come that they are free.
  if (outside != 0 && map != Pointer{kGlobalPage, 0})
    Error(map.page, where,
          "un mapa nombra la página " + std::to_string(outside) + ", y el archivo tiene " +
              std::to_string(count));
}

SeenMap Revision::CheckMap(Pointer map, Owner owner, const std::string& where) {
  SeenMap seen;
  if (map.page == 0) {
    seen.readable = true;
    return seen;
  }
  if (!Take(map.page, kMaps, where)) return seen;
  if (!maps_.insert(map).second)
    Error(map.page, where, "el mapa de la fila " + std::to_string(map.row) + " sirve a dos cosas a la vez");
  Try(map.page, where, [&] { ReadBits(map, where, owner, seen); });
  std::sort(seen.pages.begin(), seen.pages.end());
  return seen;
}

bool Revision::IsSoundRowPage(PageNumber number, const std::string& where) {
  const Image image = pages.Read(number);
  const View v = *image;
  const bool jet3 = pages.Header().Jet3();
  const std::size_t count = U16(v, jet3 ? 8 : 12), table = jet3 ? 10 : 14, end = table + 2 * count;
  if (end > v.size()) {
    Error(number, where, "dice tener " + std::to_string(count) + " filas, que no caben");
    return false;
  }
  std::size_t low = v.size();
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t from = U16(v, table + 2 * i) & kPosition;
    if (from > low || from < end) {
      Error(number, where,
            "la fila " + std::to_string(i) + " empieza en el byte " + std::to_string(from) + ", " +
                (from < end ? "dentro de la lista de filas" : "detrás de donde debe terminar"));
      return false;
    }
    low = from;
  }
  if (U16(v, 2) != low - end)
    Error(number, where,
          "dice tener " + std::to_string(U16(v, 2)) + " bytes libres y tiene " + std::to_string(low - end));
  if (count > kRowsPerPage)
    Error(number, where, "tiene " + std::to_string(count) + " filas, y el máximo es 255");
  return true;
}

void Revision::CheckMapPages() {
  for (PageNumber p = 0; p < owners_.size(); ++p) {
    if (owners_[p] != kMaps) continue;
    Try(p, "mapas de páginas", [&] {
      const Image image = pages.Read(p);
      if ((*image)[0] != kDataPage) return;  // a page of bits, or one that was named as a map by mistake
      const std::uint32_t owner = U32(*image, 4);
      if (owner != (p == kGlobalPage ? 1U : 0U))
        Error(p, "mapas de páginas", "dice ser de la tabla de la página " + std::to_string(owner));
      IsSoundRowPage(p, "mapas de páginas");
    });
  }
}

}  // namespace mdb::internal
