#include "mdb/indexes/index_page.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string>

namespace mdb {
namespace {

constexpr std::uint8_t kNode = 3, kLeaf = 4;
constexpr std::size_t kTail = 4;  // page and row behind a key; a node's child takes as many again

// Where the fields stand.
struct Layout {
  std::size_t previous, next, tail, prefix, level, mask, data;
};
constexpr Layout kJet4{12, 16, 20, 24, 26, 27, 480};
constexpr Layout kJet3{8, 12, 16, 20, 21, 22, 248};

const Layout& LayoutOf(const PageFile& pages) { return pages.Header().Jet3() ? kJet3 : kJet4; }

// Bit n of the mask: an entry ends n bytes after the start of the entries.
std::vector<std::size_t> Ends(View mask) {
  std::array<std::uint16_t, 8 * 456> places;
  std::size_t how_many = 0;
  const auto word = [&](std::uint64_t p, std::size_t first) {
    for (; p != 0; p &= p - 1)
      places[how_many++] = static_cast<std::uint16_t>(first + static_cast<std::size_t>(std::countr_zero(p)));
  };
  const std::uint8_t* v = mask.data();
  std::size_t i = 0;
  for (; i + 8 <= mask.size(); i += 8, v += 8)
    word(std::uint64_t{v[0]} | std::uint64_t{v[1]} << 8 | std::uint64_t{v[2]} << 16 |
             std::uint64_t{v[3]} << 24 | std::uint64_t{v[4]} << 32 | std::uint64_t{v[5]} << 40 |
             std::uint64_t{v[6]} << 48 | std::uint64_t{v[7]} << 56,
         8 * i);
  for (; i < mask.size(); ++i) word(mask[i], 8 * i);
  return {places.begin(), places.begin() + static_cast<std::ptrdiff_t>(how_many)};
}

void AppendRow(Bytes& v, RowId row) {
  v.push_back(static_cast<std::uint8_t>(row.page >> 16));
  v.push_back(static_cast<std::uint8_t>(row.page >> 8));
  v.push_back(static_cast<std::uint8_t>(row.page));
  v.push_back(row.row);
}

}  // namespace

IndexPage IndexPage::Read(PageFile& pages, PageNumber number, PageNumber table) {
  const Layout& shape = LayoutOf(pages);
  Image image = pages.Read(number);
  const View v = *image;
  if (v[0] != kNode && v[0] != kLeaf) ThrowPageDamage(number, "se esperaba una página de índice");
  IndexPage p(number, v[0] == kLeaf);
  p.owner = U32(v, 4);
  if (table != 0 && p.owner != table)
    ThrowPageDamage(number, "la página de índice es de otra tabla (página " + std::to_string(p.owner) + ")");
  p.previous = U32(v, shape.previous);
  p.next = U32(v, shape.next);
  p.tail = U32(v, shape.tail);
  p.prefix = pages.Header().Jet3() ? U8(v, shape.prefix) : U16(v, shape.prefix);
  p.level = U8(v, shape.level);
  p.ends_ = Ends(Slice(v, shape.mask, shape.data - shape.mask));
  const std::size_t used = p.BytesWithoutPrefix(), found = v.size() - shape.data;
  if (used > found) ThrowPageDamage(number, "las entradas del índice no caben en la página");
  p.free_bytes = found - used;
  p.free_bytes_on_page = U16(v, 2);
  p.borrowed_ = v.subspan(shape.data, used);
  p.image_ = std::move(image);
  p.own_ = false;
  if (p.prefix != 0 && p.Count() > 1) p.UndoPrefix();
  const std::size_t minimum = (p.leaf ? kTail : 2 * kTail) + 1;
  for (std::size_t i = 0, from = 0; i < p.ends_.size(); from = p.ends_[i++])
    if (p.ends_[i] - from < minimum) ThrowPageDamage(number, "una entrada del índice es demasiado corta");
  return p;
}

void IndexPage::UndoPrefix() {
  if (ends_[0] < prefix)
    ThrowPageDamage(number, "la primera entrada del índice es más corta que la parte común de las demás");
  data_.resize(borrowed_.size() + prefix * (ends_.size() - 1));
  auto target = std::copy_n(borrowed_.begin(), ends_[0], data_.begin());
  for (std::size_t i = 1, from = ends_[0]; i < ends_.size(); ++i) {
    const std::size_t to = ends_[i];
    target = std::copy_n(borrowed_.begin(), prefix, target);
    target = std::copy(borrowed_.begin() + static_cast<std::ptrdiff_t>(from),
                       borrowed_.begin() + static_cast<std::ptrdiff_t>(to), target);
    from = to;
    ends_[i] = static_cast<std::size_t>(target - data_.begin());
  }
  own_ = true;
  image_.reset();
}

View IndexPage::Whole(std::size_t i) const {
  const std::size_t from = i == 0 ? 0 : ends_[i - 1];
  return Data().subspan(from, ends_[i] - from);
}

View IndexPage::Key(std::size_t i) const {
  const View v = Whole(i);
  return v.first(v.size() - (leaf ? kTail : 2 * kTail));
}

RowId IndexPage::RowOf(std::size_t i) const {
  const View v = Whole(i);
  const View f = v.subspan(v.size() - (leaf ? kTail : 2 * kTail));
  return {static_cast<PageNumber>(f[0] << 16 | f[1] << 8 | f[2]), f[3]};
}

PageNumber IndexPage::Child(std::size_t i) const {
  if (i == Count()) return tail;
  const View v = Whole(i);
  const View h = v.last(kTail);
  return static_cast<PageNumber>(h[0]) << 24 | static_cast<PageNumber>(h[1] << 16 | h[2] << 8 | h[3]);
}

std::strong_ordering IndexPage::Compare(std::size_t i, View key, RowId row) const {
  const auto order = CompareKeys(Key(i), key);
  return order != 0 ? order : RowOf(i) <=> row;
}

std::size_t IndexPage::LowerBound(View key, RowId row) const {
  std::size_t from = 0, to = Count();
  while (from < to) {
    const std::size_t middle = from + (to - from) / 2;
    if (Compare(middle, key, row) < 0)
      from = middle + 1;
    else
      to = middle;
  }
  return from;
}

void IndexPage::MakeOwn() {
  if (own_) return;
  data_.reserve(kCapacity + kCapacity / 2);
  data_.assign(borrowed_.begin(), borrowed_.end());
  own_ = true;
  image_.reset();
}

void IndexPage::Insert(std::size_t i, View whole) {
  MakeOwn();
  const std::size_t from = i == 0 ? 0 : ends_[i - 1];
  data_.insert(data_.begin() + static_cast<std::ptrdiff_t>(from), whole.begin(), whole.end());
  ends_.insert(ends_.begin() + static_cast<std::ptrdiff_t>(i), from);
  for (std::size_t k = i; k < ends_.size(); ++k) ends_[k] += whole.size();
}

void IndexPage::Remove(std::size_t from, std::size_t to) {
  if (from == to) return;
  MakeOwn();
  const auto start = static_cast<std::ptrdiff_t>(from == 0 ? 0 : ends_[from - 1]);
  const auto end = static_cast<std::ptrdiff_t>(ends_[to - 1]);
  data_.erase(data_.begin() + start, data_.begin() + end);
  ends_.erase(ends_.begin() + static_cast<std::ptrdiff_t>(from),
              ends_.begin() + static_cast<std::ptrdiff_t>(to));
  for (std::size_t k = from; k < ends_.size(); ++k) ends_[k] -= static_cast<std::size_t>(end - start);
}

void IndexPage::Replace(std::size_t i, View whole) {
  const Bytes copy(whole.begin(), whole.end());  // it may be part of this page
  Remove(i, i + 1);
  Insert(i, copy);
}

void IndexPage::Append(const IndexPage& other, std::size_t from, std::size_t to) {
  if (from == to) return;
  MakeOwn();
  const std::size_t start = from == 0 ? 0 : other.ends_[from - 1], before = data_.size();
  AppendBytes(data_, other.Data().subspan(start, other.ends_[to - 1] - start));
  for (std::size_t k = from; k < to; ++k) ends_.push_back(before + other.ends_[k] - start);
}

std::size_t IndexPage::CommonPrefix() const {
  if (!leaf || Count() < 2) return 0;
  const View a = Key(0), b = Key(Count() - 1);
  return static_cast<std::size_t>(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
}

std::size_t IndexPage::BytesWithPrefix() const {
  return Count() < 2 ? BytesWithoutPrefix() : BytesWithoutPrefix() - CommonPrefix() * (Count() - 1);
}

void IndexPage::Write(PageFile& pages, PageNumber table) {
  if (pages.Header().Jet3()) throw base::Error("Los índices de archivos de Access 97 no se escriben");
  MakeOwn();
  prefix = prefix != 0 || BytesWithoutPrefix() > kCapacity ? CommonPrefix() : 0;
  Bytes& v = pages.Modify(number);
  std::fill(v.begin(), v.end(), std::uint8_t{0});
  Put8(v, 0, leaf ? kLeaf : kNode);
  Put8(v, 1, 1);
  Put32(v, 4, table);
  Put32(v, kJet4.previous, previous);
  Put32(v, kJet4.next, next);
  Put32(v, kJet4.tail, leaf ? 0 : tail);
  Put16(v, kJet4.prefix, static_cast<std::uint16_t>(prefix));
  Put8(v, kJet4.level, level);
  std::size_t place = 0;
  for (std::size_t i = 0; i < Count(); ++i) {
    const View slice = Whole(i).subspan(i == 0 ? 0 : prefix);
    PutBytes(v, kJet4.data + place, slice);
    place += slice.size();
    v[kJet4.mask + place / 8] = static_cast<std::uint8_t>(v[kJet4.mask + place / 8] | 1U << place % 8);
  }
  Put16(v, 2, static_cast<std::uint16_t>(kCapacity - place));
}

std::strong_ordering CompareKeys(View a, View b) {
  const std::size_t n = std::min(a.size(), b.size());
  const int order = n == 0 ? 0 : std::memcmp(a.data(), b.data(), n);
  return order != 0 ? order <=> 0 : a.size() <=> b.size();
}

Bytes MakeEntry(View key, RowId row) {
  Bytes v;
  v.reserve(key.size() + 2 * kTail);
  AppendBytes(v, key);
  AppendRow(v, row);
  return v;
}

Bytes MakeEntry(View key, RowId row, PageNumber child) {
  Bytes v = MakeEntry(key, row);
  for (int k = 24; k >= 0; k -= 8) v.push_back(static_cast<std::uint8_t>(child >> k));
  return v;
}

}  // namespace mdb
