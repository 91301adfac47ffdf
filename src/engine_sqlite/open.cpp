// Opening and closing a file, and transactions.
#include <algorithm>
#include <optional>

#include "base/file.h"
#include "engine_sqlite/connection_internal.h"

namespace engine_sqlite {
namespace {

constexpr std::string_view kInMemory = ":memory:";
constexpr const char* kAlreadyRolledBack =
    "Un error anterior deshizo la transacción: nada de ella quedó guardado.";

std::int64_t Figure(sqlite3* base, const char* sql) {
  const Statement s = Prepare(base, sql);
  if (sqlite3_step(s.get()) != SQLITE_ROW) ThrowError(base);
  return sqlite3_column_int64(s.get(), 0);
}

bool IsInUtf8(sqlite3* base) {
  const Statement s = Prepare(base, "PRAGMA encoding");
  if (sqlite3_step(s.get()) != SQLITE_ROW) ThrowError(base);
  const auto* name = reinterpret_cast<const char*>(sqlite3_column_text(s.get(), 0));
  return name != nullptr && std::string_view(name) == "UTF-8";
}

// A statement that is of no consequence when it fails (a read-only file keeps its journal mode).
void Attempt(sqlite3* base, const char* sql) { sqlite3_exec(base, sql, nullptr, nullptr, nullptr); }

[[noreturn]] void CannotOpen(const std::string& name, int code, sqlite3* base) {
  throw db::Error(base::StorageFault("No se puede abrir la base " + name + ". " +
                                     DescriptionOf(code, base != nullptr ? sqlite3_errmsg(base) : "")));
}

BaseHandle OpenHandle(const std::string& path, const std::string& name, int mode) {
  sqlite3* raw = nullptr;
  const int rc =
      sqlite3_open_v2(path.c_str(), &raw, mode | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
  BaseHandle base(raw);
  if (rc != SQLITE_OK) CannotOpen(name, rc, raw);
  return base;
}

// As SQLite itself reads it, with what its log holds. False where that needs a file beside it that may not be
// made.
bool Backup(sqlite3* memory, const std::string& path, const std::string& name, int wait_ms) {
  const BaseHandle file = OpenHandle(path, name, SQLITE_OPEN_READONLY);
  sqlite3_busy_timeout(file.get(), wait_ms);
  sqlite3_backup* copy = sqlite3_backup_init(memory, "main", file.get(), "main");
  if (copy == nullptr) CannotOpen(name, sqlite3_extended_errcode(memory), memory);
  const int rc = sqlite3_backup_step(copy, -1);
  sqlite3_backup_finish(copy);
  if (rc == SQLITE_DONE) return true;
  const int primary = rc & 0xFF;
  if (primary == SQLITE_CANTOPEN || primary == SQLITE_READONLY) return false;
  CannotOpen(name, rc, file.get());
}

// The bytes themselves: whole when no log lies beside them.
void LoadBytes(sqlite3* memory, const std::string& path, const std::string& name) {
  const auto log = base::ReadBeginning(path + "-wal", 1);
  std::optional<std::string> bytes = base::ReadWholeFile(path);
  if (!bytes || bytes->size() < 100 || (log && !log->empty())) CannotOpen(name, SQLITE_CANTOPEN, nullptr);
  (*bytes)[18] = (*bytes)[19] = 1;  // no write-ahead log in memory
  auto* room = static_cast<unsigned char*>(sqlite3_malloc64(bytes->size()));
  if (room == nullptr) throw base::StorageFault(base::kOutOfMemory);
  std::copy(bytes->begin(), bytes->end(), room);
  const auto size = static_cast<sqlite3_int64>(bytes->size());
  const int rc = sqlite3_deserialize(memory, "main", room, size, size,
                                     SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE);
  if (rc != SQLITE_OK) CannotOpen(name, rc, memory);
}

BaseHandle CopyInMemory(const std::string& path, const std::string& name, int wait_ms) {
  BaseHandle memory = OpenHandle(std::string(kInMemory), name, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  if (!Backup(memory.get(), path, name, wait_ms)) LoadBytes(memory.get(), path, name);
  return memory;
}

// A path that names another machine.
bool IsOnNetwork(std::string_view path) { return path.substr(0, 2) == "\\\\" || path.substr(0, 2) == "//"; }

}  // namespace

SqliteConnection::SqliteConnection(std::string_view path, const Options& options, TableSource* source)
    : source_(source) {
  environment_.locale = options.locale != nullptr ? options.locale : &base::Locale::spanish();
  environment_.clock = options.clock != nullptr ? options.clock : &system_clock_;
  environment_.order = options.order;
  translation_options_.dao_wildcards = options.dao_wildcards;
  translation_options_.locale = environment_.locale;
  OpenFile(path, options);
  Configure(path, options);
  SettleOrder();
  catalog_ = source_ != nullptr ? SqliteCatalog(*source_) : SqliteCatalog(base_.get());
}

void SqliteConnection::OpenFile(std::string_view path, const Options& options) {
  const std::string name(path);
  const bool in_memory = path == kInMemory;
  if (path.empty()) throw db::Error("Falta la ruta de la base.");
  if (!in_memory && !options.create && !base::FileExists(path))
    throw db::Error(base::StorageFault("No existe el archivo de la base " + name + "."));
  const int mode = options.read_only && !in_memory
                       ? SQLITE_OPEN_READONLY
                       : SQLITE_OPEN_READWRITE | (options.create || in_memory ? SQLITE_OPEN_CREATE : 0);
  // A relative name that starts like a URI is still a file's name.
  const std::string opened_path = name.rfind("file:", 0) == 0 ? "./" + name : name;
  if (options.private_copy) {
    base_ = CopyInMemory(opened_path, name, options.wait_ms);
    return;
  }
  base_ = OpenHandle(opened_path, name, mode);
  sqlite3_busy_timeout(base_.get(), options.wait_ms);
  try {
    // The first read tells a file of another kind.
    if (Figure(base_.get(), "PRAGMA page_count") == 0 && !options.create && !in_memory)
      throw db::Error("El archivo está vacío.");
    Figure(base_.get(), "PRAGMA schema_version");
  } catch (const db::Error& e) {
    throw db::Error(base::StorageFault("No se puede abrir la base " + name + ". " + e.Description()));
  }
}

void SqliteConnection::Configure(std::string_view path, const Options& options) {
  sqlite3* base = base_.get();
  const bool in_memory = path == kInMemory || options.private_copy;
  // A name in double quotes that is no column must be an error and not a text.
  sqlite3_db_config(base, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_db_config(base, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  // SQLite's own default, which some builds raise: the time to prepare grows with the square of this number.
  sqlite3_limit(base, SQLITE_LIMIT_VARIABLE_NUMBER, 32766);
  environment_.utf8 = IsInUtf8(base);
  Register(base, environment_);
  // An import is one transaction, so that a full sync at each commit costs nothing that is felt. The
  // write-ahead log needs memory shared by all who have the file open, which a file on another machine cannot
  // give.
  if (!in_memory && !options.read_only)
    Attempt(base, IsOnNetwork(path) ? "PRAGMA journal_mode=DELETE; PRAGMA synchronous=FULL"
                                    : "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL");
  if (options.read_only) Attempt(base, "PRAGMA query_only=ON");
  Attempt(base,
          "PRAGMA foreign_keys=ON; PRAGMA temp_store=MEMORY; PRAGMA cache_size=-65536; PRAGMA "
          "secure_delete=FAST");
  if (!in_memory) outside_version_ = Prepare(base, "PRAGMA data_version");
}

// The sort order is written into the file, because its indexes hold for no other one.
void SqliteConnection::SettleOrder() {
  sqlite3* base = base_.get();
  const std::int64_t written = Figure(base, "PRAGMA user_version");
  if (const auto order = base::OrderOfLanguage(written)) environment_.order = *order;
  const bool fresh = written == 0 && Figure(base, "PRAGMA schema_version") == 0;
  if (!fresh || sqlite3_db_readonly(base, "main") != 0) return;
  const std::string write = "PRAGMA user_version=" + std::to_string(base::LanguageOf(environment_.order));
  ExecuteOwn(base, write.c_str());
}

void SqliteConnection::Close() {
  moulds_.Clear();
  shapes_.Clear();
  outside_version_ = nullptr;
  catalog_ = SqliteCatalog(static_cast<sqlite3*>(nullptr));
  base_.reset();  // what an open transaction wrote is undone
  in_transaction_ = false;
  savepoint_ = defined_ = false;
}

void SqliteConnection::VerifyUsable() const {
  if (base_ == nullptr) throw db::Error(base::StorageFault("La base no está abierta."));
  // A full disk or a read failure makes SQLite undo the whole transaction; what came after would be kept
  // alone.
  if (in_transaction_ && sqlite3_get_autocommit(base_.get()) != 0)
    throw db::Error(base::StorageFault(kAlreadyRolledBack));
}

void SqliteConnection::BeginTrans() {
  VerifyUsable();
  if (in_transaction_) throw db::Error("Ya hay una transacción abierta.");
  ExecuteOwn(base_.get(), "BEGIN IMMEDIATE");
  try {
    CheckOutsideChanges();  // from here on there can be none
  } catch (const db::Error&) {
    sqlite3_exec(base_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
  in_transaction_ = true;
  defined_ = savepoint_ = false;
}

void SqliteConnection::CommitTrans() {
  if (base_ == nullptr || !in_transaction_) throw db::Error("No hay ninguna transacción abierta.");
  if (sqlite3_get_autocommit(base_.get()) != 0) {
    RollbackTrans();
    throw db::Error(base::StorageFault(kAlreadyRolledBack));
  }
  ExecuteOwn(base_.get(), "COMMIT");
  in_transaction_ = savepoint_ = false;
}

void SqliteConnection::RollbackTrans() {
  if (base_ == nullptr || !in_transaction_) throw db::Error("No hay ninguna transacción abierta.");
  in_transaction_ = savepoint_ = false;
  if (defined_) ForgetAll();
  defined_ = false;
  if (sqlite3_get_autocommit(base_.get()) == 0) ExecuteOwn(base_.get(), "ROLLBACK");
}

void SqliteConnection::SetSavepoint() {
  VerifyUsable();
  if (!in_transaction_) throw db::Error("No hay ninguna transacción abierta.");
  if (savepoint_) ReleaseSavepoint();
  ExecuteOwn(base_.get(), "SAVEPOINT marca");
  savepoint_ = true;
}

void SqliteConnection::RollbackToSavepoint() {
  VerifyUsable();
  if (!savepoint_) throw db::Error("No hay ninguna marca en la transacción.");
  try {
    ExecuteOwn(base_.get(), "ROLLBACK TO marca");
  } catch (const db::Error& e) {
    throw db::Error(base::StorageFault("No se pudo deshacer la sentencia. " + e.Description()));
  }
  if (defined_) ForgetAll();
}

void SqliteConnection::ReleaseSavepoint() {
  VerifyUsable();
  if (!savepoint_) throw db::Error("No hay ninguna marca en la transacción.");
  ExecuteOwn(base_.get(), "RELEASE marca");
  savepoint_ = false;
}

namespace {

// SQLite's own count of the memory it uses takes a lock at each allocation, and nobody asks for it. It can be
// told so only before its first use in the program; later it refuses, which does no harm.
void StopMemoryCount() {
  static const int kMemoryCountStopped = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
  static_cast<void>(kMemoryCountStopped);
}

}  // namespace

std::unique_ptr<db::Connection> Open(std::string_view path, const Options& options) {
  StopMemoryCount();
  return db::AsConnectionErrors(
      [&]() -> std::unique_ptr<db::Connection> { return std::make_unique<SqliteConnection>(path, options); });
}

Mirror OpenMirror(TableSource& source, const Options& options) {
  StopMemoryCount();
  auto connection = std::make_unique<SqliteConnection>(kInMemory, options, &source);
  sqlite3* base = connection->Handle();
  return {std::move(connection), base};
}

namespace {

SqliteConnection& Own(db::Connection& mirror) {
  auto* own = dynamic_cast<SqliteConnection*>(&mirror);
  if (own == nullptr) throw db::Error("La conexión no es un espejo.");
  return *own;
}

}  // namespace

void ForgetTranslations(db::Connection& mirror) { Own(mirror).ForgetAll(); }

void RunTranslation(db::Connection& mirror, jetsql::Translation translation) {
  Own(mirror).RunTranslation(std::move(translation));
}

const Counters* CountersOf(const db::Connection& connection) {
  const auto* own = dynamic_cast<const SqliteConnection*>(&connection);
  return own == nullptr ? nullptr : &own->Counts();
}

}  // namespace engine_sqlite
