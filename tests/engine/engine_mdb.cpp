#include "engine.h"
#include "engine_mdb/mdb_connection.h"
#include "support/temp_folder.h"

namespace tests {
namespace {

std::uint16_t LcidOf(base::SortOrder order) {
  if (order == base::SortOrder::General) return 1033;
  return order == base::SortOrder::TraditionalSpanish ? 1034 : 3082;
}

class BaseMdb final : public TestDatabase {
 public:
  explicit BaseMdb(const Wishes& wishes) {
    options_.clock = wishes.clock;
    options_.locale = wishes.locale;
    options_.dao_wildcards = wishes.dao_wildcards;
    connection_ = engine_mdb::Create(folder_.Path("base.mdb"), options_, LcidOf(wishes.order));
  }
  db::Connection& Connection() override { return *connection_; }
  void Reopen() override {
    connection_.reset();
    connection_ = engine_mdb::Open(folder_.Path("base.mdb"), options_);
  }

 private:
  support::TempFolder folder_;
  engine_mdb::Options options_;
  std::unique_ptr<db::Connection> connection_;
};

}  // namespace

std::unique_ptr<TestDatabase> Create(const Wishes& wishes) { return std::make_unique<BaseMdb>(wishes); }

}  // namespace tests
