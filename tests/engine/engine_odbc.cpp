// The ODBC engine over Debian's SQLite driver: the plumbing, and what the two dialects have in common.
#include "engine.h"
#include "engine_odbc/odbc_connection.h"
#include "support/temp_folder.h"

namespace tests {
namespace {

class BaseOdbc final : public TestDatabase {
 public:
  BaseOdbc() { Reopen(); }
  db::Connection& Connection() override { return *connection_; }
  void Reopen() override {
    connection_.reset();
    connection_ = engine_odbc::Open("Driver=" IDM_ODBC_SQLITE ";Database=" + folder_.Path("base.sqlite"));
  }

 private:
  support::TempFolder folder_;
  std::unique_ptr<db::Connection> connection_;
};

}  // namespace

// The driver has its own clock, locale and order.
std::unique_ptr<TestDatabase> Create(const Wishes&) { return std::make_unique<BaseOdbc>(); }

}  // namespace tests
