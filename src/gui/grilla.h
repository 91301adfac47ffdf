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
  // The selected rows, visible columns in the order seen, cells parted by tabs and rows by line ends.
  QString TextoDeSeleccion() const;
  QString NombreDeColumna(int columna) const;

 protected:
  void keyPressEvent(QKeyEvent* evento) override;
  void paintEvent(QPaintEvent* evento) override;

 private:
  void PintarHastaElBorde();  // rows are coloured past the last column too

  QString aviso_;
  QColor tenue_;
  QList<int> anchos_;  // twips, as applied
};

}  // namespace gui
