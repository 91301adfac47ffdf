// Opening a file, and how statements and transactions travel between the mirrors and its pages.
#include "engine_mdb/mdb_connection.h"

#include "engine_mdb/connection_internal.h"
#include "jetsql/statement_kind.h"

namespace engine_mdb {
namespace {

constexpr const char* kUndone = "Un error anterior deshizo la transacción: nada de ella quedó guardado.";
constexpr const char* kPrivate = "La base se abrió para probar: nada se escribe en ella.";
constexpr const char* kChanged =
    "Otro programa cambió la base mientras se probaba sobre una copia: pruebe de nuevo.";

mdb::DatabaseOptions HowToOpen(const Options& options) {
  return {options.read_only || options.private_copy, options.password};
}

}  // namespace

MdbConnection::MdbConnection(std::unique_ptr<mdb::Database> base, std::string_view path,
                             const Options& options)
    : path_(path), options_(options), clock_(options.clock != nullptr ? *options.clock : system_clock_) {
  Start(std::move(base));
}

void MdbConnection::Start(std::unique_ptr<mdb::Database> base) {
  base_ = std::move(base);
  source_ = std::make_unique<MdbSource>(*base_, path_, counters_, options_.private_copy);
  engine_sqlite::Options below;
  below.order = base::OrderOfLanguage(base_->Header().order).value_or(base::SortOrder::General);
  below.clock = &clock_;
  below.locale = options_.locale;
  below.dao_wildcards = options_.dao_wildcards;
  mirror_ = engine_sqlite::OpenMirror(*source_, below);
  source_->Attach(mirror_.base, [this] {
    if (!open_below_) Begin();
  });
}

void MdbConnection::CheckOutsideChanges() {
  if (open_below_) return;
  db::AsConnectionErrors([&] {
    if (!base_->Pages().ChangedOutside()) return;
    auto fresh = mdb::Database::Open(path_, HowToOpen(options_));
    Close();
    Start(std::move(fresh));
  });
}

bool MdbConnection::ObtainWriteAccess() {
  if (open_below_ || options_.read_only || options_.private_copy || base_->ReadOnlyReason().empty())
    return false;
  return db::AsConnectionErrors([&] {
    auto fresh = mdb::Database::Open(path_, {false, options_.password});
    if (!fresh->ReadOnlyReason().empty()) return false;
    Close();
    Start(std::move(fresh));
    return true;
  });
}

void MdbConnection::Close() {
  if (source_ != nullptr) source_->Release();
  if (mirror_.connection != nullptr) mirror_.connection->Close();
  mirror_ = {};
  source_.reset();
  base_.reset();
  ForgetMark();
  in_transaction_ = open_below_ = defined_ = false;
}

void MdbConnection::VerifyOpen() const {
  if (base_ == nullptr) throw db::Error(base::StorageFault("La base no está abierta."));
  if (open_below_ && sqlite3_get_autocommit(mirror_.base) != 0) throw db::Error(base::StorageFault(kUndone));
}

void MdbConnection::Begin() {
  if (const std::string reason = ReadOnlyReason(); !reason.empty()) throw BaseNotWritable(reason);
  source_->SaveState();
  mirror_.connection->BeginTrans();
  open_below_ = true;
  defined_ = false;
}

// The file first: what it refuses is undone in the mirrors, while they can hardly refuse what it has taken.
void MdbConnection::Commit() {
  if (options_.private_copy) {
    Rollback();
    throw db::Error(kPrivate);
  }
  bool had_changes = false, writing = false;
  try {
    db::AsConnectionErrors([&] {
      source_->WriteChanges();
      had_changes = base_->Pages().HasChanges();
      writing = true;
      base_->Commit();
    });
  } catch (const db::Error&) {
    defined_ = defined_ || writing;  // what the disk holds is read again
    Rollback();
    throw;
  }
  mirror_.connection->CommitTrans();
  open_below_ = defined_ = false;
  ForgetMark();
  source_->Settle(true);
  if (had_changes) ++counters_.commits;
}

void MdbConnection::Rollback() {
  open_below_ = false;
  ForgetMark();
  base_->Rollback();
  mirror_.connection->RollbackTrans();
  source_->RestoreState();
  if (defined_) source_->DiscardAll();
  defined_ = false;
  engine_sqlite::ForgetTranslations(*mirror_.connection);
}

void MdbConnection::BeginTrans() {
  VerifyOpen();
  if (in_transaction_) throw db::Error("Ya hay una transacción abierta.");
  CheckOutsideChanges();
  ObtainWriteAccess();
  Begin();
  in_transaction_ = true;
}

void MdbConnection::CommitTrans() {
  if (base_ == nullptr || !in_transaction_) throw db::Error("No hay ninguna transacción abierta.");
  in_transaction_ = false;
  if (sqlite3_get_autocommit(mirror_.base) != 0) {
    Rollback();
    throw db::Error(base::StorageFault(kUndone));
  }
  Commit();
}

void MdbConnection::RollbackTrans() {
  if (base_ == nullptr || !in_transaction_) throw db::Error("No hay ninguna transacción abierta.");
  in_transaction_ = false;
  Rollback();
}

void MdbConnection::SetSavepoint() {
  VerifyOpen();
  if (!in_transaction_) throw db::Error("No hay ninguna transacción abierta.");
  db::AsConnectionErrors([&] {
    mirror_.connection->SetSavepoint();
    source_->SetMark();
  });
  pages_at_mark_.reset();
  defined_at_mark_ = defined_;
  marked_ = true;
}

void MdbConnection::RollbackToSavepoint() {
  VerifyOpen();
  if (!marked_) throw db::Error("No hay ninguna marca en la transacción.");
  try {
    db::AsConnectionErrors([&] { ReturnToMark(); });
  } catch (const db::Error& e) {
    if (e.IsStorageFault()) throw;
    throw db::Error(base::StorageFault("No se pudo deshacer la sentencia. " + e.Description()));
  }
}

void MdbConnection::ReturnToMark() {
  mirror_.connection->RollbackToSavepoint();
  if (pages_at_mark_) {
    base_->RollbackTo(std::move(*pages_at_mark_));
    pages_at_mark_.reset();
    engine_sqlite::ForgetTranslations(*mirror_.connection);
  }
  source_->ReturnToMark();
  defined_ = defined_at_mark_;
  if (!source_->AnythingToRenew()) return;
  mirror_.connection->ReleaseSavepoint();
  source_->Renew();
  mirror_.connection->SetSavepoint();
  source_->SetMark();
}

void MdbConnection::ReleaseSavepoint() {
  VerifyOpen();
  if (!marked_) throw db::Error("No hay ninguna marca en la transacción.");
  mirror_.connection->ReleaseSavepoint();
  ForgetMark();
}

void MdbConnection::ForgetMark() {
  marked_ = false;
  pages_at_mark_.reset();
  if (source_ != nullptr) source_->ForgetMark();
}

db::Recordset MdbConnection::ExecuteAs(std::string_view sql, bool query_only) {
  VerifyOpen();
  CheckOutsideChanges();
  if (options_.private_copy && open_below_ && base_->Pages().ChangedOutside())
    throw db::Error(base::StorageFault(kChanged));
  try {
    return Run(sql, query_only);
  } catch (const BaseNotWritable&) {
    if (!ObtainWriteAccess()) throw;
  }
  return Run(sql, query_only);
}

db::Recordset MdbConnection::Run(std::string_view sql, bool query_only) {
  affected_ = 0;
  source_->Begin();
  return db::AsConnectionErrors([&] {
    if (!query_only && jetsql::KindOfText(sql) == jetsql::Kind::Definition) {
      jetsql::Statement statement = jetsql::Parse(sql, jetsql::Literals::InText);
      RunDefinition(statement);
      return db::Recordset(std::make_shared<const db::Columns>(), {}, std::string(sql));
    }
    return RunRows(sql, query_only);
  });
}

db::Recordset MdbConnection::RunRows(std::string_view sql, bool query_only) {
  db::Recordset rows;
  try {
    rows = budget_ != nullptr ? mirror_.connection->QueryBounded(sql, *budget_)
           : query_only       ? mirror_.connection->Query(sql)
                              : mirror_.connection->Execute(sql);
    source_->CheckNoted();
  } catch (const base::Error&) {
    if (open_below_ && !in_transaction_) Rollback();
    throw;
  }
  affected_ = mirror_.connection->AffectedRows();
  if (!open_below_ || in_transaction_) return rows;
  try {
    Commit();
  } catch (const db::Error&) {
    affected_ = 0;
    throw;
  }
  return rows;
}

std::unique_ptr<db::Connection> Open(std::string_view path, const Options& options) {
  return db::AsConnectionErrors([&]() -> std::unique_ptr<db::Connection> {
    return std::make_unique<MdbConnection>(mdb::Database::Open(path, HowToOpen(options)), path, options);
  });
}

std::string ReadOnlyReason(const db::Connection& connection) {
  const auto* own = dynamic_cast<const MdbConnection*>(&connection);
  return own == nullptr ? std::string() : own->ReadOnlyReason();
}

const Counters* CountersOf(const db::Connection& connection) {
  const auto* own = dynamic_cast<const MdbConnection*>(&connection);
  return own == nullptr ? nullptr : &own->Counts();
}

}  // namespace engine_mdb
