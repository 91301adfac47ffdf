// The slots of a data page (type 1): rows, long values, page maps.
#pragma once

#include "mdb/pages/page_file.h"

namespace mdb::internal {

constexpr std::uint8_t kDataPage = 1, kDefinitionPage = 2, kMapPage = 5;

struct SlotView {
  static constexpr std::uint16_t kMoved = 0x4000, kHidden = 0x8000;
  std::uint16_t flags = 0;
  View bytes;
  // Deleted, or the place where a moved row stands: not a row of its own.
  bool IsSkipped() const { return (flags & kHidden) != 0; }
  bool IsMoved() const { return flags == kMoved; }
  bool IsTarget() const { return flags == kHidden; }
};

// A data page, looked at through an image that its user keeps.
class DataPage {
 public:
  // Throws Damage unless the page is one of data whose list of slots is all there.
  DataPage(const FileHeader& header, PageNumber number, View bytes);
  std::uint32_t Owner() const { return U32(bytes_, 4); }
  unsigned Count() const { return count_; }
  // Throws Damage for a slot beyond the list, or with bytes outside its page.
  SlotView At(unsigned row) const;

 private:
  View bytes_;
  PageNumber number_;
  std::size_t list_;  // where the list of slots starts
  unsigned count_;
};

// What a data pointer leads to: one slot and the image that it stands in.
struct Place {
  Image image;
  SlotView slot;
};
Place Follow(PageFile& pages, Pointer pointer, std::uint32_t* owner = nullptr);

inline Pointer ReadPointer(View v, std::size_t pos) { return {U24(v, pos + 1), U8(v, pos)}; }

// The owner field of a page of long values.
constexpr std::uint32_t kLval = 0x4C41564C;

// Runs `reading`; a Damage that does not name a page leaves as one that names `page` and says `what`.
template <typename Reading>
decltype(auto) NamingPage(PageNumber page, const char* what, Reading&& reading) {
  try {
    return reading();
  } catch (const Damage& d) {
    if (d.NamesPage()) throw;
    ThrowPageDamage(page, what);
  }
}

}  // namespace mdb::internal
