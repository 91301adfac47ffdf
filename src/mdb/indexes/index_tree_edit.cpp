#include <algorithm>
#include <string>

#include "mdb/indexes/index_tree_internal.h"

namespace mdb {
namespace {

constexpr std::size_t kCapacity = IndexPage::kCapacity;

// Where the fields of the neighbours stand.
constexpr std::size_t kPrevious = 12, kNext = 16;

void SetNeighbour(const TreeData& tree, PageNumber from, std::size_t field, PageNumber value) {
  if (from == 0) return;
  IndexPage::Read(tree.pages, from, tree.table);  // throws when it is no page of the index
  Put32(tree.pages.Modify(from), field, value);
}

// How many entries go to the new page at the left.
std::size_t CutPoint(const TreeStep& step) {
  const IndexPage& p = step.page;
  const std::size_t n = p.Count();
  if (n < 2) ThrowPageDamage(p.number, "una entrada del índice no cabe en una página");
  // Runs that rise or fall leave full pages behind.
  if (p.next == 0 && step.place + 1 >= n) return n - 1;
  if (p.leaf && p.previous == 0 && step.place == 0) return 1;
  std::size_t k = 0;
  for (std::size_t bytes = 0; 2 * bytes < p.BytesWithoutPrefix(); ++k) bytes += p.Whole(k).size();
  // A node keeps at least two children on both sides.
  return std::clamp<std::size_t>(k, p.leaf || n < 3 ? 1 : 2, n - 1);
}

// The first `k` entries of `p`. Of a node, the last of them becomes the tail.
IndexPage LeftPart(const IndexPage& p, PageNumber number, std::size_t k) {
  IndexPage left(number, p.leaf);
  left.level = p.level;
  left.prefix = p.prefix;
  left.Append(p, 0, p.leaf ? k : k - 1);
  if (!p.leaf) left.tail = p.Child(k - 1);
  return left;
}

void Split(const TreeData& tree, Path& path, std::size_t level) {
  IndexPage& p = path[level].page;
  std::size_t k = CutPoint(path[level]);
  IndexPage left = LeftPart(p, 0, k);
  while (k > 1 && !left.Fits()) left = LeftPart(p, 0, --k);
  if (!left.Fits()) ThrowPageDamage(p.number, "una entrada del índice no cabe en una página");
  left.number = NewTreePage(tree);

  TreeStep& parent = path[level - 1];
  parent.page.Insert(parent.place, MakeEntry(p.Key(k - 1), p.RowOf(k - 1), left.number));
  ++parent.place;
  parent.changed = true;

  left.previous = p.previous;
  left.next = p.number;
  SetNext(tree, p.previous, left.number);
  p.previous = left.number;
  left.Write(tree.pages, tree.table);
  p.Remove(0, k);
  path[level].place -= std::min(path[level].place, k);
}

// The content of the root goes to a page of its own; the root stays where it is, as a node over it.
void LowerRoot(const TreeData& tree, Path& path) {
  TreeStep root{IndexPage(tree.root, false)};
  path[0].page.number = root.page.tail = NewTreePage(tree);
  root.page.level = static_cast<std::uint8_t>(path[0].page.level + 1);
  root.changed = true;
  path.insert(path.begin(), std::move(root));
}

bool IsEmpty(const IndexPage& p) { return p.Count() == 0 && (p.leaf || p.tail == 0); }

bool IsShort(const IndexPage& p) {
  return (!p.leaf && p.Count() == 0) || 4 * p.BytesWithoutPrefix() < kCapacity;
}

// Takes child `parent.place` out of the node at `level`.
void RemoveChild(Path& path, std::size_t level) {
  TreeStep& step = path[level];
  IndexPage& p = step.page;
  step.changed = true;
  const std::size_t n = p.Count();
  if (step.place < n) return p.Remove(step.place, step.place + 1);
  if (n == 0) {
    p.tail = 0;
    return;
  }
  // The tail goes: the child before it becomes the tail, and its key that of the whole node.
  const View key = p.Key(n - 1);
  const Bytes copy(key.begin(), key.end());
  const RowId row = p.RowOf(n - 1);
  p.tail = p.Child(n - 1);
  p.Remove(n - 1, n);
  step.place = n - 1;
  PutKeyAbove(path, level, copy, row);
}

void Unlink(const TreeData& tree, const IndexPage& p) {
  SetNext(tree, p.previous, p.next);
  SetPrevious(tree, p.next, p.previous);
  FreeTreePage(tree, p.number);
}

// `left` and what stands in `right`, as one page with the number of `right`. The left one is named
// in the node above by an entry, whose key is that of its last child.
IndexPage Merged(const IndexPage& left, const IndexPage& right, const IndexPage& parent, std::size_t place) {
  IndexPage p(right.number, right.leaf);
  p.level = right.level;
  p.prefix = std::max(left.prefix, right.prefix);
  p.previous = left.previous;
  p.next = right.next;
  p.tail = right.tail;
  p.Append(left, 0, left.Count());
  if (!p.leaf) p.Insert(p.Count(), MakeEntry(parent.Key(place), parent.RowOf(place), left.tail));
  p.Append(right, 0, right.Count());
  return p;
}

IndexPage ReadSibling(const TreeData& tree, const IndexPage& from, PageNumber number) {
  IndexPage p = ReadTreePage(tree, number);
  if (p.leaf != from.leaf || number == from.number)
    ThrowPageDamage(number, "las páginas de un nivel del índice no son de la misma clase");
  return p;
}

// A node with its tail alone takes a child of a neighbour which is too full to be joined with it.
void TakeChild(const TreeData& tree, Path& path, std::size_t level, IndexPage& sibling, bool right) {
  IndexPage& p = path[level].page;
  TreeStep& parent = path[level - 1];
  const std::size_t place = right ? parent.place : parent.place - 1;  // of the left one of the two
  const std::size_t moving = right ? 0 : sibling.Count() - 1;
  const Bytes separator =
      MakeEntry(sibling.Key(moving), sibling.RowOf(moving), right ? p.number : sibling.number);
  const View key = parent.page.Key(place);
  const RowId row = parent.page.RowOf(place);
  if (right) {
    p.Insert(0, MakeEntry(key, row, p.tail));
    p.tail = sibling.Child(0);
  } else {
    p.Insert(0, MakeEntry(key, row, sibling.tail));
    sibling.tail = sibling.Child(moving);
  }
  sibling.Remove(moving, moving + 1);
  sibling.Write(tree.pages, tree.table);
  parent.page.Replace(place, separator);
  parent.changed = true;
}

// Joins the page at `level` with a neighbour below the same node where the two fill less than three quarters
// of a page, always into the right one of them, so that no other key changes. True when the page is gone.
bool Merge(const TreeData& tree, Path& path, std::size_t level) {
  TreeStep &step = path[level], &parent = path[level - 1];
  const bool alone = !step.page.leaf && step.page.Count() == 0;
  const std::size_t limit = alone ? kCapacity : kCapacity / 4 * 3;
  if (parent.place < parent.page.Count()) {
    IndexPage sibling = ReadSibling(tree, step.page, parent.page.Child(parent.place + 1));
    IndexPage merged = Merged(step.page, sibling, parent.page, parent.place);
    if (merged.BytesWithoutPrefix() <= limit) {
      merged.Write(tree.pages, tree.table);
      SetNext(tree, merged.previous, merged.number);
      FreeTreePage(tree, step.page.number);
      parent.page.Remove(parent.place, parent.place + 1);
      parent.changed = true;
      return true;
    }
    if (alone && sibling.Count() > 1) {
      TakeChild(tree, path, level, sibling, true);
      return false;
    }
  }
  if (parent.place == 0) return false;
  IndexPage sibling = ReadSibling(tree, step.page, parent.page.Child(parent.place - 1));
  IndexPage merged = Merged(sibling, step.page, parent.page, parent.place - 1);
  if (merged.BytesWithoutPrefix() <= limit) {
    SetNext(tree, merged.previous, merged.number);
    FreeTreePage(tree, sibling.number);
    parent.page.Remove(parent.place - 1, parent.place);
    --parent.place;
    parent.changed = true;
    step.page = std::move(merged);
  } else if (alone && sibling.Count() > 1) {
    TakeChild(tree, path, level, sibling, false);
  }
  return false;
}

// A root with one child gives way to it, as often as that is so; one without any becomes an empty leaf.
void FlattenRoot(const TreeData& tree, Path& path) {
  TreeStep& root = path[0];
  while (!root.page.leaf && root.page.Count() == 0) {
    root.changed = true;
    if (root.page.tail == 0) {
      root.page = IndexPage(tree.root, true);
      return;
    }
    const PageNumber child = root.page.tail;
    const auto level = static_cast<std::uint8_t>(root.page.level - 1);
    root.page = ReadTreePage(tree, child);
    root.page.number = tree.root;
    root.page.level = level;
    root.page.previous = root.page.next = 0;
    FreeTreePage(tree, child);
  }
}

// The distances from the leaves, which not every program keeps.
void SetLevels(Path& path) {
  for (std::size_t i = 0; i < path.size(); ++i)
    path[i].page.level = static_cast<std::uint8_t>(path.size() - 1 - i);
}

// Writes what has changed, from the page that stands `below` pages from the end of the way upwards: a root
// that is split makes the way longer at its start. A longer key above, as a removal may leave one, splits
// too.
void SaveFrom(const TreeData& tree, Path& path, std::size_t below) {
  for (; below <= path.size(); ++below)
    if (path[path.size() - below].changed) SaveStep(tree, path, path.size() - below);
}

}  // namespace

void SetPrevious(const TreeData& tree, PageNumber from, PageNumber previous) {
  SetNeighbour(tree, from, kPrevious, previous);
}

void SetNext(const TreeData& tree, PageNumber from, PageNumber next) {
  SetNeighbour(tree, from, kNext, next);
}

void PutKeyAbove(Path& path, std::size_t level, View key, RowId row) {
  while (level-- > 0) {
    TreeStep& step = path[level];
    if (step.place == step.page.Count()) continue;  // the tail: its key stands further up, if anywhere
    if (step.page.Compare(step.place, key, row) == 0) return;
    step.page.Replace(step.place, MakeEntry(key, row, step.page.Child(step.place)));
    step.changed = true;
    return;
  }
}

void SaveStep(const TreeData& tree, Path& path, std::size_t level) {
  const std::size_t below = path.size() - level;  // pages from here to the leaf, which a new root leaves
  while (!path[path.size() - below].page.Fits()) {
    if (below == path.size()) LowerRoot(tree, path);
    Split(tree, path, path.size() - below);
  }
  path[path.size() - below].page.Write(tree.pages, tree.table);
}

void SaveInsertion(const TreeData& tree, Path& path) {
  SetLevels(path);
  TreeStep& leaf = path.back();
  leaf.changed = true;
  if (leaf.place + 1 == leaf.page.Count())
    PutKeyAbove(path, path.size() - 1, leaf.page.Key(leaf.place), leaf.page.RowOf(leaf.place));
  SaveFrom(tree, path, 1);
}

void SaveDeletion(const TreeData& tree, Path& path) {
  SetLevels(path);
  TreeStep& leaf = path.back();
  leaf.page.Remove(leaf.place, leaf.place + 1);
  leaf.changed = true;
  const std::size_t n = leaf.page.Count();
  if (n > 0 && leaf.place == n)
    PutKeyAbove(path, path.size() - 1, leaf.page.Key(n - 1), leaf.page.RowOf(n - 1));
  for (std::size_t level = path.size() - 1; level > 0; --level) {
    TreeStep& step = path[level];
    if (!step.changed) continue;
    if (IsEmpty(step.page)) {
      Unlink(tree, step.page);
      RemoveChild(path, level - 1);
    } else if (!IsShort(step.page) || !Merge(tree, path, level)) {
      SaveStep(tree, path, level);
    }
  }
  FlattenRoot(tree, path);
  SaveFrom(tree, path, path.size());
}

}  // namespace mdb
