#include <utility>

#include "formula/vectores/vector_utils.h"
#include "refdata/concepts_catalogue.h"
#include "refdata/ejecutar_internal.h"
#include "refdata/sql.h"

namespace refdata {
namespace {

constexpr std::string_view kNingunConcepto = "-1";

// id, name, TipoDato, TipoOperacion, TipoCuota: what is not the name never holds a star.
constexpr formula::FormaDeRegistro kEntrada{.campos = 5, .libre = 1};

formula::Vector SinConceptos() {
  const std::string id(kNingunConcepto);
  return {.dimensiones = 2, .registros = {{id, id, "", "", ""}}};
}

}  // namespace

int ConceptsCatalogue::Buscar(std::string_view id) const {
  return id == kNingunConcepto ? -1 : static_cast<int>(formula::FindInColumn(id, tabla, 0));
}

void ActuLSTdeConceptos(const sesion::DbSession& sesion, const settings::Settings& opciones,
                        ConceptsCatalogue& catalogo, base::ErrorSink* errores) {
  if (!sesion.Abierta()) {
    catalogo.motivo_fallo = kBaseCerrada;
    return;
  }
  catalogo.tabla = SinConceptos();
  catalogo.cmbConceptos.items.clear();
  catalogo.cmbConceptos.ListIndex = -1;
  const std::string texto =
      sql::Conceptos(sesion.idEmpresa, opciones.SoloDatosDeRel, opciones.ImportarCuotas);
  const bool bien = Cargar("ActuLSTdeConceptos", errores, catalogo.motivo_fallo, [&] {
    formula::ListControl combo;
    formula::Vector tabla;
    base::ErrorSink motivos;
    // The filler adds to combo and table together, so that item i and entry i stay a pair.
    if (formula::LlenarLista(combo, texto, "Datos,Codigo,Nombre", "", " - ", &tabla, sesion, &motivos,
                             &kEntrada) != 0)
      throw db::Error(motivos.empty() ? std::string() : motivos.front().description);
    catalogo.cmbConceptos.items = std::move(combo.items);
    catalogo.tabla = std::move(tabla);
  });
  if (bien) catalogo.motivo_fallo.clear();
}

}  // namespace refdata
