// The engines that the tables are run on, each as a maker of fresh bases.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/locale.h"
#include "base/sort_order.h"
#include "db/connection.h"
#include "ports/clock.h"

namespace conformance {

struct Settings {
  const base::Locale* locale = nullptr;
  const ports::Clock* clock = nullptr;
  bool dao_wildcards = false;
  base::SortOrder order = base::SortOrder::General;
};

class Engine {
 public:
  virtual ~Engine() = default;
  // An empty base of its own; its file, if it has one, goes when the engine does.
  virtual std::unique_ptr<db::Connection> NewDatabase(const Settings& settings) = 0;
};

// By name: sqlite, mdb, odbc. Throws std::invalid_argument for another name, std::runtime_error for one that
// was not built into this program or cannot make a base here.
std::unique_ptr<Engine> EngineByName(std::string_view name);

}  // namespace conformance
