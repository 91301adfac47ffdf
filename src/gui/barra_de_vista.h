// The bar on the grid: the search, and which of the lines the grid shows.
#pragma once

#include <QWidget>

#include "gui/tema.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace gui {

struct BarraDeVista {
  QWidget* caja = nullptr;
  QLineEdit* txtBuscarEnGrilla = nullptr;
  QLabel* lblVista = nullptr;  // cut at its end; the whole is its tooltip
  QPushButton* cbMostrarTodas = nullptr;

  void Crear(const Tema& tema, QWidget* padre);
  // `destacado`: not all of the lines are seen, which must not be missed.
  void Poner(const QString& texto, bool destacado);
};

}  // namespace gui
