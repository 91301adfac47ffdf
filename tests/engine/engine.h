// What an engine gives the suite: a new base of its own, to be filled by the cases. Each engine's program has
// one file that defines Create.
#pragma once

#include <memory>

#include "base/locale.h"
#include "base/sort_order.h"
#include "db/connection.h"
#include "ports/clock.h"

namespace tests {

struct Wishes {
  const ports::Clock* clock = nullptr;
  const base::Locale* locale = nullptr;
  base::SortOrder order = base::SortOrder::ModernSpanish;
  bool dao_wildcards = false;
};

class TestDatabase {
 public:
  virtual ~TestDatabase() = default;
  virtual db::Connection& Connection() = 0;
  // Closes it, and opens it again with what it holds.
  virtual void Reopen() = 0;
};

std::unique_ptr<TestDatabase> Create(const Wishes& wishes);

}  // namespace tests
