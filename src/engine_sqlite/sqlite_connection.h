// The embedded engine: one SQLite file behind the dialect.
//
// Saved queries live in a table of the file, MSysConsultas, as their dialect text; the translator reads them
// from there. Columns keep the types of the dialect in their declarations (see jetsql/runtime.h).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/locale.h"
#include "base/sort_order.h"
#include "db/connection.h"
#include "ports/clock.h"

namespace engine_sqlite {

struct Options {
  bool create = false;  // make the file when there is none (":memory:" needs no flag)
  bool read_only = false;
  // Work on a copy of the file in memory, which is only read: everything may change there, and nothing of it
  // ever reaches the file.
  bool private_copy = false;
  bool dao_wildcards = false;  // LIKE with * ? # as saved queries of the DAO kind have
  base::SortOrder order = base::SortOrder::ModernSpanish;  // of a new file; one that exists keeps its own
  const ports::Clock* clock = nullptr;   // what Date() and Now() ask; the system's clock when null
  const base::Locale* locale = nullptr;  // of the texts that the dialect makes and reads; spanish() when null
  int wait_ms = 5000;                    // how long to wait for another program that is writing
};

// Opens the file (path in UTF-8, or ":memory:"). Throws db::Error with a readable reason. The clock and the
// locale must outlive the connection.
std::unique_ptr<db::Connection> Open(std::string_view path, const Options& options = {});

// What a connection has done, for tests and benchmarks.
struct Counters {
  std::int64_t executions = 0;    // statements run
  std::int64_t translations = 0;  // texts that went through the translator
  std::int64_t preparations = 0;  // SQLite statements compiled
  std::int64_t equal_texts = 0;   // texts known by heart
  std::int64_t known_shapes = 0;  // texts of a known shape
};
// Null for a connection of another engine.
const Counters* CountersOf(const db::Connection& connection);

}  // namespace engine_sqlite
