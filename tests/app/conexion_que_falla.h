// A connection that answers until it is told to fail.
#pragma once

#include <memory>
#include <new>
#include <string>
#include <utility>

#include "app/conector.h"
#include "base/text.h"
#include "db/connection.h"

namespace prueba {

enum class Falla { Ninguna, Sentencia, Almacenamiento, Memoria };

// What fails, shared with the test.
struct Desperfecto {
  Falla falla = Falla::Ninguna;
  std::string en;  // only statements that hold this text; "": all
  int veces = 0;   // how often it has failed
};

class ConexionQueFalla final : public db::Connection {
 public:
  ConexionQueFalla(std::unique_ptr<db::Connection> abajo, std::shared_ptr<Desperfecto> desperfecto)
      : abajo_(std::move(abajo)), desperfecto_(std::move(desperfecto)) {}

  // Answers from now on instead of what answered.
  void Poner(std::unique_ptr<db::Connection> abajo) { abajo_ = std::move(abajo); }

  bool IsOpen() const override { return abajo_->IsOpen(); }
  void Close() override { abajo_->Close(); }
  db::Recordset Execute(std::string_view sql) override {
    Fallar(sql);
    return abajo_->Execute(sql);
  }
  db::Recordset Query(std::string_view sql) override {
    Fallar(sql);
    return abajo_->Query(sql);
  }
  std::int64_t AffectedRows() const override { return abajo_->AffectedRows(); }
  void BeginTrans() override { abajo_->BeginTrans(); }
  void CommitTrans() override { abajo_->CommitTrans(); }
  void RollbackTrans() override { abajo_->RollbackTrans(); }
  bool InTransaction() const override { return abajo_->InTransaction(); }
  void SetSavepoint() override { abajo_->SetSavepoint(); }
  void RollbackToSavepoint() override { abajo_->RollbackToSavepoint(); }
  void ReleaseSavepoint() override { abajo_->ReleaseSavepoint(); }

 private:
  void Fallar(std::string_view sql) {
    if (desperfecto_->falla == Falla::Ninguna) return;
    if (!base::Contains(sql, desperfecto_->en, base::Compare::IgnoringCase)) return;
    ++desperfecto_->veces;
    if (desperfecto_->falla == Falla::Memoria) throw std::bad_alloc();
    throw db::Error(
        "no contesta", 0, {},
        desperfecto_->falla == Falla::Almacenamiento ? base::ErrorKind::Storage : base::ErrorKind::Statement);
  }

  std::unique_ptr<db::Connection> abajo_;
  std::shared_ptr<Desperfecto> desperfecto_;
};

// Opens a reference with such a connection over it.
inline auto ConectarQueFalla(std::shared_ptr<Desperfecto> desperfecto) {
  return [desperfecto](const std::string& referencia, const ports::Clock& reloj) {
    app::Conexion c = app::AbrirReferencia(referencia, reloj);
    if (c.conexion) c.conexion = std::make_unique<ConexionQueFalla>(std::move(c.conexion), desperfecto);
    return c;
  };
}

}  // namespace prueba
