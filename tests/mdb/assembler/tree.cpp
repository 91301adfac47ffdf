// Index trees: leaves in the order of their entries, and nodes over them.
#include <algorithm>

#include "mdb/assembler/bytes.h"

namespace assembler {
namespace {

Bytes LeafEntry(const Entry& e) {
  Bytes b = e.key;
  AddHighFirst(b, e.row.page, 3);
  b.push_back(e.row.row);
  return b;
}

struct Leaf {
  std::vector<Bytes> entries;
  std::size_t common = 0;  // bytes that all but the first leave out
};

std::size_t CommonStart(const Bytes& a, const Bytes& b, std::size_t most) {
  std::size_t n = 0;
  while (n < most && a[n] == b[n]) ++n;
  return n;
}

class Builder {
 public:
  Builder(Pages& pages, PageNumber table) : pages_(pages), table_(table) {}

  // An index page; `last` is the whole last entry below it.
  struct Written {
    PageNumber page;
    Bytes last;
  };
  void Write(PageNumber number, const Leaf& page, unsigned level, PageNumber before, PageNumber after,
             PageNumber tail) {
    const bool jet3 = pages_.Jet3();
    Bytes b(pages_.Size(), 0xEE);
    std::fill_n(b.begin(), Start(), std::uint8_t{0});
    Put(b, 0, level == 0 ? 0x0104 : 0x0103, 2);
    Put(b, 4, table_, 4);
    const std::size_t links = jet3 ? 8 : 12;
    Put(b, links, before, 4);
    Put(b, links + 4, after, 4);
    Put(b, links + 8, tail, 4);
    Put(b, links + 12, page.common, jet3 ? 1 : 2);
    b[jet3 ? 21 : 26] = static_cast<std::uint8_t>(level);
    std::size_t end = 0;
    for (std::size_t i = 0; i < page.entries.size(); ++i) {
      const Bytes& e = page.entries[i];
      const std::size_t out = i == 0 ? 0 : page.common;
      std::copy(e.begin() + static_cast<std::ptrdiff_t>(out), e.end(),
                b.begin() + static_cast<std::ptrdiff_t>(Start() + end));
      end += e.size() - out;
      b[(jet3 ? 22 : 27) + end / 8] |= static_cast<std::uint8_t>(1U << end % 8);
    }
    Put(b, 2, pages_.Size() - Start() - end, 2);
    pages_.all.at(number) = b;
  }
  std::size_t Start() const { return pages_.Jet3() ? 248 : 480; }
  std::size_t Room() const { return pages_.Size() - Start(); }

 private:
  Pages& pages_;
  PageNumber table_;
};

// Entries into leaves, each as full as `most` and the page allow.
std::vector<Leaf> Leaves(const std::vector<Entry>& entries, std::size_t room, std::size_t most,
                         bool prefixes) {
  std::vector<Leaf> leaves(1);
  std::size_t used = 0;
  for (const Entry& e : entries) {
    Bytes bytes = LeafEntry(e);
    if (used + bytes.size() > room || leaves.back().entries.size() >= most) {
      leaves.emplace_back();
      used = 0;
    }
    used += bytes.size();
    leaves.back().entries.push_back(std::move(bytes));
  }
  if (prefixes)
    for (Leaf& l : leaves)
      if (l.entries.size() > 1) {
        const Bytes &first = l.entries.front(), &last = l.entries.back();
        l.common = CommonStart(first, last, std::min(first.size(), last.size()) - 4);
      }
  return leaves;
}

}  // namespace

Tree BuildTree(Pages& pages, PageNumber table, std::vector<Entry> entries, unsigned entries_a_leaf,
               bool prefixes) {
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.key != b.key ? a.key < b.key : a.row < b.row; });
  Builder builder(pages, table);
  const std::size_t most = entries_a_leaf == 0 ? 100000 : entries_a_leaf;
  const auto leaves = Leaves(entries, builder.Room(), most, prefixes);
  Tree tree;
  tree.root = pages.Add();
  tree.pages = {tree.root};
  if (leaves.size() == 1) {
    builder.Write(tree.root, leaves.front(), 0, 0, 0, 0);
    return tree;
  }
  std::vector<Builder::Written> below;
  for (const Leaf& l : leaves) below.push_back({pages.Add(), l.entries.back()});
  for (std::size_t i = 0; i < leaves.size(); ++i)
    builder.Write(below[i].page, leaves[i], 0, i == 0 ? 0 : below[i - 1].page,
                  i + 1 == leaves.size() ? 0 : below[i + 1].page, 0);
  for (const auto& w : below) tree.pages.push_back(w.page);
  for (unsigned level = 1;; ++level) {
    // A node's last child has no entry: the field "tail" names it.
    std::vector<std::vector<Builder::Written>> nodes(1);
    std::size_t used = 0;
    for (const auto& child : below) {
      if ((used + child.last.size() + 4 > builder.Room() || nodes.back().size() > most) &&
          nodes.back().size() > 1) {
        nodes.emplace_back();
        used = 0;
      }
      nodes.back().push_back(child);
      used += child.last.size() + 4;
    }
    if (nodes.size() > 1 && nodes.back().size() == 1) {
      nodes.back().insert(nodes.back().begin(), nodes[nodes.size() - 2].back());
      nodes[nodes.size() - 2].pop_back();
    }
    std::vector<Builder::Written> above;
    for (const auto& n : nodes) above.push_back({nodes.size() == 1 ? tree.root : pages.Add(), n.back().last});
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      Leaf page;
      for (std::size_t k = 0; k + 1 < nodes[i].size(); ++k) {
        Bytes e = nodes[i][k].last;
        AddHighFirst(e, nodes[i][k].page, 4);
        page.entries.push_back(std::move(e));
      }
      builder.Write(above[i].page, page, level, i == 0 ? 0 : above[i - 1].page,
                    i + 1 == nodes.size() ? 0 : above[i + 1].page, nodes[i].back().page);
    }
    if (nodes.size() == 1) return tree;
    for (const auto& w : above) tree.pages.push_back(w.page);
    below = std::move(above);
  }
}

}  // namespace assembler
