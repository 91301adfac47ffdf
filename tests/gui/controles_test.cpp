// Every control by its own name, with its texts.
#include <QDateEdit>
#include <QHeaderView>
#include <QKeySequence>
#include <QShortcut>
#include <set>

#include "gui/banco_gui.h"

namespace {

class Controles : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    Abrir();
  }
};

struct Fila {
  const char* nombre;
  const char* clase;  // of Qt
  const char* texto;  // nullptr: its text is not fixed
  const char* ayuda;
};

constexpr const char* kAyudaImportar = "Importar los datos Cargados en la grilla";
// It rests while nothing is loaded, and says so.
constexpr const char* kAyudaSinLineas =
    "Importar los datos Cargados en la grilla\nNo hay ninguna línea cargada.";
constexpr Fila kControles[] = {
    {"Area1", "QWidget", nullptr, ""},
    {"cbImportar", "QPushButton", nullptr, kAyudaSinLineas},
    {"cbConfigurar_0", "QPushButton", nullptr, kAyudaImportar},
    {"cbConfigurar_1", "QPushButton", nullptr, kAyudaImportar},
    {"AreConf_0", "QFrame", nullptr, ""},
    {"AreConf_1", "QFrame", nullptr, ""},
    {"cbSalir", "QPushButton", "Salir", ""},
    {"cbActualizar", "QPushButton", "Actualizar", ""},
    {"cbBuscar", "QPushButton", nullptr, "Buscar Archivo a importar"},
    {"txtRuta", "QLineEdit", "", "Path de archivo a importar"},
    {"lblRuta", "QLabel", "Ruta", ""},
    {"txtFiltro", "QLineEdit", "", ""},
    {"Label1", "QLabel", "Filtro", ""},
    {"OptFiltro_0", "QRadioButton", "Por Texto", ""},
    {"OptFiltro_1", "QRadioButton", "Por Relación", ""},
    {"GridAImportar", "QTableView", nullptr, ""},
    {"GridRelaciones", "QTableView", nullptr, ""},
    {"GridPVConf", "QTableView", nullptr, ""},
    {"ObjSelMes", "QDateEdit", nullptr, ""},
    {"lblMes", "QLabel", "Importar en Mes:", ""},
    {"cmbLiquidaciones", "QComboBox", nullptr, ""},
    {"lblImporEnTipoLiq", "QLabel", "Importar en Tipo de Liq.:", ""},
    {"cmbAgrupa", "QComboBox", nullptr, ""},
    {"cmbAgrupaDef", "QComboBox", nullptr, ""},
    {"lblAgrupa", "QLabel", "C. de Costo:", ""},
    // A company that groups by cost centre: this one's caption changes, whatever the company builds.
    {"lblAgrupaDef", "QLabel", "Imp. en Obra", ""},
    {"cmbConceptos", "QComboBox", nullptr, ""},
    {"txtTipo", "QLineEdit", "", ""},
    {"cbAgrQuit_0", "QPushButton", nullptr, ""},
    {"cbAgrQuit_1", "QPushButton", nullptr, ""},
    {"lblConcepto", "QLabel", "", ""},
    {"cbTipoClave", "QComboBox", nullptr, ""},
    {"Label3", "QLabel", "Clave de relación con el contrato", ""},
    {"optTipoArch_0", "QRadioButton", "Delimitado Por", ""},
    {"optTipoArch_1", "QRadioButton", "De Ancho Fijo", ""},
    {"txtSeparador", "QLineEdit", ";", ""},
    {"txtA_0", "QLineEdit", "1", ""},
    {"txtA_1", "QLineEdit", "6", ""},
    {"txtB_0", "QLineEdit", "8", ""},
    {"txtB_1", "QLineEdit", "3", ""},
    {"txtC_0", "QLineEdit", "12", ""},
    {"txtC_1", "QLineEdit", "9", ""},
    {"txtD_0", "QLineEdit", "22", ""},
    {"txtD_1", "QLineEdit", "30", ""},
    {"txtE_0", "QLineEdit", "53", ""},
    {"txtE_1", "QLineEdit", "8", ""},
    {"txtFormulaSGN", "QLineEdit", "", ""},
    {"Label2", "QLabel", "Aplicar Formula a cada linea", ""},
    {"chkSoloDReloj", "QCheckBox", "Solo Datos de Reloj", ""},
    {"chkLiqHCaMensuales", "QCheckBox", "Liquidar Hs Com. a Mensuales", ""},
    {"chkNoImpValEnCero", "QCheckBox", "No Importar Cantidades en 0", ""},
    {"chkCodigoNumerico", "QCheckBox", "Codigo de Dato Numérico", ""},
    {"chkTotalizarConc", "QCheckBox", "Totalizar Conceptos", ""},
    {"chkSumarAyaIng", "QCheckBox", "Sumar a concepto ya ingresado", ""},
    {"chkImportarCuotas", "QCheckBox", "Importar Cuotas", ""},
    {"txtTextoTipoCuota", "QLineEdit", "Ref:[DatoExtra]", ""},
    {"lblImpCuotas", "QLabel", "Texto para Conceptos \"Tipo Cuota\"", ""},
    {"chkConCC", "QCheckBox", "Con Centro de Costo por Linea a importar", ""},
    {"chkCCDefEnDatExt", "QCheckBox", "Centro de Costo definido en dato extra", ""},
    {"chkVincAutConOrsa", "QCheckBox", "Vincular Automaticamente con mismos código de Orsa", ""},
    {"cbColor", "QPushButton", nullptr, ""},
    {"Barra", "QWidget", nullptr, ""},
    {"LblEmpresa", "QLabel", nullptr, nullptr},
};

