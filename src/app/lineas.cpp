#include "app/lineas.h"

#include <utility>

#include "app/avisos_de_carga.h"
#include "app/vista.h"
#include "formula/vectores/vector_utils.h"

namespace app {

Lineas::Lineas(Contexto& contexto, const Partes& partes) : c_(contexto), e_(contexto.estado), p_(partes) {}

importfile::EntradaCarga EntradaDeCarga(const Estado& e, const settings::Settings& opciones) {
  importfile::EntradaCarga entrada;
  entrada.txtRuta = e.txtRuta.text;
  entrada.opciones = &opciones;
  entrada.filtro = e.OptFiltro == 0 ? importfile::FiltroPor::Texto : importfile::FiltroPor::Relacion;
  entrada.columna_orden = e.columna_orden;
  entrada.personas = &e.personas;
  entrada.conceptos = &e.conceptos;
  entrada.relaciones = &e.relaciones;
  return entrada;
}

void Lineas::Activate() {
  if (!e_.carga_pendiente) return;
  e_.carga_pendiente = false;
  if (e_.fallo_de_base.empty()) CargarDatos();
}

void Lineas::CargarDatos() {
  if (p_.tareas.EnCurso()) return;
  p_.base.ProbarEscritura();
  if (antes_de_leer && p_.base.MotivoDeLectura().empty()) antes_de_leer();
  if (!p_.base.Sesion().Abierta() || p_.base.MotivoDeLectura().empty()) return CargarGrilla();
  unsigned recargas = kEmpresa | kTipos | kTablas | kPersonas | kConceptos | kGrilla;
  if (e_.relaciones.carga_fallida) recargas |= kRelaciones;
  Recargar(recargas);
}

void Lineas::Recargar(unsigned recargas) {
  if (p_.lecturas.Releer(recargas) && (recargas & kGrilla)) CargarGrilla();
}

importfile::EntradaCarga Lineas::EntradaDeCarga(const settings::Settings& opciones) {
  importfile::EntradaCarga entrada = app::EntradaDeCarga(e_, opciones);
  entrada.evaluador = &p_.base.Evaluador();
  return entrada;
}

explicacion::Prueba Lineas::Probar(const std::string& formula, const std::string& filtro,
                                   std::size_t cuantas) {
  settings::Settings opciones = e_.opciones;
  opciones.FactMultiplica = formula;
  opciones.TextoDeFiltro = filtro;
  explicacion::Prueba prueba;
  if (p_.tareas.EnCurso()) return prueba;
  importfile::EntradaCarga entrada = EntradaDeCarga(opciones);
  entrada.filtro = importfile::FiltroPor::Texto;
  entrada.leido = &e_.archivo;
  p_.base.ConLaBase([&] { prueba = explicacion::Probar(entrada, cuantas); });
  return prueba;
}

void Lineas::CargarGrilla() {
  if (p_.tareas.EnCurso()) return;
  p_.tareas.Empezar(Tarea::Carga);
  const settings::Settings opciones =
      e_.opciones;  // a handler may change them while the events of the load run
  importfile::EntradaCarga entrada = EntradaDeCarga(opciones);
  AvisosDeCarga avisos(c_.puertos.prompts, c_.barra, p_.base.Evaluador());
  entrada.prompts = &avisos;
  entrada.progreso = &c_.barra;
  Procedencia procedencia = ProcedenciaDe(e_);
  importfile::Carga carga;
  const bool leida = p_.base.ConLaBase([&] { carga = importfile::CargarDatos(entrada); });
  if (leida) e_.fin_de_carga = carga.fin;
  if (leida && carga.fin == importfile::FinDeCarga::Completa) {
    e_.grilla_a_medias = !p_.base.MotivoDeLectura().empty();
    e_.filas = std::move(carga.filas);
    e_.aparte = std::move(carga.aparte);
    e_.previa = std::move(carga.previa);
    e_.hay_valor = carga.hay_valor;
    e_.lineas = carga.lineas;
    e_.archivo = std::move(carga.archivo);
    e_.procedencia = std::move(procedencia);
    ++e_.revision.filas;
    p_.formato.CargarDatosPrevisual();
    Actualizar();
  }
  if (leida) VerCausas(entrada);
  c_.barra.ActuBarra(0);
  p_.tareas.Terminado();
}

// Of a load that was refused, too: the rows are then still those of before.
void Lineas::VerCausas(const importfile::EntradaCarga& entrada) {
  e_.causas = {};
  const bool completa = e_.fin_de_carga == importfile::FinDeCarga::Completa;
  if (!completa && e_.fin_de_carga != importfile::FinDeCarga::FormatoIncorrecto) return;
  e_.causas =
      importfile::CausasDeCarga({entrada, e_.fin_de_carga, e_.filas, e_.aparte, e_.lineas, e_.previa});
}

void Lineas::Actualizar() {
  e_.GridAImportar.Columna("Valor")->visible = e_.hay_valor;
  c_.Cambio();
}

std::vector<std::uint32_t> Lineas::Vista(const VistaDeLineas& vista) const {
  return FilasDe(e_, vista, c_.puertos.reloj.Today());
}

void Lineas::OrdenarFilas() {
  std::vector<std::string_view> valores;
  valores.reserve(e_.filas.size());
  for (const auto& fila : e_.filas)
    valores.emplace_back(fila.campo[static_cast<std::size_t>(e_.columna_orden)]);
  const auto orden = formula::OrdenDeColumna(valores, c_.puertos.reloj.Today());
  std::vector<importfile::ImportRow> ordenadas;
  ordenadas.reserve(e_.filas.size());
  for (const std::size_t i : orden) ordenadas.push_back(std::move(e_.filas[i]));
  e_.filas = std::move(ordenadas);
  ++e_.revision.filas;
}

void Lineas::GridAImportar_HeadClick(std::string_view columna) {
  const int campo = CampoDeColumna(columna);
  if (p_.tareas.EnCurso() || campo < 0) return;
  e_.columna_orden = campo;
  OrdenarFilas();
  c_.Cambio();
}

}  // namespace app
