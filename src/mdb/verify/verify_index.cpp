#include <algorithm>
#include <optional>

#include "mdb/indexes/index_page.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/verify/verify_internal.h"

namespace mdb::internal {
namespace {

using IndexKeys = SeenRows::IndexKeys;

constexpr std::size_t kLevels = 24;

std::string IndexName(const Definition& d, std::size_t index) {
  for (const LogicalIndex& l : d.logicals)
    if (l.real == index) return l.name;
  return "número " + std::to_string(index);
}

bool IsUnique(const Definition& d, std::size_t index) {
  return d.reals[index].IsUnique() ||
         std::any_of(d.logicals.begin(), d.logicals.end(), [&](const LogicalIndex& l) {
           return l.real == index && l.kind == LogicalIndex::Primary;
         });
}

std::string Hex(View v) {
  std::string t;
  for (const std::uint8_t b : v) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    t += kDigits[b >> 4];
    t += kDigits[b & 15];
  }
  return t;
}

class IndexCheck {
 public:
  IndexCheck(Revision& r, const Definition& d, std::size_t index, SeenRows& rows)
      : r_(r), d_(d), real_(d.reals[index]), rows_(rows), index_keys_(rows.indexes[index]) {
    const std::string name = Quoted(IndexName(d, index));
    where_ = "tabla " + Quoted(d.name) + ", índice " + name;
    owner_ = r.AddOwner("el índice " + name + " de la tabla " + Quoted(d.name));
    unique_ = IsUnique(d, index);
  }

  void Run() {
    ++r_.report.indexes;
    const SeenMap map = r_.CheckMap(real_.map, owner_, where_);
    whole_ = true;
    CheckPage(real_.root, 0);
    CheckLinks();
    if (whole_ && map.readable && real_.map.page != 0) CheckMap(map.pages);
    if (whole_) ReportMissing();
    if (keyless_ != 0 && index_keys_.has_keys)
      r_.Note(0, where_,
              Counted(keyless_, "una clave no se puede", "claves no se pueden") +
                  " calcular para comprobar la entrada");
    if (!index_keys_.has_keys && !rows_.ids.empty())
      r_.Note(0, where_, "el orden de sus claves no se conoce y no se comprobaron");
  }

 private:
  struct Level {
    PageNumber number, previous, next;
  };

  // Walks a page and what is below it. Returns its distance from the leaves, none when it cannot be read;
  // `last_` is then the last entry met.
  std::optional<std::size_t> CheckPage(PageNumber number, std::size_t depth) {
    std::optional<std::size_t> height;
    if (depth >= kLevels) {
      r_.Error(number, where_, "el índice tiene demasiados niveles");
    } else if (r_.Take(number, owner_, where_)) {
      r_.Try(number, where_, [&] {
        const IndexPage p = IndexPage::Read(r_.pages, number, 0);
        pages_.push_back(number);
        if (p.owner != d_.Page())
          r_.Error(number, where_, "la página dice ser de la tabla de la página " + std::to_string(p.owner));
        if (p.free_bytes != p.free_bytes_on_page)
          r_.Error(number, where_,
                   "dice tener " + std::to_string(p.free_bytes_on_page) + " bytes libres y tiene " +
                       std::to_string(p.free_bytes));
        height = p.leaf ? CheckLeaf(p) : CheckNode(p, depth);
        if (p.level != *height && p.leaf)
          r_.Error(number, where_, "la hoja dice ser del nivel " + std::to_string(unsigned{p.level}));
        if (p.level != *height && !p.leaf)
          r_.Note(number, where_,
                  "el nodo dice ser del nivel " + std::to_string(unsigned{p.level}) + " y es del " +
                      std::to_string(*height));
        if (levels_.size() <= *height) levels_.resize(*height + 1);
        levels_[*height].push_back({number, p.previous, p.next});
      });
    }
    whole_ = whole_ && height;
    return height;
  }

  std::size_t CheckLeaf(const IndexPage& p) {
    if (p.tail != 0) r_.Error(p.number, where_, "la hoja tiene un hijo");
    if (p.Count() == 0 && p.number != real_.root) r_.Error(p.number, where_, "la hoja está vacía");
    for (std::size_t i = 0; i < p.Count(); ++i) CheckEntry(p, i);
    return 0;
  }

  std::size_t CheckNode(const IndexPage& p, std::size_t depth) {
    std::optional<std::size_t> below;
    if (p.tail == 0 && p.Count() > 1) r_.Note(p.number, where_, "el nodo no tiene hijo final");
    const std::size_t children = p.Count() + (p.tail != 0 ? 1 : 0);
    if (children == 0) ThrowPageDamage(p.number, "el nodo no tiene hijos");
    for (std::size_t i = 0; i < children; ++i) {
      const std::size_t before = entries_;
      const auto height = CheckPage(p.Child(i), depth + 1);
      if (height && below && *height != *below)
        r_.Error(p.number, where_, "los hijos del nodo no son del mismo nivel");
      if (height) below = std::max(below.value_or(0), *height);
      if (height && i < p.Count() && entries_ != before && p.Compare(i, last_.key, last_.row) != 0)
        r_.Error(p.number, where_,
                 "la clave del nodo para la página " + std::to_string(p.Child(i)) +
                     " no es la última que hay debajo de ella");
      if (i > 0 && i < p.Count() && p.Compare(i - 1, p.Key(i), p.RowOf(i)) >= 0)
        r_.Error(p.number, where_, "las claves del nodo no están en orden");
    }
    return below.value_or(0) + 1;
  }

