#pragma once

#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "engine_odbc/bounded_internal.h"
#include "engine_odbc/catalog_internal.h"
#include "engine_odbc/odbc_connection.h"
#include "jetsql/ast.h"

namespace engine_odbc {

class ConexionOdbc final : public db::Connection {
 public:
  ConexionOdbc(std::string_view cadena, const Opciones& opciones);
  ConexionOdbc(const ConexionOdbc&) = delete;
  ConexionOdbc& operator=(const ConexionOdbc&) = delete;
  ~ConexionOdbc() override { Desconectar(); }

  bool Abierta() const override { return conectada_; }
  void Cerrar() override;
  db::Recordset Ejecutar(std::string_view sql) override;
  db::Recordset Consultar(std::string_view sql) override;
  db::Recordset QueryBounded(std::string_view sql, db::QueryBudget& budget) override;
  std::int64_t FilasAfectadas() const override { return afectadas_; }
  void BeginTrans() override;
  void CommitTrans() override;
  void RollbackTrans() override;
  bool EnTransaccion() const override { return en_transaccion_; }
  void SetSavepoint() override;
  void RollbackToSavepoint() override;
  void ReleaseSavepoint() override;

 private:
  void Conectar(std::string_view cadena, const Opciones& opciones);
  void Desconectar();
  void VerificarUtil();
  bool Autocommit(bool si);
  // `tree`: of the statement, when it has been parsed already.
  db::Recordset Correr(std::string_view sql, jetsql::Sentencia* tree);
  SQLRETURN Mandar(const std::string& texto);
  db::Recordset Recoger(std::string_view sql, StatementLimits& limits);
  // The statement as the driver is to get it.
  std::string TextoParaElDriver(std::string_view sql, jetsql::Sentencia* tree);
  bool EstaMuerta() const;
  void Perder();
  // Throws what the driver says; a failure that means the loss of the connection closes it.
  [[noreturn]] void Fallar(SQLSMALLINT que, SQLHANDLE manejador, std::string_view si_nada);
  // The same for what is no statement: the run cannot go on.
  [[noreturn]] void FailForGood(std::string_view if_nothing);
  [[noreturn]] void Fail(SQLSMALLINT what, SQLHANDLE handle, std::string_view if_nothing, bool for_good);

  // Savepoints (savepoint.cpp).
  bool RunOwn(const char* sql);
  void Replay();
  // A statement that changed something in the open transaction.
  void NoteChange(const std::string& text, SQLLEN rows);
  void NeedTransaction() const;
  void RollBackAll();
  void EndOfTransaction();
  void OpenCursor();
  SQLLEN RowCount() const;  // of the last statement; -1 when the driver does not know

  // In the order in which they are needed: the driver manager frees from the inside out.
  Ambiente ambiente_;
  Enlace enlace_;
  Cursor cursor_;  // of every statement; closed between them
  CatalogoOdbc catalogo_{enlace_};
  std::unordered_set<std::string> sin_tocar_;  // shapes of statements whose text needs nothing
  std::int64_t afectadas_ = 0;
  db::QueryBudget* budget_ = nullptr;  // of the bounded query that is running
  bool conectada_ = false;
  bool perdida_ = false;
  bool solo_lectura_ = false;
  bool con_transacciones_ = false;  // what the driver says of itself
  bool en_transaccion_ = false;
  bool autocommit_ = true;

  // Whether the driver undoes to a savepoint by itself: not known before the first one. Where it does not,
  // the changes of the transaction, to be run again.
  std::optional<bool> own_savepoints_;
  struct Change {
    std::string text;
    SQLLEN rows = -1;
  };
  std::vector<Change> changes_;
  bool marked_ = false;
  bool undone_ = false;       // what the transaction did is gone, and it was not ended by a rollback
  SQLLEN rows_of_last_ = -1;  // that changed
  std::size_t mark_ = 0;      // how many changes stand before the mark
  std::optional<bool> pierde_caracteres_;  // asked when a text has one that might be lost
};

}  // namespace engine_odbc
