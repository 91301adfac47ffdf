// The ADO-like face of a payroll database. Every engine gives one Connection.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "base/error.h"
#include "db/query_budget.h"
#include "db/recordset.h"

namespace db {

// A statement that failed, or the storage under it (see base::ErrorKind); the description is readable Spanish
// and says what was asked when that helps.
class Error : public base::Error {
 public:
  using base::Error::Error;
  explicit Error(const base::Error& e) : base::Error(e) {}  // of a layer below, as that of a connection
};

// A bounded query that used its budget up.
class QueryInterrupted : public Error {
 public:
  enum class By { Work, Size };
  explicit QueryInterrupted(By by)
      : Error(by == By::Work ? "La consulta se interrumpió: da demasiado trabajo"
                             : "La consulta se interrumpió: su resultado es demasiado grande"),
        by_(by) {}
  By Reason() const { return by_; }

 private:
  By by_;
};

// Runs a step of an engine; what fails in it leaves as an error of a connection, of the kind that it is.
// Memory that was not to be had is a fault of the storage.
template <typename Step>
decltype(auto) AsConnectionErrors(Step&& step) {
  try {
    return base::MemoryAsFault(std::forward<Step>(step));
  } catch (const Error&) {
    throw;
  } catch (const base::Error& e) {
    throw Error(e);
  }
}

class Connection {
 public:
  virtual ~Connection() = default;

  virtual bool IsOpen() const = 0;
  virtual void Close() = 0;

  // Runs one statement of the dialect and returns all its rows (none for a statement that is no query).
  // Throws db::Error; a failing statement changes nothing.
  virtual Recordset Execute(std::string_view sql) = 0;
  // The same for statements that may only read: anything that is not a query throws before it runs.
  virtual Recordset Query(std::string_view sql) = 0;
  // The same for a text that nobody has looked at. Throws QueryInterrupted when it takes more than the budget
  // has; an open transaction keeps what it holds. Reading tables in does not count. An engine without means
  // of its own runs it to the end.
  virtual Recordset QueryBounded(std::string_view sql, QueryBudget& budget) {
    static_cast<void>(budget);
    return Query(sql);
  }
  // Rows inserted, changed or deleted by the last Execute.
  virtual std::int64_t AffectedRows() const = 0;

  // One level; a second BeginTrans inside one throws db::Error.
  virtual void BeginTrans() = 0;
  virtual void CommitTrans() = 0;
  virtual void RollbackTrans() = 0;
  virtual bool InTransaction() const = 0;

  // One mark inside the transaction; a second SetSavepoint moves it. RollbackToSavepoint undoes what ran
  // after it and leaves the transaction and the mark as they were; ReleaseSavepoint forgets the mark and
  // keeps the changes. A commit or rollback forgets it too. Each throws db::Error where there is no
  // transaction (or no mark); one that cannot undo is a fault of the storage.
  virtual void SetSavepoint() = 0;
  virtual void RollbackToSavepoint() = 0;
  virtual void ReleaseSavepoint() = 0;
};

}  // namespace db
