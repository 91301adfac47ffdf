#include "formula/vector_utils.h"
#include "refdata/concepts_catalogue.h"
#include "refdata/ejecutar_internal.h"
#include "refdata/sql.h"

namespace refdata {
namespace {

constexpr std::string_view kNingunConcepto = "-1";

formula::Vector SinConceptos() {
  const std::string id(kNingunConcepto);
  return {.dimensiones = 2, .registros = {{id, id, "", "", ""}}};
}

}  // namespace

int ConceptsCatalogue::Buscar(std::string_view id) const {
  return id == kNingunConcepto ? -1 : static_cast<int>(formula::FindInColumn(id, tabla, 0));
}

void ActuLSTdeConceptos(const db::DbSession& sesion, const settings::Settings& opciones,
                        ConceptsCatalogue& catalogo, base::SumideroErrores* errores) {
  if (!sesion.Abierta()) return;
  catalogo.tabla = SinConceptos();
  const std::string texto =
      sql::Conceptos(sesion.idEmpresa, opciones.SoloDatosDeRel, opciones.ImportarCuotas);
  // The filler empties combo and table before it runs the query and adds to both together, so that item i
  // and entry i stay a pair; the "-1" entry comes back when there was nothing to add.
  base::SumideroErrores motivos;
  const int estado = formula::LlenarLista(catalogo.cmbConceptos, texto, "Datos,Codigo,Nombre", "", " - ",
                                          &catalogo.tabla, sesion, &motivos);
  if (estado == 0) return;
  catalogo.tabla = SinConceptos();
  AnotarLista("ActuLSTdeConceptos", motivos, errores);
}

}  // namespace refdata
