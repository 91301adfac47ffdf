// Which lines the grid shows: sorted by the outcome, found, picked by a count; the lines that are none of it.
#include <QHeaderView>
#include <chrono>

#include "app/vista_de_lineas.h"
#include "gui/banco_gui.h"
#include "gui/lista_de_aparte.h"

namespace {

class Vista : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    AbrirCargada();
  }
  void PulsarTitulo(const char* columna) const {
    QHeaderView* cabecera = Grilla("GridAImportar")->horizontalHeader();
    const int i = Columna(Grilla("GridAImportar"), columna);
    QTest::mouseClick(
        cabecera->viewport(), Qt::LeftButton, Qt::NoModifier,
        QPoint(cabecera->sectionViewportPosition(i) + cabecera->sectionSize(i) / 2, cabecera->height() / 2));
  }
  int Filas() const { return Grilla("GridAImportar")->model()->rowCount(); }
  std::string Texto(const char* etiqueta) const { return gui::A(Hallar<QLabel>(etiqueta)->text()); }
  void Importar() {
    cajas_.respuestas = {true};
    cajas_.aceptar_todo = true;
    Pulsar("cbImportar");
  }
  std::vector<std::string> Resultados() const {
    std::vector<std::string> todos;
    for (int i = 0; i < Filas(); ++i) todos.push_back(Celda(Grilla("GridAImportar"), i, "Resultado"));
    return todos;
  }
};

TEST_F(Vista, TheOutcomeSortsBothWays) {
  Importar();
  std::vector<std::string> claves;
  for (const auto& fila : programa_->Ver().filas) claves.push_back(fila.campo[importfile::kClave]);
  PulsarTitulo("Resultado");
  std::vector<std::string> sube = Resultados();
  EXPECT_TRUE(std::is_sorted(sube.begin(), sube.end()));
  EXPECT_NE(sube.front(), sube.back());
  const QHeaderView* cabecera = Grilla("GridAImportar")->horizontalHeader();
  EXPECT_EQ(cabecera->sortIndicatorSection(), Columna(Grilla("GridAImportar"), "Resultado"));
  PulsarTitulo("Resultado");
  const std::vector<std::string> baja = Resultados();
  EXPECT_TRUE(std::is_sorted(baja.rbegin(), baja.rend()));
  EXPECT_EQ(cabecera->sortIndicatorOrder(), Qt::DescendingOrder);
  for (std::size_t i = 0; i < claves.size(); ++i)
    EXPECT_EQ(programa_->Ver().filas[i].campo[importfile::kClave], claves[i])
        << "the lines stand as they did";
  PulsarTitulo("Id");
  EXPECT_EQ(Celda(Grilla("GridAImportar"), 0, "Id"), "7001");
}

TEST_F(Vista, ACountShowsOnlyThoseLinesAndAgainAll) {
  Importar();
  const int todas = Filas();
  EXPECT_EQ(Texto("lblCuenta_rechazadas"), "5");
  Pulsar("filaCuenta_rechazadas");
  EXPECT_EQ(Filas(), 5);
  for (const std::string& resultado : Resultados()) EXPECT_NE(resultado, "OK");
  EXPECT_EQ(Texto("lblVista"), "Se muestran 5 de 53; se importan todas.");
  EXPECT_TRUE(Hallar<QPushButton>("cbMostrarTodas")->isVisible());
  Pulsar("filaCuenta_importadas");
  EXPECT_EQ(Filas(), 48);
  Pulsar("filaCuenta_importadas");
  EXPECT_EQ(Filas(), todas);
  EXPECT_FALSE(Hallar<QPushButton>("cbMostrarTodas")->isVisible());
  Pulsar("filaCuenta_rechazadas");
  QTest::keyClick(Grilla("GridAImportar"), Qt::Key_Escape);
  EXPECT_EQ(Filas(), todas) << "Esc shows all";
  Pulsar("filaCuenta_rechazadas");
  Pulsar("cbActualizar");
  EXPECT_EQ(Filas(), todas) << "the lines of a new load have no outcome to be picked by";
}

TEST_F(Vista, TheSearchFindsTextInAnyColumn) {
  QTest::keyClick(ventana_.get(), Qt::Key_F, Qt::ControlModifier);
  auto* caja = Caja("txtBuscarEnGrilla");
  ASSERT_EQ(QApplication::focusWidget(), caja);
  QTest::keyClicks(caja, QStringLiteral("nanez"));
  EXPECT_EQ(Filas(), 3) << "without its marks and its capital";
  for (int i = 0; i < Filas(); ++i) EXPECT_EQ(Celda(Grilla("GridAImportar"), i, "Apellido"), "Ñáñez");
  Escribir(caja, "1850,75");
  EXPECT_EQ(Filas(), 1);
  Escribir(caja, "1850.75");
  EXPECT_EQ(Filas(), 1) << "either decimal sign";
  Escribir(caja, "no hay tal cosa");
  EXPECT_EQ(Filas(), 0);
  EXPECT_EQ(Texto("lblVista"), "Se muestran 0 de 53; se importan todas.");
  QTest::keyClick(caja, Qt::Key_Escape);
  EXPECT_EQ(Filas(), 53);
  EXPECT_EQ(caja->text(), QString());
}

TEST_F(Vista, WhatIsNotSeenIsImportedToo) {
  Caja("txtBuscarEnGrilla")->setText(QStringLiteral("7001"));
  EXPECT_LT(Filas(), 10);
  Importar();
  EXPECT_EQ(Texto("lblCuenta_importadas"), "48");
}

