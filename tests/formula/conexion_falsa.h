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
  std::vector<base::Valor> celdas;  // row by row
  std::string error;                // not empty: the statement fails
  base::ErrorKind kind = base::ErrorKind::Statement;
};

class ConexionFalsa final : public db::Connection {
 public:
  std::vector<std::string> textos;   // "leer: " + a query, "hacer: " + another statement
  std::deque<Respuesta> respuestas;  // one a statement; none left: no rows
  bool abierta = true;

  bool Abierta() const override { return abierta; }
  void Cerrar() override { abierta = false; }
  db::Recordset Ejecutar(std::string_view sql) override { return Responder("hacer: ", sql); }
  db::Recordset Consultar(std::string_view sql) override { return Responder("leer: ", sql); }
  std::int64_t FilasAfectadas() const override { return 0; }
  void BeginTrans() override {}
  void CommitTrans() override {}
  void RollbackTrans() override {}
  bool EnTransaccion() const override { return false; }
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
    auto columnas = std::make_shared<db::Columnas>();
    for (const auto& nombre : r.columnas) columnas->push_back({nombre, base::Tipo::Nulo});
    return db::Recordset(columnas, std::move(r.celdas), std::string(sql));
  }
};

}  // namespace prueba
