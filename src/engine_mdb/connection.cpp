// Opening a file, and how statements and transactions travel between the mirrors and its pages.
#include "engine_mdb/mdb_connection.h"

#include "engine_mdb/connection_internal.h"
#include "jetsql/statement_kind.h"

namespace engine_mdb {
namespace {

constexpr const char* kUndone = "Un error anterior deshizo la transacción: nada de ella quedó guardado.";

}  // namespace

ConexionMdb::ConexionMdb(std::unique_ptr<mdb::Base> base, std::string_view ruta, const Opciones& opciones)
    : ruta_(ruta), opciones_(opciones), clock_(opciones.reloj != nullptr ? *opciones.reloj : system_clock_) {
  Iniciar(std::move(base));
}

void ConexionMdb::Iniciar(std::unique_ptr<mdb::Base> base) {
  base_ = std::move(base);
  fuente_ = std::make_unique<FuenteMdb>(*base_, ruta_, contadores_);
  engine_sqlite::Opciones abajo;
  abajo.orden = base::OrderOfLanguage(base_->Cab().orden).value_or(base::Orden::General);
  abajo.reloj = &clock_;
  abajo.locale = opciones_.locale;
  abajo.comodines_dao = opciones_.comodines_dao;
  espejo_ = engine_sqlite::AbrirEspejo(*fuente_, abajo);
  fuente_->Unir(espejo_.base, [this] {
    if (!abierta_abajo_) Comenzar();
  });
}

void ConexionMdb::VerCambiosAjenos() {
  if (abierta_abajo_) return;
  db::AsConnectionErrors([&] {
    if (!base_->Hojas().CambioAfuera()) return;
    auto nueva = mdb::Base::Abrir(ruta_, {opciones_.solo_lectura, opciones_.contrasena});
    Cerrar();
    Iniciar(std::move(nueva));
  });
}

bool ConexionMdb::ConseguirEscritura() {
  if (abierta_abajo_ || opciones_.solo_lectura || base_->MotivoSoloLectura().empty()) return false;
  return db::AsConnectionErrors([&] {
    auto nueva = mdb::Base::Abrir(ruta_, {false, opciones_.contrasena});
    if (!nueva->MotivoSoloLectura().empty()) return false;
    Cerrar();
    Iniciar(std::move(nueva));
    return true;
  });
}

void ConexionMdb::Cerrar() {
  if (fuente_ != nullptr) fuente_->Soltar();
  if (espejo_.conexion != nullptr) espejo_.conexion->Cerrar();
  espejo_ = {};
  fuente_.reset();
  base_.reset();
  ForgetMark();
  en_transaccion_ = abierta_abajo_ = definio_ = false;
}

void ConexionMdb::VerificarAbierta() const {
  if (base_ == nullptr) throw db::Error(base::StorageFault("La base no está abierta."));
  if (abierta_abajo_ && sqlite3_get_autocommit(espejo_.base) != 0)
    throw db::Error(base::StorageFault(kUndone));
}

void ConexionMdb::Comenzar() {
  if (const std::string motivo = MotivoDeNoEscribir(*base_); !motivo.empty()) throw BaseNotWritable(motivo);
  fuente_->GuardarEstado();
  espejo_.conexion->BeginTrans();
  abierta_abajo_ = true;
  definio_ = false;
}

// The file first: what it refuses is undone in the mirrors, while they can hardly refuse what it has taken.
void ConexionMdb::Confirmar() {
  bool habia = false, escribiendo = false;
  try {
    db::AsConnectionErrors([&] {
      fuente_->EscribirCambios();
      habia = base_->Hojas().HayCambios();
      escribiendo = true;
      base_->Confirmar();
    });
  } catch (const db::Error&) {
    definio_ = definio_ || escribiendo;  // what the disk holds is read again
    Deshacer();
    throw;
  }
  espejo_.conexion->CommitTrans();
  abierta_abajo_ = definio_ = false;
  ForgetMark();
  fuente_->Asentar(true);
  if (habia) ++contadores_.confirmaciones;
}

void ConexionMdb::Deshacer() {
  abierta_abajo_ = false;
  ForgetMark();
  base_->Deshacer();
  espejo_.conexion->RollbackTrans();
  fuente_->VolverAlEstado();
  if (definio_) fuente_->DescartarTodo();
  definio_ = false;
  engine_sqlite::OlvidarTraducciones(*espejo_.conexion);
}

void ConexionMdb::BeginTrans() {
  VerificarAbierta();
  if (en_transaccion_) throw db::Error("Ya hay una transacción abierta.");
  VerCambiosAjenos();
  ConseguirEscritura();
  Comenzar();
  en_transaccion_ = true;
}

void ConexionMdb::CommitTrans() {
  if (base_ == nullptr || !en_transaccion_) throw db::Error("No hay ninguna transacción abierta.");
  en_transaccion_ = false;
  if (sqlite3_get_autocommit(espejo_.base) != 0) {
    Deshacer();
    throw db::Error(base::StorageFault(kUndone));
  }
  Confirmar();
}

void ConexionMdb::RollbackTrans() {
  if (base_ == nullptr || !en_transaccion_) throw db::Error("No hay ninguna transacción abierta.");
  en_transaccion_ = false;
  Deshacer();
}

void ConexionMdb::SetSavepoint() {
  VerificarAbierta();
  if (!en_transaccion_) throw db::Error("No hay ninguna transacción abierta.");
  db::AsConnectionErrors([&] {
    espejo_.conexion->SetSavepoint();
    fuente_->SetMark();
  });
  pages_at_mark_.reset();
  defined_at_mark_ = definio_;
  marked_ = true;
}

void ConexionMdb::RollbackToSavepoint() {
  VerificarAbierta();
  if (!marked_) throw db::Error("No hay ninguna marca en la transacción.");
  try {
    db::AsConnectionErrors([&] { ReturnToMark(); });
  } catch (const db::Error& e) {
    if (e.IsStorageFault()) throw;
    throw db::Error(base::StorageFault("No se pudo deshacer la sentencia. " + e.Descripcion()));
  }
}

void ConexionMdb::ReturnToMark() {
  espejo_.conexion->RollbackToSavepoint();
  if (pages_at_mark_) {
    base_->Volver(std::move(*pages_at_mark_));
    pages_at_mark_.reset();
    engine_sqlite::OlvidarTraducciones(*espejo_.conexion);
  }
  fuente_->ReturnToMark();
  definio_ = defined_at_mark_;
  if (!fuente_->AnythingToRenew()) return;
  espejo_.conexion->ReleaseSavepoint();
  fuente_->Renew();
  espejo_.conexion->SetSavepoint();
  fuente_->SetMark();
}

void ConexionMdb::ReleaseSavepoint() {
  VerificarAbierta();
  if (!marked_) throw db::Error("No hay ninguna marca en la transacción.");
  espejo_.conexion->ReleaseSavepoint();
  ForgetMark();
}

void ConexionMdb::ForgetMark() {
  marked_ = false;
  pages_at_mark_.reset();
  if (fuente_ != nullptr) fuente_->ForgetMark();
}

db::Recordset ConexionMdb::EjecutarComo(std::string_view sql, bool solo_consulta) {
  VerificarAbierta();
  VerCambiosAjenos();
  try {
    return Correr(sql, solo_consulta);
  } catch (const BaseNotWritable&) {
    if (!ConseguirEscritura()) throw;
  }
  return Correr(sql, solo_consulta);
}

db::Recordset ConexionMdb::Correr(std::string_view sql, bool solo_consulta) {
  afectadas_ = 0;
  fuente_->Empezar();
  return db::AsConnectionErrors([&] {
    if (!solo_consulta && jetsql::KindOfText(sql) == jetsql::Clase::Definicion) {
      jetsql::Sentencia sentencia = jetsql::Analizar(sql, jetsql::Literales::EnTexto);
      CorrerDefinicion(sentencia);
      return db::Recordset(std::make_shared<const db::Columnas>(), {}, std::string(sql));
    }
    return CorrerFilas(sql, solo_consulta);
  });
}

db::Recordset ConexionMdb::CorrerFilas(std::string_view sql, bool solo_consulta) {
  db::Recordset filas;
  try {
    filas = budget_ != nullptr ? espejo_.conexion->QueryBounded(sql, *budget_)
            : solo_consulta    ? espejo_.conexion->Consultar(sql)
                               : espejo_.conexion->Ejecutar(sql);
    fuente_->CheckNoted();
  } catch (const base::Error&) {
    if (abierta_abajo_ && !en_transaccion_) Deshacer();
    throw;
  }
  afectadas_ = espejo_.conexion->FilasAfectadas();
  if (!abierta_abajo_ || en_transaccion_) return filas;
  try {
    Confirmar();
  } catch (const db::Error&) {
    afectadas_ = 0;
    throw;
  }
  return filas;
}

std::unique_ptr<db::Connection> Abrir(std::string_view ruta, const Opciones& opciones) {
  return db::AsConnectionErrors([&]() -> std::unique_ptr<db::Connection> {
    return std::make_unique<ConexionMdb>(mdb::Base::Abrir(ruta, {opciones.solo_lectura, opciones.contrasena}),
                                         ruta, opciones);
  });
}

std::string ReadOnlyReason(const db::Connection& connection) {
  const auto* own = dynamic_cast<const ConexionMdb*>(&connection);
  return own == nullptr ? std::string() : own->ReadOnlyReason();
}

const Contadores* ContadoresDe(const db::Connection& conexion) {
  const auto* propia = dynamic_cast<const ConexionMdb*>(&conexion);
  return propia == nullptr ? nullptr : &propia->Cuentas();
}

}  // namespace engine_mdb
