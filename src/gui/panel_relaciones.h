// AreConf(1): which external codes go to which concept.
#pragma once

#include <array>

#include "gui/grilla.h"
#include "gui/piezas.h"

class QCheckBox;
class QHBoxLayout;

namespace gui {

struct PanelRelaciones {
  Panel* AreConf = nullptr;
  QWidget* edicion = nullptr;  // the row that edits a relation, over the grid
  QCheckBox* chkVincAutConOrsa = nullptr;
  Etiqueta *lblCmbConceptos = nullptr, *lblTxtTipo = nullptr, *lblAgrupaDef = nullptr, *lblColor = nullptr;
  QLabel* lblConcepto = nullptr;
  Combo *cmbConceptos = nullptr, *cmbAgrupaDef = nullptr;
  QLineEdit* txtTipo = nullptr;
  QPushButton* cbColor = nullptr;
  std::array<QPushButton*, 2> cbAgrQuit{};
  Grilla* GridRelaciones = nullptr;

  void Crear(const Tema& tema, QWidget* padre);
  // The row is placed by whether the company groups and the cost centre comes by line: then the cost centre
  // shares the row with the codes; otherwise it takes no more than it needs.
  void Colocar(bool centro_por_linea);
  // In that width; where it is too narrow the buttons take a third row.
  void Ajustar(int ancho);

 private:
  void CrearFilas(const Tema& tema);

  QHBoxLayout *fila_ = nullptr, *abajo_ = nullptr;  // the second one and the third
  bool estrecho_ = false;
};

}  // namespace gui
