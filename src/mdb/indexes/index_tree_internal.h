// The way from the root of an index to one of its leaves, and what a change does along it.
#pragma once

#include <functional>
#include <vector>

#include "mdb/indexes/index_page.h"

namespace mdb {

struct TreeStep {
  IndexPage page;
  std::size_t place = 0;  // of the child taken (the tail is the last), or of the entry in a leaf
  bool changed = false;
};
// From the root down. Each page differs from the others.
using Path = std::vector<TreeStep>;

// Which tree: its pages, the page of the table's definition, the root and the index's page map.
struct TreeData {
  PageFile& pages;
  PageNumber table;
  PageNumber root;
  Pointer map;
};

// A page of the tree; a node without a tail gets its last child as one, and `completed`, when given, tells.
IndexPage ReadTreePage(const TreeData& tree, PageNumber number, bool* completed = nullptr);
// To the leaf where (key, row) belongs; `place` of the leaf is the first entry not before it.
Path Descend(const TreeData& tree, View key, RowId row);
// Calls `visit` with the way to each leaf, from left to right; true ends the walk, and is returned.
// `seen`, when given, gets the numbers of all pages in the order in which they are met.
bool WalkLeaves(const TreeData& tree, const std::function<bool(Path&)>& visit,
                std::vector<PageNumber>* seen = nullptr);

// The leaf at the end has a new entry at its `place`: writes everything that follows.
void SaveInsertion(const TreeData& tree, Path& path);
// The leaf at the end loses the entry at its `place`: the same.
void SaveDeletion(const TreeData& tree, Path& path);

// Pages of the index, kept in its map.
PageNumber NewTreePage(const TreeData& tree);
void FreeTreePage(const TreeData& tree, PageNumber number);
// Writes one neighbour of a page, which is 0 when there is none.
void SetPrevious(const TreeData& tree, PageNumber from, PageNumber previous);
void SetNext(const TreeData& tree, PageNumber from, PageNumber next);
// Writes the page at `level` of the way; what does not fit goes to new pages at its left, which the node
// above learns of (it is not yet written). A root that does not fit moves away and becomes a node.
void SaveStep(const TreeData& tree, Path& path, std::size_t level);
// The last entry below the page at `level` is now this one: the node above that names it is told.
void PutKeyAbove(Path& path, std::size_t level, View key, RowId row);

}  // namespace mdb
