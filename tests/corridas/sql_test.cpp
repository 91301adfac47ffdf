// Values of each kind go into a base by their literals and come out the same, on both engines.
#include <gtest/gtest.h>

#include <cmath>

#include "corridas/restaurar_sql.h"
#include "engine_mdb/mdb_connection.h"
#include "engine_sqlite/sqlite_connection.h"
#include "support/temp_folder.h"

namespace {

using base::Value;
using corridas::Fila;

class Restaurar : public ::testing::TestWithParam<bool> {
 protected:
  std::unique_ptr<db::Connection> Abrir() const {
    if (GetParam()) return engine_mdb::Create(carpeta_.Path("a.mdb"));
    return engine_sqlite::Open(":memory:");
  }
  support::TempFolder carpeta_;
};

TEST_P(Restaurar, RowsComeBackAsTheyWere) {
  const auto conexion = Abrir();
  conexion->Execute(
      "CREATE TABLE Datos (k LONG, b YESNO, s SINGLE, d DOUBLE, c CURRENCY, f DATETIME, t TEXT(100), m "
      "MEMO)");
  corridas::CambiosDeTabla t;
  t.tabla = "Datos";
  t.columnas = {"k", "b", "s", "d", "c", "f", "t", "m"};
  t.clave = {0};
  const std::vector<Fila> filas{
      {Value(1), Value(true), Value(0.1F), Value(0.1), Value(base::Currency{12345}), Value(base::Date{46000}),
       Value("O'Farrín"), Value("uno\r\ndos")},
      {Value(2), Value(false), Value(-16777217.0F), Value(1.0 / 3.0), Value(base::Currency{-1}),
       Value(base::Date{46000.123456789}), Value(""), Value(std::string(600, 'x'))},
      {Value(3), Value(false), Value(1e-20F), Value(1.7976931348623157e308), Value(base::Currency{0}),
       Value(base::Date{-1.25}), Value(base::Null{}), Value(base::Null{})},
      {Value(4), Value(false), Value(base::Null{}), Value(-5e-300), Value(base::Null{}), Value(base::Null{}),
       Value("' or 1=1 --"), Value("#10/01/2026# [k] \"x\"")},
  };
  for (const Fila& fila : filas) conexion->Execute(corridas::sql::Insertar(t, fila));
  const auto leer = [&] {
    const db::Recordset rs = conexion->Query("Select * From Datos Order by k");
    std::vector<Fila> leidas(rs.Count());
    for (std::size_t i = 0; i < rs.Count(); ++i)
      for (std::size_t j = 0; j < t.columnas.size(); ++j) leidas[i].push_back(rs.At(j, i));
    return leidas;
  };
  const std::vector<Fila> leidas = leer();
  ASSERT_EQ(leidas.size(), filas.size());
  for (std::size_t i = 0; i < filas.size(); ++i)
    for (std::size_t j = 0; j < t.columnas.size(); ++j)
      EXPECT_EQ(leidas[i][j].CsvText(), filas[i][j].CsvText()) << i << " " << t.columnas[j];

  // One takes the place of another and goes back.
  Fila otra = leidas[1];
  otra[0] = Value(std::int64_t{1});
  conexion->Execute(corridas::sql::Actualizar(t, leidas[0], otra));
  EXPECT_EQ(leer()[0], otra);
  conexion->Execute(corridas::sql::Actualizar(t, otra, leidas[0]));
  EXPECT_EQ(leer(), leidas);
  conexion->Execute(corridas::sql::Borrar(t, leidas[2]));
  EXPECT_EQ(leer().size(), 3U);
  conexion->Execute(corridas::sql::Insertar(t, leidas[2]));
  EXPECT_EQ(leer(), leidas);
}

TEST(Literal, ANumberWithoutOneIsRefused) {
  EXPECT_THROW(corridas::sql::Literal(Value(std::nan(""))), base::Error);
}

INSTANTIATE_TEST_SUITE_P(Engines, Restaurar, ::testing::Values(false, true), [](const auto& caso) {
  return caso.param ? std::string("mdb") : std::string("sqlite");
});

}  // namespace
