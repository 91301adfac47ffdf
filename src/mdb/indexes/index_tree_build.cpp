// Whole trees at once: filled from sorted entries, or emptied.
#include <algorithm>

#include "mdb/indexes/index_tree.h"
#include "mdb/indexes/index_tree_internal.h"

namespace mdb {
namespace {

// A sixteenth stays free on each page, so that the next changes do not split all of them.
constexpr std::size_t kFull = IndexPage::kCapacity / 16 * 15;

// What a page of some level is made of: an entry of a leaf, or a child with the last entry below it.
struct Piece {
  const Entry* entry = nullptr;
  PageNumber child = 0;
  std::size_t Bytes() const { return entry->key.size() + (child == 0 ? 4 : 8); }
};

// Where each page's pieces end. A leaf holds all of its pieces as entries, a node all but its last one, and
// two at least.
std::vector<std::size_t> Ends(const std::vector<Piece>& pieces, bool leaves) {
  const std::size_t minus = leaves ? 1 : 2;
  std::vector<std::size_t> ends;
  std::size_t from = 0, bytes = 0;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    std::size_t more = 0;  // what this piece adds to the page
    if (leaves || i > from) more = pieces[leaves ? i : i - 1].Bytes();
    if (i >= from + minus && bytes + more > kFull) {
      ends.push_back(i);
      from = i;
      bytes = 0;
      more = leaves ? more : 0;
    }
    bytes += more;
  }
  if (!leaves && !ends.empty() && pieces.size() - ends.back() < minus) {
    // One child is left over: the page before gives one away, or takes it in when it has but two itself.
    const std::size_t before = ends.size() > 1 ? ends[ends.size() - 2] : 0;
    if (ends.back() - before > minus)
      --ends.back();
    else
      ends.pop_back();
  }
  ends.push_back(pieces.size());
  return ends;
}

void Fill(IndexPage& p, const std::vector<Piece>& pieces, std::size_t from, std::size_t to) {
  for (std::size_t i = from; i < to; ++i) {
    const Entry& e = *pieces[i].entry;
    if (p.leaf)
      p.Insert(p.Count(), MakeEntry(e.key, e.row));
    else if (i + 1 < to)
      p.Insert(p.Count(), MakeEntry(e.key, e.row, pieces[i].child));
    else
      p.tail = pieces[i].child;
  }
}

// Writes one level and returns its pages as the pieces of the next; a level of one page is the root.
std::vector<Piece> WriteLevel(const TreeData& tree, const std::vector<Piece>& pieces, std::uint8_t level) {
  const std::vector<std::size_t> ends = Ends(pieces, level == 0);
  std::vector<PageNumber> numbers(ends.size(), tree.root);
  if (ends.size() > 1) std::generate(numbers.begin(), numbers.end(), [&] { return NewTreePage(tree); });
  std::vector<Piece> next_level;
  for (std::size_t k = 0; k < ends.size(); ++k) {
    IndexPage p(numbers[k], level == 0);
    p.level = level;
    p.previous = k == 0 ? 0 : numbers[k - 1];
    p.next = k + 1 == ends.size() ? 0 : numbers[k + 1];
    Fill(p, pieces, k == 0 ? 0 : ends[k - 1], ends[k]);
    p.Write(tree.pages, tree.table);
    next_level.push_back({pieces[ends[k] - 1].entry, numbers[k]});
  }
  return next_level;
}

}  // namespace

void IndexTree::Build(const std::vector<Entry>& sorted) {
  const TreeData tree{pages_, table_, root_, map_};
  const IndexPage root = ReadTreePage(tree, root_);
  if (!root.leaf || root.Count() != 0) ThrowPageDamage(root_, "el índice por construir no está vacío");
  if (sorted.empty()) return;
  std::vector<Piece> pieces;
  pieces.reserve(sorted.size());
  for (const Entry& e : sorted) {
    if (e.key.size() > IndexPage::kMaxKey)
      throw base::Error("La clave de índice es demasiado larga (" + std::to_string(e.key.size()) + " bytes)");
    pieces.push_back({&e});
  }
  std::uint8_t level = 0;
  do pieces = WriteLevel(tree, pieces, level++);
  while (pieces.size() > 1);
}

void IndexTree::Clear() {
  const TreeData tree{pages_, table_, root_, map_};
  std::vector<PageNumber> seen;
  WalkLeaves(
      tree, [](Path&) { return false; }, &seen);
  for (const PageNumber number : seen)
    if (number != root_) FreeTreePage(tree, number);
  IndexPage(root_, true).Write(pages_, table_);
}

PageNumber CreateRoot(PageFile& pages, PageNumber table, Pointer map) {
  const TreeData tree{pages, table, 0, map};
  const PageNumber number = NewTreePage(tree);
  IndexPage(number, true).Write(pages, table);
  return number;
}

}  // namespace mdb
