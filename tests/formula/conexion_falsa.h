// A connection that notes each text it is given and answers from a queue.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "db/connection.h"

namespace prueba {

struct Respuesta {
  std::vector<std::string> columnas;
  std::vector<base::Value> celdas;  // row by row
  std::string error;                // not empty: the statement fails
  base::ErrorKind kind = base::ErrorKind::Statement;
};

class ConexionFalsa final : public db::Connection {
 public:
  std::vector<std::string> textos;   // "leer: " + a query, "hacer: " + another statement
  std::deque<Respuesta> respuestas;  // one a statement; none left: no rows
  bool abierta = true;

  bool IsOpen() const override { return abierta; }
  void Close() override { abierta = false; }
  db::Recordset Execute(std::string_view sql) override { return Responder("hacer: ", sql); }
  db::Recordset Query(std::string_view sql) override { return Responder("leer: ", sql); }
  std::int64_t AffectedRows() const override { return 0; }
  void BeginTrans() override {}
  void CommitTrans() override {}
  void RollbackTrans() override {}
  bool InTransaction() const override { return false; }
  void SetSavepoint() override {}
  void RollbackToSavepoint() override {}
  void ReleaseSavepoint() override {}

 private:
  db::Recordset Responder(const std::string& modo, std::string_view sql) {
    textos.push_back(modo + std::string(sql));
    Respuesta r;
    if (!respuestas.empty()) {
      r = std::move(respuestas.front());
      respuestas.pop_front();
    }
    if (!r.error.empty()) throw db::Error(r.error, 0, {}, r.kind);
    auto columnas = std::make_shared<db::Columns>();
    for (const auto& nombre : r.columnas) columnas->push_back({nombre, base::Type::Null});
    return db::Recordset(columnas, std::move(r.celdas), std::string(sql));
  }
};

}  // namespace prueba
