#include "engine.h"
#include "engine_sqlite/sqlite_connection.h"
#include "support/temp_folder.h"

namespace tests {
namespace {

class BaseSqlite final : public TestDatabase {
 public:
  explicit BaseSqlite(const Wishes& wishes) {
    options_.create = true;
    options_.clock = wishes.clock;
    options_.locale = wishes.locale;
    options_.order = wishes.order;
    options_.dao_wildcards = wishes.dao_wildcards;
    connection_ = engine_sqlite::Open(folder_.Path("base.sqlite"), options_);
  }
  db::Connection& Connection() override { return *connection_; }
  void Reopen() override {
    connection_.reset();
    connection_ = engine_sqlite::Open(folder_.Path("base.sqlite"), options_);
  }

 private:
  support::TempFolder folder_;
  engine_sqlite::Options options_;
  std::unique_ptr<db::Connection> connection_;
};

}  // namespace

std::unique_ptr<TestDatabase> Create(const Wishes& wishes) { return std::make_unique<BaseSqlite>(wishes); }

}  // namespace tests
