// The mark inside a transaction: the driver's own, or the statements before it run again.
#include "engine_odbc/connection_internal.h"

namespace engine_odbc {
namespace {

constexpr const char* kSet = "SAVEPOINT idm_mark";
constexpr const char* kRelease = "RELEASE SAVEPOINT idm_mark";
constexpr const char* kRollBack = "ROLLBACK TO SAVEPOINT idm_mark";
constexpr const char* kCannotUndo = "La base no pudo deshacer una sentencia de la transacción";

}  // namespace

// False when the driver refused it; the loss of the connection throws.
bool OdbcConnection::RunOwn(const char* sql) {
  OpenCursor();
  const CloseCursor close(cursor_);
  const SQLRETURN rc = Send(sql);
  if (rc == SQL_NO_DATA || SQL_SUCCEEDED(rc)) return true;
  const OdbcError error = ErrorOf(Diagnostics(SQL_HANDLE_STMT, cursor_.Raw()), kCannotUndo);
  if (error.Lost() || IsDead()) Fail(SQL_HANDLE_STMT, cursor_.Raw(), kCannotUndo, true);
  return false;
}

void OdbcConnection::NoteChange(const std::string& text, SQLLEN rows) {
  if (in_transaction_ && own_savepoints_ != true) changes_.push_back({text, rows});
}

void OdbcConnection::EndOfTransaction() {
  changes_.clear();
  mark_ = 0;
  marked_ = undone_ = false;
}

void OdbcConnection::SetSavepoint() {
  db::AsConnectionErrors([&] {
    VerifyUsable();
    NeedTransaction();
    if (own_savepoints_ != false) {
      if (marked_) RunOwn(kRelease);  // where there is none, a new mark takes the place of the old one
      const bool set = RunOwn(kSet);
      if (!set && own_savepoints_ == true)
        throw db::Error(base::StorageFault(std::string(kCannotUndo) + "."));
      own_savepoints_ = set;
      if (set) changes_.clear();
    }
    mark_ = changes_.size();
    marked_ = true;
  });
}

void OdbcConnection::RollbackToSavepoint() {
  db::AsConnectionErrors([&] {
    VerifyUsable();
    if (!marked_) throw db::Error("No hay ninguna marca en la transacción.");
    if (own_savepoints_ == true) {
      catalog_.Forget();  // a definition may go, too
      untouched_.clear();
      if (!RunOwn(kRollBack)) throw db::Error(base::StorageFault(std::string(kCannotUndo) + "."));
    } else if (changes_.size() != mark_) {
      Replay();
    }
  });
}

// From the rollback to the last statement the transaction is open, but others may have written meanwhile: a
// statement that now changes another number of rows is no repetition.
void OdbcConnection::Replay() {
  RollBackAll();
  undone_ = true;
  changes_.resize(mark_);
  OpenCursor();
  for (const Change& change : changes_) {
    const CloseCursor close(cursor_);
    const SQLRETURN rc = Send(change.text);
    if (!SQL_SUCCEEDED(rc) && rc != SQL_NO_DATA) Fail(SQL_HANDLE_STMT, cursor_.Raw(), kCannotUndo, true);
    if ((rc == SQL_NO_DATA ? 0 : RowCount()) != change.rows)
      throw db::Error(base::StorageFault(
          std::string(kCannotUndo) + ": al repetir lo anterior, otro programa había cambiado los datos."));
  }
  undone_ = false;
}

void OdbcConnection::ReleaseSavepoint() {
  db::AsConnectionErrors([&] {
    VerifyUsable();
    if (!marked_) throw db::Error("No hay ninguna marca en la transacción.");
    if (own_savepoints_ == true) RunOwn(kRelease);
    marked_ = false;
  });
}

}  // namespace engine_odbc
