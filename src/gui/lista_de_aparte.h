// The lines of the file that are not in the grid, with their text: malformed ones, or those that the filter
// dropped.
#pragma once

#include <QAbstractTableModel>
#include <QDialog>
#include <vector>

#include "app/estado.h"
#include "gui/tema.h"

namespace gui {

class Grilla;

// Number and text. Shows the state: its owner closes it when the lines are others.
class ModeloDeAparte final : public QAbstractTableModel {
 public:
  ModeloDeAparte(const app::Estado& estado, bool mal_formadas, QObject* padre);
  int rowCount(const QModelIndex& padre = {}) const override;
  int columnCount(const QModelIndex& padre = {}) const override { return padre.isValid() ? 0 : 2; }
  QVariant headerData(int seccion, Qt::Orientation orientacion, int rol) const override;
  QVariant data(const QModelIndex& indice, int rol) const override;

 private:
  const app::Estado& estado_;
  std::vector<std::size_t> lineas_;  // of the file
};

// Beside the window, which stays usable. Gone when it is closed.
class ListaDeAparte final : public QDialog {
 public:
  ListaDeAparte(const app::Estado& estado, bool mal_formadas, const Tema& tema, QWidget* padre);

 private:
  Grilla* lista_;
};

}  // namespace gui
