// Everything by keyboard: where the focus is, where Tab goes, what the keys of the window do.
#include <QClipboard>
#include <QImage>
#include <QScrollBar>
#include <set>

#include "gui/aplicacion.h"
#include "gui/banco_gui.h"
#include "gui/contraste.h"
#include "gui/planilla.h"
#include "gui/selector_de_mes.h"

namespace {

class Teclado : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    Abrir();
  }
  static QWidget* Foco() { return QApplication::focusWidget(); }
  QRect EnVentana(const QWidget* w) const { return {w->mapTo(ventana_.get(), QPoint(0, 0)), w->size()}; }

  // What Tab has to reach: everything that can be seen, is enabled and takes the keyboard.
  std::set<QWidget*> Alcanzables() const {
    std::set<QWidget*> todos;
    for (auto* w : ventana_->findChildren<QWidget*>())
      if (w->isVisible() && w->isEnabled() && (w->focusPolicy() & Qt::TabFocus) != 0 &&
          w->focusProxy() == nullptr && w->window() == ventana_.get())
        todos.insert(w);
    return todos;
  }
  // Each once, from the path on until it comes round.
  QList<QWidget*> Recorrido() const {
    QList<QWidget*> orden;
    Caja("txtRuta")->setFocus();
    while (orden.size() < 100 && (orden.isEmpty() || Foco() != orden.front())) {
      if (orden.isEmpty() || orden.back() != Foco()) orden << Foco();
      QTest::keyClick(Foco(), Qt::Key_Tab);  // the month and its year are two stops inside the picker
    }
    return orden;
  }
  // The part of the window that a control stands in, in the order of reading.
  int Region(const QWidget* w) const {
    const char* cajas[] = {"franja",   "barra_de_vista", "GridAImportar", "formato",
                           "opciones", "AreConf_1",      "Area1"};
    for (int i = 0; i < 7; ++i) {
      const auto* caja = Hallar<QWidget>(cajas[i]);
      if (caja == w || caja->isAncestorOf(w)) return i;
    }
    return -1;
  }
};

TEST_F(Teclado, TheFirstFocusIsThePath) { EXPECT_EQ(Foco(), Caja("txtRuta")); }

TEST_F(Teclado, TabReachesEverythingInTheOrderOfReading) {
  for (const char* panel : {"", "cbConfigurar_0", "cbConfigurar_1"}) {
    SCOPED_TRACE(panel);
    if (*panel != '\0') Pulsar(panel);
    Esperar();
    for (const int formato : {0, 1}) {
      Hallar<QRadioButton>(formato == 0 ? "optTipoArch_0" : "optTipoArch_1")->setChecked(true);
      const QList<QWidget*> orden = Recorrido();
      EXPECT_EQ(std::set<QWidget*>(orden.begin(), orden.end()), Alcanzables());
      for (qsizetype i = 1; i < orden.size(); ++i) {
        SCOPED_TRACE(gui::A(orden[i - 1]->objectName() + QStringLiteral(" -> ") + orden[i]->objectName()));
        ASSERT_GE(Region(orden[i]), Region(orden[i - 1]));
        if (Region(orden[i]) != Region(orden[i - 1])) continue;
        const QRect antes = EnVentana(orden[i - 1]), despues = EnVentana(orden[i]);
        // In the same row to the right, or in a lower one.
        if (antes.bottom() >= despues.center().y() && despues.bottom() >= antes.center().y())
          EXPECT_GT(despues.x(), antes.x());
        else
          EXPECT_GT(despues.center().y(), antes.bottom());
      }
    }
  }
}

// Of what has the keyboard so many pixels change so much that the eye finds it: a ring as long as one side of
// it at least.
TEST_F(Teclado, WhatHasTheKeyboardIsSeenToHaveIt) {
  for (const gui::Tema& tema : {gui::Tema::Claro(), gui::Tema::Oscuro()}) {
    gui::Aplicacion::Vestir(tema);
    ventana_ = std::make_unique<gui::FrmPrincipal2>(*programa_, tema, nullptr);
    Mostrar();
    for (const char* panel : {"cbConfigurar_0", "cbConfigurar_1"}) {
      if (!Hallar<QPushButton>(panel)->isChecked()) Pulsar(panel);
      Hallar<QRadioButton>("optTipoArch_1")->setChecked(true);
      Esperar();
      for (QWidget* w : Alcanzables()) {
        SCOPED_TRACE(gui::A(w->objectName()) + (tema.oscuro ? " dark" : " light"));
        ventana_->setFocus();
        const QImage sin = ventana_->grab(EnVentana(w)).toImage();
        w->setFocus(Qt::TabFocusReason);
        ASSERT_EQ(Foco(), w);
        const QImage con = ventana_->grab(EnVentana(w)).toImage();
        EXPECT_GE(prueba::ContrasteDelCambio(sin, con, 2 * std::min(w->width(), w->height())), 3.0);
      }
    }
  }
  gui::Aplicacion::Vestir(gui::Tema::Claro());
}

TEST_F(Teclado, F5ReadsTheFileAgainAndControlOAsksForOne) {
  Cargar("1;HC;8");
  Escribir("x.txt", "1;HC;8\r\n2;HC;9");
  Caja("txtFiltro")->setFocus();
  QTest::keyClick(Foco(), Qt::Key_F5);
  EXPECT_EQ(Grilla("GridAImportar")->model()->rowCount(), 2);
  Escribir("otro.txt", "5;HC;1");
  cajas_.archivo = Ruta("otro.txt");
  QTest::keyClick(Foco(), Qt::Key_O, Qt::ControlModifier);
  EXPECT_EQ(Caja("txtRuta")->text(), gui::De(Ruta("otro.txt")));
  EXPECT_EQ(Columna0("Id"), "5 ");
}

