#include "app/programa.h"
#include "base/text.h"

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
  if (!puertos_.prompts.Confirmar(Confirmacion())) return;
  Importar(false);
}

void Programa::Importar(bool deshacer) {
  if (en_curso_) return;
  Empezar(Tarea::Importacion);
  const settings::Settings opciones = e_.opciones;
  liquidation::EntradaImportacion entrada;
  entrada.sesion = &sesion_;
  entrada.opciones = &opciones;
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
  entrada.deshacer = deshacer;
  e_.importacion = liquidation::Importar(entrada, e_.filas);
  errores_.insert(errores_.end(), e_.importacion.errores.begin(), e_.importacion.errores.end());
  e_.GridAImportar.Columna("Resultado")->visible = true;
  ++e_.revision.filas;
  Actualizar();
  Terminado();
}

}  // namespace app
