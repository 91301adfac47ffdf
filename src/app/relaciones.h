// The panel of the relations between the file's codes and the concepts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/base_de_datos.h"
#include "app/tareas.h"
#include "informe/codigos_sin_relacion.h"
#include "relations/relaciones_csv.h"

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

  // The codes of the loaded file that no relation knows, with what each most likely stands for.
  std::vector<informe::CodigoSinRelacion> CodigosSinRelacion() const;
  // Relates the code: with the relation that the proposal names when there is one, else in a new one of its
  // concept, as the add button makes it. Another concept may be put into the proposal before. Returns why
  // not, or "". The grid has to be loaded again for it.
  std::string Relacionar(const std::string& codigo, const informe::Propuesta& propuesta);

  // All relations for a spreadsheet, and read back from it; reading changes nothing. See relaciones_csv.h.
  std::string Csv() const { return relations::CsvDeRelaciones(e_.relaciones); }
  relations::LecturaDeRelaciones LeerCsv(std::string_view texto) const;
  // Puts them in the place of all that there were; they are saved when the program closes. Returns why not,
  // or "".
  std::string Reemplazar(const std::vector<relations::Relacion>& nuevas);
  // Saves them at once: in that settings file, and in the base when they are kept there too; both or none.
  // For a program that does not save at its end. Returns why not, or "".
  std::string Guardar(const std::string& ruta_de_ajustes);

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
