#include "app/archivo.h"

#include <utility>

namespace app {
namespace {

constexpr int kEnter = 13;

}  // namespace

Archivo::Archivo(Contexto& contexto, Tareas& tareas, Lineas& lineas)
    : c_(contexto), e_(contexto.estado), tareas_(tareas), lineas_(lineas) {}

void Archivo::cbBuscar_Click() {
  const std::string ruta = c_.puertos.picker.PickFile(e_.titulo_dialogo, "", e_.txtRuta.text);
  if (ruta.empty()) return;
  e_.txtRuta.text = ruta;
  lineas_.CargarDatos();
}

void Archivo::cbActualizar_Click() { lineas_.CargarDatos(); }

void Archivo::txtRuta_Change(std::string texto) { e_.txtRuta.text = std::move(texto); }

void Archivo::txtRuta_KeyPress(int tecla) {
  if (tecla == kEnter) lineas_.CargarDatos();
}

void Archivo::txtFiltro_Change(std::string texto) {
  e_.opciones.TextoDeFiltro = texto;
  e_.txtFiltro.text = std::move(texto);
}

void Archivo::txtFiltro_KeyPress(int tecla) {
  if (tecla == kEnter) lineas_.CargarDatos();
}

void Archivo::OptFiltro_Click(int indice) {
  e_.OptFiltro = indice;
  tareas_.Pedir(kGrilla);
}

void Archivo::ObjSelMes_Change(base::Date fecha) {
  e_.mes = base::FirstDayOfMonth(fecha);
  if (!e_.cargando) tareas_.Pedir(kPersonas | kGrilla);
  c_.Cambio();
}

void Archivo::cmbLiquidaciones_Click(int indice) {
  e_.tipos.cmbLiquidaciones.ListIndex = indice;
  c_.Cambio();
}

void Archivo::cmbAgrupa_Click(int indice) {
  e_.tipos.cmbAgrupa.ListIndex = indice;
  c_.Cambio();
}

}  // namespace app
