#pragma once

#include <string>

#include "engine_sqlite/catalog_internal.h"
#include "engine_sqlite/runtime_internal.h"
#include "engine_sqlite/sqlite_connection.h"
#include "engine_sqlite/statement_cache_internal.h"
#include "ports/system_clock.h"

namespace engine_sqlite {

class SqliteConnection final : public db::Connection {
 public:
  // With a source, `path` is that of the memory.
  SqliteConnection(std::string_view path, const Options& options, TableSource* source = nullptr);

  bool IsOpen() const override { return base_ != nullptr; }
  void Close() override;
  db::Recordset Execute(std::string_view sql) override { return ExecuteAs(sql, false); }
  db::Recordset Query(std::string_view sql) override { return ExecuteAs(sql, true); }
  db::Recordset QueryBounded(std::string_view sql, db::QueryBudget& budget) override {
    const db::BudgetInUse lent(budget_, budget);
    return ExecuteAs(sql, true);
  }
  std::int64_t AffectedRows() const override { return affected_; }
  void BeginTrans() override;
  void CommitTrans() override;
  void RollbackTrans() override;
  bool InTransaction() const override { return in_transaction_; }
  void SetSavepoint() override;
  void RollbackToSavepoint() override;
  void ReleaseSavepoint() override;

  const Counters& Counts() const { return counters_; }
  sqlite3* Handle() const { return base_.get(); }
  void ForgetAll();
  void RunTranslation(jetsql::Translation translation);

 private:
  void OpenFile(std::string_view path, const Options& options);
  void Configure(std::string_view path, const Options& options);
  // The order that the file was made with; a new file takes that of the options.
  void SettleOrder();
  void VerifyUsable() const;

  void BeginStatement();
  db::Recordset ExecuteAs(std::string_view sql, bool query_only);
  db::Recordset ResolveAndRun(std::string_view sql, bool query_only);
  // The statement to run and its literals (they last until the next statement).
  std::shared_ptr<Prepared> Resolve(std::string_view sql, const std::vector<base::Value>*& literals);
  // `crosstabs`: the columns of crosstabs that are known already.
  using KnownCrosstabs = std::vector<jetsql::CrosstabColumns>;
  std::shared_ptr<Prepared> Translate(std::string_view sql, const KnownCrosstabs& crosstabs = {});
  db::Recordset Run(Prepared& p, const std::vector<base::Value>& literals, std::string_view sql,
                    KnownCrosstabs crosstabs = {});
  void RunDefinition(Prepared& p, const std::vector<base::Value>& literals);
  void RunStep(Prepared& p, std::size_t step, const std::vector<base::Value>& literals,
               std::vector<base::Value>* cells);
  [[noreturn]] void ThrowFromStep();
  void Announce(const jetsql::Translation& statement);  // to the source of a mirror
  // Forgets what is known of the file when another program has changed it, a saved query perhaps.
  void CheckOutsideChanges();

  // In the order in which they are needed: the handle's functions use the surroundings to the last.
  ports::SystemClock system_clock_;
  Environment environment_;
  BaseHandle base_;
  Statement outside_version_;  // counts the commits of others; null in memory
  std::int64_t seen_version_ = -1;
  TableSource* source_ = nullptr;  // of a mirror
  SqliteCatalog catalog_{static_cast<sqlite3*>(nullptr)};
  jetsql::TranslationOptions translation_options_;
  ShapeCache shapes_;
  MouldCache moulds_;
  jetsql::Shape shape_;  // of the statement that is running; kept for its memory
  Counters counters_;
  std::int64_t affected_ = 0;
  db::QueryBudget* budget_ = nullptr;  // of the bounded query that is running
  bool in_transaction_ = false;
  bool defined_ = false;  // a definition statement ran in the open transaction
  bool savepoint_ = false;
};

}  // namespace engine_sqlite
