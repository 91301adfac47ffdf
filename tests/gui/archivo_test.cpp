// The strip: the file, its filter, the month, the key.
#include <QDateEdit>
#include <QDragEnterEvent>
#include <QFrame>
#include <QMimeData>
#include <QUrl>

#include "gui/banco_gui.h"
#include "gui/selector_de_mes.h"

namespace {

class Archivo : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    Abrir();
  }
  std::string Cuenta(const char* nombre) const {
    return gui::A(Hallar<QLabel>((std::string("lblCuenta_") + nombre).c_str())->text());
  }
};

TEST_F(Archivo, EnterInEitherBoxLoads) {
  Cargar("1;1;8");
  EXPECT_EQ(Grilla("GridAImportar")->model()->rowCount(), 1);
  Escribir("x.txt", "1;1;8\r\n2;1;8");
  QTest::keyClick(Caja("txtRuta"), Qt::Key_Tab);
  EXPECT_EQ(Grilla("GridAImportar")->model()->rowCount(), 1);
  QTest::keyClick(Caja("txtFiltro"), Qt::Key_Enter);
  EXPECT_EQ(Grilla("GridAImportar")->model()->rowCount(), 2);
}

TEST_F(Archivo, TheRefreshButtonLoadsAgain) {
  Cargar("1;1;8");
  Escribir("x.txt", "1;1;8\r\n2;1;8\r\n3;1;8");
  Pulsar("cbActualizar");
  EXPECT_EQ(Columna0("Id"), "1 2 3 ");
}

TEST_F(Archivo, TheSearchButtonPutsThePathAndLoads) {
  Cargar("1;1;8");
  Escribir("y.txt", "7;1;8");
  cajas_.archivo = Ruta("y.txt");
  Pulsar("cbBuscar");
  EXPECT_EQ(Caja("txtRuta")->text(), gui::De(Ruta("y.txt")));
  EXPECT_EQ(Columna0("Id"), "7 ");
  EXPECT_EQ(cajas_.dialogos.back(), "Seleccionar archivo a importar||" + Ruta("x.txt"));
  cajas_.archivo.clear();  // cancelled
  Pulsar("cbBuscar");
  EXPECT_EQ(Caja("txtRuta")->text(), gui::De(Ruta("y.txt")));
}

TEST_F(Archivo, TheFilterModeLoadsAtOnce) {
  Cargar("1;HC;8\r\n2;zz;8");
  EXPECT_EQ(Columna0("Id"), "1 2 ");
  Pulsar("OptFiltro_1");
  EXPECT_EQ(Columna0("Id"), "1 ");
  EXPECT_EQ(Cuenta("lineas"), "2");
  EXPECT_EQ(Cuenta("en_grilla"), "1");
  EXPECT_EQ(Cuenta("filtradas"), "1");
  EXPECT_EQ(Cuenta("mal_formadas"), "0");
  EXPECT_EQ(Cuenta("importadas"), "–");
  Pulsar("OptFiltro_0");
  Escribir(Caja("txtFiltro"), "Horas>8");
  EXPECT_EQ(Columna0("Id"), "1 2 ") << "typing alone loads nothing";
  QTest::keyClick(Caja("txtFiltro"), Qt::Key_Return);
  EXPECT_EQ(Columna0("Id"), "");
  EXPECT_EQ(static_cast<gui::Grilla*>(Grilla("GridAImportar"))->Aviso(),
            QStringLiteral("Ninguna línea del archivo quedó en la grilla: vea el filtro y las relaciones."));
}

TEST_F(Archivo, AnotherKeyMatchesTheLinesAnew) {
  // 101 is a contract's internal number and nobody's card.
  Cargar("101;HC;8");
  EXPECT_EQ(Celda(Grilla("GridAImportar"), 0, "Nombre"), "");
  Combo("cbTipoClave")->setCurrentIndex(0);
  EXPECT_NE(Celda(Grilla("GridAImportar"), 0, "Nombre"), "");
  EXPECT_EQ(programa_->Ver().opciones.Configura, 0);
}

TEST_F(Archivo, AMonthLoadsItsPersonsAndTheFile) {
  Cargar("101;HC;8");
  const std::size_t octubre = programa_->Ver().personas.Cantidad();
  Escribir("x.txt", "101;HC;8\r\n102;HC;8");
  Hallar<QDateEdit>("ObjSelMes")->setDate(QDate(2026, 9, 17));
  EXPECT_EQ(programa_->Ver().mes, base::MakeDate(2026, 9, 1));
  EXPECT_EQ(Hallar<QDateEdit>("ObjSelMes")->date(), QDate(2026, 9, 1)) << "any day yields the first";
  EXPECT_NE(programa_->Ver().personas.Cantidad(), octubre);
  EXPECT_EQ(Columna0("Id"), "101 102 ");
}

TEST_F(Archivo, TheArrowsStepMonthsAcrossTheYear) {
  Cargar("1;1;8");
  auto* mes = Hallar<QDateEdit>("ObjSelMes");
  mes->setDate(QDate(2026, 12, 1));
  mes->setFocus();
  mes->setCurrentSection(QDateTimeEdit::MonthSection);
  QTest::keyClick(mes, Qt::Key_Up);
  EXPECT_EQ(mes->date(), QDate(2027, 1, 1));
  EXPECT_EQ(programa_->Ver().mes, base::MakeDate(2027, 1, 1));
  mes->setCurrentSection(QDateTimeEdit::YearSection);
  QTest::keyClick(mes, Qt::Key_Down);
  EXPECT_EQ(mes->date(), QDate(2026, 1, 1));
}

