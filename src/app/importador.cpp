#include "app/importador.h"

#include "base/file.h"
#include "base/sha256.h"
#include "base/text.h"
#include "corridas/testigo_de_registro.h"
#include "explicacion/explicar.h"
#include "liquidation/avisos.h"
#include "liquidation/resumen.h"
#include "liquidation/verosimilitud.h"
#include "settings/config_file.h"

namespace app {

Importador::Importador(Contexto& contexto, const Partes& partes)
    : c_(contexto), e_(contexto.estado), p_(partes) {}

std::string Importador::Confirmacion() const {
  liquidation::DatosConfirmacion datos;
  datos.mes = e_.mes;
  const formula::ItemLista* tipo = e_.tipos.cmbLiquidaciones.Elegido();
  if (tipo != nullptr) datos.cmbLiquidaciones = tipo->texto;
  datos.cmbAgrupa = &e_.tipos.cmbAgrupa;
  datos.LiqAgrup = p_.base.Sesion().LiqAgrup;
  datos.CCDefEnArch = e_.opciones.CCDefEnArch;
  datos.TipoConstruccion = p_.base.Sesion().TipoConstruccion;
  return liquidation::TextoConfirmacion(datos);
}

void Importador::cbImportar_Click(int boton) {
  if (boton != 1 || p_.tareas.EnCurso()) return;
  if (std::string motivo = p_.base.MotivoParaNoImportar(); !motivo.empty()) {
    if (p_.base.Sesion().Abierta()) motivo += "\r\nNo se importa nada hasta leerla de nuevo con Actualizar.";
    return c_.Avisar(std::move(motivo));
  }
  if (const std::string motivo = p_.base.MotivoSinEmpresa(); !motivo.empty()) return c_.Avisar(motivo);
  if (!CorrespondeLaGrilla()) return;
  // The updates of the whole month belong to an import: without lines there is none.
  if (e_.filas.empty()) return c_.Avisar("No hay líneas para importar.");
  const std::string resumen = liquidation::TextoDeResumen(Resumen());
  if (!e_.fallo_de_base.empty()) return;  // the base failed while it was asked; it has been told
  if (!c_.puertos.prompts.ConfirmWith(Confirmacion(), resumen)) return;
  Importar(false);
}

// What the operator sees on the controls is what would be imported. A grid that was loaded anew is looked at
// first, and imported by another click.
bool Importador::CorrespondeLaGrilla() {
  const std::string diferencias = TextoDeDiferencias(e_);
  if (diferencias.empty()) return true;
  if (c_.puertos.prompts.Confirm(diferencias + "\r\nNo se importa nada hasta leer el archivo de nuevo.\r\n"
                                               "¿Leerlo ahora?"))
    p_.lineas.CargarDatos();
  return false;
}

liquidation::EntradaImportacion Importador::EntradaDeImportacion(const settings::Settings& opciones) {
  liquidation::EntradaImportacion entrada{p_.base.Sesion(),
                                          opciones,
                                          e_.personas,
                                          e_.relaciones,
                                          e_.conceptos,
                                          p_.base.Evaluador(),
                                          e_.tablas,
                                          c_.puertos.prompts,
                                          c_.barra,
                                          e_.mes,
                                          {liquidation::TypeFilterDe(e_.tipos.cmbLiquidaciones),
                                           e_.tipos.TypeCondition, e_.tipos.CalendarCondition},
                                          {}};
  if (const formula::ItemLista* tipo = e_.tipos.cmbLiquidaciones.Elegido())
    entrada.texto_liquidacion = tipo->texto;
  if (const formula::ItemLista* centro = e_.tipos.cmbAgrupa.Elegido()) entrada.centro_costo = centro->dato;
  return entrada;
}

liquidation::ResumenDeImportacion Importador::Resumen() {
  liquidation::ResumenDeImportacion resumen =
      liquidation::Resumir(EntradaDeImportacion(e_.opciones), e_.filas);
  resumen.archivo = e_.txtRuta.text;
  resumen.avisos = Avisos();
  for (std::string& aviso : Verosimilitud()) resumen.avisos.push_back(std::move(aviso));
  if (importado_antes) resumen.importado_antes = importado_antes();
  return resumen;
}

std::string Importador::MotivoApagado() const {
  if (!p_.base.Sesion().Abierta())
    return e_.motivo_base.empty() ? "La base no está abierta." : "La base no está abierta: " + e_.motivo_base;
  if (std::string motivo = p_.base.MotivoSinEmpresa(); !motivo.empty()) return motivo;
  if (!e_.solo_lectura.empty()) return e_.solo_lectura;
  if (!e_.filas.empty()) return {};
  return e_.lineas == 0 ? "No hay ninguna línea cargada." : "Ninguna línea del archivo quedó en la grilla.";
}

std::vector<std::string> Importador::Avisos() {
  return liquidation::AvisosDeImportacion(EntradaDeImportacion(e_.opciones), e_.filas);
}

std::vector<std::string> Importador::Verosimilitud() {
  std::vector<std::string> textos;
  if (!p_.base.Sesion().Abierta() || e_.filas.empty()) return textos;
  p_.base.ConLaBase(
      [&] { textos = liquidation::Verosimilitud(EntradaDeImportacion(e_.opciones), e_.filas, e_.aparte); });
  return textos;
}

std::vector<std::string> Importador::Explicar(std::size_t linea) {
  std::vector<std::string> textos;
  if (p_.tareas.EnCurso()) return textos;
  const settings::Settings opciones = e_.opciones;
  importfile::EntradaCarga carga = p_.lineas.EntradaDeCarga(opciones);
  carga.leido = &e_.archivo;
  const liquidation::EntradaImportacion entrada = EntradaDeImportacion(opciones);
  p_.base.ConLaBase([&] {
    const explicacion::Explicacion x = explicacion::Explicar(carga, entrada, linea);
    if (x.hay_linea) textos = explicacion::TextoDe(x, entrada);
  });
  return textos;
}

void Importador::Importar(bool deshacer) {
  if (p_.tareas.EnCurso()) return;
  p_.tareas.Empezar(Tarea::Importacion);
  const settings::Settings opciones = e_.opciones;
  liquidation::EntradaImportacion entrada = EntradaDeImportacion(opciones);
  entrada.deshacer = deshacer;
  if (deshacer) {
    corridas::TestigoDeCambios testigo(p_.base.Sesion(), e_.mes);
    entrada.testigo = &testigo;
    std::string motivo;
    // Where neither the base nor a copy can be tried, the run itself tells why.
    if (!p_.base.Sesion().Abierta() || !p_.base.Probar([&] { Correr(entrada, testigo); }, motivo))
      Correr(entrada, testigo);
  } else {
    corridas::TestigoDeRegistro testigo(p_.base.Sesion(), p_.base.LugarDelRegistro(),
                                        DatosDeCorrida(opciones));
    entrada.testigo = &testigo;
    Correr(entrada, testigo);
    e_.corrida = e_.importacion.confirmada ? testigo.Numero() : 0;
    if (!testigo.Pendiente().empty())
      c_.errores.push_back({"Importar: registro de corridas", testigo.Pendiente()});
  }
  AnotarImportacion(deshacer);
  e_.GridAImportar.Columna("Resultado")->visible = true;
  ++e_.revision.filas;
  p_.lineas.Actualizar();
  p_.tareas.Terminado();
}

void Importador::Correr(const liquidation::EntradaImportacion& entrada, corridas::TestigoDeCambios& testigo) {
  e_.importacion = {};
  e_.corrida = 0;
  e_.simulada = entrada.deshacer;
  p_.base.ConLaBase([&] { e_.importacion = liquidation::Importar(entrada, e_.filas); });
  e_.cantidades =
      e_.importacion.confirmada ? testigo.Cantidades() : std::vector<corridas::CambioDeCantidad>{};
}

// What the ledger keeps of a run and the run itself does not know.
corridas::Resumen Importador::DatosDeCorrida(const settings::Settings& opciones) const {
  corridas::Resumen r = p_.base.CorridaNueva();
  r.mes = e_.mes;
  if (const formula::ItemLista* tipo = e_.tipos.cmbLiquidaciones.Elegido()) r.liquidacion = tipo->texto;
  r.archivo = base::NameOf(e_.txtRuta.text);
  r.huella_archivo = base::Sha256(e_.archivo.Bytes());
  r.ajustes = settings::TextoConSettings("", opciones, e_.relaciones.Texto());
  r.leidas = e_.lineas;
  for (const importfile::LineaAparte& linea : e_.aparte) ++(linea.mal_formada ? r.mal_formadas : r.filtradas);
  return r;
}

// The run tells by itself why nothing was written; what it leaves to be told is a base that is no longer to
// be trusted and what could not be brought up to date after it.
void Importador::AnotarImportacion(bool deshacer) {
  liquidation::Importacion& i = e_.importacion;
  c_.errores.insert(c_.errores.end(), i.errores.begin(), i.errores.end());
  if (i.fallo_de_almacenamiento) {
    e_.fallo_de_base = i.error;
    e_.grilla_a_medias = true;
  }
  p_.base.VerSoloLectura();
  if (deshacer || !i.confirmada || i.actualizaciones_fallidas.empty()) return;
  c_.Avisar("Las cantidades quedaron importadas.\r\n" + base::Join(i.actualizaciones_fallidas, "\r\n"));
}

}  // namespace app
