// The rows of one table, for writing: encoded, placed, moved, with their long values. Knows no index.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "mdb/rows/long_value_write_internal.h"
#include "mdb/rows/row_encode_internal.h"
#include "mdb/tables/table_writer.h"

namespace mdb::internal {

// For one batch of changes; the definition must outlive it.
class RowWriter {
 public:
  RowWriter(PageFile& pages, const Definition& definition);
  // All throw base::Error for values that the table does not hold, or a row that is not there; Damage.
  RowId Insert(const Row& row);
  void Change(const RowChange& change);
  void Delete(RowId row);

 private:
  PageFile& pages_;
  const Definition& definition_;
  RowBuilder builder_;
  RowStore store_;
  std::map<std::size_t, std::unique_ptr<LongValues>> long_values_;  // by position of the column
  // The row in hand: its columns, and the bytes of those that are not views of a stored row.
  std::vector<Raw> raw_values_;
  std::vector<Bytes> bytes_;
  Bytes row_;

  LongValues& LongsOf(std::size_t column);
  void PutValue(std::size_t column, const Datum& datum);
  void Shorten();
  void Build();
  void PutAt(RowId row, RowId place);
};

// The bytes of a row that must be there; throws base::Error when it is not.
RowBytes RequireRow(PageFile& pages, const Definition& definition, RowId row);

}  // namespace mdb::internal
