#include "relations/edit_relations.h"

#include "base/text.h"

namespace relations {
namespace {

// An id that is no number is nobody's; PosEnCombo would look for a 0.
int PosicionDe(const formula::ListControl& combo, std::string_view id) {
  const auto numero = IdentificadorDe(id);
  return numero ? refdata::PosEnCombo(combo, *numero) : -1;
}

// Unlike the grid, a list of just two characters stays as it is here.
std::string CodigosAEditar(const std::string& externos) {
  return base::Length(externos) > 2 ? SinComasExternas(externos) : externos;
}

}  // namespace

std::string RechazoAlAgregar(const formula::ListControl& cmbConceptos, std::string_view txtTipo) {
  if (cmbConceptos.Elegido() == nullptr) return "Debe seleccionar un concepto";
  if (base::TrimView(txtTipo).empty())
    return "Debe seleccionar la relación con los codigos del sistema de reloj";
  return {};
}

std::string RechazoAlQuitar(std::string_view codigo) {
  return base::TrimView(codigo).empty() ? "Debe seleccionar una relación para quitar" : "";
}

std::int64_t CentroDeRelacion(const sesion::DbSession& sesion, const settings::Settings& opciones,
                              const formula::ListControl& cmbAgrupaDef) {
  const formula::ItemLista* elegido = cmbAgrupaDef.Elegido();
  const bool por_linea = sesion.LiqAgrup && opciones.CCDefEnArch;
  return por_linea && elegido != nullptr && cmbAgrupaDef.ListIndex > 0 ? elegido->dato : 0;
}

EdicionDeRelacion EdicionDe(const CodeRelations& relaciones, std::size_t relacion,
                            const formula::ListControl& cmbConceptos,
                            const formula::ListControl& cmbAgrupaDef) {
  const std::string& cc = relaciones.Campo(kCC, relacion);
  return {.txtTipo = CodigosAEditar(relaciones.Campo(kExternos, relacion)),
          .color = relaciones.Color(relacion),
          .cmbConceptos = PosicionDe(cmbConceptos, relaciones.Campo(kConcepto, relacion)),
          .cmbAgrupaDef = PosicionDe(cmbAgrupaDef, cc.empty() ? "0" : cc)};
}

}  // namespace relations
