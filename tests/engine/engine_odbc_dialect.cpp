// The ODBC engine over a driver that speaks the dialect: the driver of the tests, with the embedded engine
// behind it. What the engine puts around a driver's words is taken off, so that the cases compare those.
#include "engine.h"
#include "engine_odbc/embedded_engine.h"
#include "engine_odbc/odbc_connection.h"
#include "support/temp_folder.h"

namespace tests {
namespace {

// The driver asks for its database by a name alone.
const Wishes* base_wishes = nullptr;

class WithoutPhrase final : public db::Connection {
 public:
  explicit WithoutPhrase(std::unique_ptr<db::Connection> base) : base_(std::move(base)) {}

  bool IsOpen() const override { return base_->IsOpen(); }
  void Close() override { base_->Close(); }
  db::Recordset Execute(std::string_view sql) override {
    return Try([&] { return base_->Execute(sql); });
  }
  db::Recordset Query(std::string_view sql) override {
    return Try([&] { return base_->Query(sql); });
  }
  std::int64_t AffectedRows() const override { return base_->AffectedRows(); }
  void BeginTrans() override { base_->BeginTrans(); }
  void CommitTrans() override { base_->CommitTrans(); }
  void RollbackTrans() override { base_->RollbackTrans(); }
  bool InTransaction() const override { return base_->InTransaction(); }
  void SetSavepoint() override { base_->SetSavepoint(); }
  void RollbackToSavepoint() override { base_->RollbackToSavepoint(); }
  void ReleaseSavepoint() override { base_->ReleaseSavepoint(); }

 private:
  template <typename Step>
  static db::Recordset Try(Step&& step) {
    constexpr std::string_view kPhrase = "La base no pudo ejecutar la sentencia: ";
    try {
      return step();
    } catch (const db::Error& e) {
      if (e.Description().rfind(kPhrase, 0) != 0) throw;
      std::string text = e.Description().substr(kPhrase.size());
      int number = 0;  // in front, in brackets
      if (const std::size_t end = text.find("] "); text[0] == '[' && end != std::string::npos) {
        number = std::stoi(text.substr(1));
        text = text.substr(end + 2);
      }
      throw db::Error(text, number);
    }
  }

  std::unique_ptr<db::Connection> base_;
};

class BaseOdbc final : public TestDatabase {
 public:
  explicit BaseOdbc(const Wishes& wishes) : wishes_(wishes) { Reopen(); }
  db::Connection& Connection() override { return *connection_; }
  void Reopen() override {
    connection_.reset();
    base_wishes = &wishes_;
    connection_ = std::make_unique<WithoutPhrase>(
        engine_odbc::Open("Driver=" IDM_ODBC_TEST ";Motor=" + folder_.Path("base.sqlite")));
  }

 private:
  support::TempFolder folder_;
  Wishes wishes_;
  std::unique_ptr<db::Connection> connection_;
};

}  // namespace

std::unique_ptr<TestDatabase> Create(const Wishes& wishes) { return std::make_unique<BaseOdbc>(wishes); }

}  // namespace tests

extern "C" fake::Engine* CreateTestEngine(const char16_t* name) {
  const tests::Wishes& d = *tests::base_wishes;
  engine_sqlite::Options options;
  options.create = true;
  options.clock = d.clock;
  options.locale = d.locale;
  options.order = d.order;
  options.dao_wildcards = d.dao_wildcards;
  return new fake::EmbeddedEngine(base::FromUtf16(name), options);
}