  void CheckEntry(const IndexPage& p, std::size_t i) {
    const View key = p.Key(i);
    const RowId row = p.RowOf(i);
    ++r_.report.entries;
    const auto order = CompareKeys(last_.key, key);
    const bool first = entries_++ == 0;
    if (!first && (order > 0 || (order == 0 && last_.row >= row)))
      r_.Error(p.number, where_,
               "la entrada " + std::to_string(i) + " (" + OfRow(row) + ") no está en su orden");
    CompareWithRow(p.number, key, row, !first && order == 0);
    last_.key.assign(key.begin(), key.end());
    last_.row = row;
  }

  void CompareWithRow(PageNumber page, View key, RowId id, bool repeated) {
    const auto it = std::lower_bound(rows_.ids.begin(), rows_.ids.end(), id);
    if (it == rows_.ids.end() || *it != id) {
      r_.Error(page, where_, "hay una entrada de " + OfRow(id) + ", que no existe");
      return;
    }
    const auto n = static_cast<std::size_t>(it - rows_.ids.begin());
    std::uint8_t& marks = index_keys_.marks[n];
    if ((marks & IndexKeys::kEntry) != 0) r_.Error(page, where_, OfRow(id) + " tiene más de una entrada");
    if (real_.IsRequired() && (marks & IndexKeys::kAnyNull) != 0)
      r_.Error(page, where_, OfRow(id) + " no tiene valor en una columna del índice, que lo exige");
    marks |= IndexKeys::kEntry;
    if (!rows_.readable[n]) return;
    if (unique_ && repeated && (marks & IndexKeys::kAllNull) == 0)
      r_.Error(page, where_, "el índice es único, y " + OfRow(id) + " tiene la misma clave que otra");
    if ((marks & IndexKeys::kNoKey) != 0) {
      ++keyless_;
      return;
    }
    const View expected = index_keys_.Key(n);
    if (std::equal(key.begin(), key.end(), expected.begin(), expected.end())) return;
    const std::string reason =
        "la clave de " + OfRow(id) + " es " + Hex(key) + ", y la de sus valores es " + Hex(expected);
    if ((marks & IndexKeys::kDoubtful) != 0)
      r_.Note(page, where_, reason);
    else
      r_.Error(page, where_, reason);
  }

  void ReportMissing() {
    for (std::size_t n = 0; n < rows_.ids.size(); ++n) {
      const std::uint8_t marks = index_keys_.marks[n];
      if ((marks & IndexKeys::kEntry) != 0 || !rows_.readable[n]) continue;
      if (real_.IgnoresNulls() && (marks & IndexKeys::kAllNull) != 0) continue;
      r_.Error(rows_.ids[n].page, where_, OfRow(rows_.ids[n]) + " no tiene entrada en el índice");
    }
  }

  // Leaves are linked over the whole index; some programs link nodes only below the same node.
  void CheckLinks() {
    if (!whole_) return;
    for (std::size_t k = 0; k < levels_.size(); ++k)
      for (std::size_t i = 0; i < levels_[k].size(); ++i) {
        const Level& n = levels_[k][i];
        const PageNumber before = i == 0 ? 0 : levels_[k][i - 1].number;
        const PageNumber after = i + 1 == levels_[k].size() ? 0 : levels_[k][i + 1].number;
        const auto bad = [&](PageNumber stated, PageNumber actual) {
          return stated != actual && (k == 0 || stated != 0);
        };
        if (bad(n.previous, before))
          r_.Error(n.number, where_,
                   "dice que la página anterior es la " + std::to_string(n.previous) + ", y es la " +
                       std::to_string(before));
        if (bad(n.next, after))
          r_.Error(n.number, where_,
                   "dice que la página siguiente es la " + std::to_string(n.next) + ", y es la " +
                       std::to_string(after));
      }
  }

  void CheckMap(const std::vector<PageNumber>& map) {
    std::sort(pages_.begin(), pages_.end());
    for (const PageNumber p : pages_)
      if (!std::binary_search(map.begin(), map.end(), p))
        r_.Error(p, where_, "la página es del índice y su mapa no la nombra");
    for (const PageNumber p : map)
      if (!std::binary_search(pages_.begin(), pages_.end(), p))
        r_.Error(p, where_, "el mapa del índice nombra la página, y el índice no la usa");
  }

  Revision& r_;
  const Definition& d_;
  const RealIndex& real_;
  SeenRows& rows_;
  IndexKeys& index_keys_;
  std::string where_;
  Revision::Owner owner_ = 0;
  bool unique_ = false, whole_ = false;
  std::vector<std::vector<Level>> levels_;
  std::vector<PageNumber> pages_;
  Entry last_;
  std::size_t entries_ = 0, keyless_ = 0;
};

}  // namespace

void CheckIndex(Revision& revision, const Definition& definition, std::size_t index, SeenRows& rows) {
  IndexCheck(revision, definition, index, rows).Run();
}

}  // namespace mdb::internal
