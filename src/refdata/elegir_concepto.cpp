#include "refdata/elegir_concepto.h"

#include "base/number.h"

namespace refdata {

ConceptoElegido ElegirConcepto(const sesion::DbSession& sesion, const settings::Settings& opciones,
                               const ConceptsCatalogue& catalogo, LiquidationTypes& tipos) {
  const int elegido = catalogo.cmbConceptos.ListIndex;
  if (elegido < 0 || static_cast<std::size_t>(elegido) >= catalogo.tabla.Cantidad())
    return {.lblConcepto = "", .vaciar_txtTipo = true};

  const auto entrada = static_cast<std::size_t>(elegido);
  const double id = base::Parse(catalogo.tabla.Campo(0, entrada));
  ConceptoElegido salida{.lblConcepto = catalogo.tabla.Campo(1, entrada)};
  if (id > static_cast<double>(kBaseTablas)) salida.lblConcepto += "  (T.U.)";
  if (sesion.LiqAgrup && opciones.CCDefEnArch)
    tipos.cmbAgrupaDef.enabled = id < static_cast<double>(kBaseTablas);
  tipos.lblAgrupaDef_visible = tipos.cmbAgrupaDef.visible;
  return salida;
}

}  // namespace refdata
