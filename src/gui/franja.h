// The strip over the grid: the file, the month, the liquidation type, the cost centre and the filter.
#pragma once

#include <QWidget>
#include <array>

#include "gui/piezas.h"
#include "gui/selector_de_mes.h"
#include "gui/tema.h"

class QGridLayout;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace gui {

struct Franja {
  QWidget* caja = nullptr;
  Etiqueta *lblRuta = nullptr, *lblMes = nullptr, *lblImporEnTipoLiq = nullptr, *lblAgrupa = nullptr,
           *Label1 = nullptr;
  QLineEdit *txtRuta = nullptr, *txtFiltro = nullptr;
  QPushButton *cbBuscar = nullptr, *cbActualizar = nullptr;
  SelectorDeMes* ObjSelMes = nullptr;
  Combo *cmbLiquidaciones = nullptr, *cmbAgrupa = nullptr;
  std::array<QRadioButton*, 2> OptFiltro{};

  void Crear(const Tema& tema, QWidget* padre);
  // Without a cost centre the filter stands at the left.
  void PonerCentroDeCosto(bool visible);

 private:
  void CrearFila1(const Tema& tema);
  void CrearFila2();
  void CrearFila3();

  QGridLayout* plano_ = nullptr;
  QWidget* filtro_ = nullptr;  // its label, options and box
  bool con_centro_ = true;
};

}  // namespace gui
