// The check boxes, the panels, the combos of the options.
#include "gui/banco_gui.h"

namespace {

class Opciones : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    Abrir();
  }
  const settings::Settings& O() const { return programa_->Ver().opciones; }
};

TEST_F(Opciones, EachBoxIsItsFlag) {
  constexpr std::pair<const char*, bool settings::Settings::*> kTildes[] = {
      {"chkSoloDReloj", &settings::Settings::SoloDatosDeRel},
      {"chkLiqHCaMensuales", &settings::Settings::LiqHCaMensuales},
      {"chkNoImpValEnCero", &settings::Settings::NoImpCantEn0},
      {"chkCodigoNumerico", &settings::Settings::CodTipoNumerico},
      {"chkSumarAyaIng", &settings::Settings::SumarAyaIng},
      {"chkTotalizarConc", &settings::Settings::TotalizarConc},
      {"chkImportarCuotas", &settings::Settings::ImportarCuotas},
      {"chkCCDefEnDatExt", &settings::Settings::CCEnDE},
      {"chkConCC", &settings::Settings::CCDefEnArch},
      {"chkVincAutConOrsa", &settings::Settings::MismoCodigoDeOrsa}};
  Tilde("chkSumarAyaIng")->setChecked(false);  // or totalising could not be taken away
  for (const auto& [nombre, opcion] : kTildes) {
    SCOPED_TRACE(nombre);
    QCheckBox* tilde = Tilde(nombre);
    ASSERT_EQ(tilde->isChecked(), O().*opcion);
    tilde->click();
    EXPECT_EQ(O().*opcion, tilde->isChecked());
    tilde->click();
    EXPECT_EQ(O().*opcion, tilde->isChecked());
  }
}

TEST_F(Opciones, AddingChecksAndLocksTotalising) {
  Tilde("chkSumarAyaIng")->click();
  EXPECT_TRUE(Tilde("chkTotalizarConc")->isEnabled());
  Tilde("chkTotalizarConc")->click();
  EXPECT_FALSE(O().TotalizarConc);
  Tilde("chkSumarAyaIng")->click();
  EXPECT_TRUE(Tilde("chkTotalizarConc")->isChecked());
  EXPECT_FALSE(Tilde("chkTotalizarConc")->isEnabled());
}

TEST_F(Opciones, InstalmentsEnableTheirTextAndListTheirConcepts) {
  const int con = Combo("cmbConceptos")->count();
  Tilde("chkImportarCuotas")->click();
  EXPECT_FALSE(Caja("txtTextoTipoCuota")->isEnabled());
  EXPECT_LT(Combo("cmbConceptos")->count(), con);
  Tilde("chkImportarCuotas")->click();
  EXPECT_TRUE(Caja("txtTextoTipoCuota")->isEnabled());
  EXPECT_EQ(Combo("cmbConceptos")->count(), con);
  Escribir(Caja("txtTextoTipoCuota"), "Cuota");
  EXPECT_EQ(O().TextoTipoCuota, "Cuota");
}

TEST_F(Opciones, CostCentreByLineEnablesTheOneOfTheExtraDatum) {
  Tilde("chkConCC")->click();
  EXPECT_FALSE(Tilde("chkCCDefEnDatExt")->isEnabled());
  Tilde("chkConCC")->click();
  EXPECT_TRUE(Tilde("chkCCDefEnDatExt")->isEnabled());
}

TEST_F(Opciones, TheAutomaticLinkReplacesTheRelations) {
  Tilde("chkVincAutConOrsa")->click();
  const int automaticas = Grilla("GridRelaciones")->model()->rowCount();
  EXPECT_GT(automaticas, 10);
  const std::string por_codigo = Celda(Grilla("GridRelaciones"), 0, "CodigosVincConReloj");
  Tilde("chkCodigoNumerico")->click();
  EXPECT_NE(Celda(Grilla("GridRelaciones"), 0, "CodigosVincConReloj"), por_codigo);
  Tilde("chkVincAutConOrsa")->click();
  EXPECT_EQ(Grilla("GridRelaciones")->model()->rowCount(), 10);
}

TEST_F(Opciones, TheFormulaIsKept) {
  Escribir(Caja("txtFormulaSGN"), "*2");
  EXPECT_EQ(O().FactMultiplica, "*2");
  Cargar("1;HC;8");
  EXPECT_EQ(Columna0("Horas"), "16 ");
}

// One panel at most; the second click closes; the one asked for stands in front.
TEST_F(Opciones, TheSettingsButtonsTogglePanels) {
  QWidget *formato = Hallar<QWidget>("AreConf_0"), *relaciones = Hallar<QWidget>("AreConf_1");
  const auto vistos = [&] {
    return std::string(formato->isVisible() ? "0" : "") + (relaciones->isVisible() ? "1" : "");
  };
  EXPECT_EQ(vistos(), "");
  Pulsar("cbConfigurar_0");
  EXPECT_EQ(vistos(), "0");
  EXPECT_TRUE(Hallar<QPushButton>("cbConfigurar_0")->isChecked());
  Pulsar("cbConfigurar_1");
  EXPECT_EQ(vistos(), "1");
  EXPECT_FALSE(Hallar<QPushButton>("cbConfigurar_0")->isChecked());
  EXPECT_EQ(ventana_->childAt(relaciones->geometry().center())->window(), ventana_.get());
  EXPECT_TRUE(relaciones->isAncestorOf(ventana_->childAt(relaciones->geometry().center())) ||
              relaciones == ventana_->childAt(relaciones->geometry().center()));
  Pulsar("cbConfigurar_1");
  EXPECT_EQ(vistos(), "");
  Pulsar("cbConfigurar_0");
  QTest::keyClick(ventana_.get(), Qt::Key_Escape);
  EXPECT_EQ(vistos(), "");
  Pulsar("cbConfigurar_1");
  Pulsar("AreConf_1_cerrar");
  EXPECT_EQ(vistos(), "");
}

// A change that comes while the lines are being read takes effect at once, and its reload waits.
TEST_F(Opciones, AChangeDuringALoadReloadsAfterIt) {
  std::string texto;
  for (int i = 0; i < 400; ++i) texto += "101;HC;8\r\n";
  Cargar("101;HC;8");
  Escribir("x.txt", texto + "101;HC;8");
  int veces = 0;
  eventos_.al_correr = [&] {
    if (++veces == 10) Combo("cbTipoClave")->setCurrentIndex(0);
  };
  Pulsar("cbActualizar");
  EXPECT_EQ(O().Configura, 0);
  EXPECT_NE(Celda(Grilla("GridAImportar"), 0, "Nombre"), "") << "loaded again by the new key";
}

}  // namespace
