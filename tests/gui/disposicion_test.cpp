// The resize rules, in pixels of 15 twips.
#include <QImage>

#include "gui/banco_gui.h"
#include "gui/barra_de_progreso.h"

namespace {

class Disposicion : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    Abrir();
  }
  QRect Lugar(const char* nombre) const { return Hallar<QWidget>(nombre)->geometry(); }
  void Tamano(int ancho, int alto) {
    ventana_->resize(ancho, alto);
    Esperar();
    ASSERT_EQ(ventana_->size(), QSize(ancho, alto));
  }
};

TEST(Twips, FifteenToAPixelRounded) {
  EXPECT_EQ(gui::Px(15), 1);
  EXPECT_EQ(gui::Px(80), 5);
  EXPECT_EQ(gui::Px(250), 17);
  EXPECT_EQ(gui::Px(825), 55);
  EXPECT_EQ(gui::Px(7), 0);
  EXPECT_EQ(gui::Px(8), 1);
}

TEST_F(Disposicion, TheColumnIsAsTallAsTheWindow) {
  for (const int alto : {720, 900}) {
    Tamano(1280, alto);
    EXPECT_EQ(Lugar("Area1"), QRect(0, 0, Lugar("Area1").width(), alto));
  }
}

TEST_F(Disposicion, TheBottomRowStands80TwipsOverTheEdge) {
  for (const int alto : {720, 901}) {
    Tamano(1280, alto);
    EXPECT_EQ(Lugar("cbSalir").y(), alto - (Lugar("cbSalir").height() + 5));
    EXPECT_EQ(Lugar("cbImportar").y(), alto - (Lugar("cbImportar").height() + 5));
    // The second settings button by the height of the first.
    EXPECT_EQ(Lugar("cbConfigurar_1").y(), alto - (Lugar("cbConfigurar_0").height() + 5));
  }
}

TEST_F(Disposicion, TheBarStandsOverTheFirstSettingsButton) {
  Tamano(1300, 800);
  EXPECT_EQ(Lugar("Barra").x(), 4);
  EXPECT_EQ(Lugar("Barra").y(), Lugar("cbConfigurar_0").y() - 2);
  EXPECT_EQ(Lugar("Barra").width(), Lugar("Area1").width() - 8);
  const int alto = Lugar("Barra").height();
  Tamano(1300, 900);
  EXPECT_EQ(Lugar("Barra").height(), alto);
}

TEST_F(Disposicion, ThePanelsStandOnTheGridsBottomEdge) {
  for (const QSize tamano : {QSize(1280, 720), QSize(1500, 950)}) {
    Tamano(tamano.width(), tamano.height());
    const QRect grilla = Lugar("GridAImportar"), relaciones = Lugar("GridRelaciones");
    for (const char* panel : {"AreConf_0", "AreConf_1"}) {
      EXPECT_EQ(Lugar(panel).x(), grilla.x());
      EXPECT_EQ(Lugar(panel).bottom(), grilla.bottom());
      EXPECT_EQ(Lugar(panel).height(), relaciones.y() + relaciones.height() + 17);
      EXPECT_LE(Lugar(panel).height(), grilla.height());
    }
  }
}

TEST_F(Disposicion, ThePanelsKeepTheirWidth) {
  const int ancho = Lugar("AreConf_0").width();
  Tamano(1700, 900);
  EXPECT_EQ(Lugar("AreConf_0").width(), ancho);
  EXPECT_EQ(Lugar("AreConf_1").width(), ancho);
}

TEST_F(Disposicion, TheGridTakesWhatIsLeft) {
  Tamano(1280, 720);
  const QRect antes = Lugar("GridAImportar");
  EXPECT_EQ(antes.x(), Lugar("Area1").width() + 12);
  EXPECT_EQ(antes.right() + 1, 1280 - 12);
  EXPECT_EQ(antes.bottom() + 1, 720 - 12);
  const QRect vista = Lugar("barra_de_vista");
  EXPECT_EQ(vista.y(), Lugar("franja").y() + Lugar("franja").height() + 12);
  EXPECT_EQ(antes.y(), vista.y() + vista.height() + 6);
  Tamano(1380, 800);
  EXPECT_EQ(Lugar("GridAImportar"), antes.adjusted(0, 0, 100, 80));
}

// Nothing of the strip is cut at the size of the smallest screens that are used.
TEST_F(Disposicion, EverythingFitsAt1280By720) {
  Tamano(1280, 720);
  for (const char* panel : {"cbConfigurar_0", "cbConfigurar_1"}) {
    Pulsar(panel);
    Esperar();
    for (const auto* w : ventana_->findChildren<QWidget*>()) {
      if (!w->isVisible() || w->isWindow() || w->parentWidget()->inherits("QAbstractScrollArea")) continue;
      if (!w->inherits("QAbstractButton") && !w->inherits("QLabel") && !w->inherits("QLineEdit")) continue;
      if (w->objectName() == QLatin1String("LblEmpresa") || w->objectName() == QLatin1String("lblConcepto"))
        continue;
      const QRect en_ventana(w->mapTo(ventana_.get(), QPoint(0, 0)), w->size());
      EXPECT_TRUE(ventana_->rect().contains(en_ventana)) << gui::A(w->objectName());
      if (const auto* boton = qobject_cast<const QPushButton*>(w)) {
        const int icono = boton->icon().isNull() ? 0 : boton->iconSize().width();
        EXPECT_GE(w->width(), w->fontMetrics().horizontalAdvance(boton->text()) + icono + 6)
            << gui::A(w->objectName());
      } else if (!w->inherits("QLineEdit")) {
        EXPECT_GE(w->width(), w->minimumSizeHint().width()) << gui::A(w->objectName());
      }
    }
  }
}

TEST_F(Disposicion, TheBarPaintsItsPartInThreeColours) {
  gui::BarraDeProgreso barra(nullptr);
  barra.resize(402, 22);
  const QColor pista = [&] {
    barra.Poner(0);
    return barra.grab().toImage().pixelColor(200, 10);
  }();
  barra.Poner(50);
  EXPECT_EQ(barra.Lleno(), QRectF(1, 1, 200, 20));
  const QImage foto = barra.grab().toImage();
  EXPECT_EQ(foto.pixelColor(350, 10), pista);
  EXPECT_EQ(foto.pixelColor(203, 10), pista);
  const auto cerca = [](const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue()) < 12;
  };
  EXPECT_TRUE(cerca(foto.pixelColor(2, 10), QColor(180, 187, 197)));
  EXPECT_TRUE(cerca(foto.pixelColor(101, 10), QColor(83, 94, 108)));
  EXPECT_TRUE(cerca(foto.pixelColor(199, 10), QColor(31, 31, 31)));
  barra.Poner(100);
  EXPECT_EQ(barra.Lleno(), QRectF(1, 1, 400, 20));
}

TEST_F(Disposicion, TheBarShowsWhileACommandRuns) {
  app::Barra& barra = programa_->BarraDeProgreso();
  barra.ActuBarra(25.0F);
  EXPECT_FALSE(Hallar<QWidget>("Barra")->isHidden());
  barra.ActuBarra(-1);
  auto* pintada = static_cast<gui::BarraDeProgreso*>(Hallar<QWidget>("Barra"));
  EXPECT_DOUBLE_EQ(pintada->Lleno().width(), (pintada->width() - 2) * 0.5);
  barra.ActuBarra(0);
  EXPECT_TRUE(Hallar<QWidget>("Barra")->isHidden());
}

}  // namespace
