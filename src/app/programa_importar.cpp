#include "app/programa.h"
#include "base/text.h"
#include "liquidation/avisos.h"

namespace app {

std::string Programa::Confirmacion() const {
  liquidation::DatosConfirmacion datos;
  datos.mes = e_.mes;
  const formula::ItemLista* tipo = e_.tipos.cmbLiquidaciones.Elegido();
  if (tipo != nullptr) datos.cmbLiquidaciones = tipo->texto;
  datos.cmbAgrupa = &e_.tipos.cmbAgrupa;
  datos.LiqAgrup = sesion_.LiqAgrup;
  datos.CCDefEnArch = e_.opciones.CCDefEnArch;
  datos.TipoConstruccion = sesion_.TipoConstruccion;
  return liquidation::TextoConfirmacion(datos);
}

void Programa::cbImportar_Click(int boton) {
  if (boton != 1 || en_curso_) return;
  if (std::string motivo = MotivoParaNoImportar(); !motivo.empty()) {
    if (sesion_.Abierta()) motivo += "\r\nNo se importa nada hasta leerla de nuevo con Actualizar.";
    return Avisar(std::move(motivo));
  }
  // The updates of the whole month belong to an import: without lines there is none.
  if (e_.filas.empty()) return Avisar("No hay líneas para importar.");
  const std::vector<std::string> avisos = Avisos();
  if (!avisos.empty()) Avisar(base::Join(avisos, "\r\n\r\n"));
  if (!puertos_.prompts.Confirmar(Confirmacion())) return;
  Importar(false);
}

liquidation::EntradaImportacion Programa::EntradaDeImportacion() {
  liquidation::EntradaImportacion entrada;
  entrada.sesion = &sesion_;
  entrada.opciones = &e_.opciones;
  entrada.personas = &e_.personas;
  entrada.relaciones = &e_.relaciones;
  entrada.conceptos = &e_.conceptos;
  entrada.evaluador = &evaluador_;
  entrada.tablas = &e_.tablas;
  entrada.prompts = &puertos_.prompts;
  entrada.progreso = &barra_;
  entrada.mes = e_.mes;
  entrada.condiciones = {liquidation::TypeFilterDe(e_.tipos.cmbLiquidaciones), e_.tipos.TypeCondition,
                         e_.tipos.CalendarCondition};
  if (const formula::ItemLista* tipo = e_.tipos.cmbLiquidaciones.Elegido())
    entrada.texto_liquidacion = tipo->texto;
  if (const formula::ItemLista* centro = e_.tipos.cmbAgrupa.Elegido()) entrada.centro_costo = centro->dato;
  return entrada;
}

std::vector<std::string> Programa::Avisos() {
  return liquidation::AvisosDeImportacion(EntradaDeImportacion(), e_.filas);
}

void Programa::Importar(bool deshacer) {
  if (en_curso_) return;
  Empezar(Tarea::Importacion);
  const settings::Settings opciones = e_.opciones;
  liquidation::EntradaImportacion entrada = EntradaDeImportacion();
  entrada.opciones = &opciones;
  entrada.deshacer = deshacer;
  e_.importacion = {};
  ConLaBase([&] { e_.importacion = liquidation::Importar(entrada, e_.filas); });
  AnotarImportacion(deshacer);
  e_.GridAImportar.Columna("Resultado")->visible = true;
  ++e_.revision.filas;
  Actualizar();
  Terminado();
}

// The run tells by itself why nothing was written; what it leaves to be told is a base that is no longer to
// be trusted and what could not be brought up to date after it.
void Programa::AnotarImportacion(bool deshacer) {
  liquidation::Importacion& i = e_.importacion;
  errores_.insert(errores_.end(), i.errores.begin(), i.errores.end());
  if (i.fallo_de_almacenamiento) {
    e_.fallo_de_base = i.error;
    grilla_a_medias_ = true;
  }
  VerSoloLectura();
  if (deshacer || !i.confirmada || i.actualizaciones_fallidas.empty()) return;
  Avisar("Las cantidades quedaron importadas.\r\n" + base::Join(i.actualizaciones_fallidas, "\r\n"));
}

}  // namespace app
