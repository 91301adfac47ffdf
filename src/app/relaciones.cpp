#include "app/relaciones.h"

#include "refdata/elegir_concepto.h"
#include "relations/edit_relations.h"

namespace app {

Relaciones::Relaciones(Contexto& contexto, const BaseDeDatos& base, const Tareas& tareas)
    : c_(contexto), e_(contexto.estado), base_(base), tareas_(tareas) {}

void Relaciones::MostrarConcepto() {
  const refdata::ConceptoElegido elegido =
      refdata::ElegirConcepto(base_.Sesion(), e_.opciones, e_.conceptos, e_.tipos);
  e_.lblConcepto = elegido.lblConcepto;
  if (elegido.vaciar_txtTipo) e_.txtTipo.text.clear();
}

void Relaciones::cmbConceptos_Click(int indice) {
  e_.conceptos.cmbConceptos.ListIndex = indice;
  MostrarConcepto();
  c_.Cambio();
}

void Relaciones::cmbAgrupaDef_Click(int indice) {
  e_.tipos.cmbAgrupaDef.ListIndex = indice;
  c_.Cambio();
}

void Relaciones::txtTipo_Change(std::string texto) { e_.txtTipo.text = std::move(texto); }

void Relaciones::GridRelaciones_RowChange(int fila) { e_.fila_relacion = fila; }

// Refused while a load or an import runs: both hold the relations.
void Relaciones::cbAgrQuit_Click(int indice) {
  if (tareas_.EnCurso()) return;
  if (indice == 0)
    AgregarRelacion();
  else
    QuitarRelacion();
  c_.Cambio();
}

void Relaciones::AgregarRelacion() {
  const formula::ListControl& combo = e_.conceptos.cmbConceptos;
  std::string rechazo = relations::RechazoAlAgregar(combo, e_.txtTipo.text);
  if (!rechazo.empty()) return c_.Avisar(std::move(rechazo));
  const auto entrada = static_cast<std::size_t>(combo.ListIndex);
  relations::DatosRelacion datos;
  datos.texto_combo = combo.items[entrada].texto;
  datos.color = e_.cbColor;
  datos.txtTipo = e_.txtTipo.text;
  datos.id_concepto = e_.conceptos.tabla.Campo(0, entrada);
  datos.lblConcepto = e_.lblConcepto;
  datos.cc = relations::CentroDeRelacion(base_.Sesion(), e_.opciones, e_.tipos.cmbAgrupaDef);
  e_.relaciones.Agregar(relations::RegistroDeRelacion(datos));
  ++e_.revision.relaciones;
  if (e_.fila_relacion < 0) e_.fila_relacion = 0;
}

void Relaciones::QuitarRelacion() {
  const auto& grid = e_.relaciones.Grid();
  const bool hay_fila = e_.fila_relacion >= 0 && e_.fila_relacion < static_cast<int>(grid.size());
  const std::string codigo =
      hay_fila ? grid[static_cast<std::size_t>(e_.fila_relacion)].Codigo : std::string();
  std::string rechazo = relations::RechazoAlQuitar(codigo);
  if (!rechazo.empty()) return c_.Avisar(std::move(rechazo));
  const int hallada = e_.relaciones.PosDeCodigo(codigo);
  if (hallada < 0) return;
  const auto relacion = static_cast<std::size_t>(hallada);
  relations::EdicionDeRelacion edicion =
      relations::EdicionDe(e_.relaciones, relacion, e_.conceptos.cmbConceptos, e_.tipos.cmbAgrupaDef);
  e_.cbColor = edicion.color;
  e_.conceptos.cmbConceptos.ListIndex = edicion.cmbConceptos;
  MostrarConcepto();
  e_.txtTipo.text = std::move(edicion.txtTipo);
  e_.tipos.cmbAgrupaDef.ListIndex = edicion.cmbAgrupaDef;
  e_.relaciones.Quitar(relacion);
  ++e_.revision.relaciones;
  if (e_.fila_relacion >= static_cast<int>(e_.relaciones.Cantidad())) --e_.fila_relacion;
}

void Relaciones::cbColor_Click() {
  e_.cbColor = c_.puertos.picker.PickColor(e_.cbColor);
  c_.Cambio();
}

}  // namespace app
