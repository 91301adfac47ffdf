// Start-up with each kind of command line, and activation.
#include "gui/banco_gui.h"

namespace {

class Inicio : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    Demo();
  }
};

TEST_F(Inicio, AFileOnTheCommandLineLoadsWhenTheWindowIsActive) {
  ASSERT_TRUE(Iniciar("\"" + demo_.referencia + "*" + demo_.archivo + "\""));
  EXPECT_EQ(Caja("txtRuta")->text(), gui::De(demo_.archivo));
  EXPECT_EQ(Grilla("GridAImportar")->model()->rowCount(), 0) << "not before the window is seen";
  cajas_.esperadas = {"Formato incorrecto en la linea 45"};
  Mostrar();
  EXPECT_EQ(Grilla("GridAImportar")->model()->rowCount(), 53);
  // Once: activating again loads nothing.
  Escribir("horas.txt", "1;1;8");
  QWidget otra;
  otra.show();
  otra.activateWindow();
  Esperar();
  ventana_->activateWindow();
  Esperar();
  EXPECT_EQ(Grilla("GridAImportar")->model()->rowCount(), 53);
}

TEST_F(Inicio, ABaseAloneShowsAnEmptyGrid) {
  ASSERT_TRUE(Iniciar(demo_.referencia));
  Mostrar();
  EXPECT_EQ(Grilla("GridAImportar")->model()->rowCount(), 0);
  EXPECT_EQ(Caja("txtRuta")->text(), QString());
  EXPECT_TRUE(Hallar<QRadioButton>("OptFiltro_1")->isChecked());
  EXPECT_EQ(static_cast<gui::Grilla*>(Grilla("GridAImportar"))->Aviso(),
            QStringLiteral("Elija un archivo con Buscar…, o suéltelo sobre esta ventana."));
}

TEST_F(Inicio, ThePathOfNoFileEndsTheProgram) {
  cajas_.esperadas = {"Ruta de Base de Datos Inexistente"};
  EXPECT_FALSE(Iniciar(Ruta("nada.mdb")));
  EXPECT_FALSE(ventana_->isVisible());
}

TEST_F(Inicio, NothingOnTheCommandLineAsksForTheBase) {
  cajas_.archivo = demo_.referencia;
  ASSERT_TRUE(Iniciar(""));
  EXPECT_EQ(cajas_.dialogos.back(),
            "Seleccionar la base a ingresar las Horas|Bases de Access (*.mdb)|*.mdb|");
  EXPECT_EQ(Hallar<QLabel>("LblEmpresa")->text(), gui::De("Empresa: " + demo_.referencia));
}

TEST_F(Inicio, ACancelledDialogEndsTheProgram) { EXPECT_FALSE(Iniciar("  ")); }

TEST_F(Inicio, AFailingOpenShowsTheWindowAndWhy) {
  cajas_.esperadas = {"Error al abrir la base ubicada en " + Ruta("nada.mdb")};
  ASSERT_TRUE(Iniciar(Ruta("nada.mdb") + "*"));
  Mostrar();
  EXPECT_EQ(Hallar<QLabel>("LblEmpresa")->text(), gui::De("Empresa: " + Ruta("nada.mdb")));
  const QString aviso = static_cast<gui::Grilla*>(Grilla("GridAImportar"))->Aviso();
  EXPECT_TRUE(aviso.contains(QStringLiteral("La base no está abierta."))) << gui::A(aviso);
  EXPECT_TRUE(aviso.contains(QStringLiteral("no existe"))) << gui::A(aviso);
}

TEST_F(Inicio, TheOptionsOfTheFileAreOnTheControls) {
  ASSERT_TRUE(Iniciar(demo_.referencia));
  EXPECT_FALSE(Tilde("chkSoloDReloj")->isChecked());
  EXPECT_FALSE(Tilde("chkCodigoNumerico")->isChecked());
  EXPECT_TRUE(Tilde("chkNoImpValEnCero")->isChecked());
  EXPECT_TRUE(Tilde("chkSumarAyaIng")->isChecked());
  EXPECT_TRUE(Tilde("chkTotalizarConc")->isChecked());
  EXPECT_FALSE(Tilde("chkTotalizarConc")->isEnabled());
  EXPECT_TRUE(Tilde("chkImportarCuotas")->isChecked());
  EXPECT_TRUE(Caja("txtTextoTipoCuota")->isEnabled());
  EXPECT_TRUE(Tilde("chkConCC")->isChecked());
  EXPECT_TRUE(Tilde("chkCCDefEnDatExt")->isChecked());
  EXPECT_FALSE(Tilde("chkLiqHCaMensuales")->isChecked());
  EXPECT_FALSE(Tilde("chkVincAutConOrsa")->isChecked());
  EXPECT_TRUE(Hallar<QRadioButton>("optTipoArch_0")->isChecked());
  EXPECT_TRUE(Caja("txtSeparador")->isEnabled());
  EXPECT_FALSE(Caja("txtA_0")->isEnabled());
  EXPECT_EQ(Combo("cbTipoClave")->currentIndex(), 2);
  EXPECT_EQ(Hallar<QDateEdit>("ObjSelMes")->date(), QDate(2026, 10, 1));
  EXPECT_EQ(Hallar<QDateEdit>("ObjSelMes")->text(), QStringLiteral("octubre 2026"));
  EXPECT_EQ(Grilla("GridRelaciones")->model()->rowCount(), 10);
  EXPECT_GE(Combo("cmbConceptos")->view()->minimumWidth(), 450);
}

// A settings file as it is on a first day: the defaults, and two relations.
TEST_F(Inicio, WithoutASettingsFile) {
  std::filesystem::remove(Ruta("ImportDeMarcas.ini"));
  ASSERT_TRUE(Iniciar(demo_.referencia));
  EXPECT_TRUE(Tilde("chkSoloDReloj")->isChecked());
  EXPECT_EQ(Caja("txtSeparador")->text(), QStringLiteral(" "));
  EXPECT_EQ(Combo("cbTipoClave")->currentIndex(), 5);
  EXPECT_EQ(Caja("txtD_0")->text(), QStringLiteral("-1"));
  EXPECT_FALSE(Tilde("chkCCDefEnDatExt")->isEnabled());
  EXPECT_FALSE(Caja("txtTextoTipoCuota")->isEnabled());
  EXPECT_EQ(Grilla("GridRelaciones")->model()->rowCount(), 2);
}

// A company that does not group has no cost centre to choose.
TEST_F(Inicio, ABaseWithoutACompanyHidesTheCostCentre) {
  std::filesystem::rename(Ruta("Personal.mdb"), Ruta("otra.mdb"));
  ASSERT_TRUE(Iniciar(Ruta("otra.mdb")));
  Mostrar();
  EXPECT_TRUE(Combo("cmbAgrupa")->isHidden());
  EXPECT_TRUE(Hallar<QLabel>("lblAgrupa")->isHidden());
  EXPECT_TRUE(Combo("cmbAgrupaDef")->isHidden());
  EXPECT_TRUE(Hallar<QLabel>("lblAgrupaDef")->isHidden());
  EXPECT_FALSE(SeVe(Grilla("GridAImportar"), "CC"));
  EXPECT_TRUE(Hallar<QWidget>("txtFiltro")->isVisible());
}

}  // namespace
