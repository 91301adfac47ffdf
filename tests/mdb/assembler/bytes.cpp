#include "mdb/assembler/bytes.h"

#include <algorithm>
#include <numeric>

#include "base/encoding.h"

namespace assembler {

Bytes Text(Format format, const std::string& text, bool compresses) {
  if (format == Format::Jet3) {
    const std::string bytes = base::ToCp1252(text);
    return {bytes.begin(), bytes.end()};
  }
  const std::u16string units = base::ToUtf16(text);
  const bool narrow = std::all_of(units.begin(), units.end(), [](char16_t u) { return u > 0 && u < 0x100; });
  Bytes b;
  if (compresses && narrow && units.size() > 2 && units.size() <= 1024) {
    b = {0xFF, 0xFE};
    for (const char16_t u : units) Add(b, u, 1);
  } else {
    for (const char16_t u : units) Add(b, u, 2);
  }
  return b;
}

// RC4.
void Cipher(const Bytes& key, Bytes& bytes, std::size_t from, std::size_t length) {
  std::vector<unsigned> box(256);
  std::iota(box.begin(), box.end(), 0U);
  unsigned other = 0;
  for (unsigned i = 0; i < 256; ++i) {
    other = (other + box[i] + key[i % key.size()]) % 256;
    std::swap(box[i], box[other]);
  }
  other = 0;
  for (std::size_t n = 1; n <= length; ++n) {
    const unsigned i = n % 256;
    other = (other + box[i]) % 256;
    std::swap(box[i], box[other]);
    bytes.at(from + n - 1) ^= static_cast<std::uint8_t>(box[(box[i] + box[other]) % 256]);
  }
}

RowId RowPages::Place(const Bytes& row, unsigned flags) {
  const std::size_t head = pages_.Jet3() ? 10 : 14;
  if (own_.empty() || full_ || own_.back().slots.size() >= limit_ ||
      own_.back().used + row.size() + 2 > pages_.Size()) {
    own_.push_back({pages_.Add(), {}, head});
    full_ = false;
  }
  Page& page = own_.back();
  page.used += row.size() + 2;
  if (page.used > pages_.Size()) throw std::runtime_error("a row is longer than a page");
  page.slots.push_back({flags, row});
  return {page.number, static_cast<std::uint8_t>(page.slots.size() - 1)};
}

Bytes& RowPages::At(RowId id) {
  const auto page =
      std::find_if(own_.begin(), own_.end(), [&](const Page& p) { return p.number == id.page; });
  return page->slots.at(id.row).bytes;
}

void RowPages::Finish() {
  for (const Page& page : own_) {
    Bytes& b = pages_.all.at(page.number);
    Put(b, 0, 0x0101, 2);
    Put(b, 2, pages_.Size() - page.used, 2);
    Put(b, 4, owner_, 4);
    std::size_t at = 8;
    if (!pages_.Jet3()) {
      Put(b, at, 0, 4);
      at += 4;
    }
    Put(b, at, page.slots.size(), 2);
    std::size_t end = pages_.Size();
    for (const Slot& slot : page.slots) {
      end -= slot.bytes.size();
      std::copy(slot.bytes.begin(), slot.bytes.end(), b.begin() + static_cast<std::ptrdiff_t>(end));
      at += 2;
      Put(b, at, end | slot.flags, 2);
    }
  }
}

std::vector<PageNumber> RowPages::Numbers() const {
  std::vector<PageNumber> numbers;
  for (const Page& p : own_) numbers.push_back(p.number);
  return numbers;
}

std::vector<PageNumber> RowPages::WithRoom() const {
  std::vector<PageNumber> numbers;
  for (const Page& p : own_)
    if (pages_.Size() - p.used >= 200 && p.slots.size() < 255) numbers.push_back(p.number);
  return numbers;
}

}  // namespace assembler
