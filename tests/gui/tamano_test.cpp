// The window on small screens, what it remembers of its size, and what its columns do with the room.
#include <QHeaderView>
#include <QHelpEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QToolTip>

#include "gui/banco_gui.h"
#include "gui/caja_de_separador.h"
#include "gui/tamano_de_ventana.h"

namespace {

class Tamano : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    AbrirCargada();
  }
  QRect EnVentana(const QWidget* w) const { return {w->mapTo(ventana_.get(), QPoint(0, 0)), w->size()}; }
  static int AnchoDeColumnas(const QTableView* grilla) { return grilla->horizontalHeader()->length(); }
  void Redimensionar(int ancho, int alto) {
    ventana_->resize(ancho, alto);
    Esperar();
    ASSERT_EQ(ventana_->size(), QSize(ancho, alto));
  }
};

TEST(TamanoDeVentana, NeverLargerThanTheScreen) {
  EXPECT_EQ(gui::TamanoMinimo({1920, 1040}), QSize(1000, 620));
  EXPECT_EQ(gui::TamanoMinimo({1093, 582}), QSize(1000, 582)) << "1366 by 768 at 125 %, with a bar";
  EXPECT_EQ(gui::TamanoMinimo({800, 480}), QSize(800, 480));
  EXPECT_EQ(gui::TamanoInicial({1920, 1040}), QSize(1280, 720));
  EXPECT_EQ(gui::TamanoInicial({1093, 582}), QSize(1077, 534));
}

TEST_F(Tamano, TheSmallestWindowIs1000By620) { EXPECT_EQ(ventana_->minimumSize(), QSize(1000, 620)); }

// Nothing lies outside the window, and what a panel has no room for can be scrolled to.
TEST_F(Tamano, EverythingCanBeReachedInTheSmallestWindow) {
  Redimensionar(1000, 620);
  for (const char* nombre :
       {"cbImportar", "cbSalir", "cbConfigurar_0", "cbConfigurar_1", "cbActualizar", "txtFiltro"}) {
    const auto* w = Hallar<QWidget>(nombre);
    EXPECT_TRUE(ventana_->rect().contains(EnVentana(w))) << nombre;
  }
  const QTableView* grilla = Grilla("GridAImportar");
  EXPECT_GT(grilla->height(), 250);
  for (const char* boton : {"cbConfigurar_0", "cbConfigurar_1"}) {
    Pulsar(boton);
    Esperar();
    const auto* panel = Hallar<QWidget>(*(boton + 13) == '0' ? "AreConf_0" : "AreConf_1");
    EXPECT_LE(EnVentana(panel).right(), EnVentana(grilla).right());
    EXPECT_GE(EnVentana(panel).top(), EnVentana(grilla).top());
    for (const auto* hoja : panel->findChildren<QScrollArea*>())
      EXPECT_FALSE(hoja->horizontalScrollBar()->isVisible())
          << "only up and down: " << hoja->widget()->minimumSizeHint().width() << " in "
          << hoja->viewport()->width();
    for (auto* w : panel->findChildren<QWidget*>()) {
      if (!w->isVisible() ||
          (!w->inherits("QAbstractButton") && !w->inherits("QLineEdit") && !w->inherits("QComboBox")))
        continue;
      if (w->parentWidget()->inherits("QAbstractScrollArea")) continue;
      if (auto* hoja = panel->findChild<QScrollArea*>(); hoja != nullptr && hoja->isAncestorOf(w)) {
        hoja->ensureWidgetVisible(w);
        EXPECT_FALSE(w->visibleRegion().isEmpty()) << gui::A(w->objectName());
      } else {
        EXPECT_TRUE(EnVentana(panel).contains(EnVentana(w))) << gui::A(w->objectName());
      }
      if (w->inherits("QPushButton")) continue;
      EXPECT_GE(w->width(), w->minimumSizeHint().width()) << gui::A(w->objectName());
    }
  }
}

