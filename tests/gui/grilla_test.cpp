// The import grid: styles, sort, copy, columns.
#include <QClipboard>
#include <QHeaderView>

#include "gui/banco_gui.h"

namespace {

class GrillaDeImportar : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    Abrir();
  }
  QVariant Dato(int fila, const char* columna, int rol) const {
    const QTableView* grilla = Grilla("GridAImportar");
    return grilla->model()->index(fila, Columna(grilla, columna)).data(rol);
  }
  void PulsarTitulo(const char* columna) const {
    QHeaderView* cabecera = Grilla("GridAImportar")->horizontalHeader();
    const int i = Columna(Grilla("GridAImportar"), columna);
    const QPoint donde(cabecera->sectionViewportPosition(i) + cabecera->sectionSize(i) / 2,
                       cabecera->height() / 2);
    QTest::mouseClick(cabecera->viewport(), Qt::LeftButton, Qt::NoModifier, donde);
  }
};

TEST_F(GrillaDeImportar, ARowTakesTheColoursOfItsRelation) {
  Cargar("1;HC;8\r\n2;HN;8\r\n3;zz;8");
  for (const char* columna : {"Id", "Horas", "CC"}) {
    EXPECT_EQ(Dato(0, columna, gui::kEstiloDeFila).toString(), QStringLiteral("_HC"));
    EXPECT_EQ(Dato(0, columna, Qt::BackgroundRole).value<QBrush>().color(), QColor(255, 244, 184));
    EXPECT_EQ(Dato(0, columna, Qt::ForegroundRole).value<QBrush>().color(), QColor(0, 0, 0));
  }
  // 16375231 is 0xF9DDBF: red in the low byte, so blue.
  EXPECT_EQ(Dato(1, "Id", gui::kEstiloDeFila).toString(), QStringLiteral("_HN"));
  EXPECT_EQ(Dato(1, "Id", Qt::BackgroundRole).value<QBrush>().color(), QColor(0xBF, 0xDD, 0xF9));
  // A code of no relation.
  EXPECT_EQ(Dato(2, "Id", gui::kEstiloDeFila).toString(), QStringLiteral("Otras"));
  const QColor fondo = Dato(2, "Id", Qt::BackgroundRole).value<QBrush>().color();
  EXPECT_GT(fondo.red(), fondo.green());
  EXPECT_GT(fondo.lightness(), 200);
  EXPECT_LT(Dato(2, "Id", Qt::ForegroundRole).value<QBrush>().color().lightness(), 60);
}

TEST_F(GrillaDeImportar, CellsStandInTheirColumns) {
  Tilde("chkSoloDReloj")->setChecked(true);
  // Card 7008 belongs to somebody with monthly hours; code HC takes them.
  Cargar("007008;HC;8,5;12 Obra;3");
  const QTableView* g = Grilla("GridAImportar");
  EXPECT_EQ(Celda(g, 0, "Id"), "7008");
  EXPECT_NE(Celda(g, 0, "Nombre"), "");
  EXPECT_NE(Celda(g, 0, "Apellido"), "");
  EXPECT_EQ(programa_->Ver().filas[0].campo[importfile::kCantidad], "8.5");
  EXPECT_EQ(Celda(g, 0, "Horas"), "8,5") << "shown with the operator's decimal sign";
  EXPECT_EQ(Celda(g, 0, "Valor"), "3");
  EXPECT_EQ(Celda(g, 0, "Tipo"), "HC");
  EXPECT_EQ(Celda(g, 0, "NomConcVinc"), "Horas Comunes");
  EXPECT_EQ(Celda(g, 0, "A_Realizar"), programa_->Ver().filas[0].campo[importfile::kHorasMes]);
  EXPECT_NE(Celda(g, 0, "A_Realizar"), "");
  EXPECT_EQ(Celda(g, 0, "DatoExtra"), "12 Obra");
  EXPECT_EQ(Celda(g, 0, "CC"), "12");
  EXPECT_EQ(Celda(g, 0, "Resultado"), "");
}

TEST_F(GrillaDeImportar, ColumnsFollowTheOptions) {
  const QTableView* g = Grilla("GridAImportar");
  const auto titulo = [&] {
    return gui::A(g->model()->headerData(Columna(g, "Horas"), Qt::Horizontal).toString());
  };
  EXPECT_EQ(titulo(), "Dato");
  EXPECT_FALSE(SeVe(g, "A_Realizar"));
  EXPECT_TRUE(SeVe(g, "DatoExtra"));
  Tilde("chkSoloDReloj")->setChecked(true);
  EXPECT_EQ(titulo(), "Horas");
  EXPECT_TRUE(SeVe(g, "A_Realizar"));
  EXPECT_FALSE(SeVe(g, "DatoExtra"));
  Cargar("1;HC;8;x;0");
  EXPECT_FALSE(SeVe(g, "Valor"));
  Cargar("1;HC;8;x;2");
  EXPECT_TRUE(SeVe(g, "Valor"));
  Tilde("chkConCC")->setChecked(false);
  EXPECT_FALSE(SeVe(g, "CC"));
  EXPECT_FALSE(SeVe(Grilla("GridRelaciones"), "CC"));
  Tilde("chkConCC")->setChecked(true);
  EXPECT_TRUE(SeVe(g, "CC"));
  EXPECT_EQ(g->columnWidth(Columna(g, "CC")), 55) << "825 twips";
}

