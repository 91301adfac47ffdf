#include "mdb/indexes/index_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <random>

#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/index_model.h"
#include "mdb/outside.h"
#include "mdb/pages/page_map.h"
#include "mdb/samples.h"

namespace {

using mdb::Bytes;
using mdb::Entry;
using mdb_test::Number;
using mdb_test::One;
using mdb_test::Random;
using mdb_test::Row;
using mdb_test::Tree;
using mdb_test::WithNumbers;

Bytes AnyKey(Random& random, std::size_t length) {
  Bytes v(length);
  for (auto& b : v) b = static_cast<std::uint8_t>(random());
  return v;
}

struct Model {
  const char* name;
  std::function<Bytes(Random&)> key;
  std::uint32_t rows;
};

// Keys as they come in real indexes, and worse.
std::vector<Model> Models() {
  return {
      {"short", [](Random& a) { return Number(One(a, 100000)); }, 50000},
      {"few keys, many rows", [](Random& a) { return Number(One(a, 5)); }, 5000},
      {"any length up to 510", [](Random& a) { return AnyKey(a, 1 + One(a, 510)); }, 50000},
      {"510 bytes", [](Random& a) { return AnyKey(a, 510); }, 50000},
      {"the longest", [](Random& a) { return AnyKey(a, mdb::IndexPage::kMaxKey - One(a, 2) * 900); }, 50000},
      {"a long common part",
       [](Random& a) {
         Bytes v(200, static_cast<std::uint8_t>(0x40 + One(a, 3)));
         const Bytes rest = AnyKey(a, 1 + One(a, 6));
         v.insert(v.end(), rest.begin(), rest.end());
         return v;
       },
       50000},
      // One key begins another: the order is that of the keys, whatever follows them in the entry.
      {"one begins another", [](Random& a) { return Bytes(1 + One(a, 300), 0x7F); }, 300},
  };
}

class Trial {
 public:
  Trial(Tree& tree, const Model& model, unsigned seed) : tree_(tree), model_(model), random_(seed) {}

  void Insert() {
    Entry e{model_.key(random_), Row(One(random_, model_.rows))};
    const auto [it, is_new] = keys_.insert(e);
    EXPECT_EQ(tree_.Open().Has(e.key, e.row), !is_new);
    if (is_new) tree_.Open().Insert(e.key, e.row);
    ++done;
  }
  void Delete() {
    Entry e{model_.key(random_), Row(One(random_, model_.rows))};
    auto it = keys_.lower_bound(e);
    if (it == keys_.end()) {
      EXPECT_FALSE(tree_.Open().Delete(e.key, e.row));
    } else {
      EXPECT_TRUE(tree_.Open().Delete(it->key, it->row));
      keys_.erase(it);
    }
    ++done;
  }
  void Ask() {
    const Bytes key = model_.key(random_);
    const auto it = keys_.lower_bound({key, {}});
    EXPECT_EQ(tree_.Open().Has(key), it != keys_.end() && it->key == key);
  }
  // `inserts` in a hundred are insertions.
  void Mix(int times, std::uint32_t inserts) {
    for (int i = 0; i < times; ++i) {
      if (One(random_, 100) < inserts)
        Insert();
      else
        Delete();
      if (i % 7 == 0) Ask();
    }
    EXPECT_TRUE(mdb_test::IsEqual(tree_, keys_));
  }
  void DeleteAll() {
    std::vector<Entry> order(keys_.begin(), keys_.end());
    std::shuffle(order.begin(), order.end(), random_);
    for (const Entry& e : order) EXPECT_TRUE(tree_.Open().Delete(e.key, e.row));
    done += order.size();
    keys_.clear();
    EXPECT_TRUE(mdb_test::IsEqual(tree_, keys_));
  }
  const std::set<Entry>& Keys() const { return keys_; }
  std::size_t done = 0;

