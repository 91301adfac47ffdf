// A connection, where chosen statements and steps fail.
#pragma once

#include <functional>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "base/text.h"
#include "db/connection.h"

namespace prueba {

class ConexionConFallas final : public db::Connection {
 public:
  explicit ConexionConFallas(std::unique_ptr<db::Connection> motor) : motor_(std::move(motor)) {}

  // The `vez`-th statement from now on that starts so (1: the next) fails.
  void Fallar(std::string comienzo, int vez, base::ErrorKind clase = base::ErrorKind::Statement) {
    comienzo_ = std::move(comienzo);
    vez_ = vez;
    clase_ = clase;
  }
  bool falla_begin = false, falla_commit = false, falla_rollback = false, falla_savepoint = false,
       falla_cerrar = false;
  bool falla_memoria = false;                         // the statement chosen by Fallar finds no memory
  std::function<void(std::string_view)> al_ejecutar;  // before each statement that succeeds
  std::string quitar;                                 // a piece that no statement has any more

  bool IsOpen() const override { return motor_->IsOpen(); }
  void Close() override {
    if (falla_cerrar) throw db::Error("no cierra", 0, {}, base::ErrorKind::Storage);
    motor_->Close();
  }
  db::Recordset Execute(std::string_view sql) override {
    Probar(sql);
    if (!quitar.empty()) return motor_->Execute(base::Replace(sql, quitar, ""));
    return motor_->Execute(sql);
  }
  db::Recordset Query(std::string_view sql) override {
    Probar(sql);
    return motor_->Query(sql);
  }
  db::Recordset QueryBounded(std::string_view sql, db::QueryBudget& budget) override {
    return motor_->QueryBounded(sql, budget);
  }
  std::int64_t AffectedRows() const override { return motor_->AffectedRows(); }
  void BeginTrans() override {
    if (falla_begin) throw db::Error("no comienza");
    motor_->BeginTrans();
  }
  void CommitTrans() override {
    if (falla_commit) throw db::Error("no termina");
    motor_->CommitTrans();
  }
  void RollbackTrans() override {
    if (falla_rollback) throw db::Error("no deshace", 0, {}, base::ErrorKind::Storage);
    motor_->RollbackTrans();
  }
  bool InTransaction() const override { return motor_->InTransaction(); }
  void SetSavepoint() override { motor_->SetSavepoint(); }
  void RollbackToSavepoint() override {
    if (falla_savepoint) throw db::Error("no vuelve", 0, {}, base::ErrorKind::Storage);
    motor_->RollbackToSavepoint();
  }
  void ReleaseSavepoint() override { motor_->ReleaseSavepoint(); }

 private:
  void Probar(std::string_view sql) {
    if (vez_ > 0 && base::StartsWith(base::TrimView(sql), comienzo_) && --vez_ == 0) {
      if (falla_memoria) throw std::bad_alloc();
      throw db::Error("falla de prueba", 0, {}, clase_);
    }
    if (al_ejecutar) al_ejecutar(sql);
  }

  std::unique_ptr<db::Connection> motor_;
  std::string comienzo_;
  int vez_ = 0;
  base::ErrorKind clase_ = base::ErrorKind::Statement;
};

}  // namespace prueba
