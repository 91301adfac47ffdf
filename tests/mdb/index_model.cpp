#include "mdb/index_model.h"

#include <algorithm>
#include <map>

#include "mdb/pages/page_map.h"
#include "mdb/schema/new_file.h"

namespace mdb_test {
namespace {

class Revision {
 public:
  explicit Revision(const Tree& tree) : tree_(tree) {}

  // Returns the level of the page; `last` becomes the last entry below it.
  int CheckPage(mdb::PageNumber number, mdb::Entry& last) {
    if (!seen_.insert(number).second) {
      ADD_FAILURE() << "page " << number << " met twice";
      return 0;
    }
    const auto p = mdb::IndexPage::Read(*tree_.pages, number, tree_.table);
    EXPECT_EQ(p.free_bytes, p.free_bytes_on_page) << number;
    EXPECT_EQ((*tree_.pages->Read(number))[1], 1) << number;
    shape_.bytes += p.BytesWithoutPrefix();
    const int level = p.leaf ? CheckLeaf(p, last) : CheckNode(p, last);
    EXPECT_EQ(p.level, level) << number;
    if (static_cast<std::size_t>(level) >= levels_.size())
      levels_.resize(static_cast<std::size_t>(level) + 1);
    levels_[static_cast<std::size_t>(level)].push_back(p);
    return level;
  }

  void CheckLinks() const {
    for (const auto& level : levels_)
      for (std::size_t i = 0; i < level.size(); ++i) {
        EXPECT_EQ(level[i].previous, i == 0 ? 0 : level[i - 1].number) << level[i].number;
        EXPECT_EQ(level[i].next, i + 1 == level.size() ? 0 : level[i + 1].number) << level[i].number;
      }
  }
  void CheckMap() const {
    const auto in_map = mdb::ReadMap(*tree_.pages, tree_.index.map);
    EXPECT_EQ(std::set<mdb::PageNumber>(in_map.begin(), in_map.end()), seen_);
    const auto free_pages = mdb::ReadMap(*tree_.pages, {1, 0});
    for (const auto free_page : free_pages) EXPECT_FALSE(seen_.contains(free_page)) << free_page;
  }
  std::vector<mdb::Entry>& Entries() { return entries_; }
  Shape End() {
    shape_.levels = levels_.size();
    shape_.pages = seen_.size();
    return shape_;
  }

 private:
  static mdb::Entry Of(const mdb::IndexPage& p, std::size_t i) {
    const auto key = p.Key(i);
    return {mdb::Bytes(key.begin(), key.end()), p.RowOf(i)};
  }

  int CheckLeaf(const mdb::IndexPage& p, mdb::Entry& last) {
    EXPECT_EQ(p.tail, 0U) << p.number;
    EXPECT_TRUE(p.Count() > 0 || p.number == tree_.index.root) << p.number;
    for (std::size_t i = 0; i < p.Count(); ++i) entries_.push_back(Of(p, i));
    if (p.Count() > 0) last = entries_.back();
    return 0;
  }

  int CheckNode(const mdb::IndexPage& p, mdb::Entry& last) {
    EXPECT_NE(p.tail, 0U) << p.number;
    EXPECT_GT(p.Count(), 0U) << "a node with one child: " << p.number;
    int level = -1;
    for (std::size_t i = 0; i <= p.Count(); ++i) {
      const int below = CheckPage(p.Child(i), last);
      EXPECT_TRUE(level < 0 || level == below) << p.number;
      level = below;
      if (i < p.Count()) {
        EXPECT_TRUE(Of(p, i) == last) << "key " << i << " of node " << p.number;
      }
    }
    return level + 1;
  }

  const Tree& tree_;
  std::set<mdb::PageNumber> seen_;
  std::vector<std::vector<mdb::IndexPage>> levels_;
  std::vector<mdb::Entry> entries_;
  Shape shape_;
};

}  // namespace

Tree NewTree() {
  Tree tree;
  mdb::Bytes bytes = mdb::MakeDatabase(3082, base::MakeDate(2026, 11, 21));
  const mdb::FileHeader header = mdb::ReadHeader(bytes);
  tree.pages = std::make_unique<mdb::MemoryPages>(header, std::move(bytes));
  tree.table = 2;
  tree.index.map = mdb::CreateMap(*tree.pages);
  tree.index.root = mdb::CreateRoot(*tree.pages, tree.table, tree.index.map);
  return tree;
}

std::uint32_t One(Random& random, std::uint32_t to) { return static_cast<std::uint32_t>(random()) % to; }

mdb::Bytes Number(std::uint32_t n) {
  return {0x7F, static_cast<std::uint8_t>(n >> 24), static_cast<std::uint8_t>(n >> 16),
          static_cast<std::uint8_t>(n >> 8), static_cast<std::uint8_t>(n)};
}

mdb::RowId Row(std::uint32_t n) { return {n / 200 + 7, static_cast<std::uint8_t>(n % 200)}; }

Tree WithNumbers(const std::vector<std::uint32_t>& numbers) {
  Tree tree = NewTree();
  for (const auto n : numbers) tree.Open().Insert(Number(n), Row(n));
  return tree;
}

Shape Check(const Tree& tree, std::vector<mdb::Entry>* entries) {
  Revision revision(tree);
  mdb::Entry last;
  revision.CheckPage(tree.index.root, last);
  revision.CheckLinks();
  revision.CheckMap();
  const auto& all = revision.Entries();
  const auto disorder = std::adjacent_find(all.begin(), all.end(), [](const auto& a, const auto& b) {
    return std::tie(a.key, a.row) >= std::tie(b.key, b.row);
  });
  EXPECT_EQ(disorder, all.end()) << "entry " << disorder - all.begin() << " out of order";
  if (entries != nullptr) *entries = std::move(revision.Entries());
  return revision.End();
}

::testing::AssertionResult IsEqual(const Tree& tree, const std::set<mdb::Entry>& model) {
  std::vector<mdb::Entry> entries;
  Check(tree, &entries);
  if (std::equal(entries.begin(), entries.end(), model.begin(), model.end()))
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << "the tree has " << entries.size() << " entries, the model " << model.size();
}

}  // namespace mdb_test
