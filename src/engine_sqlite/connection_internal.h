#pragma once

#include <string>

#include "engine_sqlite/catalog_internal.h"
#include "engine_sqlite/runtime_internal.h"
#include "engine_sqlite/sqlite_connection.h"
#include "engine_sqlite/statement_cache_internal.h"
#include "ports/system_clock.h"

namespace engine_sqlite {

class ConexionSqlite final : public db::Connection {
 public:
  // With a source, `ruta` is that of the memory.
  ConexionSqlite(std::string_view ruta, const Opciones& opciones, FuenteDeTablas* fuente = nullptr);

  bool Abierta() const override { return base_ != nullptr; }
  void Cerrar() override;
  db::Recordset Ejecutar(std::string_view sql) override { return EjecutarComo(sql, false); }
  db::Recordset Consultar(std::string_view sql) override { return EjecutarComo(sql, true); }
  db::Recordset QueryBounded(std::string_view sql, db::QueryBudget& budget) override {
    const db::BudgetInUse lent(budget_, budget);
    return EjecutarComo(sql, true);
  }
  std::int64_t FilasAfectadas() const override { return afectadas_; }
  void BeginTrans() override;
  void CommitTrans() override;
  void RollbackTrans() override;
  bool EnTransaccion() const override { return en_transaccion_; }
  void SetSavepoint() override;
  void RollbackToSavepoint() override;
  void ReleaseSavepoint() override;

  const Contadores& Cuentas() const { return contadores_; }
  sqlite3* Manejador() const { return base_.get(); }
  void OlvidarTodo();
  void RunTranslation(jetsql::Traduccion translation);

 private:
  void AbrirArchivo(std::string_view ruta, const Opciones& opciones);
  void Configurar(std::string_view ruta, const Opciones& opciones);
  // The order that the file was made with; a new file takes that of the options.
  void FijarOrden();
  void VerificarUtil() const;

  void BeginStatement();
  db::Recordset EjecutarComo(std::string_view sql, bool solo_consulta);
  db::Recordset ResolverYCorrer(std::string_view sql, bool solo_consulta);
  // The statement to run and its literals (they last until the next statement).
  std::shared_ptr<Preparada> Resolver(std::string_view sql, const std::vector<base::Valor>*& literales);
  // `cruces`: the columns of crosstabs that are known already.
  using ColumnasDeCruces = std::vector<jetsql::ColumnasCruzadas>;
  std::shared_ptr<Preparada> Traducir(std::string_view sql, const ColumnasDeCruces& cruces = {});
  db::Recordset Correr(Preparada& p, const std::vector<base::Valor>& literales, std::string_view sql,
                       ColumnasDeCruces cruces = {});
  void CorrerDefinicion(Preparada& p, const std::vector<base::Valor>& literales);
  void CorrerPaso(Preparada& p, std::size_t paso, const std::vector<base::Valor>& literales,
                  std::vector<base::Valor>* celdas);
  [[noreturn]] void LanzarDePaso();
  void Anunciar(const jetsql::Traduccion& sentencia);  // to the source of a mirror
  // Forgets what is known of the file when another program has changed it, a saved query perhaps.
  void VerCambiosAjenos();

  // In the order in which they are needed: the handle's functions use the surroundings to the last.
  ports::SystemClock system_clock_;
  Entorno entorno_;
  ManejadorBase base_;
  Sentencia version_ajena_;  // counts the commits of others; null in memory
  std::int64_t version_vista_ = -1;
  FuenteDeTablas* fuente_ = nullptr;  // of a mirror
  CatalogoSqlite catalogo_{static_cast<sqlite3*>(nullptr)};
  jetsql::OpcionesTraduccion traduccion_;
  CacheDeFormas formas_;
  CacheDeMoldes moldes_;
  jetsql::Forma forma_;  // of the statement that is running; kept for its memory
  Contadores contadores_;
  std::int64_t afectadas_ = 0;
  db::QueryBudget* budget_ = nullptr;  // of the bounded query that is running
  bool en_transaccion_ = false;
  bool definio_ = false;  // a definition statement ran in the open transaction
  bool savepoint_ = false;
};

}  // namespace engine_sqlite
