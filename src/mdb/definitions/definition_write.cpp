#include <algorithm>

#include "mdb/definitions/definition_internal.h"
#include "mdb/pages/page_map.h"

namespace mdb {
namespace {

constexpr std::size_t kHeader = 8;

// How many pages hold the joined bytes: the first holds its header too, the others drop theirs.
std::size_t PagesFor(std::size_t bytes, std::size_t size) {
  const std::size_t util = size - kHeader;
  return std::max<std::size_t>(1, (bytes - kHeader + util - 1) / util);
}

// The bytes 28 to 39 of a definition that is there: a counter of later versions, and leftovers of its maker.
void KeepUnknown(View previous, Bytes& bytes) {
  if (U8(previous, 0) == 2) PutBytes(bytes, 28, Slice(previous, 28, 12));
}

}  // namespace

void WriteDefinition(PageFile& pages, Definition& definition) {
  if (pages.Header().version != Version::Jet4)
    throw base::Error("Las tablas de este formato de Access solo se leen");
  Bytes bytes = SerializeDefinition(definition);
  const std::size_t needed = PagesFor(bytes.size(), pages.PageSize());
  auto& its = definition.pages;
  if (!its.empty()) KeepUnknown(*pages.Read(its.front()), bytes);
  while (its.size() > needed) {
    FreePage(pages, its.back());
    its.pop_back();
  }
  while (its.size() < needed) its.push_back(ReservePage(pages));

  const std::size_t util = pages.PageSize() - kHeader;
  for (std::size_t i = 0; i < its.size(); ++i) {
    const std::size_t from = kHeader + i * util;
    const View slice = Slice(bytes, from, std::min(util, bytes.size() - from));
    Bytes& page = pages.Modify(its[i]);
    std::fill(page.begin(), page.end(), std::uint8_t{0});
    PutDefinitionHeader(page, kHeader + slice.size(), i + 1 < its.size() ? its[i + 1] : 0);
    PutBytes(page, kHeader, slice);
  }
}

}  // namespace mdb
