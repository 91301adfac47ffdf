#include <gtest/gtest.h>

#include "refdata/concepts_catalogue.h"

namespace {

TEST(PosEnCombo, TheLastItemOfThatDatumWins) {
  formula::ListControl combo;
  combo.items = {{"a", 7}, {"b", 2}, {"c", 7}, {"d", 9}};
  EXPECT_EQ(refdata::PosEnCombo(combo, 7), 2);
  EXPECT_EQ(refdata::PosEnCombo(combo, 2), 1);
  EXPECT_EQ(refdata::PosEnCombo(combo, 9), 3);
}

TEST(PosEnCombo, MinusOneWhenNoneMatches) {
  formula::ListControl combo;
  EXPECT_EQ(refdata::PosEnCombo(combo, 0), -1);
  combo.items = {{"a", 7}};
  EXPECT_EQ(refdata::PosEnCombo(combo, 8), -1);
}

TEST(ConceptsCatalogue, AnEmptyTableFindsNothing) {
  const refdata::ConceptsCatalogue catalogo;
  EXPECT_EQ(catalogo.Buscar("7"), -1);
  EXPECT_EQ(catalogo.Buscar("-1"), -1);
}

}  // namespace
