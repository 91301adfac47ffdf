#include "mdb/indexes/index_tree.h"

#include <algorithm>
#include <string>

#include "mdb/indexes/index_tree_internal.h"
#include "mdb/pages/page_map.h"

namespace mdb {
namespace {

// Far beyond what 2 GB of pages need; a damaged file ends here.
constexpr std::size_t kLevels = 24;

TreeData Data(PageFile& pages, PageNumber table, PageNumber root, Pointer map) {
  return {pages, table, root, map};
}

[[noreturn]] void ThrowCycle(PageNumber number) {
  ThrowPageDamage(number, "el índice pasa dos veces por esta página");
}

TreeStep Step(const TreeData& tree, PageNumber number) {
  bool completed = false;
  IndexPage page = ReadTreePage(tree, number, &completed);
  return {std::move(page), 0, completed};
}

class Traversal {
 public:
  Traversal(const TreeData& tree, const std::function<bool(Path&)>& visit, std::vector<PageNumber>* seen)
      : tree_(tree), visit_(visit), seen_(seen), visited_(tree.pages.Count(), false) {}

  bool WalkFrom(PageNumber number) {
    if (number < visited_.size()) {
      if (visited_[number]) ThrowCycle(number);
      visited_[number] = true;
    }
    if (path_.size() >= kLevels) ThrowPageDamage(number, "el índice tiene demasiados niveles");
    path_.push_back(Step(tree_, number));
    if (seen_ != nullptr) seen_->push_back(number);
    const std::size_t here = path_.size() - 1;
    if (path_[here].page.leaf) {
      if (visit_(path_)) return true;
    } else {
      for (std::size_t i = 0; i <= path_[here].page.Count(); ++i) {
        path_[here].place = i;
        if (WalkFrom(path_[here].page.Child(i))) return true;
      }
    }
    path_.pop_back();
    return false;
  }

 private:
  const TreeData& tree_;
  const std::function<bool(Path&)>& visit_;
  std::vector<PageNumber>* seen_;
  std::vector<bool> visited_;
  Path path_;
};

}  // namespace

IndexPage ReadTreePage(const TreeData& tree, PageNumber number, bool* completed) {
  IndexPage p = IndexPage::Read(tree.pages, number, tree.table);
  if (p.leaf || p.tail != 0) return p;
  if (p.Count() == 0) ThrowPageDamage(number, "un nodo del índice no tiene hijos");
  p.tail = p.Child(p.Count() - 1);
  p.Remove(p.Count() - 1, p.Count());
  if (completed != nullptr) *completed = true;
  return p;
}

Path Descend(const TreeData& tree, View key, RowId row) {
  Path path;
  for (PageNumber number = tree.root;;) {
    for (const TreeStep& p : path)
      if (p.page.number == number) ThrowCycle(number);
    if (path.size() >= kLevels) ThrowPageDamage(number, "el índice tiene demasiados niveles");
    path.push_back(Step(tree, number));
    TreeStep& step = path.back();
    step.place = step.page.LowerBound(key, row);
    if (step.page.leaf) return path;
    number = step.page.Child(step.place);
  }
}

bool WalkLeaves(const TreeData& tree, const std::function<bool(Path&)>& visit,
                std::vector<PageNumber>* seen) {
  return Traversal(tree, visit, seen).WalkFrom(tree.root);
}

PageNumber NewTreePage(const TreeData& tree) {
  const PageNumber number = ReservePage(tree.pages);
  if (tree.map.page != 0) AddToMap(tree.pages, tree.map, number);
  return number;
}

void FreeTreePage(const TreeData& tree, PageNumber number) {
  if (tree.map.page != 0) RemoveFromMap(tree.pages, tree.map, number);
  FreePage(tree.pages, number);
}

std::strong_ordering Entry::operator<=>(const Entry& other) const {
  const auto order = CompareKeys(key, other.key);
  return order != 0 ? order : row <=> other.row;
}

void IndexTree::Walk(const std::function<bool(const Entry&)>& visit) const {
  Entry entry;
  WalkLeaves(Data(pages_, table_, root_, map_), [&](Path& path) {
    const IndexPage& leaf = path.back().page;
    for (std::size_t i = 0; i < leaf.Count(); ++i) {
      const View key = leaf.Key(i);
      entry.key.assign(key.begin(), key.end());
      entry.row = leaf.RowOf(i);
      if (!visit(entry)) return true;
    }
    return false;
  });
}

bool IndexTree::Has(View key) const {
  const TreeData tree = Data(pages_, table_, root_, map_);
  const Path path = Descend(tree, key, {});
  IndexPage leaf = path.back().page;
  std::size_t i = path.back().place;
  for (PageNumber steps = 0; i == leaf.Count() && leaf.next != 0; ++steps) {
    if (steps > pages_.Count()) ThrowCycle(leaf.next);
    leaf = ReadTreePage(tree, leaf.next);
    if (!leaf.leaf) ThrowPageDamage(leaf.number, "se esperaba una hoja de índice");
    i = 0;
  }
  if (i == leaf.Count()) return false;
  const View this_page = leaf.Key(i);
  return std::equal(this_page.begin(), this_page.end(), key.begin(), key.end());
}

bool IndexTree::Has(View key, RowId row) const {
  const Path path = Descend(Data(pages_, table_, root_, map_), key, row);
  const TreeStep& leaf = path.back();
  return leaf.place < leaf.page.Count() && leaf.page.Compare(leaf.place, key, row) == 0;
}

void IndexTree::Insert(View key, RowId row) {
  if (key.size() > IndexPage::kMaxKey)
    throw base::Error("La clave de índice es demasiado larga (" + std::to_string(key.size()) + " bytes)");
  const TreeData tree = Data(pages_, table_, root_, map_);
  Path path = Descend(tree, key, row);
  TreeStep& leaf = path.back();
  if (leaf.place < leaf.page.Count() && leaf.page.Compare(leaf.place, key, row) == 0)
    ThrowPageDamage(leaf.page.number, "el índice ya tiene una entrada de una fila nueva");
  leaf.page.Insert(leaf.place, MakeEntry(key, row));
  SaveInsertion(tree, path);
}

bool IndexTree::Delete(View key, RowId row) {
  const TreeData tree = Data(pages_, table_, root_, map_);
  Path path = Descend(tree, key, row);
  const TreeStep& leaf = path.back();
  if (leaf.place == leaf.page.Count() || leaf.page.Compare(leaf.place, key, row) != 0) return false;
  SaveDeletion(tree, path);
  return true;
}

bool IndexTree::DeleteByRow(RowId row) {
  const TreeData tree = Data(pages_, table_, root_, map_);
  Path found;
  WalkLeaves(tree, [&](Path& path) {
    TreeStep& leaf = path.back();
    for (leaf.place = 0; leaf.place < leaf.page.Count(); ++leaf.place)
      if (leaf.page.RowOf(leaf.place) == row) {
        found = std::move(path);
        return true;
      }
    return false;
  });
  if (found.empty()) return false;
  SaveDeletion(tree, found);
  return true;
}

}  // namespace mdb
