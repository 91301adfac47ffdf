// One page of an index, node or leaf: its entries as whole bytes, in order.
//
// Leaf entry: key, page (3 bytes, highest first), row. Node entry: the same of the last leaf entry below its
// child, then the child's page (4 bytes, highest first). The last child of a node, its tail, has no entry.
#pragma once

#include <compare>
#include <vector>

#include "mdb/pages/page_file.h"

namespace mdb {

class IndexPage {
 public:
  static constexpr std::size_t kCapacity = 3616;  // bytes of entries on a page of Jet 4
  // So long that two entries always have room on a page.
  static constexpr std::size_t kMaxKey = kCapacity / 2 - 8;

  // An empty page, not yet written.
  IndexPage(PageNumber page, bool is_leaf) : number(page), leaf(is_leaf) {}
  // Throws Damage for a page of another type or table, or whose entries do not fit together. `table` 0: any.
  static IndexPage Read(PageFile& pages, PageNumber number, PageNumber table);

  PageNumber number = 0;
  bool leaf = true;
  std::uint8_t level = 0;                       // 0 in leaves, else the distance from them
  PageNumber previous = 0, next = 0, tail = 0;  // neighbours on the level, last child of a node
  std::size_t prefix = 0;                       // as stored: bytes left out of all entries but the first
  std::size_t free_bytes = 0, free_bytes_on_page = 0;  // of a page just read: as counted, as its field says
  PageNumber owner = 0;                                // the definition it says it belongs to

  std::size_t Count() const { return ends_.size(); }
  View Whole(std::size_t i) const;
  View Key(std::size_t i) const;
  RowId RowOf(std::size_t i) const;
  PageNumber Child(std::size_t i) const;  // of a node; `Count()` is the tail
  // Of entry `i` with (key, row).
  std::strong_ordering Compare(std::size_t i, View key, RowId row) const;
  // First entry that is not before (key, row); `Count()` when all are.
  std::size_t LowerBound(View key, RowId row) const;

  // Changes stay here until Write.
  void Insert(std::size_t i, View whole);
  void Replace(std::size_t i, View whole);
  void Remove(std::size_t from, std::size_t to);
  // All entries of `other` from `from` to before `to`, behind those that are here.
  void Append(const IndexPage& other, std::size_t from, std::size_t to);
  std::size_t BytesWithoutPrefix() const { return ends_.empty() ? 0 : ends_.back(); }
  bool Fits() const { return BytesWithoutPrefix() <= kCapacity || BytesWithPrefix() <= kCapacity; }
  // Leaves out the common part of the keys where the page had it left out, or where it must be. Jet 4 only.
  void Write(PageFile& pages, PageNumber table);

 private:
  std::size_t CommonPrefix() const;  // bytes that all keys begin with; 0 in nodes
  std::size_t BytesWithPrefix() const;
  View Data() const { return own_ ? View(data_) : borrowed_; }
  void MakeOwn();  // makes the entries this object's own, for a change
  void UndoPrefix();

  Image image_;  // while the entries are those of the page as read
  View borrowed_;
  Bytes data_;
  std::vector<std::size_t> ends_;  // where each entry ends
  bool own_ = true;
};

// Byte by byte; a key that begins another comes first.
std::strong_ordering CompareKeys(View a, View b);
// (key, row) as the bytes of an entry; with a child, of a node's.
Bytes MakeEntry(View key, RowId row);
Bytes MakeEntry(View key, RowId row, PageNumber child);

}  // namespace mdb
