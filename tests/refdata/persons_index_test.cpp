#include "refdata/persons_index.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace {

using refdata::PersonsIndex;

PersonsIndex::Fila FilaDe(int contrato, const std::string& tarjeta) {
  PersonsIndex::Fila fila;
  fila[refdata::kContrato] = std::to_string(contrato);
  fila[refdata::kTarjeta] = tarjeta;
  return fila;
}

TEST(PersonsIndex, IsEmptyUntilTheFirstLoad) {
  const PersonsIndex indice;
  EXPECT_EQ(indice.Cantidad(), 0u);
  EXPECT_EQ(indice.Buscar("1", refdata::kContrato), -1);
}

TEST(PersonsIndex, ForgetsTheOldRowsInEveryIndexedColumn) {
  PersonsIndex indice;
  indice.Reemplazar({FilaDe(1, "a"), FilaDe(2, "b")});
  ASSERT_EQ(indice.Buscar("2", refdata::kContrato), 1);
  ASSERT_EQ(indice.Buscar("b", refdata::kTarjeta), 1);
  indice.Reemplazar({FilaDe(2, "c")});
  EXPECT_EQ(indice.Buscar("2", refdata::kContrato), 0);
  EXPECT_EQ(indice.Buscar("1", refdata::kContrato), -1);
  EXPECT_EQ(indice.Buscar("b", refdata::kTarjeta), -1);
  indice.Vaciar();
  EXPECT_EQ(indice.Buscar("2", refdata::kContrato), -1);
}

// A copy must not look into the rows of what it was copied from.
TEST(PersonsIndex, CopiesStandOnTheirOwn) {
  PersonsIndex copia;
  {
    PersonsIndex original;
    original.Reemplazar({FilaDe(1, "una tarjeta demasiado larga para quedar dentro del texto")});
    ASSERT_EQ(original.Buscar("1", refdata::kContrato), 0);
    copia = original;
  }
  EXPECT_EQ(copia.Buscar("1", refdata::kContrato), 0);
  EXPECT_EQ(copia.Buscar("una tarjeta demasiado larga para quedar dentro del texto", refdata::kTarjeta), 0);
}

// Looking up as many keys as there are rows must stay far from the square of it: 10^10 steps would take
// minutes.
TEST(PersonsIndex, FindsInConstantTime) {
  constexpr int kFilas = 100000;
  std::vector<PersonsIndex::Fila> filas;
  filas.reserve(kFilas);
  for (int i = 0; i < kFilas; ++i) filas.push_back(FilaDe(i, std::to_string(i % 7)));
  PersonsIndex indice;
  indice.Reemplazar(std::move(filas));
  const auto antes = std::chrono::steady_clock::now();
  for (int i = 0; i < kFilas; ++i) ASSERT_EQ(indice.Buscar(std::to_string(i), refdata::kContrato), i);
  for (int i = 0; i < kFilas; ++i) ASSERT_EQ(indice.Buscar(std::to_string(i % 7), refdata::kTarjeta), i % 7);
  EXPECT_LT(std::chrono::steady_clock::now() - antes, std::chrono::seconds(10));
}

}  // namespace