TEST_F(Tamano, WithLargeLettersThePanelOfTheFormatScrolls) {
  QFont letra = ventana_->font();
  letra.setPointSize(13);
  ventana_->setFont(letra);
  Redimensionar(1500, 620);
  Pulsar("cbConfigurar_0");
  Esperar();
  auto* hoja = Hallar<QScrollArea>("AreConf_0_hoja");
  ASSERT_TRUE(hoja->verticalScrollBar()->isVisible());
  auto* ultima = Caja("txtTextoTipoCuota");
  EXPECT_NE(ultima->visibleRegion().boundingRect(), ultima->rect());
  hoja->ensureWidgetVisible(ultima, 0, 0);
  Esperar();
  EXPECT_FALSE(ultima->visibleRegion().isEmpty());
}

TEST_F(Tamano, TheSizeIsRemembered) {
  QSettings ajustes(gui::De(Ruta("ventana.conf")), QSettings::IniFormat);
  ventana_->Recordar(&ajustes);
  EXPECT_EQ(ventana_->size(), QSize(1280, 720)) << "nothing is remembered yet";
  Redimensionar(1111, 677);
  ventana_->close();
  ASSERT_TRUE(Iniciar(demo_.referencia));
  ventana_->Recordar(&ajustes);
  Mostrar();
  EXPECT_EQ(ventana_->size(), QSize(1111, 677));
  EXPECT_EQ(Leer("ImportDeMarcas.ini").find("geometria"), std::string::npos);
}

TEST_F(Tamano, TheColumnsFillTheGrid) {
  const QTableView* g = Grilla("GridAImportar");
  for (const int ancho : {1000, 1280, 1900}) {
    Redimensionar(ancho, 720);
    EXPECT_EQ(AnchoDeColumnas(g), g->viewport()->width()) << ancho;
    EXPECT_EQ(g->columnWidth(Columna(g, "CC")), 55);
  }
  const int antes = g->columnWidth(Columna(g, "Apellido"));
  Tilde("chkConCC")->setChecked(false);
  EXPECT_EQ(AnchoDeColumnas(g), g->viewport()->width()) << "the room of a hidden column goes to the others";
  EXPECT_GT(g->columnWidth(Columna(g, "Apellido")), antes);
  Pulsar("cbConfigurar_1");
  Esperar();
  EXPECT_EQ(AnchoDeColumnas(Grilla("GridRelaciones")), Grilla("GridRelaciones")->viewport()->width());
}

TEST_F(Tamano, ACutCellShowsItsWholeTextAsTooltip) {
  QTableView* g = Grilla("GridAImportar");
  const auto ayuda = [&](int fila, const char* columna) {
    const QModelIndex indice = g->model()->index(fila, Columna(g, columna));
    g->scrollTo(indice);
    const QPoint donde = g->visualRect(indice).center();
    QToolTip::hideText();
    for (int i = 0; i < 100 && !QToolTip::text().isEmpty(); ++i) QTest::qWait(20);
    QHelpEvent evento(QEvent::ToolTip, donde, g->viewport()->mapToGlobal(donde));
    QApplication::sendEvent(g->viewport(), &evento);
    return gui::A(QToolTip::text());
  };
  int fila = 0;
  while (Celda(g, fila, "Tipo") != "TK") ++fila;
  const std::string todo = Celda(g, fila, "NomConcVinc");
  g->setColumnWidth(Columna(g, "NomConcVinc"), 80);
  EXPECT_EQ(ayuda(fila, "NomConcVinc"), todo);
  g->setColumnWidth(Columna(g, "NomConcVinc"), 600);
  EXPECT_EQ(ayuda(fila, "NomConcVinc"), "");
  EXPECT_EQ(ayuda(fila, "Id"), "");
}