 private:
  Tree& tree_;
  const Model& model_;
  Random random_;
  std::set<Entry> keys_;
};

TEST(IndexTree, HoldsWhatAModelHoldsThroughRandomChanges) {
  std::size_t done = 0;
  for (const Model& model : Models())
    for (unsigned seed = 1; seed <= 3; ++seed) {
      SCOPED_TRACE(std::string(model.name) + ", seed " + std::to_string(seed));
      Tree tree = mdb_test::NewTree();
      const auto root = tree.index.root;
      Trial trial(tree, model, seed);
      trial.Mix(1500, 90);
      for (const std::uint32_t inserts : {50U, 20U, 70U, 10U, 95U, 40U}) trial.Mix(700, inserts);
      trial.DeleteAll();
      EXPECT_EQ(mdb_test::Check(tree).pages, 1U);
      trial.Mix(800, 80);
      EXPECT_EQ(tree.index.root, root);
      done += trial.done;
      if (::testing::Test::HasFailure()) return;
    }
  std::cout << done << " insertions and removals\n";
  EXPECT_GT(done, 100000U);
}

TEST(IndexTree, ThePagesOfAnEmptiedTreeAreFreeAgain) {
  Tree tree = mdb_test::NewTree();
  const Model model = Models()[3];
  Trial trial(tree, model, 5);
  trial.Mix(1000, 100);
  const auto count = tree.pages->Count();
  EXPECT_GT(count, 150U);
  trial.DeleteAll();
  std::size_t free_pages = mdb::ReadMap(*tree.pages, {1, 0}).size();
  EXPECT_GE(free_pages + 20, count);
  trial.Mix(1000, 100);
  EXPECT_LE(tree.pages->Count(), count + 20);
}

TEST(IndexTree, RisingAndFallingRunsLeaveFullPages) {
  std::vector<std::uint32_t> numbers(20000);
  for (std::uint32_t i = 0; i < numbers.size(); ++i) numbers[i] = i;
  const auto full = [&](const Tree& tree) {
    std::vector<Entry> entries;
    const auto a = mdb_test::Check(tree, &entries);
    EXPECT_EQ(entries.size(), numbers.size());
    EXPECT_EQ(a.levels, 2U);
    return static_cast<double>(a.bytes) / static_cast<double>(a.pages * mdb::IndexPage::kCapacity);
  };
  EXPECT_GT(full(WithNumbers(numbers)), 0.95);
  std::reverse(numbers.begin(), numbers.end());
  EXPECT_GT(full(WithNumbers(numbers)), 0.95);
  std::shuffle(numbers.begin(), numbers.end(), Random(3));
  EXPECT_GT(full(WithNumbers(numbers)), 0.6);
}

TEST(IndexTree, RunsAreRemovedFromEitherEndAndFromTheMiddle) {
  constexpr std::uint32_t kCount = 6000;
  std::vector<std::uint32_t> numbers(kCount);
  for (std::uint32_t i = 0; i < kCount; ++i) numbers[i] = i;
  const auto remove = [&](const std::vector<std::uint32_t>& order) {
    Tree tree = WithNumbers(numbers);
    std::set<Entry> remaining;
    for (const auto n : numbers) remaining.insert({Number(n), Row(n)});
    for (std::size_t i = 0; i < order.size(); ++i) {
      EXPECT_TRUE(tree.Open().Delete(Number(order[i]), Row(order[i])));
      remaining.erase({Number(order[i]), Row(order[i])});
      if (i % 500 == 499) {
        EXPECT_TRUE(mdb_test::IsEqual(tree, remaining));
      }
    }
    EXPECT_TRUE(mdb_test::IsEqual(tree, remaining));
  };
  remove(numbers);
  remove({numbers.rbegin(), numbers.rend()});
  std::vector<std::uint32_t> middle = numbers;
  std::rotate(middle.begin(), middle.begin() + 2000, middle.end());
  remove(middle);
}

TEST(IndexTree, MergesPagesThatHaveBecomeSmall) {
  std::vector<std::uint32_t> numbers(20000);
  for (std::uint32_t i = 0; i < numbers.size(); ++i) numbers[i] = i;
  Tree tree = WithNumbers(numbers);
  const auto before = mdb_test::Check(tree).pages;
  for (const auto n : numbers)
    if (n % 10 != 0) {
      EXPECT_TRUE(tree.Open().Delete(Number(n), Row(n)));
    }
  const auto after = mdb_test::Check(tree).pages;
  EXPECT_LT(after * 2, before);
}

TEST(IndexTree, BuildsTreesOfAnySizeAtOnce) {
  Random random(11);
  for (const Model& model : Models())
    for (const std::size_t count : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 20U, 120U, 300U, 1000U, 4000U}) {
      SCOPED_TRACE(std::string(model.name) + " " + std::to_string(count));
      std::set<Entry> keys;
      for (std::size_t i = 0; i < count; ++i) keys.insert({model.key(random), Row(One(random, model.rows))});
      Tree tree = mdb_test::NewTree();
      tree.Open().Build({keys.begin(), keys.end()});
      EXPECT_TRUE(mdb_test::IsEqual(tree, keys));
      // It goes on as any other.
      for (int i = 0; i < 20; ++i) {
        const Entry e{model.key(random), Row(60000 + static_cast<std::uint32_t>(i))};
        if (keys.insert(e).second) tree.Open().Insert(e.key, e.row);
        tree.Open().Delete(keys.begin()->key, keys.begin()->row);
        keys.erase(keys.begin());
      }
      EXPECT_TRUE(mdb_test::IsEqual(tree, keys));
      tree.Open().Clear();
      EXPECT_TRUE(mdb_test::IsEqual(tree, {}));
      tree.Open().Build({keys.begin(), keys.end()});
      EXPECT_TRUE(mdb_test::IsEqual(tree, keys));
    }
}

TEST(IndexTree, BuildsOnlyOverAnEmptyTree) {
  Tree tree = WithNumbers({1});
  EXPECT_THROW(tree.Open().Build({{Number(2), Row(2)}}), base::Error);
}

