// A connection that notes what the statements sent to another one cost.
#pragma once

#include <chrono>
#include <cstddef>
#include <ctime>
#include <map>
#include <memory>
#include <string>

#include "db/connection.h"

namespace bench {

// Processor time, which other programs on the machine do not change.
class Reloj {
 public:
  double Segundos() const { return static_cast<double>(std::clock() - desde_) / CLOCKS_PER_SEC; }

 private:
  std::clock_t desde_ = std::clock();
};

// Time of day; cheap enough for every statement.
class RelojDePared {
 public:
  double Segundos() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - desde_).count();
  }

 private:
  std::chrono::steady_clock::time_point desde_ = std::chrono::steady_clock::now();
};

struct Costo {
  std::size_t veces = 0;
  double segundos = 0;  // of day
  double proceso = 0;   // of the processor; only of what runs once
};

class MeasuredConnection final : public db::Connection {
 public:
  explicit MeasuredConnection(std::unique_ptr<db::Connection> otra) : otra_(std::move(otra)) {}

  bool Abierta() const override { return otra_->Abierta(); }
  void Cerrar() override { otra_->Cerrar(); }
  db::Recordset Ejecutar(std::string_view sql) override;
  db::Recordset Consultar(std::string_view sql) override;
  std::int64_t FilasAfectadas() const override { return otra_->FilasAfectadas(); }
  void BeginTrans() override { otra_->BeginTrans(); }
  void CommitTrans() override;
  void RollbackTrans() override { otra_->RollbackTrans(); }
  bool EnTransaccion() const override { return otra_->EnTransaccion(); }
  void SetSavepoint() override { otra_->SetSavepoint(); }
  void RollbackToSavepoint() override { otra_->RollbackToSavepoint(); }
  void ReleaseSavepoint() override { otra_->ReleaseSavepoint(); }

  // By what the statement does; "commit" is one of them.
  const std::map<std::string, Costo, std::less<>>& Costos() const { return costos_; }
  void Olvidar() { costos_.clear(); }

 private:
  template <typename Paso>
  auto Medir(std::string_view sql, Paso&& paso);

  std::unique_ptr<db::Connection> otra_;
  std::map<std::string, Costo, std::less<>> costos_;
};

// Whether the statement of that name is one of the bulk updates that end an import.
bool EsActualizacionFinal(std::string_view nombre);

}  // namespace bench