TEST_F(Teclado, TheMonthsSheetIsForTheKeyboard) {
  Cargar("");
  auto* mes = Hallar<gui::SelectorDeMes>("ObjSelMes");
  ASSERT_EQ(mes->date(), QDate(2026, 10, 1));
  mes->setFocus();
  const auto abrir = [&] {
    QTest::keyClick(mes, Qt::Key_F4);
    Esperar();
  };
  const auto foco = [] { return gui::A(Foco()->objectName()); };
  abrir();
  EXPECT_EQ(foco(), "mes_10");
  EXPECT_TRUE(static_cast<QPushButton*>(Foco())->isChecked());
  QTest::keyClick(Foco(), Qt::Key_Left);
  EXPECT_EQ(foco(), "mes_9");
  QTest::keyClick(Foco(), Qt::Key_Up);
  EXPECT_EQ(foco(), "mes_5");
  QTest::keyClick(Foco(), Qt::Key_Escape);
  Esperar();
  EXPECT_EQ(mes->Hoja(), nullptr);
  EXPECT_EQ(mes->date(), QDate(2026, 10, 1)) << "Esc leaves the month as it was";
  EXPECT_EQ(Foco(), mes);
  abrir();
  for (int i = 0; i < 3; ++i) QTest::keyClick(Foco(), Qt::Key_Right);
  EXPECT_EQ(foco(), "mes_1") << "into the year after";
  QTest::keyClick(Foco(), Qt::Key_Return);
  Esperar();
  EXPECT_EQ(mes->Hoja(), nullptr);
  EXPECT_EQ(mes->date(), QDate(2027, 1, 1));
  abrir();
  QTest::keyClick(Foco(), Qt::Key_PageUp);
  QTest::keyClick(Foco(), Qt::Key_Space);
  EXPECT_EQ(mes->date(), QDate(2026, 1, 1));
}

// The month that is chosen and the one that has the keyboard are told apart from the others and each other.
TEST_F(Teclado, TheMonthsSheetShowsTheChosenMonthAndTheFocus) {
  for (const gui::Tema& tema : {gui::Tema::Claro(), gui::Tema::Oscuro()}) {
    gui::Aplicacion::Vestir(tema);
    auto* mes = Hallar<gui::SelectorDeMes>("ObjSelMes");
    mes->AbrirHoja();
    Esperar();
    QTest::keyClick(Foco(), Qt::Key_Left);
    const auto foto = [&](const char* boton) {
      return mes->Hoja()->findChild<QPushButton*>(QLatin1String(boton))->grab().toImage();
    };
    const auto fondo = [](const QImage& i) { return i.pixelColor(i.width() / 2, 5); };
    const QImage elegido = foto("mes_10"), actual = foto("mes_9"), otro = foto("mes_2");
    EXPECT_GE(prueba::Contraste(elegido.pixelColor(elegido.width() / 2, 1), fondo(otro)), 3.0);
    EXPECT_GE(prueba::Contraste(actual.pixelColor(actual.width() / 2, 1), fondo(otro)), 3.0);
    EXPECT_GE(prueba::ContrasteDeTexto(elegido.copy(elegido.rect().adjusted(6, 5, -6, -5))), 4.5);
    mes->Hoja()->close();
    Esperar();
  }
  gui::Aplicacion::Vestir(gui::Tema::Claro());
}

TEST(Planilla, ACellIsReadAsWhatItIs) {
  const auto celda = [](const char* texto) { return gui::A(gui::CeldaDePlanilla(QString::fromUtf8(texto))); };
  EXPECT_EQ(celda("8,5"), "8,5");
  EXPECT_EQ(celda("-8,5"), "-8,5") << "a number stays one";
  EXPECT_EQ(celda("+3"), "+3");
  EXPECT_EQ(celda("=1+1"), "'=1+1");
  EXPECT_EQ(celda("+A1"), "'+A1");
  EXPECT_EQ(celda("-2+3"), "'-2+3");
  EXPECT_EQ(celda("@SUMA(A1)"), "'@SUMA(A1)");
  EXPECT_EQ(celda(" =1"), "' =1");
  EXPECT_EQ(celda("\t=1"), "' =1");
  EXPECT_EQ(celda("a\tb\nc"), "a b c");
  EXPECT_EQ(celda("\"a"), "\"\"\"a\"") << "an open quote would swallow the cells after it";
  EXPECT_EQ(celda("Obra \"12\""), "Obra \"12\"");
  EXPECT_EQ(celda(""), "");
}

TEST(Planilla, ANumberShowsTheOperatorsDecimalSign) {
  const auto visto = [](const char* texto) { return gui::A(gui::ConComa(QString::fromUtf8(texto))); };
  EXPECT_EQ(visto("8.5"), "8,5");
  EXPECT_EQ(visto("-0.25"), "-0,25");
  EXPECT_EQ(visto("160"), "160");
  for (const char* otro : {"", ".5", "8.", "-.5", "8.5.3", "1.234,5", "8:30.5", "a.b", "1e3.5"})
    EXPECT_EQ(visto(otro), otro);
}

TEST_F(Teclado, TheCopyIsForASpanishSpreadsheet) {
  Cargar("1;HC;8.5;=cmd|x!A1\r\n2;HE;-1,25;@x");
  QTableView* g = Grilla("GridAImportar");
  g->setFocus();
  g->selectAll();
  QTest::keyClick(g, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(),
            QStringLiteral("1\t\t\t8,5\tHC\t\t'=cmd|x!A1\t0\n2\t\t\t-1,25\tHE\t\t'@x\t0\n"));
}

}  // namespace
