// The file format: its boxes, the preview, the timer.
#include <QHeaderView>
#include <QTimer>

#include "gui/banco_gui.h"

namespace {

class Formato : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    Abrir();
    Escribir("vacio.txt", "");
    Pulsar("cbConfigurar_0");
    Esperar();
  }
  QTimer* Timer1() const { return ventana_->findChild<QTimer*>(QStringLiteral("Timer1")); }
  std::string Previa() const {
    const QAbstractItemModel* m = Grilla("GridPVConf")->model();
    std::string texto;
    for (int i = 0; i < m->rowCount(); ++i) {
      for (int j = 0; j < m->columnCount(); ++j) texto += gui::A(m->index(i, j).data().toString()) + "|";
      texto += "\n";
    }
    return texto;
  }
  const settings::FixedWidthLayout& Layout() const { return programa_->Ver().opciones.ConfDeAF; }
};

TEST_F(Formato, TheFormatEnablesItsBoxesAndRedrawsThePreview) {
  Cargar("000123 HC  8;x;9\r\nb;c;d");
  EXPECT_EQ(Previa(), "000123 HC  8|x|9|||\nb|c|d|||\n");
  Pulsar("optTipoArch_1");
  EXPECT_FALSE(Caja("txtSeparador")->isEnabled());
  for (const char* caja : {"txtA_0", "txtB_1", "txtC_0", "txtD_1", "txtE_0"})
    EXPECT_TRUE(Caja(caja)->isEnabled());
  EXPECT_EQ(Previa(), "000123|HC |8;x;9|||\nb;c;d|||||\n");
  Pulsar("optTipoArch_0");
  EXPECT_TRUE(Caja("txtSeparador")->isEnabled());
  EXPECT_FALSE(Caja("txtE_1")->isEnabled());
}

TEST_F(Formato, TheTimerIsSingleAndOf400Milliseconds) {
  EXPECT_TRUE(Timer1()->isSingleShot());
  EXPECT_EQ(Timer1()->interval(), 400);
  EXPECT_FALSE(Timer1()->isActive());
}

TEST_F(Formato, TypingASeparatorRedrawsOnceWhenTheTimerTicks) {
  Cargar("1|2;3|4;5|6");
  EXPECT_EQ(Previa(), "1|2|3|4|5|6|||\n");
  Caja("txtSeparador")->clear();
  EXPECT_FALSE(Timer1()->isActive()) << "an empty separator arms nothing";
  QTest::keyClicks(Caja("txtSeparador"), QStringLiteral("|"));
  EXPECT_TRUE(Timer1()->isActive());
  EXPECT_EQ(programa_->Ver().opciones.Separador, "|");
  const unsigned antes = programa_->Ver().revision.previa;
  QTest::qWait(50);
  QTest::keyClicks(Caja("txtSeparador"), QStringLiteral("|"));
  QTest::keyClick(Caja("txtSeparador"), Qt::Key_Backspace);
  EXPECT_EQ(programa_->Ver().revision.previa, antes) << "not yet";
  QTest::qWait(600);
  EXPECT_FALSE(Timer1()->isActive());
  EXPECT_EQ(programa_->Ver().revision.previa, antes + 1) << "three edits within the interval, one refresh";
  EXPECT_EQ(Previa(), "1|2;3|4;5|6||\n");
}

TEST_F(Formato, ALayoutBoxIsItsColumn) {
  Pulsar("optTipoArch_1");
  Escribir(Caja("txtB_0"), "9");
  Escribir(Caja("txtB_1"), "4");
  EXPECT_EQ(Layout()[1], (settings::ColumnaAF{2, 9, 4}));
  EXPECT_TRUE(Timer1()->isActive());
  Escribir(Caja("txtE_1"), "-3");
  EXPECT_EQ(Layout()[4].largo, -3);
  Caja("txtA_0")->clear();
  EXPECT_EQ(Layout()[0].inicio, 1) << "an empty box changes nothing";
}

// Dragging a header of the preview says which piece of the line is which field.
TEST_F(Formato, MovedColumnsBecomeTheLayout) {
  Cargar("007031 HE  8;x;9");
  Pulsar("optTipoArch_1");
  EXPECT_EQ(gui::A(Hallar<QLabel>("lblA")->text()), "Persona");
  Grilla("GridPVConf")->horizontalHeader()->moveSection(0, 1);
  EXPECT_TRUE(Timer1()->isActive());
  EXPECT_EQ(Layout()[0].campo, 1) << "not before the tick";
  QTest::qWait(600);
  EXPECT_EQ(Layout()[0].campo, 2);
  EXPECT_EQ(Layout()[1].campo, 1);
  EXPECT_EQ(Layout()[2].campo, 3);
  EXPECT_EQ(gui::A(Hallar<QLabel>("lblA")->text()), "Tipo Dato");
  EXPECT_EQ(gui::A(Hallar<QLabel>("lblB")->text()), "Persona");
  // The preview shows the fields: the first one is now the second piece.
  EXPECT_EQ(Previa().substr(0, 11), "HE |007031|");
}

TEST_F(Formato, TheLayoutOfTheFilePlacesThePreviewsColumns) {
  std::filesystem::remove(Ruta("ImportDeMarcas.ini"));
  Escribir("ImportDeMarcas.ini", "[ConfDeAF]\r\n3*1*6\r\n1*8*3\r\n2*12*9\r\n4*-1*0\r\n5*-1*0\r\n[/ConfDeAF]");
  ASSERT_TRUE(Iniciar(demo_.referencia));
  const QHeaderView* cabecera = Grilla("GridPVConf")->horizontalHeader();
  EXPECT_EQ(cabecera->visualIndex(2), 0);
  EXPECT_EQ(cabecera->visualIndex(0), 1);
  EXPECT_EQ(cabecera->visualIndex(1), 2);
  EXPECT_FALSE(Timer1()->isActive()) << "placing them is not moving them";
}

}  // namespace
