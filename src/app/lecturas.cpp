#include "app/lecturas.h"

#include <utility>

#include "base/text.h"
#include "settings/config_file.h"

namespace app {
Lecturas::Lecturas(Contexto& contexto, BaseDeDatos& base) : c_(contexto), e_(contexto.estado), base_(base) {}

void Lecturas::AbrirBase(std::string referencia) {
  e_.referencia = std::move(referencia);
  const bool abierta = base_.Conectar(e_.referencia);
  if (abierta) base_.ConLaBase([&] { LeerTablas(kEmpresa | kTipos | kTablas); });
  if (!base_.Sesion().Abierta()) return c_.Avisar("Error al abrir la base ubicada en " + e_.referencia);
  LeerPersonas();
}

std::string Lecturas::CambiarBase(const std::string& referencia) {
  std::string motivo = base_.Cambiar(referencia);
  if (!motivo.empty()) return motivo;
  e_.referencia = referencia;
  Olvidar();
  base_.ConLaBase([&] { LeerTablas(kEmpresa | kTipos | kTablas); });
  LeerPersonas();
  return {};
}

// Nothing of one base may be taken for another's.
void Lecturas::Olvidar() {
  e_.fallo_de_base.clear();
  e_.motivo_empresa.clear();
  e_.motivo_tablas.clear();
  e_.solo_lectura.clear();
  e_.tipos = {};
  PonerCentros();
  ++e_.revision.tipos;
  e_.tablas.Vaciar();
  e_.personas = {};
  e_.conceptos = {};
  ++e_.revision.conceptos;
  e_.lblConcepto.clear();
}

void Lecturas::LeerPersonas() {
  if (e_.fallo_de_base.empty()) base_.ConLaBase([&] { CargarVecDePersonas(); });
  base_.VerSoloLectura();
  if (!e_.solo_lectura.empty())
    c_.Avisar(e_.solo_lectura + std::string(base::kCrLf) +
              "Se puede mirar, pero no importar ni guardar relaciones en ella.");
}

bool Lecturas::Abrir(const std::string& referencia) {
  e_.referencia = referencia;
  if (!base_.Conectar(referencia)) return false;
  if (NombraBaseDeLaEmpresa(referencia)) base_.ConLaBase([&] { base_.LeerEmpresa(); });
  return e_.fallo_de_base.empty();
}

// After a fault everything is read again, whatever was asked for. Relations that were read well stay: they
// may have been edited since.
bool Lecturas::Releer(unsigned recargas) {
  if (!e_.fallo_de_base.empty() && base_.Sesion().Abierta()) {
    recargas |= kEmpresa | kTipos | kTablas | kPersonas | kConceptos;
    if (e_.relaciones.carga_fallida || !e_.relaciones_automaticas) recargas |= kRelaciones;
  }
  e_.fallo_de_base.clear();
  const bool leida = base_.ConLaBase([&] { LeerTablas(recargas); });
  base_.VerSoloLectura();
  return leida;
}

void Lecturas::LeerTablas(unsigned recargas) {
  if (NombraBaseDeLaEmpresa(e_.referencia)) {
    if (recargas & kEmpresa) base_.LeerEmpresa();
    if (recargas & kTipos) CargarTiposLiquidacion();
    if (recargas & kTablas) LeerTablasUsuario();
  }
  if (recargas & kPersonas) CargarVecDePersonas();
  if (recargas & kConceptos) ActuLSTdeConceptos();
  if (recargas & kRelaciones) LevantarRelaciones();
}

void Lecturas::CargarVecDePersonas() {
  if (refdata::CargarVecDePersonas(base_.Sesion(), e_.mes, e_.personas, c_.puertos.prompts, &c_.errores))
    ActuLSTdeConceptos();
  c_.Cambio();
}

void Lecturas::ActuLSTdeConceptos() {
  ++e_.revision.conceptos;
  refdata::ActuLSTdeConceptos(base_.Sesion(), e_.opciones, e_.conceptos, &c_.errores);
  c_.Cambio();
}

// From the settings as they stand now: another window may have written them. A file that has become
// unreadable is no reason to go on with the default relations, which closing would then store.
void Lecturas::LevantarRelaciones() {
  const settings::Ajustes ajustes = c_.LeerAjustes();
  ++e_.revision.relaciones;
  e_.fila_relacion = -1;
  e_.relaciones_automaticas = e_.opciones.MismoCodigoDeOrsa;
  e_.relaciones_leidas.clear();
  if (ajustes.estado == settings::EstadoAjustes::Ilegible) {
    e_.relaciones.Reemplazar("");
    e_.relaciones.carga_fallida = true;
    e_.relaciones.motivo_fallo = ajustes.motivo;
  } else {
    relations::LevantarRelaciones(base_.Sesion(), e_.opciones, ajustes.texto, e_.relaciones, &c_.errores);
  }
  e_.relaciones_leidas = e_.relaciones.Texto();
  e_.fila_relacion = e_.relaciones.Cantidad() > 0 ? 0 : -1;
  c_.Cambio();
}

void Lecturas::CargarTiposLiquidacion() {
  ++e_.revision.tipos;
  refdata::CargarTiposLiquidacion(base_.Sesion(), e_.opciones, e_.tipos, &c_.errores);
  PonerCentros();
  c_.Cambio();
}

void Lecturas::PonerCentros() {
  for (Grid* grid : {&e_.GridAImportar, &e_.GridRelaciones}) {
    GridColumn* cc = grid->Columna("CC");
    cc->visible = e_.tipos.CC_visible;
    cc->ancho = e_.tipos.CC_ancho;
  }
}

void Lecturas::LeerTablasUsuario() {
  e_.motivo_tablas.clear();
  base::PassOverError("Conectar: tablas de usuario", &c_.errores, [&] {
    try {
      e_.tablas.CargarTablasUsuario(base_.Sesion(), -1);
    } catch (const base::Error& e) {
      e_.motivo_tablas = e.Description();
      throw;
    }
  });
}

}  // namespace app
