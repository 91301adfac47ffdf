#include "liquidation/month_data.h"

#include <gtest/gtest.h>

using liquidation::MonthDataTable;

TEST(MonthDataTable, StartsWithOneRowThatNeverMatches) {
  MonthDataTable tabla;
  ASSERT_EQ(tabla.Filas().size(), 1U);
  EXPECT_EQ(tabla.Filas()[0].id_Concepto, -1);
  EXPECT_EQ(tabla.Filas()[0].valor, -1.0F);
  EXPECT_EQ(tabla.Buscar(-1, 0), nullptr);
  EXPECT_EQ(tabla.Buscar(-1, 0, 0), nullptr);
}

TEST(MonthDataTable, ReadsARecordWithSpanishDecimals) {
  MonthDataTable tabla;
  const auto& dato = tabla.Agregar("7*8,5*10*-1*3*1.234,25");
  EXPECT_EQ(dato.id_Concepto, 7);
  EXPECT_EQ(dato.valor, 8.5F);
  EXPECT_EQ(dato.id_Contrato, 10);
  EXPECT_EQ(dato.id_Pago, -1);
  EXPECT_EQ(dato.idAgrupa, 3);
  EXPECT_EQ(dato.Coeficiente, 1234.25F);
}

TEST(MonthDataTable, MissingPartsAreZero) {
  MonthDataTable tabla;
  const auto& dato = tabla.Agregar("7*8");
  EXPECT_EQ(dato.id_Contrato, 0);
  EXPECT_EQ(dato.Coeficiente, 0.0F);
}

TEST(MonthDataTable, TheFirstOfEqualRowsIsFound) {
  MonthDataTable tabla;
  tabla.Agregar("7*1*10*-1*3*0");
  tabla.Agregar("7*2*10*-1*4*0");
  tabla.Agregar("7*3*10*-1*3*0");
  EXPECT_EQ(tabla.Buscar(7, 10)->valor, 1.0F);
  EXPECT_EQ(tabla.Buscar(7, 10, 4)->valor, 2.0F);
  EXPECT_EQ(tabla.Buscar(7, 10, 3)->valor, 1.0F);
  EXPECT_EQ(tabla.Buscar(7, 11), nullptr);
}

// A single could not tell these two contracts apart.
TEST(MonthDataTable, LargeIdentifiersStayApart) {
  MonthDataTable tabla;
  tabla.Agregar("7*1*16777216*-1*0*0");
  EXPECT_EQ(tabla.Buscar(7, 16777217), nullptr);
  EXPECT_NE(tabla.Buscar(7, 16777216), nullptr);
}

TEST(MonthDataTable, ResetForgetsEverything) {
  MonthDataTable tabla;
  tabla.Agregar("7*1*10*-1*3*0");
  tabla.Reiniciar();
  EXPECT_EQ(tabla.Filas().size(), 1U);
  EXPECT_EQ(tabla.Buscar(7, 10), nullptr);
}
