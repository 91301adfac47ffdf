// A payroll base in memory for the tests of the reference data and of what stands on it: the embedded engine
// behind a connection that notes the statements and fails those it was told to.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/error.h"
#include "db/db_session.h"
#include "ports/clock.h"
#include "ports/prompts.h"
#include "settings/settings.h"
#include "support/data_test.h"

namespace support {

class RelojMovible final : public ports::Clock {
 public:
  base::Fecha Ahora() const override { return ahora; }
  base::Fecha ahora = base::FechaDe(2024, 6, 15);
};

class ConexionTestigo final : public db::Connection {
 public:
  explicit ConexionTestigo(std::unique_ptr<db::Connection> motor) : motor_(std::move(motor)) {}

  bool Abierta() const override { return motor_->Abierta(); }
  void Cerrar() override { motor_->Cerrar(); }
  db::Recordset Ejecutar(std::string_view sql) override {
    Anotar(sql);
    return motor_->Ejecutar(sql);
  }
  db::Recordset Consultar(std::string_view sql) override {
    Anotar(sql);
    return motor_->Consultar(sql);
  }
  std::int64_t FilasAfectadas() const override { return motor_->FilasAfectadas(); }
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
  bool EnTransaccion() const override { return motor_->EnTransaccion(); }
  void SetSavepoint() override { motor_->SetSavepoint(); }
  void RollbackToSavepoint() override { motor_->RollbackToSavepoint(); }
  void ReleaseSavepoint() override { motor_->ReleaseSavepoint(); }

  std::vector<std::string> sentencias;  // in order, the failing ones among them
  std::vector<std::string> fallan;      // a statement that holds one of these texts fails

 private:
  void Anotar(std::string_view sql);

  std::unique_ptr<db::Connection> motor_;
};

// Notes the boxes; there is nobody to answer.
class PromptsAnotados final : public ports::Prompts {
 public:
  bool Mostrar(const ports::Aviso& aviso) override;
  bool Confirmar(const std::string& texto) override;
  std::vector<std::string> cajas;
};

struct BaseDePrueba {
  BaseDePrueba();

  RelojMovible reloj;
  ConexionTestigo* conexion = nullptr;  // owned by the session
  db::DbSession sesion;
  settings::Settings opciones;
  PromptsAnotados prompts;
  base::SumideroErrores errores;

  // The boxes and noted errors since the last call; the noted errors by their place alone.
  std::vector<std::string> Avisos();
};

// The verbs that prepare and look at the base; the tables of the reference data are there from the start.
//   exec / query    one statement a line / one query; rows "a|b", NULL, (empty)
//   sesion empresa=3 agrupa=SI construccion=NO      opciones CLAVE=valor …     reloj 2024-06-15
//   falla           statements that hold the input line fail from now on; without input none does
//   cerrar          closes the connection
//   sentencias      the statements run since the last time it was asked
Verbos VerbosDeBase(const std::shared_ptr<BaseDePrueba>& base);

std::string Celda(const std::string& texto);  // "(empty)" for an empty one
base::Fecha FechaDeIso(const std::string& texto);

}  // namespace support
