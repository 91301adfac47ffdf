// Trees whose pages are damaged: an answer or an error of the data that names the page, and always an end.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iostream>

#include "mdb/index_model.h"
#include "mdb/pages/page_map.h"

namespace {

using mdb::Bytes;
using mdb::Entry;
using namespace mdb_test;

void ExpectDamage(const std::function<void()>& action, mdb::PageNumber page, const char* reason) {
  try {
    action();
    ADD_FAILURE() << "no damage found: " << reason;
  } catch (const mdb::Damage& d) {
    EXPECT_NE(d.Description().find("página " + std::to_string(page) + ":"), std::string::npos)
        << d.Description();
    EXPECT_NE(d.Description().find(reason), std::string::npos) << d.Description();
  }
}

Tree ThreeLevels() {
  Tree tree = mdb_test::NewTree();
  for (std::uint32_t i = 0; i < 400; ++i) {
    Bytes key(400, static_cast<std::uint8_t>(i));
    key[0] = static_cast<std::uint8_t>(i >> 8);
    tree.Open().Insert(key, Row(i));
  }
  EXPECT_EQ(mdb_test::Check(tree).levels, 3U);
  return tree;
}

TEST(IndexTree, DamageIsNamedWithItsPage) {
  const Tree tree = ThreeLevels();
  auto& pages = *tree.pages;
  const auto root = tree.index.root;
  const auto child = mdb::IndexPage::Read(pages, root, tree.table).Child(0);
  const auto leaf = mdb::IndexPage::Read(pages, child, tree.table).Child(0);
  const auto walk = [&] { tree.Open().Walk([](const Entry&) { return true; }); };
  const auto with = [&](mdb::PageNumber page, const std::function<void(Bytes&)>& damage,
                        const std::function<void()>& action, mdb::PageNumber named, const char* reason) {
    const auto point = pages.Save();
    damage(pages.Modify(page));
    ExpectDamage(action, named, reason);
    pages.RollbackTo(point);
  };
  const Bytes first(400, 0);
  const auto descend = [&] { tree.Open().Has(first, Row(0)); };
  const auto put_child = [](Bytes& p, mdb::PageNumber value) {  // of the first entry of a node
    std::size_t end = 0;
    while ((p[27 + end / 8] >> end % 8 & 1) == 0) ++end;
    for (int k = 0; k < 4; ++k) p[480 + end - 4 + k] = static_cast<std::uint8_t>(value >> (24 - 8 * k));
  };
  for (const auto& action : {std::function<void()>(walk), std::function<void()>(descend)}) {
    with(
        child, [&](Bytes& p) { put_child(p, root); }, action, root, "dos veces");
    with(
        child, [&](Bytes& p) { put_child(p, child); }, action, child, "dos veces");
    with(
        child, [&](Bytes& p) { put_child(p, 1); }, action, 1, "se esperaba una página de índice");
    with(
        child, [&](Bytes& p) { put_child(p, 0x00FFFFFF); }, action, 0x00FFFFFF, "páginas");
    with(
        leaf, [](Bytes& p) { p[4] = 9; }, action, leaf, "otra tabla");
    with(
        leaf, [](Bytes& p) { p[0] = 1; }, action, leaf, "se esperaba una página de índice");
    with(
        leaf, [](Bytes& p) { p[24] = 0xFF, p[25] = 0x03; }, action, leaf, "más corta que la parte común");
    with(
        leaf, [](Bytes& p) { p[27] |= 2; }, action, leaf, "demasiado corta");
    with(
        leaf, [](Bytes& p) { p[479] |= 0x80; }, action, leaf, "no caben");
  }
  with(
      root,
      [](Bytes& p) {
        std::fill(p.begin() + 20, p.begin() + 24, std::uint8_t{0});
        std::fill(p.begin() + 27, p.begin() + 480, std::uint8_t{0});
      },
      walk, root, "no tiene hijos");
}

TEST(IndexTree, AChainOfEmptyLeavesThatComesBackEnds) {
  Tree tree = WithNumbers({1});
  auto& pages = *tree.pages;
  mdb::Put32(pages.Modify(tree.index.root), 16, tree.index.root);
  EXPECT_TRUE(tree.Open().Has(Number(1)));
  std::fill_n(pages.Modify(tree.index.root).begin() + 27, 453, std::uint8_t{0});
  ExpectDamage([&] { tree.Open().Has(Number(1)); }, tree.index.root, "dos veces");
}

// Whatever the bytes of the pages are, a tree gives an answer or an error of the data.
TEST(IndexTree, EndsOnDamagedPages) {
  Random random(23);
  const Tree good = ThreeLevels();
  good.pages->Commit();
  const auto its = mdb::ReadMap(*good.pages, good.index.map);
  std::size_t errors = 0, done = 0;
  for (int round = 0; round < 400; ++round) {
    Tree tree;
    tree.table = good.table;
    tree.index = good.index;
    Bytes bytes = good.pages->Stored();
    for (std::uint32_t k = 0, n = 1 + One(random, round % 2 == 0 ? 3 : 60); k < n; ++k) {
      const std::size_t page = its[One(random, static_cast<std::uint32_t>(its.size()))];
      bytes[page * 4096 + One(random, One(random, 2) == 0 ? 28 : 4096)] =
          static_cast<std::uint8_t>(One(random, 2) == 0 ? One(random, 256) : its[One(random, 8)]);
    }
    tree.pages = std::make_unique<mdb::MemoryPages>(good.pages->Header(), std::move(bytes));
    for (std::uint32_t i = 0; i < 60; ++i, ++done) {
      Bytes key(400, static_cast<std::uint8_t>(One(random, 256)));
      key[0] = static_cast<std::uint8_t>(One(random, 2));
      const auto row = Row(One(random, 400));
      const auto point = tree.pages->Save();
      try {
        if (i % 5 == 0)
          tree.Open().Walk([](const Entry&) { return true; });
        else if (i % 5 == 1)
          tree.Open().Has(key);
        else if (i % 5 == 2)
          tree.Open().DeleteByRow(row);
        else if (i % 5 == 3)
          tree.Open().Insert(key, Row(1000 + i));
        else
          tree.Open().Delete(key, row);
      } catch (const base::Error&) {
        tree.pages->RollbackTo(point);
        ++errors;
      }
    }
    try {
      tree.Open().Clear();
    } catch (const base::Error&) {
      ++errors;
    }
  }
  std::cout << done << " operations, " << errors << " errors\n";
  EXPECT_GT(errors, 100U);
}

// A node of another program may hold its last child as an entry, without a tail.
TEST(IndexTree, ANodeWithoutATailGetsOne) {
  Tree tree = WithNumbers({});
  for (std::uint32_t i = 0; i < 800; ++i) tree.Open().Insert(Number(i), Row(i));
  auto& pages = *tree.pages;
  auto root = mdb::IndexPage::Read(pages, tree.index.root, tree.table);
  root.Insert(root.Count(), mdb::MakeEntry(Number(799), Row(799), root.tail));
  root.tail = 0;
  root.Write(pages, tree.table);
  EXPECT_TRUE(tree.Open().Has(Number(799), Row(799)));
  EXPECT_FALSE(tree.Open().Has(Number(900), Row(900)));
  tree.Open().Insert(Number(900), Row(900));
  std::vector<Entry> entries;
  mdb_test::Check(tree, &entries);
  EXPECT_EQ(entries.size(), 801U);
}

}  // namespace
