// The end of a query that nobody has looked at.
#pragma once

#include "db/query_budget.h"
#include "engine_sqlite/runtime_internal.h"
#include "engine_sqlite/sqlite_internal.h"

namespace engine_sqlite {

// While it lives, the steps of a statement, and the work of the functions and comparisons that it calls, are
// taken off the budget; SQLite interrupts the statement when nothing is left. Without a budget it does
// nothing. Only reading statements may be interrupted so: a change would take its whole transaction along.
class WorkLimit {
 public:
  WorkLimit(sqlite3* base, sqlite3_stmt* statement, Environment& environment, db::QueryBudget* budget);
  WorkLimit(const WorkLimit&) = delete;
  WorkLimit& operator=(const WorkLimit&) = delete;
  ~WorkLimit();

  // One more row of the result, its last `width` cells. Throws db::QueryInterrupted when it is one too many.
  void Row(const std::vector<base::Value>& cells, std::size_t width);
  // Throws db::QueryInterrupted when the failure that the statement ended with is ours.
  void ThrowIfInterrupted() const;

 private:
  sqlite3* base_;
  Environment& environment_;
  db::QueryBudget* budget_;
};

}  // namespace engine_sqlite
