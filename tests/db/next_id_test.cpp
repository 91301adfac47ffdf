#include "db/next_id.h"

#include <gtest/gtest.h>

namespace {

using base::Valor;

// Answers every statement with one column of cells, or fails.
class ConexionFija final : public db::Connection {
 public:
  explicit ConexionFija(std::vector<Valor> celdas, bool falla = false,
                        base::ErrorKind kind = base::ErrorKind::Statement)
      : celdas_(std::move(celdas)), falla_(falla), kind_(kind) {}

  bool Abierta() const override { return true; }
  void Cerrar() override {}
  db::Recordset Ejecutar(std::string_view sql) override {
    ultimo = std::string(sql);
    if (falla_) throw db::Error("no se pudo leer", 0, {}, kind_);
    return {std::make_shared<db::Columnas>(db::Columnas{{"maxcod", base::Tipo::Nulo}}), celdas_};
  }
  db::Recordset Consultar(std::string_view sql) override { return Ejecutar(sql); }
  std::int64_t FilasAfectadas() const override { return 0; }
  void BeginTrans() override {}
  void CommitTrans() override {}
  void RollbackTrans() override {}
  bool EnTransaccion() const override { return false; }
  void SetSavepoint() override {}
  void RollbackToSavepoint() override {}
  void ReleaseSavepoint() override {}

  std::string ultimo;

 private:
  std::vector<Valor> celdas_;
  bool falla_;
  base::ErrorKind kind_;
};

std::int32_t Mayor(std::vector<Valor> celdas, bool falla = false) {
  ConexionFija conexion(std::move(celdas), falla);
  return db::NextId(conexion, "Encabezados", "id_Enc");
}

TEST(NextId, AsksForTheLargest) {
  ConexionFija conexion({Valor(41)});
  EXPECT_EQ(db::NextId(conexion, "Encabezados", "id_Enc"), 41);
  EXPECT_EQ(conexion.ultimo, "select max(id_Enc)as maxcod from Encabezados");
}

TEST(NextId, WhateverTheTypeOfTheColumn) {
  EXPECT_EQ(Mayor({Valor(41.0)}), 41);
  EXPECT_EQ(Mayor({Valor("41")}), 41);
  EXPECT_EQ(Mayor({Valor(-3)}), -3);
  EXPECT_EQ(Mayor({Valor(2147483647)}), 2147483647);
}

TEST(NextId, AnyErrorGives0) {
  EXPECT_EQ(Mayor({}), 0);                              // no row at all
  EXPECT_EQ(Mayor({}, true), 0);                        // the statement failed
  EXPECT_EQ(Mayor({Valor(base::Nulo{})}), 0);           // the table is empty
  EXPECT_EQ(Mayor({Valor("abc")}), 0);                  // no number
  EXPECT_EQ(Mayor({Valor(std::int64_t{1} << 31)}), 0);  // beyond 32 bits
}

// The first number of a table that could not be read is not 1.
TEST(NextId, AFaultOfTheStorageTravelsOn) {
  ConexionFija connection({Valor(41)}, true, base::ErrorKind::Storage);
  EXPECT_THROW(db::NextId(connection, "Encabezados", "id_Enc"), db::Error);
}

}  // namespace
