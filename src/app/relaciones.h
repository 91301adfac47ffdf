// The panel of the relations between the file's codes and the concepts.
#pragma once

#include <string>

#include "app/base_de_datos.h"
#include "app/tareas.h"

namespace app {

class Relaciones {
 public:
  Relaciones(Contexto& contexto, const BaseDeDatos& base, const Tareas& tareas);

  void cmbConceptos_Click(int indice);
  void cmbAgrupaDef_Click(int indice);
  void txtTipo_Change(std::string texto);
  void GridRelaciones_RowChange(int fila);
  void cbAgrQuit_Click(int indice);  // 0 adds, 1 removes
  void cbColor_Click();

 private:
  void MostrarConcepto();
  void AgregarRelacion();
  void QuitarRelacion();

  Contexto& c_;
  Estado& e_;
  const BaseDeDatos& base_;
  const Tareas& tareas_;
};

}  // namespace app