// Whatever changes the colour of a row repaints it up to the edge.
TEST_F(Tamano, ARowIsRepaintedUpToTheRightEdge) {
  QTableView* g = Grilla("GridAImportar");
  for (int i = 0; i < g->model()->columnCount(); ++i) g->setColumnWidth(i, 40);
  Esperar();
  const QRect resto(AnchoDeColumnas(g), 0, g->viewport()->width() - AnchoDeColumnas(g),
                    g->viewport()->height());
  ASSERT_GT(resto.width(), 100);
  struct Pintado : QObject {
    QRegion region;
    bool eventFilter(QObject*, QEvent* e) override {
      if (e->type() == QEvent::Paint) region += static_cast<QPaintEvent*>(e)->region();
      return false;
    }
  } pintado;
  g->viewport()->installEventFilter(&pintado);
  const auto repinta = [&](const std::function<void()>& hacer) {
    Esperar();
    pintado.region = {};
    hacer();
    Esperar();
    return pintado.region.contains(
        QPoint(resto.x() + 50, g->visualRect(g->model()->index(1, 0)).center().y()));
  };
  EXPECT_TRUE(repinta([&] { g->selectRow(1); }));
  EXPECT_TRUE(repinta([&] { g->clearSelection(); }));
  EXPECT_TRUE(
      repinta([&] { Q_EMIT g->model()->dataChanged(g->model()->index(1, 0), g->model()->index(1, 3)); }));
  EXPECT_TRUE(repinta([&] { g->setCurrentIndex(g->model()->index(2, 0)); }));
}

TEST_F(Tamano, TheTabCanBeTheSeparator) {
  Escribir("tabs.txt", "1\tHC\t8,5\r\n2\tHC\t9");
  Caja("txtRuta")->setText(gui::De(Ruta("tabs.txt")));
  Pulsar("cbConfigurar_0");
  Pulsar("cbTabulador");
  EXPECT_EQ(programa_->Ver().txtSeparador.text, "\t");
  EXPECT_EQ(programa_->Ver().opciones.Separador, "\t");
  Pulsar("cbActualizar");
  EXPECT_EQ(Celda(Grilla("GridPVConf"), 0, "Dato"), "8,5") << "the preview shows the file as it is";
  EXPECT_EQ(Celda(Grilla("GridPVConf"), 1, "Persona"), "2");
  Hallar<QRadioButton>("optTipoArch_1")->setChecked(true);
  EXPECT_FALSE(Hallar<QPushButton>("cbTabulador")->isEnabled());
  EXPECT_EQ(gui::CajaDeSeparador::Visible(QStringLiteral("\t")), QStringLiteral("tabulador"));
  EXPECT_EQ(gui::CajaDeSeparador::Visible(QStringLiteral(" ")), QStringLiteral("espacio"));
  EXPECT_EQ(gui::CajaDeSeparador::Visible(QStringLiteral("\t;")), QStringLiteral("→;"));
  EXPECT_EQ(gui::CajaDeSeparador::Visible(QStringLiteral("||")), QStringLiteral("||"));
}

// The box of a tab is not drawn like an empty one.
TEST_F(Tamano, TheTabIsSeenInItsBox) {
  Pulsar("cbConfigurar_0");
  Esperar();
  auto* caja = Caja("txtSeparador");
  caja->clear();
  const QImage vacia = caja->grab().toImage();
  caja->setText(QStringLiteral("\t"));
  EXPECT_NE(caja->grab().toImage(), vacia);
  caja->setText(QStringLiteral(" "));
  EXPECT_NE(caja->grab().toImage(), vacia);
}

TEST_F(Tamano, OneDecimalSignOnTheScreen) {
  cajas_.respuestas = {true};
  cajas_.aceptar_todo = true;
  Pulsar("cbImportar");
  const QTableView* g = Grilla("GridAImportar");
  int con_coma = 0;
  for (int i = 0; i < g->model()->rowCount(); ++i)
    for (const char* columna : {"Horas", "Valor", "A_Realizar"}) {
      const std::string celda = Celda(g, i, columna);
      EXPECT_EQ(celda.find('.'), std::string::npos) << celda;
      con_coma += celda.find(',') != std::string::npos ? 1 : 0;
    }
  EXPECT_GT(con_coma, 3);
}

}  // namespace
