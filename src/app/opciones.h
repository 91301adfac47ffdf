// The options, each with its control's handler, and the buttons that show their panels.
#pragma once

#include <string>

#include "app/base_de_datos.h"
#include "app/tareas.h"

namespace app {

class Opciones {
 public:
  Opciones(Contexto& contexto, const BaseDeDatos& base, Tareas& tareas);

  void chkSoloDReloj_Click(bool marcado);
  void chkLiqHCaMensuales_Click(bool marcado);
  void chkNoImpValEnCero_Click(bool marcado);
  void chkCodigoNumerico_Click(bool marcado);
  void chkTotalizarConc_Click(bool marcado);
  void chkSumarAyaIng_Click(bool marcado);
  void chkImportarCuotas_Click(bool marcado);
  void txtTextoTipoCuota_Change(std::string texto);
  void chkConCC_Click(bool marcado);
  void chkCCDefEnDatExt_Click(bool marcado);
  void chkVincAutConOrsa_Click(bool marcado);
  void cbTipoClave_Click(int indice);
  void cbConfigurar_Click(int indice);

 private:
  Contexto& c_;
  Estado& e_;
  const BaseDeDatos& base_;
  Tareas& tareas_;
};

}  // namespace app
