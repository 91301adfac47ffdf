#pragma once

#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "engine_odbc/catalog_internal.h"
#include "engine_odbc/odbc_connection.h"
#include "engine_odbc/statement_limits_internal.h"
#include "jetsql/ast.h"

namespace engine_odbc {

class OdbcConnection final : public db::Connection {
 public:
  OdbcConnection(std::string_view connection_string, const Options& options);
  OdbcConnection(const OdbcConnection&) = delete;
  OdbcConnection& operator=(const OdbcConnection&) = delete;
  ~OdbcConnection() override { Disconnect(); }

  bool IsOpen() const override { return connected_; }
  void Close() override;
  db::Recordset Execute(std::string_view sql) override;
  db::Recordset Query(std::string_view sql) override;
  db::Recordset QueryBounded(std::string_view sql, db::QueryBudget& budget) override;
  std::int64_t AffectedRows() const override { return affected_; }
  void BeginTrans() override;
  void CommitTrans() override;
  void RollbackTrans() override;
  bool InTransaction() const override { return in_transaction_; }
  void SetSavepoint() override;
  void RollbackToSavepoint() override;
  void ReleaseSavepoint() override;

 private:
  void Connect(std::string_view connection_string, const Options& options);
  void Disconnect();
  void VerifyUsable();
  bool Autocommit(bool on);
  // `tree`: of the statement, when it has been parsed already.
  db::Recordset Run(std::string_view sql, jetsql::Statement* tree);
  SQLRETURN Send(const std::string& text);
  db::Recordset Fetch(std::string_view sql, StatementLimits& limits);
  // The statement as the driver is to get it.
  std::string TextForDriver(std::string_view sql, jetsql::Statement* tree);
  bool IsDead() const;
  void Lose();
  // Throws what the driver says; a failure that means the loss of the connection closes it.
  [[noreturn]] void FailOnce(SQLSMALLINT what, SQLHANDLE handle, std::string_view if_nothing);
  // The same for what is no statement: the run cannot go on.
  [[noreturn]] void FailForGood(std::string_view if_nothing);
  [[noreturn]] void Fail(SQLSMALLINT what, SQLHANDLE handle, std::string_view if_nothing, bool for_good);

  // Savepoints (savepoint.cpp).
  bool RunOwn(const char* sql);
  void Replay();
  // A statement that changed something in the open transaction.
  void NoteChange(const std::string& text, SQLLEN rows);
  void NeedTransaction() const;
  void RollBackAll();
  void EndOfTransaction();
  void OpenCursor();
  SQLLEN RowCount() const;  // of the last statement; -1 when the driver does not know

  // In the order in which they are needed: the driver manager frees from the inside out.
  Environment environment_;
  Link link_;
  Cursor cursor_;  // of every statement; closed between them
  OdbcCatalog catalog_{link_};
  std::unordered_set<std::string> untouched_;  // shapes of statements whose text needs nothing
  std::int64_t affected_ = 0;
  db::QueryBudget* budget_ = nullptr;  // of the bounded query that is running
  bool connected_ = false;
  bool lost_ = false;
  bool read_only_ = false;
  bool has_transactions_ = false;  // what the driver says of itself
  bool in_transaction_ = false;
  bool autocommit_ = true;

  // Whether the driver undoes to a savepoint by itself: not known before the first one. Where it does not,
  // the changes of the transaction, to be run again.
  std::optional<bool> own_savepoints_;
  struct Change {
    std::string text;
    SQLLEN rows = -1;
  };
  std::vector<Change> changes_;
  bool marked_ = false;
  bool undone_ = false;       // what the transaction did is gone, and it was not ended by a rollback
  SQLLEN rows_of_last_ = -1;  // that changed
  std::size_t mark_ = 0;      // how many changes stand before the mark
  std::optional<bool> loses_characters_;  // asked when a text has one that might be lost
};

}  // namespace engine_odbc
