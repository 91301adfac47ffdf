// The strip over the grid: file, month, liquidation and filter.
#pragma once

#include <string>

#include "app/lineas.h"
#include "app/tareas.h"

namespace app {

class Archivo {
 public:
  Archivo(Contexto& contexto, Tareas& tareas, Lineas& lineas);

  void cbBuscar_Click();
  void cbActualizar_Click();
  void txtRuta_Change(std::string texto);
  void txtRuta_KeyPress(int tecla);
  void txtFiltro_Change(std::string texto);
  void txtFiltro_KeyPress(int tecla);
  void OptFiltro_Click(int indice);
  void ObjSelMes_Change(base::Date fecha);  // any day: the picker yields the first of its month
  void cmbLiquidaciones_Click(int indice);
  void cmbAgrupa_Click(int indice);
  // Sends Tab instead of Enter: true when the key is to be swallowed.
  static bool EnterEsTab(int tecla) { return tecla == 13; }

 private:
  Contexto& c_;
  Estado& e_;
  Tareas& tareas_;
  Lineas& lineas_;
};

}  // namespace app
