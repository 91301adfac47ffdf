// What the parts of the assembler share: integers, text, the cipher, and a page of rows.
#pragma once

#include <cstring>
#include <stdexcept>

#include "mdb/assembler/assembler.h"

namespace assembler {

using mdb::PageNumber;
using mdb::RowId;

// Little-endian, at the end of a text or over bytes that are there.
inline void Add(Bytes& b, std::uint64_t n, int width) {
  for (int i = 0; i < width; ++i) b.push_back(static_cast<std::uint8_t>(n >> (8 * i)));
}
inline void Put(Bytes& b, std::size_t at, std::uint64_t n, int width) {
  for (int i = 0; i < width; ++i) b.at(at + i) = static_cast<std::uint8_t>(n >> (8 * i));
}
// The highest byte first.
inline void AddHighFirst(Bytes& b, std::uint64_t n, int width) {
  for (int i = width - 1; i >= 0; --i) b.push_back(static_cast<std::uint8_t>(n >> (8 * i)));
}
inline void Append(Bytes& b, const Bytes& more) { b.insert(b.end(), more.begin(), more.end()); }
inline void AddPointer(Bytes& b, RowId id) {
  Add(b, id.row, 1);
  Add(b, id.page, 3);
}
template <typename To, typename From>
To Bits(From from) {
  static_assert(sizeof(To) == sizeof(From));
  To to;
  std::memcpy(&to, &from, sizeof to);
  return to;
}

// Text as stored: bytes of code page 1252 in Jet 3, UTF-16 in the others, in one byte a character where it
// may be and `compresses`.
Bytes Text(Format format, const std::string& text, bool compresses = false);
void Cipher(const Bytes& key, Bytes& bytes, std::size_t from, std::size_t length);

// The pages of a file under way.
struct Pages {
  Format format;
  std::vector<Bytes> all;

  bool Jet3() const { return format == Format::Jet3; }
  std::size_t Size() const { return Jet3() ? 2048 : 4096; }
  PageNumber Add() {
    all.emplace_back(Size(), 0xEE);  // what is free is not zero in real files either
    return static_cast<PageNumber>(all.size() - 1);
  }
};

// Pages of rows of one owner, filled one after another.
class RowPages {
 public:
  static constexpr std::uint32_t kLongValues = 0x4C41564C;
  RowPages(Pages& pages, std::uint32_t owner, unsigned rows_a_page = 0)
      : pages_(pages), owner_(owner), limit_(rows_a_page == 0 ? 255 : rows_a_page) {}

  RowId Place(const Bytes& row, unsigned flags = 0);
  void NewPage() { full_ = true; }
  Bytes& At(RowId id);
  // Writes the pages; nothing is placed afterwards.
  void Finish();
  std::vector<PageNumber> Numbers() const;
  std::vector<PageNumber> WithRoom() const;

 private:
  struct Slot {
    unsigned flags;
    Bytes bytes;
  };
  struct Page {
    PageNumber number;
    std::vector<Slot> slots;
    std::size_t used;
  };
  Pages& pages_;
  std::uint32_t owner_;
  unsigned limit_;
  bool full_ = false;
  std::vector<Page> own_;
};

// Rows and their parts (rows.cpp).
struct Layout {
  std::vector<unsigned> fixed_offset, variable_index;  // one a column
  unsigned variables = 0;
};
Layout LayoutOf(const Table& table);
bool IsFixed(const Column& column);
unsigned StoredLength(Format format, const Column& column);
Bytes Properties(Format format, const std::vector<Property>& properties);
struct LongPages {  // of one column
  RowPages pages;
  bool chains;
};
Bytes EncodeRow(Format format, const Table& table, const RowSpec& row, std::vector<LongPages*>& long_pages);

// Keys and trees (keys.cpp, tree.cpp).
struct Entry {
  Bytes key;
  RowId row;
};
Bytes Key(const File& file, const Column& column, const Datum& value, bool descending);
struct Tree {
  PageNumber root = 0;
  std::vector<PageNumber> pages;
};
Tree BuildTree(Pages& pages, PageNumber table, std::vector<Entry> entries, unsigned entries_a_leaf,
               bool prefixes);

}  // namespace assembler
