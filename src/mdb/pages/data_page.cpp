#include "mdb/pages/data_page_internal.h"

namespace mdb::internal {
namespace {
constexpr std::uint16_t kPosition = 0x1FFF, kFlags = 0xC000;
}

DataPage::DataPage(const FileHeader& header, PageNumber number, View bytes)
    : bytes_(bytes),
      number_(number),
      list_(header.Jet3() ? 10 : 14),
      count_(U16(bytes, header.Jet3() ? 8 : 12)) {
  if (bytes[0] != kDataPage) ThrowPageDamage(number, "no es una página de datos");
  if (list_ + 2U * count_ > bytes.size()) ThrowPageDamage(number, "la lista de filas no cabe");
}

SlotView DataPage::At(unsigned row) const {
  if (row >= count_) ThrowPageDamage(number_, "no tiene la fila " + std::to_string(row));
  const std::uint16_t word = U16(bytes_, list_ + 2U * row);
  const std::size_t from = word & kPosition;
  const std::size_t to = row == 0 ? bytes_.size() : U16(bytes_, list_ + 2U * (row - 1)) & kPosition;
  if (from > to || to > bytes_.size() || from < list_ + 2U * count_)
    ThrowPageDamage(number_, "la fila " + std::to_string(row) + " está fuera de lugar");
  return {static_cast<std::uint16_t>(word & kFlags), bytes_.subspan(from, to - from)};
}

Place Follow(PageFile& pages, Pointer pointer, std::uint32_t* owner) {
  Place place;
  place.image = pages.Read(pointer.page);
  const DataPage data(pages.Header(), pointer.page, *place.image);
  if (owner != nullptr) *owner = data.Owner();
  place.slot = data.At(pointer.row);
  return place;
}

}  // namespace mdb::internal