TEST_F(Controles, NamesClassesCaptionsAndTooltips) {
  EXPECT_EQ(ventana_->objectName(), QStringLiteral("FrmPrincipal2"));
  for (const Fila& fila : kControles) {
    SCOPED_TRACE(fila.nombre);
    const auto hallados = ventana_->findChildren<QWidget*>(QLatin1String(fila.nombre));
    ASSERT_EQ(hallados.size(), 1);
    const QWidget* control = hallados.front();
    EXPECT_TRUE(control->inherits(fila.clase)) << control->metaObject()->className();
    if (fila.ayuda != nullptr) {
      EXPECT_EQ(control->toolTip(), QString::fromUtf8(fila.ayuda));
    }
    if (fila.texto != nullptr) {
      EXPECT_EQ(control->property("text").toString(), QString::fromUtf8(fila.texto));
    }
  }
}

TEST_F(Controles, TheWindowsTitleEndsWithTheVersion) {
  EXPECT_EQ(ventana_->windowTitle(), QStringLiteral("Datos A Importar 1.0.0"));
  EXPECT_EQ(Hallar<QLabel>("LblEmpresa")->text(), gui::De("Empresa: " + demo_.referencia));
}

// Nobody can press a button that says nothing.
TEST_F(Controles, EveryButtonHasACaptionOrAName) {
  for (const auto* boton : ventana_->findChildren<QPushButton*>())
    EXPECT_FALSE(boton->text().isEmpty() && boton->accessibleName().isEmpty()) << gui::A(boton->objectName());
}

TEST_F(Controles, EveryLabelIsTheBuddyOfItsControl) {
  constexpr std::pair<const char*, const char*> kPares[] = {{"lblRuta", "txtRuta"},
                                                            {"Label1", "txtFiltro"},
                                                            {"lblMes", "ObjSelMes"},
                                                            {"lblImporEnTipoLiq", "cmbLiquidaciones"},
                                                            {"lblAgrupa", "cmbAgrupa"},
                                                            {"lblAgrupaDef", "cmbAgrupaDef"},
                                                            {"Label3", "cbTipoClave"},
                                                            {"Label2", "txtFormulaSGN"},
                                                            {"lblImpCuotas", "txtTextoTipoCuota"}};
  for (const auto& [etiqueta, control] : kPares)
    EXPECT_EQ(Hallar<QLabel>(etiqueta)->buddy(), Hallar<QWidget>(control)) << etiqueta;
}

std::string Columnas(const QTableView* grilla) {
  std::string texto;
  for (int i = 0; i < grilla->model()->columnCount(); ++i)
    texto += gui::A(grilla->model()->headerData(i, Qt::Horizontal).toString()) + "/" +
             gui::A(grilla->model()->headerData(i, Qt::Horizontal, gui::kNombreDeColumna).toString()) + ";";
  return texto;
}

TEST_F(Controles, GridColumnsByCaptionAndName) {
  Tilde("chkSoloDReloj")->setChecked(true);  // the demo is set to "Dato"
  EXPECT_EQ(
      Columnas(Grilla("GridAImportar")),
      "Id/Id;Nombre/Nombre;Apellido/Apellido;Horas/Horas;Valor/Valor;Tipo/Tipo;Vinculado Con:/NomConcVinc;"
      "A_Realizar/A_Realizar;Dat.Ext./DatoExtra;C. Costo/CC;Resultado/Resultado;");
  EXPECT_EQ(Columnas(Grilla("GridRelaciones")),
            "Codigo/Codigo;Nombre/Nombre;Cod. de Sis. Externo/CodigosVincConReloj;C.Costo/CC;");
  EXPECT_EQ(Columnas(Grilla("GridPVConf")),
            "Persona/Persona;Tipo Dato/TipoDato;Dato/Dato;Dato Extra/DatExt;Valor/Valor;");
}