TEST_F(GrillaDeImportar, AHeaderClickSorts) {
  Cargar("3;1;10\r\n1;1;9\r\n2;1;100");
  EXPECT_EQ(Columna0("Id"), "1 2 3 ");
  QHeaderView* cabecera = Grilla("GridAImportar")->horizontalHeader();
  EXPECT_EQ(cabecera->sortIndicatorSection(), 0);
  PulsarTitulo("Horas");
  EXPECT_EQ(Columna0("Id"), "1 3 2 ") << "9, 10, 100: as numbers";
  EXPECT_EQ(cabecera->sortIndicatorSection(), Columna(Grilla("GridAImportar"), "Horas"));
  EXPECT_EQ(cabecera->sortIndicatorOrder(), Qt::AscendingOrder);
  // The same title once more turns the order round, for the eyes: the lines are imported as they stand.
  PulsarTitulo("Horas");
  EXPECT_EQ(Columna0("Id"), "2 3 1 ");
  EXPECT_EQ(cabecera->sortIndicatorOrder(), Qt::DescendingOrder);
  EXPECT_EQ(programa_->Ver().filas[0].campo[importfile::kClave], "1");
  PulsarTitulo("Horas");
  Pulsar("cbActualizar");
  EXPECT_EQ(Columna0("Id"), "1 3 2 ") << "the column is kept";
}

TEST_F(GrillaDeImportar, ControlCCopiesTheSelectedRowsWithTabs) {
  Cargar("1;HC;8\r\n2;HE;9\r\n3;HN;1,5");
  QTableView* g = Grilla("GridAImportar");
  g->setFocus();
  g->selectRow(1);
  g->selectionModel()->select(g->model()->index(2, 0),
                              QItemSelectionModel::Select | QItemSelectionModel::Rows);
  QTest::keyClick(g, Qt::Key_C, Qt::ControlModifier);
  // Visible columns: Id, Nombre, Apellido, Dato, Tipo, Vinculado Con:, Dat.Ext., C. Costo.
  EXPECT_EQ(QApplication::clipboard()->text(),
            QStringLiteral("2\t\t\t9\tHE\t\t\t0\n3\t\t\t1,5\tHN\t\t\t0\n"));
  // In the order seen.
  g->horizontalHeader()->moveSection(Columna(g, "Tipo"), 0);
  g->clearSelection();
  g->selectRow(1);
  QTest::keyClick(g, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("HE\t2\t\t\t9\t\t\t0\n"));
}

TEST_F(GrillaDeImportar, TheKeyboardMovesByRows) {
  Cargar("1;HC;8\r\n2;HE;9\r\n3;HN;1,5");
  QTableView* g = Grilla("GridAImportar");
  g->setFocus();
  g->setCurrentIndex(g->model()->index(0, 0));
  QTest::keyClick(g, Qt::Key_Down);
  EXPECT_EQ(g->currentIndex().row(), 1);
  EXPECT_TRUE(g->selectionModel()->isRowSelected(1));
  QTest::keyClick(g, Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(g->currentIndex().row(), 2);
  QTest::keyClick(g, Qt::Key_Tab);
  EXPECT_NE(QApplication::focusWidget(), g) << "Tab leaves the grid";
}

TEST_F(GrillaDeImportar, WidthsStayForTheRun) {
  QTableView* g = Grilla("GridAImportar");
  Cargar("1;HC;8");
  g->setColumnWidth(Columna(g, "Nombre"), 211);
  g->setColumnWidth(Columna(g, "CC"), 99);
  Pulsar("cbActualizar");
  Tilde("chkConCC")->setChecked(false);
  Tilde("chkConCC")->setChecked(true);
  EXPECT_EQ(g->columnWidth(Columna(g, "Nombre")), 211);
  EXPECT_EQ(g->columnWidth(Columna(g, "CC")), 99);
}

TEST_F(GrillaDeImportar, AnEmptyFileEmptiesTheGrid) {
  Cargar("1;HC;8");
  Cargar("");
  EXPECT_EQ(Grilla("GridAImportar")->model()->rowCount(), 0) << "no phantom row";
}

}  // namespace
