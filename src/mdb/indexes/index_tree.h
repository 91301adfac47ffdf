// The tree of one real index: nodes and leaves (pages of types 3 and 4).
#pragma once

#include <compare>
#include <functional>
#include <vector>

#include "mdb/definitions/definition.h"

namespace mdb {

struct Entry {
  Bytes key;
  RowId row;
  std::strong_ordering operator<=>(const Entry& other) const;  // the order of the leaves
  bool operator==(const Entry&) const = default;
};

class IndexTree {
 public:
  // `table` is the page of the definition, written into each index page.
  IndexTree(PageFile& pages, PageNumber table, const RealIndex& index)
      : pages_(pages), table_(table), root_(index.root), map_(index.map) {}

  // In the order of the leaves; false ends the walk. Prefixes are undone. Throws Damage on pages that come
  // back, are of another type or table.
  void Walk(const std::function<bool(const Entry&)>& visit) const;
  // Whether there is an entry with this key, whatever its row.
  bool Has(View key) const;
  bool Has(View key, RowId row) const;
  // The entry must not be there. The root keeps its page number.
  void Insert(View key, RowId row);
  // False when it is not there.
  bool Delete(View key, RowId row);
  // Removes the entry of a row whatever its key, by walking all leaves; for keys that another program made
  // otherwise.
  bool DeleteByRow(RowId row);
  // Fills an empty tree from sorted entries, pages well filled.
  void Build(const std::vector<Entry>& sorted);
  // Frees all pages but the root, which becomes an empty leaf.
  void Clear();

 private:
  PageFile& pages_;
  PageNumber table_, root_;
  Pointer map_;
};

// A new root: an empty leaf, entered in the map.
PageNumber CreateRoot(PageFile& pages, PageNumber table, Pointer map);

}  // namespace mdb
