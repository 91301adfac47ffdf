// All rows of a result. Rows are materialised when the statement runs; copying shares nothing.
// A field or row that the result does not have is db::Error from every reader: an engine may answer with
// fewer columns than it was asked for.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/value.h"

namespace db {

struct Column {
  std::string name;
  base::Type type = base::Type::Null;  // Null: not known before the rows; each value has its own type
};
using Columns = std::vector<Column>;

class Recordset {
 public:
  Recordset() = default;
  // `cells` row by row; throws db::Error when they do not fill whole rows. The column list is shared with
  // the engine's statement cache.
  Recordset(std::shared_ptr<const Columns> columns, std::vector<base::Value> cells, std::string source = {});

  const Columns& Fields() const;
  // Index of the column whatever its case, -1 when there is none.
  int PositionOf(std::string_view name) const;
  std::size_t Count() const { return rows_; }
  bool IsEmpty() const { return rows_ == 0; }
  const base::Value& At(std::size_t field, std::size_t row) const {
    if (static_cast<unsigned>(field >= width_) | static_cast<unsigned>(row >= rows_))
      ThrowOutside(field, row);  // one branch: 100,000 rows are read by place
    return cells_[row * width_ + field];
  }

  // Of the first row. Both throw db::Error when there is none, or no such column.
  const base::Value& Field(std::size_t field) const;
  const base::Value& Field(std::string_view name) const;

  // The SQL text it came from.
  const std::string& Source() const { return source_; }

 private:
  [[noreturn]] void ThrowOutside(std::size_t field, std::size_t row) const;

  std::shared_ptr<const Columns> columns_;
  std::vector<base::Value> cells_;
  std::string source_;
  std::size_t width_ = 0;
  std::size_t rows_ = 0;
};

}  // namespace db
