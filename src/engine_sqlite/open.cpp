// Opening and closing a file, and transactions.
#include "base/file.h"
#include "engine_sqlite/connection_internal.h"

namespace engine_sqlite {
namespace {

constexpr std::string_view kEnMemoria = ":memory:";
constexpr const char* kYaDeshecha = "Un error anterior deshizo la transacción: nada de ella quedó guardado.";

std::int64_t Cifra(sqlite3* base, const char* sql) {
  const Sentencia s = Preparar(base, sql);
  if (sqlite3_step(s.get()) != SQLITE_ROW) LanzarError(base);
  return sqlite3_column_int64(s.get(), 0);
}

bool EnUtf8(sqlite3* base) {
  const Sentencia s = Preparar(base, "PRAGMA encoding");
  if (sqlite3_step(s.get()) != SQLITE_ROW) LanzarError(base);
  const auto* nombre = reinterpret_cast<const char*>(sqlite3_column_text(s.get(), 0));
  return nombre != nullptr && std::string_view(nombre) == "UTF-8";
}

// A statement that is of no consequence when it fails (a read-only file keeps its journal mode).
void Procurar(sqlite3* base, const char* sql) { sqlite3_exec(base, sql, nullptr, nullptr, nullptr); }

// A path that names another machine.
bool EnRed(std::string_view ruta) { return ruta.substr(0, 2) == "\\\\" || ruta.substr(0, 2) == "//"; }

}  // namespace

ConexionSqlite::ConexionSqlite(std::string_view ruta, const Opciones& opciones, FuenteDeTablas* fuente)
    : fuente_(fuente) {
  entorno_.locale = opciones.locale != nullptr ? opciones.locale : &base::Locale::espanol();
  entorno_.reloj = opciones.reloj != nullptr ? opciones.reloj : &system_clock_;
  entorno_.orden = opciones.orden;
  traduccion_.comodines_dao = opciones.comodines_dao;
  traduccion_.locale = entorno_.locale;
  AbrirArchivo(ruta, opciones);
  Configurar(ruta, opciones);
  FijarOrden();
  catalogo_ = fuente_ != nullptr ? CatalogoSqlite(*fuente_) : CatalogoSqlite(base_.get());
}

void ConexionSqlite::AbrirArchivo(std::string_view ruta, const Opciones& opciones) {
  const std::string nombre(ruta);
  const bool en_memoria = ruta == kEnMemoria;
  if (ruta.empty()) throw db::Error("Falta la ruta de la base.");
  if (!en_memoria && !opciones.crear && !base::ExisteArchivo(ruta))
    throw db::Error(base::StorageFault("No existe el archivo de la base " + nombre + "."));
  const int modo = opciones.solo_lectura && !en_memoria
                       ? SQLITE_OPEN_READONLY
                       : SQLITE_OPEN_READWRITE | (opciones.crear || en_memoria ? SQLITE_OPEN_CREATE : 0);
  // A relative name that starts like a URI is still a file's name.
  const std::string camino = nombre.rfind("file:", 0) == 0 ? "./" + nombre : nombre;
  sqlite3* cruda = nullptr;
  const int rc =
      sqlite3_open_v2(camino.c_str(), &cruda, modo | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
  base_.reset(cruda);
  if (rc != SQLITE_OK)
    throw db::Error(base::StorageFault("No se puede abrir la base " + nombre + ". " +
                                       DescripcionDe(rc, cruda != nullptr ? sqlite3_errmsg(cruda) : "")));
  sqlite3_busy_timeout(base_.get(), opciones.espera_ms);
  try {
    // The first read tells a file of another kind.
    if (Cifra(base_.get(), "PRAGMA page_count") == 0 && !opciones.crear && !en_memoria)
      throw db::Error("El archivo está vacío.");
    Cifra(base_.get(), "PRAGMA schema_version");
  } catch (const db::Error& e) {
    throw db::Error(base::StorageFault("No se puede abrir la base " + nombre + ". " + e.Descripcion()));
  }
}

void ConexionSqlite::Configurar(std::string_view ruta, const Opciones& opciones) {
  sqlite3* base = base_.get();
  const bool en_memoria = ruta == kEnMemoria;
  // A name in double quotes that is no column must be an error and not a text.
  sqlite3_db_config(base, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_db_config(base, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  // SQLite's own default, which some builds raise: the time to prepare grows with the square of this number.
  sqlite3_limit(base, SQLITE_LIMIT_VARIABLE_NUMBER, 32766);
  entorno_.utf8 = EnUtf8(base);
  Registrar(base, entorno_);
  // An import is one transaction, so that a full sync at each commit costs nothing that is felt. The
  // write-ahead log needs memory shared by all who have the file open, which a file on another machine cannot
  // give.
  if (!en_memoria && !opciones.solo_lectura)
    Procurar(base, EnRed(ruta) ? "PRAGMA journal_mode=DELETE; PRAGMA synchronous=FULL"
                               : "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL");
  if (opciones.solo_lectura) Procurar(base, "PRAGMA query_only=ON");
  Procurar(base,
           "PRAGMA foreign_keys=ON; PRAGMA temp_store=MEMORY; PRAGMA cache_size=-65536; PRAGMA "
           "secure_delete=FAST");
  if (!en_memoria) version_ajena_ = Preparar(base, "PRAGMA data_version");
}

// The sort order is written into the file, because its indexes hold for no other one.
void ConexionSqlite::FijarOrden() {
  sqlite3* base = base_.get();
  const std::int64_t escrito = Cifra(base, "PRAGMA user_version");
  if (const auto order = base::OrderOfLanguage(escrito)) entorno_.orden = *order;
  const bool nuevo = escrito == 0 && Cifra(base, "PRAGMA schema_version") == 0;
  if (!nuevo || sqlite3_db_readonly(base, "main") != 0) return;
  const std::string write = "PRAGMA user_version=" + std::to_string(base::LanguageOf(entorno_.orden));
  EjecutarPropio(base, write.c_str());
}

void ConexionSqlite::Cerrar() {
  moldes_.Vaciar();
  formas_.Vaciar();
  version_ajena_ = nullptr;
  catalogo_ = CatalogoSqlite(static_cast<sqlite3*>(nullptr));
  base_.reset();  // what an open transaction wrote is undone
  en_transaccion_ = false;
  savepoint_ = definio_ = false;
}

void ConexionSqlite::VerificarUtil() const {
  if (base_ == nullptr) throw db::Error(base::StorageFault("La base no está abierta."));
  // A full disk or a read failure makes SQLite undo the whole transaction; what came after would be kept
  // alone.
  if (en_transaccion_ && sqlite3_get_autocommit(base_.get()) != 0)
    throw db::Error(base::StorageFault(kYaDeshecha));
}

void ConexionSqlite::BeginTrans() {
  VerificarUtil();
  if (en_transaccion_) throw db::Error("Ya hay una transacción abierta.");
  EjecutarPropio(base_.get(), "BEGIN IMMEDIATE");
  try {
    VerCambiosAjenos();  // from here on there can be none
  } catch (const db::Error&) {
    sqlite3_exec(base_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
  en_transaccion_ = true;
  definio_ = savepoint_ = false;
}

void ConexionSqlite::CommitTrans() {
  if (base_ == nullptr || !en_transaccion_) throw db::Error("No hay ninguna transacción abierta.");
  if (sqlite3_get_autocommit(base_.get()) != 0) {
    RollbackTrans();
    throw db::Error(base::StorageFault(kYaDeshecha));
  }
  EjecutarPropio(base_.get(), "COMMIT");
  en_transaccion_ = savepoint_ = false;
}

void ConexionSqlite::RollbackTrans() {
  if (base_ == nullptr || !en_transaccion_) throw db::Error("No hay ninguna transacción abierta.");
  en_transaccion_ = savepoint_ = false;
  if (definio_) OlvidarTodo();
  definio_ = false;
  if (sqlite3_get_autocommit(base_.get()) == 0) EjecutarPropio(base_.get(), "ROLLBACK");
}

void ConexionSqlite::SetSavepoint() {
  VerificarUtil();
  if (!en_transaccion_) throw db::Error("No hay ninguna transacción abierta.");
  if (savepoint_) ReleaseSavepoint();
  EjecutarPropio(base_.get(), "SAVEPOINT marca");
  savepoint_ = true;
}

void ConexionSqlite::RollbackToSavepoint() {
  VerificarUtil();
  if (!savepoint_) throw db::Error("No hay ninguna marca en la transacción.");
  try {
    EjecutarPropio(base_.get(), "ROLLBACK TO marca");
  } catch (const db::Error& e) {
    throw db::Error(base::StorageFault("No se pudo deshacer la sentencia. " + e.Descripcion()));
  }
  if (definio_) OlvidarTodo();
}

void ConexionSqlite::ReleaseSavepoint() {
  VerificarUtil();
  if (!savepoint_) throw db::Error("No hay ninguna marca en la transacción.");
  EjecutarPropio(base_.get(), "RELEASE marca");
  savepoint_ = false;
}

namespace {

// SQLite's own count of the memory it uses takes a lock at each allocation, and nobody asks for it. It can be
// told so only before its first use in the program; later it refuses, which does no harm.
void SinCuentaDeMemoria() {
  static const int kSinCuentaDeMemoria = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
  static_cast<void>(kSinCuentaDeMemoria);
}

}  // namespace

std::unique_ptr<db::Connection> Abrir(std::string_view ruta, const Opciones& opciones) {
  SinCuentaDeMemoria();
  return db::AsConnectionErrors(
      [&]() -> std::unique_ptr<db::Connection> { return std::make_unique<ConexionSqlite>(ruta, opciones); });
}

Espejo AbrirEspejo(FuenteDeTablas& fuente, const Opciones& opciones) {
  SinCuentaDeMemoria();
  auto conexion = std::make_unique<ConexionSqlite>(kEnMemoria, opciones, &fuente);
  sqlite3* base = conexion->Manejador();
  return {std::move(conexion), base};
}

namespace {

ConexionSqlite& Own(db::Connection& mirror) {
  auto* own = dynamic_cast<ConexionSqlite*>(&mirror);
  if (own == nullptr) throw db::Error("La conexión no es un espejo.");
  return *own;
}

}  // namespace

void OlvidarTraducciones(db::Connection& espejo) { Own(espejo).OlvidarTodo(); }

void RunTranslation(db::Connection& mirror, jetsql::Traduccion translation) {
  Own(mirror).RunTranslation(std::move(translation));
}

const Contadores* ContadoresDe(const db::Connection& conexion) {
  const auto* propia = dynamic_cast<const ConexionSqlite*>(&conexion);
  return propia == nullptr ? nullptr : &propia->Cuentas();
}

}  // namespace engine_sqlite
