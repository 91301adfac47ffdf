#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "engine_mdb/source_internal.h"
#include "jetsql/parser.h"
#include "ports/system_clock.h"

namespace engine_mdb {

class ConexionMdb final : public db::Connection {
 public:
  ConexionMdb(std::unique_ptr<mdb::Base> base, std::string_view ruta, const Opciones& opciones);
  ~ConexionMdb() override { Cerrar(); }
  ConexionMdb(const ConexionMdb&) = delete;
  ConexionMdb& operator=(const ConexionMdb&) = delete;

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
  std::string ReadOnlyReason() const { return base_ == nullptr ? std::string() : MotivoDeNoEscribir(*base_); }

 private:
  void Iniciar(std::unique_ptr<mdb::Base> base);
  void VerificarAbierta() const;
  // Opens the file anew when another program has written it: only between transactions, and only a file that
  // is open for reading, since nobody else writes one that is ours.
  void VerCambiosAjenos();
  // A file that could only be read because another program had it: opens it for writing if that is over.
  bool ConseguirEscritura();
  db::Recordset EjecutarComo(std::string_view sql, bool solo_consulta);
  db::Recordset Correr(std::string_view sql, bool solo_consulta);
  db::Recordset CorrerFilas(std::string_view sql, bool solo_consulta);

  // The transaction below: that of BeginTrans, or of one statement that writes.
  void Comenzar();
  void Confirmar();
  void Deshacer();
  void ReturnToMark();
  void ForgetMark();

  // Definition statements (definitions.cpp).
  void CorrerDefinicion(jetsql::Sentencia& sentencia);
  // `whole` is the statement that the definition is of.
  void Aplicar(jetsql::Sentencia& whole, const jetsql::CrearTabla& s);
  void Aplicar(jetsql::Sentencia& whole, const jetsql::CrearIndice& s);
  void Aplicar(jetsql::Sentencia& whole, jetsql::CrearVista& s);
  void Aplicar(jetsql::Sentencia& whole, const jetsql::Quitar& s);
  void Aplicar(jetsql::Sentencia& whole, const jetsql::AlterarTabla& s);
  void Aplicar(jetsql::Sentencia& whole, const jetsql::ConsultaPtr& s);
  template <typename T>
  void Aplicar(jetsql::Sentencia&, const T&) {}
  jetsql::Traduccion Translate(jetsql::Sentencia& statement) const;
  void AgregarColumna(const std::string& tabla, const jetsql::DefColumna& columna,
                      const mdb::NuevaColumna& nueva);
  void AgregarRestriccion(const std::string& tabla, const jetsql::Restriccion& restriccion);
  void QuitarIndice(const std::string& tabla, const std::string& nombre);
  void QuitarRestriccion(const std::string& tabla, const std::string& nombre);
  void Relacionar(const std::string& tabla, const std::string& nombre,
                  const std::vector<std::string>& columnas, const jetsql::Referencia& referencia);
  void Ensayar(jetsql::Sentencia& statement);
  // The pages and the catalog go back to where they are when the step throws.
  template <typename Paso>
  void VolverSiFalla(Paso&& paso);
  void IndiceLibre(const mdb::Definicion& tabla, const std::string& nombre) const;

  std::string ruta_;
  Opciones opciones_;
  ports::SystemClock system_clock_;
  const ports::Clock& clock_;
  Contadores contadores_;
  std::unique_ptr<mdb::Base> base_;
  std::unique_ptr<FuenteMdb> fuente_;
  engine_sqlite::Espejo espejo_;
  std::int64_t afectadas_ = 0;
  db::QueryBudget* budget_ = nullptr;  // of the bounded query that is running
  bool en_transaccion_ = false;        // of BeginTrans
  bool abierta_abajo_ = false;         // a transaction of SQLite is open, ours or BeginTrans's
  bool definio_ = false;               // a definition ran in it

  // The mark inside the transaction. The pages change in definitions alone: those of the mark are kept when
  // the first one after it runs.
  bool marked_ = false;
  bool defined_at_mark_ = false;
  std::optional<mdb::Paginas::Punto> pages_at_mark_;
};

}  // namespace engine_mdb
