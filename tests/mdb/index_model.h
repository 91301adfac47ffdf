// A tree of an index in a file of its own, beside a set that says what it must hold.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <set>
#include <string>

#include "mdb/indexes/index_page.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/pages/page_file.h"

namespace mdb_test {

struct Tree {
  std::unique_ptr<mdb::MemoryPages> pages;
  mdb::PageNumber table = 0;
  mdb::RealIndex index;
  mdb::IndexTree Open() const { return {*pages, table, index}; }
};

// An empty tree in a new file.
Tree NewTree();

// Fixed random numbers: one below `to`.
using Random = std::mt19937;
std::uint32_t One(Random& random, std::uint32_t to);

// Keys and rows of short trees, in the order of their numbers.
mdb::Bytes Number(std::uint32_t n);
mdb::RowId Row(std::uint32_t n);
Tree WithNumbers(const std::vector<std::uint32_t>& numbers);

struct Shape {
  std::size_t levels = 0, pages = 0, bytes = 0;  // bytes of entries, prefixes undone
};

// Walks the tree by its bytes and holds it to every rule of its format: types, owners, free fields, order,
// tails, keys of nodes, links of each level, level bytes, the page map, children a node has. Every violation
// is a failure of the running test. Returns the entries through `entries` when given.
Shape Check(const Tree& tree, std::vector<mdb::Entry>* entries = nullptr);

// Check, and the entries compared with the model.
::testing::AssertionResult IsEqual(const Tree& tree, const std::set<mdb::Entry>& model);

}  // namespace mdb_test
