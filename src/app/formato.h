// The panel of the file's format, with its preview.
#pragma once

#include <array>
#include <string>

#include "app/contexto.h"

namespace app {

class Formato {
 public:
  explicit Formato(Contexto& contexto);

  void optTipoArch_Click(int indice);
  void txtSeparador_Change(std::string texto);
  void txtAE_Change(int columna, int elemento, const std::string& texto);
  void GridPVConf_ColumnasMovidas(const std::array<int, 5>& posiciones);
  void txtFormulaSGN_Change(std::string texto);
  void Timer1_Timer();

  // The boxes and the preview's columns as the layout of the options says.
  void PonerLayout();
  void CargarDatosPrevisual();

 private:
  Contexto& c_;
  Estado& e_;
  bool previa_movida_ = false;  // the operator has rearranged the columns of GridPVConf
};

}  // namespace app
