// A grid: whole rows, thin lines, copy as tabbed text, columns told by name.
#pragma once

#include <QTableView>

#include "app/controles.h"
#include "gui/tema.h"

namespace gui {

// Roles of the models beside Qt's.
enum Rol {
  kNombreDeColumna = Qt::UserRole,  // of a header: the column's own name
  kEstiloDeFila                     // of a cell: the name of its row's style
};

class Grilla final : public QTableView {
 public:
  Grilla(const QString& nombre, const Tema& tema, QWidget* padre);

  // Shown in the middle while the grid has no rows.
  void PonerAviso(const QString& aviso);
  const QString& Aviso() const { return aviso_; }
  // Visibility, and the width where the state gives one that was not yet applied: what the operator drags
  // afterwards stays for the run.
  void PonerColumnas(const app::Grid& grid);
  // What each column takes: pixels, the fewest when room is scarce, and its share of the room that is left
  // (0: none). A column that the operator drags keeps the width that it was given.
  struct Ancho {
    int base, minimo, parte;
  };
  void PonerAnchos(const QList<Ancho>& anchos);
  // The selected rows, visible columns in the order seen, cells parted by tabs and rows by line ends, as a
  // Spanish spreadsheet takes them.
  QString TextoDeSeleccion() const;
  QString NombreDeColumna(int columna) const;
  // For the delegate: over a piece of that row.
  void PintarFilaActual(QPainter& p, const QRect& r, int fila) const;

 protected:
  void keyPressEvent(QKeyEvent* evento) override;
  void focusInEvent(QFocusEvent* evento) override;
  void focusOutEvent(QFocusEvent* evento) override;
  void currentChanged(const QModelIndex& actual, const QModelIndex& anterior) override;
  void paintEvent(QPaintEvent* evento) override;
  void resizeEvent(QResizeEvent* evento) override;
  void selectionChanged(const QItemSelection& elegido, const QItemSelection& dejado) override;
  void dataChanged(const QModelIndex& desde, const QModelIndex& hasta, const QList<int>& roles) override;

 private:
  QRect HastaElBorde() const;  // past the last column
  void Repartir();             // the room among the columns
  void PintarHastaElBorde();   // rows are coloured past the last column too

  QString aviso_;
  QColor tenue_, foco_, sobre_acento_;
  QList<int> twips_;  // as applied
  QList<Ancho> anchos_;
  bool repartiendo_ = false;
};

}  // namespace gui
