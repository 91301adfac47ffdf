#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "engine_mdb/source_internal.h"
#include "jetsql/parser.h"
#include "ports/system_clock.h"

namespace engine_mdb {

class MdbConnection final : public db::Connection {
 public:
  MdbConnection(std::unique_ptr<mdb::Database> base, std::string_view path, const Options& options);
  ~MdbConnection() override { Close(); }
  MdbConnection(const MdbConnection&) = delete;
  MdbConnection& operator=(const MdbConnection&) = delete;

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
  std::string ReadOnlyReason() const {
    return base_ == nullptr || options_.private_copy ? std::string() : WhyNotWritable(*base_);
  }

 private:
  void Start(std::unique_ptr<mdb::Database> base);
  void VerifyOpen() const;
  // Opens the file anew when another program has written it: only between transactions, and only a file that
  // is open for reading, since nobody else writes one that is ours.
  void CheckOutsideChanges();
  // A file that could only be read because another program had it: opens it for writing if that is over.
  bool ObtainWriteAccess();
  db::Recordset ExecuteAs(std::string_view sql, bool query_only);
  db::Recordset Run(std::string_view sql, bool query_only);
  db::Recordset RunRows(std::string_view sql, bool query_only);

  // The transaction below: that of BeginTrans, or of one statement that writes.
  void Begin();
  void Commit();
  void Rollback();
  void ReturnToMark();
  void ForgetMark();

  // Definition statements (definitions.cpp).
  void RunDefinition(jetsql::Statement& statement);
  // `whole` is the statement that the definition is of.
  void Apply(jetsql::Statement& whole, const jetsql::CreateTable& s);
  void Apply(jetsql::Statement& whole, const jetsql::CreateIndex& s);
  void Apply(jetsql::Statement& whole, jetsql::CreateView& s);
  void Apply(jetsql::Statement& whole, const jetsql::Drop& s);
  void Apply(jetsql::Statement& whole, const jetsql::AlterTable& s);
  void Apply(jetsql::Statement& whole, const jetsql::QueryPtr& s);
  template <typename T>
  void Apply(jetsql::Statement&, const T&) {}
  jetsql::Translation Translate(jetsql::Statement& statement) const;
  void AddColumn(const std::string& table, const jetsql::ColumnDefinition& column,
                 const mdb::NewColumn& fresh);
  void AddConstraint(const std::string& table, const jetsql::Constraint& constraint);
  void DropIndex(const std::string& table, const std::string& name);
  void DropConstraint(const std::string& table, const std::string& name);
  void Relate(const std::string& table, const std::string& name, const std::vector<std::string>& columns,
              const jetsql::Reference& reference);
  void Rehearse(jetsql::Statement& statement);
  // The pages and the catalog go back to where they are when the step throws.
  template <typename Step>
  void RestoreOnFailure(Step&& step);
  void VerifyIndexIsFree(const mdb::Definition& table, const std::string& name) const;

  std::string path_;
  Options options_;
  ports::SystemClock system_clock_;
  const ports::Clock& clock_;
  Counters counters_;
  std::unique_ptr<mdb::Database> base_;
  std::unique_ptr<MdbSource> source_;
  engine_sqlite::Mirror mirror_;
  std::int64_t affected_ = 0;
  db::QueryBudget* budget_ = nullptr;  // of the bounded query that is running
  bool in_transaction_ = false;        // of BeginTrans
  bool open_below_ = false;            // a transaction of SQLite is open, ours or BeginTrans's
  bool defined_ = false;               // a definition ran in it

  // The mark inside the transaction. The pages change in definitions alone: those of the mark are kept when
  // the first one after it runs.
  bool marked_ = false;
  bool defined_at_mark_ = false;
  std::optional<mdb::PageFile::Savepoint> pages_at_mark_;
};

}  // namespace engine_mdb