TEST_F(Archivo, TheSheetOfMonthsPicksOne) {
  Cargar("1;1;8");
  auto* mes = static_cast<gui::SelectorDeMes*>(Hallar<QDateEdit>("ObjSelMes"));
  QTest::keyClick(mes, Qt::Key_F4);
  ASSERT_NE(mes->Hoja(), nullptr);
  EXPECT_TRUE(mes->Hoja()->findChild<QPushButton*>(QStringLiteral("mes_10"))->isChecked());
  mes->Hoja()->findChild<QPushButton*>(QStringLiteral("anio_siguiente"))->click();
  EXPECT_FALSE(mes->Hoja()->findChild<QPushButton*>(QStringLiteral("mes_10"))->isChecked());
  mes->Hoja()->findChild<QPushButton*>(QStringLiteral("mes_3"))->click();
  EXPECT_EQ(programa_->Ver().mes, base::MakeDate(2027, 3, 1));
}

TEST_F(Archivo, TheWheelTurnsNoChoice) {
  Cargar("1;1;8");
  const auto rodar = [](QWidget* w) {
    QWheelEvent rueda(QPointF(5, 5), w->mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(w, &rueda);
  };
  const int antes = Combo("cmbLiquidaciones")->currentIndex();
  Combo("cmbLiquidaciones")->setFocus();
  rodar(Combo("cmbLiquidaciones"));
  EXPECT_EQ(Combo("cmbLiquidaciones")->currentIndex(), antes);
  Hallar<QDateEdit>("ObjSelMes")->setFocus();
  rodar(Hallar<QDateEdit>("ObjSelMes"));
  EXPECT_EQ(programa_->Ver().mes, base::MakeDate(2026, 10, 1));
}

TEST_F(Archivo, ChoicesGoToTheProgram) {
  Combo("cmbLiquidaciones")->setCurrentIndex(1);
  EXPECT_EQ(programa_->Ver().tipos.cmbLiquidaciones.ListIndex, 1);
  Combo("cmbAgrupa")->setCurrentIndex(1);
  EXPECT_EQ(programa_->Ver().tipos.cmbAgrupa.ListIndex, 1);
}

TEST_F(Archivo, AFileDroppedOnTheWindowIsLoaded) {
  Cargar("1;1;8");
  Escribir("soltado.txt", "5;1;8\r\n6;1;8");
  QMimeData datos;
  datos.setUrls({QUrl::fromLocalFile(gui::De(Ruta("soltado.txt")))});
  QDragEnterEvent entra(QPoint(600, 400), Qt::CopyAction, &datos, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(ventana_.get(), &entra);
  EXPECT_TRUE(entra.isAccepted());
  QDropEvent cae(QPointF(600, 400), Qt::CopyAction, &datos, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(ventana_.get(), &cae);
  Esperar();
  EXPECT_EQ(Caja("txtRuta")->text(), gui::De(Ruta("soltado.txt")));
  EXPECT_EQ(Columna0("Id"), "5 6 ");
}

TEST_F(Archivo, ALoadThatIsRefusedLeavesTheRows) {
  Cargar("1;1;8");
  cajas_.esperadas = {"El Archivo '" + Ruta("no.txt") + "' no existe", "Formato incorrecto"};
  Caja("txtRuta")->setText(gui::De(Ruta("no.txt")));
  Pulsar("cbActualizar");
  EXPECT_EQ(Columna0("Id"), "1 ");
  Cargar("sin separador");
  EXPECT_EQ(Columna0("Id"), "1 ");
  EXPECT_TRUE(Hallar<QWidget>("Barra")->isHidden());
}

// While it loads the window says so, its buttons rest, and a second load is ignored.
TEST_F(Archivo, WhileItLoads) {
  std::string texto;
  for (int i = 0; i < 400; ++i) texto += "1;1;8\r\n";
  Cargar("2;1;8");
  Hallar<QPushButton>("cbActualizar")->setFocus();
  Escribir("x.txt", texto + "1;1;8");
  int veces = 0;
  eventos_.al_correr = [&] {
    if (++veces != 20) return;
    EXPECT_FALSE(Hallar<QPushButton>("cbActualizar")->isEnabled());
    EXPECT_FALSE(Hallar<QPushButton>("cbImportar")->isEnabled());
    EXPECT_TRUE(Hallar<QLabel>("lblEstado")->text().startsWith(QStringLiteral("Cargando x.txt…")));
    EXPECT_FALSE(Hallar<QWidget>("Barra")->isHidden());
    Escribir("x.txt", "3;1;8");
    QTest::keyClick(Caja("txtRuta"), Qt::Key_Return);
    EXPECT_EQ(Columna0("Id"), "2 ") << "the old rows stay until the new ones are there";
  };
  Pulsar("cbActualizar");
  EXPECT_GT(veces, 20);
  EXPECT_EQ(Grilla("GridAImportar")->model()->rowCount(), 401);
  EXPECT_TRUE(Hallar<QPushButton>("cbActualizar")->isEnabled());
  EXPECT_EQ(QApplication::focusWidget(), Hallar<QPushButton>("cbActualizar")) << "the focus comes back";
  EXPECT_EQ(Hallar<QLabel>("lblEstado")->text(), QString());
}

}  // namespace
