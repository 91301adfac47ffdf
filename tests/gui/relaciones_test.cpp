// The relations panel.
#include "gui/banco_gui.h"

namespace {

class Relaciones : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    Abrir();
    Pulsar("cbConfigurar_1");
    Esperar();
  }
  int Filas() const { return Grilla("GridRelaciones")->model()->rowCount(); }
  std::string Fila(int fila) const {
    const QTableView* g = Grilla("GridRelaciones");
    return Celda(g, fila, "Codigo") + "|" + Celda(g, fila, "Nombre") + "|" +
           Celda(g, fila, "CodigosVincConReloj") + "|" + Celda(g, fila, "CC");
  }
  void Elegir(const char* principio) const {
    QComboBox* combo = Combo("cmbConceptos");
    const int i = combo->findText(QString::fromUtf8(principio), Qt::MatchStartsWith);
    ASSERT_GE(i, 0) << principio;
    combo->setCurrentIndex(i);
  }
};

TEST_F(Relaciones, TheGridShowsThemWithTheirColour) {
  EXPECT_EQ(Filas(), 10);
  EXPECT_EQ(Fila(0), "HC|Horas Comunes|HC,01|0");
  EXPECT_FALSE(Grilla("GridRelaciones")->model()->index(0, 0).data(Qt::DecorationRole).isNull());
  EXPECT_EQ(Grilla("GridRelaciones")->currentIndex().row(), 0);
}

TEST_F(Relaciones, AddingNeedsAConceptAndCodes) {
  cajas_.esperadas = {"Debe seleccionar un concepto",
                      "Debe seleccionar la relación con los codigos del sistema de reloj"};
  Combo("cmbConceptos")->setCurrentIndex(-1);
  Pulsar("cbAgrQuit_0");
  Combo("cmbConceptos")->setCurrentIndex(0);
  Escribir(Caja("txtTipo"), "   ");
  Pulsar("cbAgrQuit_0");
  EXPECT_EQ(Filas(), 10);
}

TEST_F(Relaciones, AddingPutsARowAndItsColourOnTheLines) {
  Cargar("1;XX;8\r\n2;YY;8");
  Elegir("HE - ");
  EXPECT_EQ(Hallar<QLabel>("lblConcepto")->text(), QStringLiteral("Horas Extras"));
  Escribir(Caja("txtTipo"), "XX,YY");
  cajas_.color = 0x0000FF;  // red
  Pulsar("cbColor");
  EXPECT_EQ(Hallar<QPushButton>("cbColor")->palette().color(QPalette::Button), QColor(255, 0, 0));
  Pulsar("cbAgrQuit_0");
  ASSERT_EQ(Filas(), 11);
  EXPECT_EQ(Fila(10), "HE|Horas Extras|XX,YY|0");
  const QModelIndex celda = Grilla("GridAImportar")->model()->index(0, 0);
  EXPECT_EQ(celda.data(Qt::BackgroundRole).value<QBrush>().color(), QColor(255, 0, 0));
  // Dark ground, light letters.
  EXPECT_EQ(celda.data(Qt::ForegroundRole).value<QBrush>().color(), QColor(0, 0, 0));
}

TEST_F(Relaciones, CancellingTheColourKeepsIt) {
  cajas_.color = 0x804020;
  Pulsar("cbColor");
  cajas_.color = -1;
  Pulsar("cbColor");
  EXPECT_EQ(programa_->Ver().cbColor, 0x804020);
  EXPECT_EQ(Hallar<QPushButton>("cbColor")->palette().color(QPalette::Button), QColor(0x20, 0x40, 0x80));
}

TEST_F(Relaciones, RemovingPutsItBackIntoTheBoxes) {
  Grilla("GridRelaciones")->selectRow(1);
  EXPECT_EQ(programa_->Ver().fila_relacion, 1);
  Pulsar("cbAgrQuit_1");
  ASSERT_EQ(Filas(), 9);
  EXPECT_EQ(Fila(1).substr(0, 3), "HN|");
  EXPECT_EQ(Caja("txtTipo")->text(), QStringLiteral("HE,02"));
  EXPECT_TRUE(Combo("cmbConceptos")->currentText().startsWith(QStringLiteral("HE - ")));
  EXPECT_EQ(Hallar<QLabel>("lblConcepto")->text(), QStringLiteral("Horas Extras"));
  const QColor color = Hallar<QPushButton>("cbColor")->palette().color(QPalette::Button);
  EXPECT_EQ(gui::BgrDe(color), 12775369);
  // Changed and added again.
  Escribir(Caja("txtTipo"), "HE,02,EX");
  Pulsar("cbAgrQuit_0");
  EXPECT_EQ(Fila(9), "HE|Horas Extras|HE,02,EX|0");
}

