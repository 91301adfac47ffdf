// How much queries may take that nobody has looked at.
#pragma once

#include <cstdint>

namespace db {

// What bounded queries may still take together; each takes its share off. Steps are those of the engine's
// machine and not milliseconds, so that what is interrupted on one computer is on every other. A look-up in a
// table of 100,000 rows takes about one million of them.
struct QueryBudget {
  std::int64_t steps = 30'000'000;
  std::int64_t rows = 500'000;
  std::int64_t bytes = std::int64_t{1} << 24;  // of the texts in the result
};

// Lends a budget to an engine while one bounded query runs.
class BudgetInUse {
 public:
  BudgetInUse(QueryBudget*& place, QueryBudget& budget) : place_(place) { place_ = &budget; }
  BudgetInUse(const BudgetInUse&) = delete;
  BudgetInUse& operator=(const BudgetInUse&) = delete;
  ~BudgetInUse() { place_ = nullptr; }

 private:
  QueryBudget*& place_;
};

}  // namespace db
