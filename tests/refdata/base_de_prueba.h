// A payroll base for the tests of the reference data and of what stands on it, behind a connection that notes
// the statements and fails those it was told to: the embedded engine in memory, or (idm_test_base_mdb) a file
// of Access.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/error.h"
#include "ports/clock.h"
#include "ports/prompts.h"
#include "sesion/db_session.h"
#include "settings/settings.h"
#include "support/data_test.h"
#include "support/temp_folder.h"

namespace support {

class RelojMovible final : public ports::Clock {
 public:
  base::Date Now() const override { return ahora; }
  base::Date ahora = base::MakeDate(2024, 6, 15);
};

class ConexionTestigo final : public db::Connection {
 public:
  explicit ConexionTestigo(std::unique_ptr<db::Connection> motor) : motor_(std::move(motor)) {}

  bool IsOpen() const override { return motor_->IsOpen(); }
  void Close() override { motor_->Close(); }
  db::Recordset Execute(std::string_view sql) override {
    Anotar(sql);
    return motor_->Execute(sql);
  }
  db::Recordset Query(std::string_view sql) override {
    Anotar(sql);
    return motor_->Query(sql);
  }
  std::int64_t AffectedRows() const override { return motor_->AffectedRows(); }
  void BeginTrans() override {
    Anotar("BEGIN");
    motor_->BeginTrans();
  }
  void CommitTrans() override {
    Anotar("COMMIT");
    motor_->CommitTrans();
  }
  void RollbackTrans() override {
    Anotar("ROLLBACK");
    motor_->RollbackTrans();
  }
  bool InTransaction() const override { return motor_->InTransaction(); }
  void SetSavepoint() override {
    Anotar("SAVEPOINT");
    motor_->SetSavepoint();
  }
  void RollbackToSavepoint() override {
    Anotar("ROLLBACK TO SAVEPOINT");
    motor_->RollbackToSavepoint();
  }
  void ReleaseSavepoint() override {
    Anotar("RELEASE SAVEPOINT");
    motor_->ReleaseSavepoint();
  }

  std::vector<std::string> sentencias;  // in order, the failing ones among them
  std::vector<std::string> fallan;      // a statement that holds one of these texts fails
  base::ErrorKind falla = base::ErrorKind::Statement;

 private:
  void Anotar(std::string_view sql);

  std::unique_ptr<db::Connection> motor_;
};

// Notes the boxes; there is nobody to answer.
class PromptsAnotados final : public ports::Prompts {
 public:
  bool Show(const ports::Notice& aviso) override;
  bool Confirm(const std::string& texto) override;
  std::vector<std::string> cajas;
};

struct BaseDePrueba {
  BaseDePrueba();

  TempFolder carpeta;  // of the file, while it is open
  RelojMovible reloj;
  ConexionTestigo* conexion = nullptr;  // owned by the session
  sesion::DbSession sesion;
  settings::Settings opciones;
  PromptsAnotados prompts;
  base::ErrorSink errores;

  // The boxes and noted errors since the last call; the noted errors by their place alone.
  std::vector<std::string> Avisos();
};

// The verbs that prepare and look at the base; the tables of the reference data are there from the start.
//   exec / query    one statement a line / one query; rows "a|b", NULL, (empty)
//   sesion empresa=3 agrupa=SI construccion=NO      opciones CLAVE=valor …     reloj 2024-06-15
//   falla [almacen] statements that hold an input line fail from now on; without input none does. With the
//                   word it is a fault of the storage
//   cerrar          closes the connection
//   transaccion begin|commit|rollback      of whoever calls the program
//   sentencias      the statements run since the last time it was asked
Verbs VerbosDeBase(const std::shared_ptr<BaseDePrueba>& base);

// Runs a step of the program: none, or the line that says which fault of the storage travelled out of it.
template <typename Paso>
std::vector<std::string> LoQueViaja(Paso&& paso) {
  try {
    std::forward<Paso>(paso)();
    return {};
  } catch (const base::Error& e) {
    if (!e.IsStorageFault()) throw;
    return {"travels: " + e.Description()};
  }
}

std::string Celda(const std::string& texto);  // "(empty)" for an empty one
base::Date FechaDeIso(const std::string& texto);

}  // namespace support
