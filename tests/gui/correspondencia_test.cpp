// The bar over the grid while the grid is not that of the controls, and the clicks that read it again.
#include "gui/banco_gui.h"
#include "gui/cinta.h"
#include "gui/estilo.h"

namespace {

class Correspondencia : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    AbrirCargada();
  }
  std::string Cinta() const { return gui::A(Hallar<QLabel>("lblAviso")->text()); }
  bool Marcado() const {
    return Hallar<QPushButton>("cbActualizar")->property(gui::kPapel).toString() ==
           QLatin1String(gui::kPrimario);
  }
};

TEST_F(Correspondencia, TheBarSaysWhatTheGridDoesNotShowAndTheButtonIsMarked) {
  EXPECT_EQ(Cinta(), "");
  EXPECT_FALSE(Marcado());
  Caja("txtFormulaSGN")->setText("2");
  EXPECT_EQ(
      Cinta(),
      "La grilla no es la de los controles: cambió la fórmula. Pulse Actualizar para leerlo con lo que dicen "
      "ahora.");
  EXPECT_TRUE(Hallar<QLabel>("lblAviso")->isVisible());
  EXPECT_TRUE(Marcado());
  EXPECT_NE(Hallar<QPushButton>("cbActualizar")->toolTip(), QString());
  cajas_.esperadas = {"Formato incorrecto en la linea 45"};
  Pulsar("cbActualizar");
  EXPECT_EQ(Cinta(), "");
  EXPECT_FALSE(Marcado());
  EXPECT_EQ(Hallar<QPushButton>("cbActualizar")->toolTip(), QString());
}

TEST_F(Correspondencia, AFileEditedElsewhereIsNoticedWhenTheWindowIsActiveAgain) {
  std::ofstream(demo_.archivo, std::ios::app) << "007001;HC;1\r\n";
  QEvent activacion(QEvent::ActivationChange);
  QApplication::sendEvent(ventana_.get(), &activacion);
  EXPECT_NE(Cinta().find("cambió el contenido del archivo"), std::string::npos) << Cinta();
}

// The option that is chosen already: nothing is toggled, and the file is read all the same.
TEST_F(Correspondencia, AClickOnTheChosenFilterReadsTheFileAgain) {
  const unsigned antes = programa_->Ver().revision.filas;
  cajas_.esperadas = {"Formato incorrecto en la linea 45"};
  QTest::mouseClick(Hallar<QRadioButton>("OptFiltro_1"), Qt::LeftButton);
  EXPECT_TRUE(cajas_.esperadas.empty());
  EXPECT_EQ(programa_->Ver().revision.filas, antes + 1);
  cajas_.esperadas = {"Formato incorrecto en la linea 45"};
  QTest::keyClick(Hallar<QRadioButton>("OptFiltro_1"), Qt::Key_Space);
  EXPECT_EQ(programa_->Ver().revision.filas, antes + 2);
}

TEST_F(Correspondencia, AClickOnTheOtherFilterReadsItOnce) {
  const unsigned antes = programa_->Ver().revision.filas;
  cajas_.esperadas = {"Formato incorrecto en la linea 45"};
  QTest::mouseClick(Hallar<QRadioButton>("OptFiltro_0"), Qt::LeftButton);
  EXPECT_EQ(programa_->Ver().revision.filas, antes + 1);
  cajas_.esperadas = {"Formato incorrecto en la linea 45"};
  QTest::keyClick(Hallar<QRadioButton>("OptFiltro_1"), Qt::Key_Space);
  EXPECT_TRUE(Hallar<QRadioButton>("OptFiltro_1")->isChecked());
  EXPECT_EQ(programa_->Ver().revision.filas, antes + 2);
}

TEST_F(Correspondencia, AClickOnTheChosenFormatCutsThePreviewAgain) {
  Pulsar("cbConfigurar_0");
  const unsigned antes = programa_->Ver().revision.previa;
  QTest::mouseClick(Hallar<QRadioButton>("optTipoArch_0"), Qt::LeftButton);
  EXPECT_EQ(programa_->Ver().revision.previa, antes + 1);
  QTest::mouseClick(Hallar<QRadioButton>("optTipoArch_1"), Qt::LeftButton);
  EXPECT_EQ(programa_->Ver().revision.previa, antes + 2);
}

TEST_F(Correspondencia, TheImportAsksToReadTheFileFirst) {
  Caja("txtFormulaSGN")->setText("2");
  cajas_.respuestas = {true};
  cajas_.esperadas = {"Formato incorrecto en la linea 45"};
  Pulsar("cbImportar");
  ASSERT_EQ(cajas_.preguntas.size(), 1U);
  EXPECT_NE(cajas_.preguntas[0].find("cambió la fórmula"), std::string::npos);
  EXPECT_FALSE(SeVe(Grilla("GridAImportar"), "Resultado"));
  EXPECT_EQ(Cinta(), "");
}

}  // namespace
