// Opening and closing, and transactions.
#include "engine_odbc/connection_internal.h"

#include <algorithm>

#include "base/text.h"

namespace engine_odbc {
namespace {

constexpr std::string_view kConnectionLost = "Se perdió la conexión con la base";
constexpr std::string_view kCannotConnect = "No se pudo conectar con la base";
constexpr std::size_t kCompleteString = 4096;  // what the driver made of the connection string
constexpr const char* kClosed = "La base no está abierta.";
constexpr const char* kLost =
    "Se perdió la conexión con la base: hay que volver a abrirla. Lo que no estaba confirmado no quedó "
    "guardado.";
constexpr const char* kUndone = "Un error anterior deshizo la transacción: nada de ella quedó guardado.";
constexpr const char* kNoTransaction = "No hay ninguna transacción abierta.";

// unixODBC spoils an accent of this text alone, because it does not know yet what the driver takes: it gets
// the bytes. The connection is then one of bytes, with texts that are turned into UTF-8 for the driver.
bool NeedsBytes(std::string_view connection_string) {
#ifdef _WIN32
  static_cast<void>(connection_string);
  return false;
#else
  return std::any_of(connection_string.begin(), connection_string.end(),
                     [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
#endif
}

SQLRETURN SendConnectionString(SQLHANDLE link, std::string_view connection_string) {
  SQLSMALLINT length = 0;
  if (NeedsBytes(connection_string)) {
    std::vector<SQLCHAR> input(connection_string.begin(), connection_string.end()), output(kCompleteString);
    input.push_back(0);  // mdbtools' driver reads up to it, whatever the length
    return SQLDriverConnectA(link, nullptr, input.data(), static_cast<SQLSMALLINT>(input.size() - 1),
                             output.data(), static_cast<SQLSMALLINT>(output.size()), &length,
                             SQL_DRIVER_NOPROMPT);
  }
  WideText input(connection_string);
  std::vector<SQLWCHAR> output(kCompleteString);
  return SQLDriverConnectW(link, nullptr, input.Data(), input.ShortLength(), output.data(),
                           static_cast<SQLSMALLINT>(output.size()), &length, SQL_DRIVER_NOPROMPT);
}

SQLPOINTER AsPointer(SQLULEN value) { return reinterpret_cast<SQLPOINTER>(value); }

}  // namespace

OdbcConnection::OdbcConnection(std::string_view connection_string, const Options& options)
    : read_only_(options.read_only) {
  Connect(connection_string, options);
}

void OdbcConnection::Connect(std::string_view connection_string, const Options& options) {
  if (base::TrimView(connection_string).empty()) throw db::Error("Falta la cadena de conexión ODBC.");
  if (base::Contains(connection_string, std::string_view("\0", 1)) || connection_string.size() > 32000)
    throw db::Error("La cadena de conexión ODBC no es válida.");
  const Utf8Texts meanwhile;
  environment_ = MakeEnvironment();
  link_ = MakeLink(environment_);
  // Wishes: a driver that does not know them goes on without.
  if (options.wait_s > 0)
    SQLSetConnectAttrW(link_.Raw(), SQL_ATTR_LOGIN_TIMEOUT, AsPointer(static_cast<SQLULEN>(options.wait_s)),
                       SQL_IS_UINTEGER);
  if (read_only_)
    SQLSetConnectAttrW(link_.Raw(), SQL_ATTR_ACCESS_MODE, AsPointer(SQL_MODE_READ_ONLY), SQL_IS_UINTEGER);

  if (!SQL_SUCCEEDED(SendConnectionString(link_.Raw(), connection_string)))
    throw FaultOf(Diagnostics(SQL_HANDLE_DBC, link_.Raw()), kCannotConnect);
  connected_ = true;
  SQLUSMALLINT capability = SQL_TC_NONE;
  has_transactions_ =
      SQL_SUCCEEDED(SQLGetInfoW(link_.Raw(), SQL_TXN_CAPABLE, &capability, sizeof capability, nullptr)) &&
      capability != SQL_TC_NONE;
}

void OdbcConnection::Disconnect() {
  cursor_.Release();
  catalog_.Forget();
  if (connected_) {
    // What fails here has nobody to be told to; the driver undoes what is open when its handle goes.
    if (in_transaction_) SQLEndTran(SQL_HANDLE_DBC, link_.Raw(), SQL_ROLLBACK);
    SQLDisconnect(link_.Raw());
  }
  connected_ = false;
  in_transaction_ = false;
  EndOfTransaction();
  link_.Release();
  environment_.Release();
}

void OdbcConnection::Close() { Disconnect(); }

bool OdbcConnection::IsDead() const {
  SQLUINTEGER dead = SQL_CD_FALSE;
  return SQL_SUCCEEDED(
             SQLGetConnectAttrW(link_.Raw(), SQL_ATTR_CONNECTION_DEAD, &dead, sizeof dead, nullptr)) &&
         dead == SQL_CD_TRUE;
}

void OdbcConnection::Lose() {
  lost_ = true;
  Disconnect();
}

void OdbcConnection::FailOnce(SQLSMALLINT what, SQLHANDLE handle, std::string_view if_nothing) {
  Fail(what, handle, if_nothing, false);
}

void OdbcConnection::FailForGood(std::string_view if_nothing) {
  Fail(SQL_HANDLE_DBC, link_.Raw(), if_nothing, true);
}

void OdbcConnection::Fail(SQLSMALLINT what, SQLHANDLE handle, std::string_view if_nothing, bool for_good) {
  const std::vector<Diagnostic> diagnostics = Diagnostics(what, handle);
  const bool dead = IsDead();
  const std::string_view text = dead ? kConnectionLost : if_nothing;
  const OdbcError error = dead || for_good ? FaultOf(diagnostics, text) : ErrorOf(diagnostics, text);
  if (dead || error.Lost()) Lose();
  throw error;
}

void OdbcConnection::VerifyUsable() {
  if (!connected_) throw db::Error(base::StorageFault(lost_ ? kLost : kClosed));
  if (undone_) throw db::Error(base::StorageFault(kUndone));
  // After a transaction that could not be left, what runs next would belong to nobody's commit.
  if (!in_transaction_ && !autocommit_ && !Autocommit(true))
    FailForGood("La base no pudo salir de la transacción anterior");
}

bool OdbcConnection::Autocommit(bool on) {
  const SQLULEN value = on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF;
  if (!SQL_SUCCEEDED(SQLSetConnectAttrW(link_.Raw(), SQL_ATTR_AUTOCOMMIT, AsPointer(value), SQL_IS_UINTEGER)))
    return false;
  autocommit_ = on;
  return true;
}

void OdbcConnection::BeginTrans() {
  VerifyUsable();
  if (in_transaction_) throw db::Error("Ya hay una transacción abierta.");
  if (!has_transactions_)
    throw db::Error(
        "El driver ODBC de esta base no admite transacciones: no se puede escribir en ella sin riesgo de que "
        "quede a medias.");
  if (!Autocommit(false)) FailForGood("La base no pudo empezar una transacción");
  EndOfTransaction();
  in_transaction_ = true;
}

void OdbcConnection::CommitTrans() {
  NeedTransaction();
  if (undone_) {
    RollbackTrans();
    throw db::Error(base::StorageFault(kUndone));
  }
  if (!SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, link_.Raw(), SQL_COMMIT)))
    FailForGood("La base no pudo guardar la transacción");
  in_transaction_ = false;
  EndOfTransaction();
  Autocommit(true);  // when it fails the next statement tries again, and says so
}

void OdbcConnection::RollbackTrans() {
  NeedTransaction();
  RollBackAll();
  in_transaction_ = false;
  EndOfTransaction();
  Autocommit(true);
}

void OdbcConnection::NeedTransaction() const {
  if (in_transaction_) return;
  if (lost_) throw db::Error(base::StorageFault(kLost));
  throw db::Error(kNoTransaction);
}

void OdbcConnection::RollBackAll() {
  catalog_.Forget();  // a definition may go, too
  untouched_.clear();
  if (!SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, link_.Raw(), SQL_ROLLBACK))) {
    // To leave the transaction any other way would keep what it wrote.
    const OdbcError error =
        FaultOf(Diagnostics(SQL_HANDLE_DBC, link_.Raw()), "La base no pudo deshacer la transacción");
    Lose();
    throw error;
  }
}

std::unique_ptr<db::Connection> Open(std::string_view connection_string, const Options& options) {
  return db::AsConnectionErrors([&]() -> std::unique_ptr<db::Connection> {
    return std::make_unique<OdbcConnection>(connection_string, options);
  });
}

}  // namespace engine_odbc
