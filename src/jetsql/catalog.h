// What the translator asks of a database: its tables with typed columns, and its saved queries.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/value.h"

namespace jetsql {

struct TableColumn {
  std::string name;  // as it was created
  base::Type type = base::Type::Null;
};

struct TableInfo {
  std::string name;  // as it was created
  std::vector<TableColumn> columns;
};

class Catalog {
 public:
  virtual ~Catalog() = default;
  // By name whatever its case; null when there is none. Asking may read the database. Pointers stay valid
  // until the next definition statement.
  virtual const TableInfo* Table(std::string_view name) = 0;
  // The dialect text of a saved query, or null.
  virtual const std::string* Query(std::string_view name) = 0;
};

}  // namespace jetsql