TEST(IndexTree, RemovesAnEntryByItsRowAlone) {
  std::vector<std::uint32_t> numbers(3000);
  std::set<Entry> model;
  for (std::uint32_t i = 0; i < numbers.size(); ++i) {
    numbers[i] = i;
    model.insert({Number(i), Row(i)});
  }
  Tree tree = WithNumbers(numbers);
  for (const std::uint32_t n : {0U, 2999U, 1500U, 1499U, 361U, 360U}) {
    EXPECT_TRUE(tree.Open().DeleteByRow(Row(n)));
    EXPECT_FALSE(tree.Open().DeleteByRow(Row(n)));
    model.erase({Number(n), Row(n)});
  }
  EXPECT_TRUE(mdb_test::IsEqual(tree, model));
}

TEST(IndexTree, RefusesAKeyThatIsTooLongAndAnEntryThatIsThere) {
  Tree tree = WithNumbers({1, 2, 3});
  EXPECT_THROW(tree.Open().Insert(Number(2), Row(2)), mdb::Damage);
  EXPECT_NO_THROW(tree.Open().Insert(Number(2), Row(5)));
  EXPECT_THROW(tree.Open().Insert(Bytes(mdb::IndexPage::kMaxKey + 1, 1), Row(1)), base::Error);
  EXPECT_FALSE(tree.Open().Delete(Number(4), Row(4)));
  EXPECT_FALSE(tree.Open().Delete(Number(3), Row(4)));
}

TEST(IndexTree, CompressesALeafBeforeItSplitsAndKeepsItSo) {
  Tree tree = mdb_test::NewTree();
  std::set<Entry> model;
  for (std::uint32_t i = 0; i < 40; ++i) {
    Bytes key(100, 0x55);
    const Bytes n = Number(i);
    key.insert(key.end(), n.begin(), n.end());
    model.insert({key, Row(i)});
    tree.Open().Insert(key, Row(i));
  }
  // 40 entries of 109 bytes are more than a page holds, but their common part is stored once.
  EXPECT_EQ(mdb_test::Check(tree).pages, 1U);
  EXPECT_TRUE(mdb_test::IsEqual(tree, model));
  const auto prefix = [&] { return mdb::IndexPage::Read(*tree.pages, tree.index.root, tree.table).prefix; };
  EXPECT_EQ(prefix(), 104U);
  while (model.size() > 3) {
    const Entry e = *model.begin();
    EXPECT_TRUE(tree.Open().Delete(e.key, e.row));
    model.erase(e);
  }
  EXPECT_EQ(prefix(), 104U);
  tree.Open().Insert(Bytes{0x56}, Row(99));
  EXPECT_EQ(prefix(), 0U);
  model.insert({{0x56}, Row(99)});
  EXPECT_TRUE(mdb_test::IsEqual(tree, model));
}

// --- the trees that others wrote ---

TEST(IndexTree, TakesEveryTreeOfEveryFileApartAndTogetherAgain) {
  std::size_t trees = 0, entries = 0;
  Random random(17);
  for (const std::string& path : mdb_test::EveryFile()) {
    SCOPED_TRACE(path);
    Tree tree;
    tree.pages = mdb_test::Load(path);
    if (tree.pages->Header().Jet3()) continue;
    const mdb::SystemCatalog catalog(*tree.pages);
    for (const mdb::Object& o : catalog.Objects()) {
      if (o.type != mdb::Object::Table) continue;
      SCOPED_TRACE(o.name);
      const auto d = mdb::ReadDefinition(*tree.pages, static_cast<mdb::PageNumber>(o.id));
      tree.table = d.Page();
      for (const auto& index : d.reals) {
        tree.index = index;
        std::set<Entry> model;
        tree.Open().Walk([&](const Entry& e) { return model.insert(e).second; });
        std::vector<Entry> order(model.begin(), model.end());
        std::shuffle(order.begin(), order.end(), random);
        for (std::size_t i = 0; i < order.size(); ++i) {
          EXPECT_TRUE(tree.Open().Delete(order[i].key, order[i].row));
          model.erase(order[i]);
          if (i % 97 == 0) {
            EXPECT_TRUE(mdb_test::IsEqual(tree, model));
          }
        }
        std::shuffle(order.begin(), order.end(), random);
        for (std::size_t i = 0; i < order.size(); ++i) {
          tree.Open().Insert(order[i].key, order[i].row);
          model.insert(order[i]);
          if (i % 97 == 0) {
            EXPECT_TRUE(mdb_test::IsEqual(tree, model));
          }
        }
        EXPECT_TRUE(mdb_test::IsEqual(tree, model));
        ++trees;
        entries += order.size();
      }
    }
    tree.pages->Commit();
    if (tree.pages->Header().key == 0) {  // the checker does not decrypt
      EXPECT_EQ(mdb_test::RunChecker(tree.pages->Stored(), false), "");
    }
  }
  std::cout << trees << " trees, " << entries << " entries\n";
  EXPECT_GT(entries, 5000U);
}

}  // namespace
