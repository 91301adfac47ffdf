// What a batch of changes does to the indexes of a table: gathered first, checked, then done in the order of
// the keys.
#pragma once

#include <string>
#include <vector>

#include "mdb/indexes/index_tree.h"
#include "mdb/tables/table_writer.h"

namespace mdb::internal {

class IndexChanges {
 public:
  IndexChanges(PageFile& pages, Definition& definition);

  // Positions of the columns that some index has.
  const std::vector<std::size_t>& Columns() const { return columns_; }
  // A row that goes away, and one that comes; `new_row` is the row's place among those that come, and its
  // values must stay where they are until RemoveAndCheck. They throw KeyError for a Null where an index
  // takes none.
  void RowLeaves(RowId row, const Row& values);
  void RowEnters(std::size_t new_row, const Row& values);
  // A row that stays with other values in these columns: only keys that differ are touched.
  void RowChanges(RowId row, const Row& before, const Row& after, const std::vector<bool>& changed);

  // Takes out the old entries; throws KeyError when a new key is there already, or twice among the new.
  void RemoveAndCheck();
  // Puts in the new ones; `new_rows` are the identities of the rows that came.
  void Put(const std::vector<RowId>& new_rows);

 private:
  struct Departure {
    Entry entry;
    bool keyless = false;  // the key cannot be made: found by its row
  };
  struct Arrival {
    Bytes key;
    RowId row;                // of a row that stays
    std::size_t new_row = 0;  // of one that comes
    bool is_new = false, all_null = false;
    const Row* values = nullptr;  // of a row that comes
    std::string text;             // for a message about one that stays
  };
  struct One {
    std::size_t which = 0;
    bool unique = false, required = false;
    std::vector<std::size_t> columns;  // positions
    std::vector<Departure> departures;
    std::vector<Arrival> arrivals;
  };
  PageFile& pages_;
  Definition& definition_;
  std::vector<One> indexes_;
  std::vector<std::size_t> columns_;

  RealIndex& Real(const One& u) const { return definition_.reals[u.which]; }
  IndexTree Tree(const One& u) const { return {pages_, definition_.Page(), Real(u)}; }
  void RowLeaves(One& u, RowId row, const Row& values);
  void AddArrival(One& u, Arrival arrival, const Row& values);
  void Check(One& u);
  std::string NameOf(const One& u) const;
  std::string ValuesText(const One& u, const Row& values) const;
};

}  // namespace mdb::internal