TEST_F(Relaciones, RemovingTheLastOnes) {
  for (int i = 0; i < 10; ++i) Pulsar("cbAgrQuit_1");
  EXPECT_EQ(Filas(), 0);
  cajas_.esperadas = {"Debe seleccionar una relación para quitar"};
  Pulsar("cbAgrQuit_1");
}

TEST_F(Relaciones, ACostCentreGoesWithTheRelation) {
  Elegir("HE - ");
  Escribir(Caja("txtTipo"), "XX");
  Combo("cmbAgrupaDef")->setCurrentIndex(2);
  const qlonglong centro = Combo("cmbAgrupaDef")->itemData(2).toLongLong();
  Pulsar("cbAgrQuit_0");
  EXPECT_EQ(Fila(10), "HE|Horas Extras|XX|" + std::to_string(centro));
}

// User tables take no cost centre.
TEST_F(Relaciones, AUserTableLocksTheCostCentre) {
  QComboBox* combo = Combo("cmbConceptos");
  combo->setCurrentIndex(combo->findData(QVariant::fromValue<qlonglong>(1005)));
  EXPECT_TRUE(Hallar<QLabel>("lblConcepto")->text().endsWith(QStringLiteral("  (T.U.)")));
  EXPECT_FALSE(Combo("cmbAgrupaDef")->isEnabled());
  Elegir("HE - ");
  EXPECT_TRUE(Combo("cmbAgrupaDef")->isEnabled());
}

TEST_F(Relaciones, EnterInTheCombosIsTab) {
  for (const char* nombre : {"cmbConceptos", "cmbAgrupaDef"}) {
    QComboBox* combo = Combo(nombre);
    combo->setFocus();
    const int antes = combo->currentIndex();
    QTest::keyClick(combo, Qt::Key_Return);
    EXPECT_NE(QApplication::focusWidget(), combo) << nombre;
    EXPECT_EQ(combo->currentIndex(), antes);
    EXPECT_FALSE(combo->view()->isVisible());
  }
}

TEST_F(Relaciones, TypingFindsAConcept) {
  Combo("cmbConceptos")->setCurrentIndex(-1);
  Combo("cmbConceptos")->setFocus();
  QTest::keyClicks(Combo("cmbConceptos"), QStringLiteral("hn"));
  EXPECT_TRUE(Combo("cmbConceptos")->currentText().startsWith(QStringLiteral("HN - ")));
  EXPECT_EQ(Hallar<QLabel>("lblConcepto")->text(), QStringLiteral("Horas Nocturnas"));
}

TEST_F(Relaciones, TheListOfConceptsIs450PixelsWide) {
  Combo("cmbConceptos")->showPopup();
  EXPECT_EQ(Combo("cmbConceptos")->view()->width(), 450);
  EXPECT_LT(Combo("cmbConceptos")->width(), 450);
  Combo("cmbConceptos")->hidePopup();
}

// Both hold the relations, so neither adding nor removing happens while a load runs.
TEST_F(Relaciones, NothingIsAddedWhileALoadRuns) {
  std::string texto;
  for (int i = 0; i < 200; ++i) texto += "1;1;8\r\n";
  Cargar("1;1;8");
  Escribir("x.txt", texto + "1;1;8");
  Elegir("HE - ");
  Escribir(Caja("txtTipo"), "XX");
  int veces = 0;
  eventos_.al_correr = [&] {
    if (++veces != 5) return;
    Pulsar("cbAgrQuit_0");
    Pulsar("cbAgrQuit_1");
  };
  Pulsar("cbActualizar");
  EXPECT_GT(veces, 5);
  EXPECT_EQ(Filas(), 10);
}

}  // namespace
