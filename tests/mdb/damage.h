// Damage planted into copies of the samples: what finds the right byte, and what asks the check about it.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "mdb/corpus.h"
#include "mdb/indexes/index_page.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/pages/page_map.h"
#include "mdb/pages/page_rows.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"

namespace mdb_test {

using mdb::Bytes;
using mdb::PageNumber;
using mdb::RowId;

constexpr std::size_t kMask = 27, kEntries = 480;  // of an index page

// A copy of a file, with what one needs to find the right byte.
class Workpiece {
 public:
  explicit Workpiece(const std::string& file);

  std::unique_ptr<mdb::MemoryPages> pages;

  Bytes& P(PageNumber n) { return pages->Modify(n); }
  mdb::Definition Def(const std::string& table);
  PageNumber DataPage(const std::string& table, std::size_t k = 0);  // its k-th page of rows
  std::vector<RowId> Rows(const std::string& table);
  mdb::IndexTree Tree(const std::string& table, std::size_t index);
  mdb::IndexPage Index(PageNumber n) { return mdb::IndexPage::Read(*pages, n, 0); }
  std::vector<mdb::Entry> Entries(const std::string& table, std::size_t index);
  struct Place {
    PageNumber page;
    std::size_t pos, length;
  };
  // Where the bytes of a row, or of one of its columns, stand.
  Place Row(const std::string& table, RowId id);
  Place Cell(const std::string& table, RowId id, const std::string& column);
  // The first row whose column is this.
  RowId Where(const std::string& table, const std::string& column, const mdb::Datum& value);
  // In the first page of a definition: its columns, and its real and logical indexes.
  std::size_t ColumnPos(const std::string& table, std::size_t k);
  std::size_t RealPos(const std::string& table, std::size_t k);
  std::size_t LogicalPos(const std::string& table, std::size_t k);
  // The row of a map.
  Place Map(mdb::Pointer map);
};

constexpr std::size_t Slot(std::size_t row) { return 14 + 2 * row; }

inline void Add16(Bytes& v, std::size_t pos, int n) {
  mdb::Put16(v, pos, static_cast<std::uint16_t>(mdb::U16(v, pos) + n));
}

struct PlantedDamage {
  const char* name;
  const char* file;
  std::function<PageNumber(Workpiece&)> plant;  // returns the page that the finding must name, or 0
  const char* finding;
};

constexpr const char *kCompound = "compound.mdb", *kIndices = "relations.mdb", *kMoved = "moved.mdb",
                     *kQueries = "queries.mdb", *kTwoPages = "long.mdb";

// Each in a copy of its own: the check finds nothing before, and afterwards an error with these words that
// names the page.
void Plant(const std::vector<PlantedDamage>& damages);

}  // namespace mdb_test
