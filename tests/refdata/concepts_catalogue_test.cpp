#include "refdata/concepts_catalogue.h"

#include <gtest/gtest.h>

#include "refdata/base_de_prueba.h"
#include "refdata/elegir_concepto.h"

namespace {

// What was chosen belongs to the old list.
TEST(ConceptsCatalogue, AReloadChoosesNothing) {
  support::BaseDePrueba base;
  base.conexion->Execute(
      "Insert into Conceptos (idEmpresa,id_Concepto,Codigo,Nombre,TipoDato,TipoOperacion,TipoCuota,"
      "TipoImpuesto) Values (1,7,'HC','Horas',3,'S',0,False)");
  refdata::ConceptsCatalogue catalogo;
  refdata::ActuLSTdeConceptos(base.sesion, base.opciones, catalogo, nullptr);
  ASSERT_EQ(catalogo.cmbConceptos.items.size(), 1u);
  EXPECT_EQ(catalogo.cmbConceptos.ListIndex, -1);
  catalogo.cmbConceptos.ListIndex = 0;
  refdata::ActuLSTdeConceptos(base.sesion, base.opciones, catalogo, nullptr);
  EXPECT_EQ(catalogo.cmbConceptos.ListIndex, -1);

  catalogo.cmbConceptos.ListIndex = 0;
  base.conexion->fallan = {"Select  id_Concepto"};
  refdata::ActuLSTdeConceptos(base.sesion, base.opciones, catalogo, nullptr);
  EXPECT_TRUE(catalogo.cmbConceptos.items.empty());
  EXPECT_EQ(catalogo.cmbConceptos.ListIndex, -1);
  EXPECT_EQ(catalogo.motivo_fallo, "Falla pedida");
}

TEST(ConceptsCatalogue, TheLabelOfTheCentreIsShownWithItsCombo) {
  support::BaseDePrueba base;
  refdata::ConceptsCatalogue catalogo;
  catalogo.tabla = {.dimensiones = 2, .registros = {{"7", "Horas", "3", "S", "0"}}};
  catalogo.cmbConceptos.items = {{.texto = "HC - Horas", .dato = 7}};
  catalogo.cmbConceptos.ListIndex = 0;
  refdata::LiquidationTypes tipos;
  for (const bool visible : {true, false}) {
    tipos.cmbAgrupaDef.visible = visible;
    tipos.lblAgrupaDef_visible = !visible;
    refdata::ElegirConcepto(base.sesion, base.opciones, catalogo, tipos);
    EXPECT_EQ(tipos.lblAgrupaDef_visible, visible);
  }
}

TEST(PosEnCombo, TheFirstItemIsOneOfThem) {
  formula::ListControl combo;
  combo.items = {{"a", 7}, {"b", 2}};
  EXPECT_EQ(refdata::PosEnCombo(combo, 7), 0);
}

}  // namespace
