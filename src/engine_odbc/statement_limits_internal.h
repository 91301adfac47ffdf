// Bounded queries over a driver, whose work nobody can count: time stands for it.
#pragma once

#include <chrono>

#include "db/query_budget.h"
#include "engine_odbc/odbc_internal.h"

namespace engine_odbc {

// While it lives, the cursor's statements are asked to end within what the budget has, and give no more rows
// than it has. A driver may pass both over. Its time is taken off the budget at the end. Without a budget it
// does nothing.
class StatementLimits {
 public:
  StatementLimits(const Cursor& cursor, db::QueryBudget* budget);
  StatementLimits(const StatementLimits&) = delete;
  StatementLimits& operator=(const StatementLimits&) = delete;
  ~StatementLimits();

  // One more row, its last `width` cells. Throws db::QueryInterrupted when it is one too many or too late.
  void Row(const std::vector<base::Value>& cells, std::size_t width);

 private:
  std::int64_t Spent() const;  // steps

  const Cursor& cursor_;
  db::QueryBudget* budget_;
  std::chrono::steady_clock::time_point start_;
};

}  // namespace engine_odbc