std::string Items(const QComboBox* combo, int cuantos) {
  std::string texto;
  for (int i = 0; i < std::min(combo->count(), cuantos); ++i)
    texto += gui::A(combo->itemText(i)) + "=" + std::to_string(combo->itemData(i).toLongLong()) + ";";
  return texto;
}

TEST_F(Controles, ItemsAndTheirData) {
  EXPECT_EQ(Items(Combo("cbTipoClave"), 99),
            "Id Interno=0;Nº Alternativo=1;Nº Tarjeta=2;Cod.Sist. Ext.=3;Documento=4;Nº Persona=5;");
  EXPECT_EQ(Items(Combo("cmbLiquidaciones"), 1), "0 - Sueldos=0;");
  EXPECT_EQ(Combo("cmbLiquidaciones")->currentIndex(), 0);
  EXPECT_EQ(Items(Combo("cmbAgrupa"), 1), "[Por Defecto]=0;");
  EXPECT_EQ(Items(Combo("cmbAgrupaDef"), 1), "[Por Defecto]=0;");
  EXPECT_EQ(Combo("cmbAgrupa")->count(), Combo("cmbAgrupaDef")->count());
  const auto& conceptos = programa_->Ver().conceptos.cmbConceptos.items;
  ASSERT_EQ(static_cast<std::size_t>(Combo("cmbConceptos")->count()), conceptos.size());
  for (std::size_t i = 0; i < conceptos.size(); ++i)
    EXPECT_EQ(Combo("cmbConceptos")->itemData(static_cast<int>(i)).toLongLong(), conceptos[i].dato);
}

TEST_F(Controles, OnlyTheTableAndTheTimerAreTherebyHidden) {
  EXPECT_TRUE(Hallar<QWidget>("AreConf_0")->isHidden());
  EXPECT_TRUE(Hallar<QWidget>("AreConf_1")->isHidden());
  EXPECT_TRUE(Hallar<QWidget>("Barra")->isHidden());
  EXPECT_FALSE(SeVe(Grilla("GridAImportar"), "Resultado"));
  EXPECT_NE(ventana_->findChild<QTimer*>(QStringLiteral("Timer1")), nullptr);
}

// With either panel open no two controls answer to one Alt key.
TEST_F(Controles, AccessKeysDoNotCollide) {
  for (const char* boton : {"cbConfigurar_0", "cbConfigurar_1"}) {
    Pulsar(boton);
    Esperar();
    std::multiset<QString> teclas;
    for (const auto* b : ventana_->findChildren<QAbstractButton*>())
      if (b->isVisible() && !b->shortcut().isEmpty()) teclas.insert(b->shortcut().toString());
    for (const auto* atajo : ventana_->findChildren<QShortcut*>())
      if (qobject_cast<QWidget*>(atajo->parent())->isVisible()) teclas.insert(atajo->key().toString());
    EXPECT_GT(teclas.size(), 15U) << boton;
    for (const QString& tecla : teclas) EXPECT_EQ(teclas.count(tecla), 1U) << boton << " " << gui::A(tecla);
  }
}

TEST_F(Controles, ALabelsKeyGoesToItsControl) {
  Caja("txtFiltro")->setFocus();
  QTest::keyClick(ventana_.get(), Qt::Key_R, Qt::AltModifier);
  EXPECT_EQ(QApplication::focusWidget(), Caja("txtRuta"));
  QTest::keyClick(ventana_.get(), Qt::Key_T, Qt::AltModifier);
  EXPECT_EQ(QApplication::focusWidget(), Combo("cmbLiquidaciones"));
}

TEST_F(Controles, TabGoesThroughTheStripToTheGrid) {
  const char* orden[] = {"txtRuta", "cbBuscar", "cbActualizar", "ObjSelMes", "cmbLiquidaciones", "cmbAgrupa"};
  Caja("txtRuta")->setFocus();
  for (const char* nombre : orden) {
    EXPECT_EQ(gui::A(QApplication::focusWidget()->objectName()), nombre);
    // The month and its year are two stops inside the picker.
    for (int i = 0; i < 3 && QApplication::focusWidget() == Hallar<QWidget>(nombre); ++i)
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
}

}  // namespace
