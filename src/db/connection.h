// The ADO-like face of a payroll database. Every engine gives one Connection.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/error.h"
#include "db/recordset.h"

namespace db {

// A statement that failed, or the storage under it (see Kind); the description is readable Spanish and says
// what was asked when that helps.
class Error : public base::Error {
 public:
  using base::Error::Error;
  explicit Error(const base::Error& e) : base::Error(e) {}  // of a layer below, as that of a connection
};

class Connection {
 public:
  virtual ~Connection() = default;

  virtual bool Abierta() const = 0;
  virtual void Cerrar() = 0;

  // Runs one statement of the dialect and returns all its rows (none for a statement that is no query).
  // Throws db::Error; a failing statement changes nothing.
  virtual Recordset Ejecutar(std::string_view sql) = 0;
  // The same for statements that may only read: anything that is not a query throws before it runs.
  virtual Recordset Consultar(std::string_view sql) = 0;
  // Rows inserted, changed or deleted by the last Ejecutar.
  virtual std::int64_t FilasAfectadas() const = 0;

  // One level; a second BeginTrans inside one throws db::Error.
  virtual void BeginTrans() = 0;
  virtual void CommitTrans() = 0;
  virtual void RollbackTrans() = 0;
  virtual bool EnTransaccion() const = 0;

  // One mark inside the transaction; a second SetSavepoint moves it. RollbackToSavepoint undoes what ran
  // after it and leaves the transaction and the mark as they were; ReleaseSavepoint forgets the mark and
  // keeps the changes. A commit or rollback forgets it too. Each throws db::Error where there is no
  // transaction (or no mark); one that cannot undo is a fault of the storage.
  virtual void SetSavepoint() = 0;
  virtual void RollbackToSavepoint() = 0;
  virtual void ReleaseSavepoint() = 0;
};

}  // namespace db
