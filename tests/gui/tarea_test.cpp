// A load and an import in the real window: Esc, the button on the bar, and clicks that are dropped.
#include "gui/banco_gui.h"
#include "gui/barra_de_progreso.h"
#include "gui/bomba.h"

namespace {

constexpr const char* kCancelada = "La importación se canceló: no se escribió nada";

// With a pump of its own, so that events run as in the program.
class Tarea : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    Demo();
    Crear();
    ventana_ = std::make_unique<gui::FrmPrincipal2>(*programa_, gui::Tema::Claro(), &bomba_);
    cajas_.esperadas = {"Formato incorrecto en la linea 45"};
    ASSERT_TRUE(ventana_->Iniciar(gui::De(demo_.referencia + "*" + demo_.archivo)));
    Mostrar();
    ASSERT_EQ(programa_->Ver().filas.size(), 53U);
  }
  // Does it once, in the middle of the import.
  void EnMedio(const std::function<void()>& que) {
    const auto pintar = programa_->BarraDeProgreso().al_pintar;
    programa_->BarraDeProgreso().al_pintar = [this, pintar, que, hecho = false]() mutable {
      if (!hecho && programa_->BarraDeProgreso().Visible() &&
          programa_->BarraDeProgreso().Porcentaje() > 20) {
        hecho = true;
        ++veces_;
        que();
      }
      pintar();
    };
  }
  std::string Datos() { return Consulta("Select Count(*) & '/' & Sum(Cantidad) From Datos_Liquidacion"); }

  gui::Bomba bomba_;
  int veces_ = 0;
};

TEST_F(Tarea, EscStopsAnImport) {
  const std::string antes = Datos();
  EnMedio([&] { QTest::keyClick(Caja("txtFiltro"), Qt::Key_Escape); });
  cajas_.respuestas = {true};
  cajas_.esperadas = {kCancelada};
  Pulsar("cbImportar");
  EXPECT_EQ(veces_, 1);
  EXPECT_EQ(Datos(), antes);
  EXPECT_EQ(Celda(Grilla("GridAImportar"), 0, "Resultado"), kCancelada);
  EXPECT_EQ(Celda(Grilla("GridAImportar"), 52, "Resultado"), kCancelada);
  EXPECT_TRUE(Hallar<QPushButton>("cbImportar")->isEnabled());
}

TEST_F(Tarea, TheButtonOnTheBarStopsIt) {
  const std::string antes = Datos();
  EXPECT_FALSE(Hallar<QPushButton>("cbCancelar")->isVisible());
  EnMedio([&] {
    auto* boton = Hallar<QPushButton>("cbCancelar");
    ASSERT_TRUE(boton->isVisible());
    const auto* barra = static_cast<gui::BarraDeProgreso*>(Hallar<QWidget>("Barra"));
    EXPECT_TRUE(barra->geometry().contains(boton->geometry()));
    EXPECT_LE(barra->Lleno().right() + barra->x(), boton->x());
    QTest::mouseClick(boton, Qt::LeftButton);
    EXPECT_FALSE(boton->isEnabled());
    EXPECT_EQ(gui::A(Hallar<QLabel>("lblEstado")->text()), "Cancelando…");
  });
  cajas_.respuestas = {true};
  cajas_.esperadas = {kCancelada};
  Pulsar("cbImportar");
  EXPECT_EQ(veces_, 1);
  EXPECT_EQ(Datos(), antes);
  EXPECT_FALSE(Hallar<QPushButton>("cbCancelar")->isVisible());
}

// Nothing else gets in, neither then nor afterwards.
TEST_F(Tarea, WhatIsClickedAndTypedMeanwhileIsDropped) {
  const QString filtro = Caja("txtFiltro")->text();
  EnMedio([&] {
    QTest::mouseClick(Hallar<QWidget>("cbImportar"), Qt::LeftButton);
    QTest::mouseClick(Hallar<QWidget>("cbConfigurar_1"), Qt::LeftButton);
    QTest::mouseClick(Hallar<QWidget>("cbSalir"), Qt::LeftButton);
    QTest::mouseClick(Tilde("chkTotalizarConc"), Qt::LeftButton);
    QTest::keyClicks(Caja("txtFiltro"), QStringLiteral("xyz"));
    QTest::keyClick(Caja("txtRuta"), Qt::Key_Return);
    // And through the queue, as the system brings them.
    for (QWidget* w : {Hallar<QWidget>("cbImportar"), Hallar<QWidget>("cbSalir")}) {
      const QPointF lugar = w->rect().center();
      for (const QEvent::Type tipo : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
        QApplication::postEvent(
            w, new QMouseEvent(tipo, lugar, w->mapToGlobal(lugar), Qt::LeftButton,
                               tipo == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                               Qt::NoModifier));
    }
  });
  cajas_.respuestas = {true};
  Pulsar("cbImportar");
  Esperar();
  EXPECT_EQ(veces_, 1);
  EXPECT_EQ(cajas_.preguntas.size(), 1U);
  EXPECT_EQ(Caja("txtFiltro")->text(), filtro);
  EXPECT_FALSE(programa_->Ver().AreConf_visible[1]);
  EXPECT_FALSE(programa_->CierrePedido());
  EXPECT_TRUE(ventana_->isVisible());
  EXPECT_GT(programa_->Ver().importacion.importadas, 40U);
  // Afterwards it listens again.
  QTest::mouseClick(Hallar<QWidget>("cbConfigurar_1"), Qt::LeftButton);
  EXPECT_TRUE(programa_->Ver().AreConf_visible[1]);
}

TEST_F(Tarea, ClosingWaitsForTheEndOfTheImport) {
  EnMedio([&] { ventana_->close(); });
  cajas_.respuestas = {true};
  Pulsar("cbImportar");
  Esperar();
  EXPECT_EQ(veces_, 1);
  EXPECT_GT(programa_->Ver().importacion.importadas, 40U);
  EXPECT_FALSE(ventana_->isVisible());
}

TEST_F(Tarea, EscStopsALoadAndTheOldGridStays) {
  std::string muchas;
  for (int i = 0; i < 3000; ++i) muchas += "007003;HE;1\r\n";
  Escribir("muchas.txt", muchas);
  Caja("txtRuta")->setText(gui::De(Ruta("muchas.txt")));
  EnMedio([&] { QTest::keyClick(ventana_.get(), Qt::Key_Escape); });
  Pulsar("cbActualizar");
  EXPECT_EQ(veces_, 1);
  EXPECT_EQ(Grilla("GridAImportar")->model()->rowCount(), 53);
  EXPECT_NE(gui::A(Hallar<QLabel>("lblAviso")->text()).find("cambió la ruta"), std::string::npos);
}

}  // namespace
