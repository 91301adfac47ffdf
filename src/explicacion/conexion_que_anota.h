// A connection that keeps the statements that go through it, for a run that is to be explained.
#pragma once

#include <string>
#include <vector>

#include "db/connection.h"
#include "sesion/db_session.h"

namespace explicacion {

class ConexionQueAnota final : public db::Connection {
 public:
  explicit ConexionQueAnota(db::Connection& otra) : otra_(otra) {}

  bool anota = false;
  std::vector<std::string> sentencias;  // while `anota`, in their order; one that failed too

  bool IsOpen() const override { return otra_.IsOpen(); }
  void Close() override { otra_.Close(); }
  db::Recordset Execute(std::string_view sql) override;
  db::Recordset Query(std::string_view sql) override;
  db::Recordset QueryBounded(std::string_view sql, db::QueryBudget& budget) override;
  std::int64_t AffectedRows() const override { return otra_.AffectedRows(); }
  void BeginTrans() override { otra_.BeginTrans(); }
  void CommitTrans() override { otra_.CommitTrans(); }
  void RollbackTrans() override { otra_.RollbackTrans(); }
  bool InTransaction() const override { return otra_.InTransaction(); }
  void SetSavepoint() override { otra_.SetSavepoint(); }
  void RollbackToSavepoint() override { otra_.RollbackToSavepoint(); }
  void ReleaseSavepoint() override { otra_.ReleaseSavepoint(); }

 private:
  db::Connection& otra_;
};

}  // namespace explicacion