TEST_F(Vista, TheCopyIsOfTheLinesSeen) {
  Caja("txtBuscarEnGrilla")->setText(QStringLiteral("1850,75"));
  QTableView* g = Grilla("GridAImportar");
  g->selectAll();
  EXPECT_EQ(static_cast<gui::Grilla*>(g)->TextoDeSeleccion().count(QLatin1Char('\n')), 1);
  EXPECT_TRUE(static_cast<gui::Grilla*>(g)->TextoDeSeleccion().contains(QStringLiteral("1850,75")));
}

TEST_F(Vista, LinesWithoutContractOrRelationAreMarkedAndCounted) {
  Cargar("7008;HC;8\r\n999999;HC;8\r\n7008;zz;8\r\n888888;yy;8");
  EXPECT_EQ(Texto("lblCuenta_sin_contrato"), "2");
  EXPECT_EQ(Texto("lblCuenta_sin_relacion"), "2");
  EXPECT_EQ(Texto("lblVista"), "2 líneas sin contrato, 2 líneas sin relación.");
  const QTableView* g = Grilla("GridAImportar");
  const auto marca = [&](const char* clave, const char* columna) {
    for (int i = 0; i < Filas(); ++i)
      if (Celda(g, i, "Id") == clave && (std::string(clave) != "7008" || Celda(g, i, "Tipo") == "zz"))
        return g->model()->index(i, Columna(g, columna));
    return QModelIndex();
  };
  EXPECT_TRUE(marca("999999", "Id").data(Qt::DecorationRole).isValid());
  EXPECT_FALSE(marca("999999", "Tipo").data(Qt::DecorationRole).isValid());
  EXPECT_EQ(gui::A(marca("999999", "Id").data(Qt::ToolTipRole).toString()),
            "Sin contrato: ninguno del mes tiene esta clave");
  EXPECT_TRUE(marca("7008", "Tipo").data(Qt::DecorationRole).isValid());
  EXPECT_EQ(gui::A(marca("7008", "Tipo").data(Qt::ToolTipRole).toString()),
            "Sin relación: el código no está en ninguna");
  Pulsar("filaCuenta_sin_contrato");
  EXPECT_EQ(Columna0("Id"), "888888 999999 ");
  Pulsar("filaCuenta_sin_relacion");
  EXPECT_EQ(Columna0("Tipo"), "zz yy ");
  EXPECT_TRUE(Hallar<QAbstractButton>("filaCuenta_sin_relacion")->isChecked());
  EXPECT_FALSE(Hallar<QAbstractButton>("filaCuenta_sin_contrato")->isChecked());
}

TEST_F(Vista, MalformedAndDroppedLinesAreListedWithTheirText) {
  Pulsar("filaCuenta_mal_formadas");
  auto* lista = ventana_->findChild<gui::ListaDeAparte*>();
  ASSERT_NE(lista, nullptr);
  const auto* grilla = lista->findChild<QTableView*>(QStringLiteral("GridAparte"));
  ASSERT_EQ(grilla->model()->rowCount(), 1);
  EXPECT_EQ(gui::A(grilla->model()->index(0, 0).data().toString()), "45");
  EXPECT_EQ(gui::A(grilla->model()->index(0, 1).data().toString()), "007016;HE");
  Pulsar("filaCuenta_filtradas");
  Esperar();
  const auto* otra = ventana_->findChild<QDialog*>(QStringLiteral("lista_filtradas"));
  ASSERT_NE(otra, nullptr);
  EXPECT_EQ(otra->findChild<QTableView*>()->model()->rowCount(), 1);
  cajas_.esperadas = {"Formato incorrecto en la linea 45"};
  Pulsar("cbActualizar");
  Esperar();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(ventana_->findChild<gui::ListaDeAparte*>(), nullptr) << "it was of the lines before";
}

// The lines themselves are not touched and not copied: a number a line.
TEST_F(Vista, AHundredThousandLinesAreFoundAndSortedQuickly) {
  std::string lineas;
  for (int i = 0; i < 100000; ++i)
    lineas += std::to_string(7001 + i % 50) + ";HC;" + std::to_string(i % 97) + ".5\r\n";
  lineas += "7001;HC;8";
  Cargar(lineas);
  ASSERT_EQ(Filas(), 100001);
  const auto medir = [](const char* que, const std::function<void()>& hacer) {
    const auto t = std::chrono::steady_clock::now();
    hacer();
    std::printf("%s %.0f ms\n", que,
                std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t).count());
  };
  medir("search", [&] { Caja("txtBuscarEnGrilla")->setText(QStringLiteral("96,5")); });
  EXPECT_EQ(Filas(), 1030);
  medir("all again", [&] { Pulsar("cbMostrarTodas"); });
  PulsarTitulo("Horas");
  medir("turn round", [&] { PulsarTitulo("Horas"); });
  EXPECT_EQ(Celda(Grilla("GridAImportar"), 0, "Horas"), "96,5");
}

TEST(Plegar, SmallLettersWithoutMarks) {
  EXPECT_EQ(app::Plegar("Ñáñez"), "nanez");
  EXPECT_EQ(app::Plegar("ÉRSULA Ü ç"), "ersula u c");
  EXPECT_EQ(app::Plegar("1.234,5 ß×÷"), "1.234,5 ß×÷");
  EXPECT_EQ(app::Plegar("\xC3"), "\xC3") << "a broken letter at the end";
}

}  // namespace
