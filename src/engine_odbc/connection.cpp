// Opening and closing, and transactions.
#include "engine_odbc/connection_internal.h"

#include <algorithm>

#include "base/text.h"

namespace engine_odbc {
namespace {

constexpr std::string_view kSePerdio = "Se perdió la conexión con la base";
constexpr std::string_view kNoConecta = "No se pudo conectar con la base";
constexpr std::size_t kCadenaCompleta = 4096;  // what the driver made of the connection string
constexpr const char* kCerrada = "La base no está abierta.";
constexpr const char* kPerdida =
    "Se perdió la conexión con la base: hay que volver a abrirla. Lo que no estaba confirmado no quedó "
    "guardado.";
constexpr const char* kUndone = "Un error anterior deshizo la transacción: nada de ella quedó guardado.";
constexpr const char* kSinTransaccion = "No hay ninguna transacción abierta.";

// unixODBC spoils an accent of this text alone, because it does not know yet what the driver takes: it gets
// the bytes. The connection is then one of bytes, with texts that are turned into UTF-8 for the driver.
bool ComoBytes(std::string_view cadena) {
#ifdef _WIN32
  static_cast<void>(cadena);
  return false;
#else
  return std::any_of(cadena.begin(), cadena.end(),
                     [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
#endif
}

SQLRETURN MandarCadena(SQLHANDLE enlace, std::string_view cadena) {
  SQLSMALLINT largo = 0;
  if (ComoBytes(cadena)) {
    std::vector<SQLCHAR> entrada(cadena.begin(), cadena.end()), salida(kCadenaCompleta);
    entrada.push_back(0);  // mdbtools' driver reads up to it, whatever the length
    return SQLDriverConnectA(enlace, nullptr, entrada.data(), static_cast<SQLSMALLINT>(entrada.size() - 1),
                             salida.data(), static_cast<SQLSMALLINT>(salida.size()), &largo,
                             SQL_DRIVER_NOPROMPT);
  }
  TextoAncho entrada(cadena);
  std::vector<SQLWCHAR> salida(kCadenaCompleta);
  return SQLDriverConnectW(enlace, nullptr, entrada.Datos(), entrada.LargoCorto(), salida.data(),
                           static_cast<SQLSMALLINT>(salida.size()), &largo, SQL_DRIVER_NOPROMPT);
}

SQLPOINTER ComoPuntero(SQLULEN valor) { return reinterpret_cast<SQLPOINTER>(valor); }

}  // namespace

ConexionOdbc::ConexionOdbc(std::string_view cadena, const Opciones& opciones)
    : solo_lectura_(opciones.solo_lectura) {
  Conectar(cadena, opciones);
}

void ConexionOdbc::Conectar(std::string_view cadena, const Opciones& opciones) {
  if (base::TrimVista(cadena).empty()) throw db::Error("Falta la cadena de conexión ODBC.");
  if (base::Contiene(cadena, std::string_view("\0", 1)) || cadena.size() > 32000)
    throw db::Error("La cadena de conexión ODBC no es válida.");
  const TextosUtf8 mientras;
  ambiente_ = CrearAmbiente();
  enlace_ = CrearEnlace(ambiente_);
  // Wishes: a driver that does not know them goes on without.
  if (opciones.espera_s > 0)
    SQLSetConnectAttrW(enlace_.Crudo(), SQL_ATTR_LOGIN_TIMEOUT,
                       ComoPuntero(static_cast<SQLULEN>(opciones.espera_s)), SQL_IS_UINTEGER);
  if (solo_lectura_)
    SQLSetConnectAttrW(enlace_.Crudo(), SQL_ATTR_ACCESS_MODE, ComoPuntero(SQL_MODE_READ_ONLY),
                       SQL_IS_UINTEGER);

  if (!SQL_SUCCEEDED(MandarCadena(enlace_.Crudo(), cadena)))
    throw FaultOf(Diagnosticos(SQL_HANDLE_DBC, enlace_.Crudo()), kNoConecta);
  conectada_ = true;
  SQLUSMALLINT alcance = SQL_TC_NONE;
  con_transacciones_ =
      SQL_SUCCEEDED(SQLGetInfoW(enlace_.Crudo(), SQL_TXN_CAPABLE, &alcance, sizeof alcance, nullptr)) &&
      alcance != SQL_TC_NONE;
}

void ConexionOdbc::Desconectar() {
  cursor_.Soltar();
  catalogo_.Olvidar();
  if (conectada_) {
    // What fails here has nobody to be told to; the driver undoes what is open when its handle goes.
    if (en_transaccion_) SQLEndTran(SQL_HANDLE_DBC, enlace_.Crudo(), SQL_ROLLBACK);
    SQLDisconnect(enlace_.Crudo());
  }
  conectada_ = false;
  en_transaccion_ = false;
  EndOfTransaction();
  enlace_.Soltar();
  ambiente_.Soltar();
}

void ConexionOdbc::Cerrar() { Desconectar(); }

bool ConexionOdbc::EstaMuerta() const {
  SQLUINTEGER muerta = SQL_CD_FALSE;
  return SQL_SUCCEEDED(SQLGetConnectAttrW(enlace_.Crudo(), SQL_ATTR_CONNECTION_DEAD, &muerta, sizeof muerta,
                                          nullptr)) &&
         muerta == SQL_CD_TRUE;
}

void ConexionOdbc::Perder() {
  perdida_ = true;
  Desconectar();
}

void ConexionOdbc::Fallar(SQLSMALLINT que, SQLHANDLE manejador, std::string_view si_nada) {
  Fail(que, manejador, si_nada, false);
}

void ConexionOdbc::FailForGood(std::string_view if_nothing) {
  Fail(SQL_HANDLE_DBC, enlace_.Crudo(), if_nothing, true);
}

void ConexionOdbc::Fail(SQLSMALLINT what, SQLHANDLE handle, std::string_view if_nothing, bool for_good) {
  const std::vector<Diagnostico> diagnosticos = Diagnosticos(what, handle);
  const bool muerta = EstaMuerta();
  const std::string_view text = muerta ? kSePerdio : if_nothing;
  const OdbcError error = muerta || for_good ? FaultOf(diagnosticos, text) : ErrorDe(diagnosticos, text);
  if (muerta || error.Lost()) Perder();
  throw error;
}

void ConexionOdbc::VerificarUtil() {
  if (!conectada_) throw db::Error(base::StorageFault(perdida_ ? kPerdida : kCerrada));
  if (undone_) throw db::Error(base::StorageFault(kUndone));
  // After a transaction that could not be left, what runs next would belong to nobody's commit.
  if (!en_transaccion_ && !autocommit_ && !Autocommit(true))
    FailForGood("La base no pudo salir de la transacción anterior");
}

bool ConexionOdbc::Autocommit(bool si) {
  const SQLULEN valor = si ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF;
  if (!SQL_SUCCEEDED(
          SQLSetConnectAttrW(enlace_.Crudo(), SQL_ATTR_AUTOCOMMIT, ComoPuntero(valor), SQL_IS_UINTEGER)))
    return false;
  autocommit_ = si;
  return true;
}

void ConexionOdbc::BeginTrans() {
  VerificarUtil();
  if (en_transaccion_) throw db::Error("Ya hay una transacción abierta.");
  if (!con_transacciones_)
    throw db::Error(
        "El driver ODBC de esta base no admite transacciones: no se puede escribir en ella sin riesgo de que "
        "quede a medias.");
  if (!Autocommit(false)) FailForGood("La base no pudo empezar una transacción");
  EndOfTransaction();
  en_transaccion_ = true;
}

void ConexionOdbc::CommitTrans() {
  NeedTransaction();
  if (undone_) {
    RollbackTrans();
    throw db::Error(base::StorageFault(kUndone));
  }
  if (!SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, enlace_.Crudo(), SQL_COMMIT)))
    FailForGood("La base no pudo guardar la transacción");
  en_transaccion_ = false;
  EndOfTransaction();
  Autocommit(true);  // when it fails the next statement tries again, and says so
}

void ConexionOdbc::RollbackTrans() {
  NeedTransaction();
  RollBackAll();
  en_transaccion_ = false;
  EndOfTransaction();
  Autocommit(true);
}

void ConexionOdbc::NeedTransaction() const {
  if (en_transaccion_) return;
  if (perdida_) throw db::Error(base::StorageFault(kPerdida));
  throw db::Error(kSinTransaccion);
}

void ConexionOdbc::RollBackAll() {
  catalogo_.Olvidar();  // a definition may go, too
  sin_tocar_.clear();
  if (!SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, enlace_.Crudo(), SQL_ROLLBACK))) {
    // To leave the transaction any other way would keep what it wrote.
    const OdbcError error =
        FaultOf(Diagnosticos(SQL_HANDLE_DBC, enlace_.Crudo()), "La base no pudo deshacer la transacción");
    Perder();
    throw error;
  }
}

std::unique_ptr<db::Connection> Abrir(std::string_view cadena_de_conexion, const Opciones& opciones) {
  return db::AsConnectionErrors([&]() -> std::unique_ptr<db::Connection> {
    return std::make_unique<ConexionOdbc>(cadena_de_conexion, opciones);
  });
}

}  // namespace engine_odbc
