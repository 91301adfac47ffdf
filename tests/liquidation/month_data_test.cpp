#include "liquidation/month_data.h"

#include <gtest/gtest.h>

using liquidation::MonthDataTable;

TEST(MonthDataTable, StartsWithOneRowThatNeverMatches) {
  MonthDataTable tabla;
  ASSERT_EQ(tabla.Filas().size(), 1U);
  EXPECT_EQ(tabla.Filas()[0].id_Concepto, -1);
  EXPECT_EQ(tabla.Filas()[0].valor, -1.0F);
  EXPECT_FALSE(tabla.Precargado(-1, 0, 0));
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

TEST(MonthDataTable, PartsThatAreNoNumberAreZeroAndFurtherOnesArePassedOver) {
  MonthDataTable tabla;
  const auto& dato = tabla.Agregar("7*x*10*-1*y*2*99*98");
  EXPECT_EQ(dato.valor, 0.0F);
  EXPECT_EQ(dato.id_Contrato, 10);
  EXPECT_EQ(dato.idAgrupa, 0);
  EXPECT_EQ(dato.Coeficiente, 2.0F);
}

// An identifier beyond all whole numbers is nobody's.
TEST(MonthDataTable, AnIdentifierThatIsTooLargeIsZero) {
  MonthDataTable tabla;
  EXPECT_EQ(tabla.Agregar("7*1*10000000000000000000*-1*0*0").id_Contrato, 0);
  EXPECT_EQ(tabla.Agregar("7*1*-10000000000000000000*-1*0*0").id_Contrato, 0);
}

TEST(MonthDataTable, TheFirstOfEqualRowsIsFound) {
  MonthDataTable tabla;
  tabla.Agregar({7, 1, 10, -1, 3, 0, 50});
  tabla.Agregar({7, 2, 10, -1, 4, 0, 50});
  tabla.Agregar({7, 3, 10, -1, 3, 0, 50});
  tabla.Agregar({7, 4, 10, -1, 3, 0, 51});
  tabla.Agregar({8, 5, 10, -1, 3, 0, 50});
  tabla.Agregar({7, 6, 11, -1, 3, 0, 50});
  EXPECT_EQ(tabla.Buscar(7, 10, 3, 50)->valor, 1.0F);
  EXPECT_EQ(tabla.Buscar(7, 10, 4, 50)->valor, 2.0F);
  EXPECT_EQ(tabla.Buscar(7, 10, 3, 51)->valor, 4.0F);
  EXPECT_EQ(tabla.Buscar(8, 10, 3, 50)->valor, 5.0F);
  EXPECT_EQ(tabla.Buscar(7, 11, 3, 50)->valor, 6.0F);
  EXPECT_EQ(tabla.Buscar(7, 12, 3, 50), nullptr);
  EXPECT_EQ(tabla.Buscar(7, 10, 3, 52), nullptr);
}

// What the preload found stands in some header; which one it does not say.
TEST(MonthDataTable, ThePreloadOnlyTellsThatSomethingWasEntered) {
  MonthDataTable tabla;
  tabla.Agregar("7*1*10*-1*3*0");
  EXPECT_TRUE(tabla.Precargado(7, 10, 3));
  EXPECT_FALSE(tabla.Precargado(7, 10, 4));
  EXPECT_FALSE(tabla.Precargado(7, 11, 3));
  EXPECT_FALSE(tabla.Precargado(8, 10, 3));
  EXPECT_EQ(tabla.Buscar(7, 10, 3, 50), nullptr);
  EXPECT_EQ(tabla.Buscar(7, 10, 3, 0), nullptr);
  tabla.Agregar({7, 2, 10, -1, 4, 0, 50});
  EXPECT_FALSE(tabla.Precargado(7, 10, 4));
}

TEST(MonthDataTable, AUserTableStandsInNoHeader) {
  MonthDataTable tabla;
  tabla.Agregar("1005*1*10*-1*0*0");
  EXPECT_EQ(tabla.BuscarDeTabla(1005, 10), nullptr);
  tabla.Agregar({1005, 2, 10, -1, 0, 0, liquidation::kSinEncabezado});
  EXPECT_EQ(tabla.BuscarDeTabla(1005, 10)->valor, 2.0F);
}

// A single could not tell these two contracts apart.
TEST(MonthDataTable, LargeIdentifiersStayApart) {
  MonthDataTable tabla;
  tabla.Agregar("7*1*16777216*-1*0*0");
  EXPECT_FALSE(tabla.Precargado(7, 16777217, 0));
  EXPECT_TRUE(tabla.Precargado(7, 16777216, 0));
}

TEST(MonthDataTable, ResetForgetsEverything) {
  MonthDataTable tabla;
  tabla.Agregar("7*1*10*-1*3*0");
  tabla.Marcar();
  tabla.Cambiar(tabla.Agregar({7, 2, 10, -1, 3, 0, 50}), 5, 6);
  tabla.Reiniciar();
  EXPECT_EQ(tabla.Filas().size(), 1U);
  EXPECT_FALSE(tabla.Precargado(7, 10, 3));
  EXPECT_EQ(tabla.Buscar(7, 10, 3, 50), nullptr);
  tabla.Agregar({8, 2, 10, -1, 3, 0, 50});
  tabla.Deshacer();
  EXPECT_EQ(tabla.Filas().size(), 1U);
  EXPECT_EQ(tabla.Filas()[0].valor, -1.0F);
}

// Of a row that was there, of one that was added twice, and of one that was added and changed.
TEST(MonthDataTable, GoesBackToItsMark) {
  MonthDataTable tabla;
  tabla.Agregar({7, 1, 10, -1, 0, 2, 50});
  tabla.Agregar({8, 4, 10, -1, 0, 2, 50});
  tabla.Marcar();
  tabla.Cambiar(*tabla.Buscar(8, 10, 0, 50), 1, 1);
  tabla.Cambiar(*tabla.Buscar(7, 10, 0, 50), 5, 6);
  tabla.Cambiar(*tabla.Buscar(7, 10, 0, 50), 8, 9);
  tabla.Agregar({7, 3, 10, -1, 0, 0, 50});
  tabla.Agregar({7, 4, 11, -1, 0, 0, 50});
  tabla.Cambiar(*tabla.Buscar(7, 11, 0, 50), 5, 6);
  tabla.Deshacer();
  EXPECT_EQ(tabla.Filas().size(), 3U);
  EXPECT_EQ(tabla.Buscar(8, 10, 0, 50)->valor, 4.0F);
  ASSERT_NE(tabla.Buscar(7, 10, 0, 50), nullptr);
  EXPECT_EQ(tabla.Buscar(7, 10, 0, 50)->valor, 1.0F);
  EXPECT_EQ(tabla.Buscar(7, 10, 0, 50)->Coeficiente, 2.0F);
  EXPECT_EQ(tabla.Buscar(7, 11, 0, 50), nullptr);
  tabla.Agregar({7, 6, 11, -1, 0, 0, 50});
  tabla.Marcar();
  tabla.Deshacer();
  EXPECT_EQ(tabla.Buscar(7, 11, 0, 50)->valor, 6.0F);
}
