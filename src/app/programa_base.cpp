// What is read from the base, when it is read again, and what follows when it cannot be.
#include <new>
#include <utility>

#include "app/conector.h"
#include "app/programa.h"
#include "base/text.h"
#include "settings/config_file.h"

namespace app {
namespace {

// Only a base of the payroll system has the company row.
bool NombraBaseDeLaEmpresa(std::string_view referencia) {
  for (const char* nombre : {"Personal.mdb", "Proyec.mdb", "ConfBase.cfg"})
    if (base::Contiene(referencia, nombre, base::Comparar::SinCaso)) return true;
  return false;
}

}  // namespace

bool Programa::ConLaBase(const std::function<void()>& paso) {
  try {
    paso();
    return true;
  } catch (const base::Error& e) {
    FalloLaBase(e.Descripcion());
  } catch (const std::bad_alloc&) {
    FalloLaBase("No hay memoria suficiente.");
  }
  return false;
}

// One fault often brings others: the first is told.
void Programa::FalloLaBase(std::string motivo) {
  grilla_a_medias_ = true;
  if (!e_.fallo_de_base.empty()) return;
  e_.fallo_de_base = std::move(motivo);
  std::string aviso = "Falló la base: " + e_.fallo_de_base;
  aviso += base::kCrLf;
  Avisar(aviso += "No se importa nada hasta volver a leerla entera.");
  Cambio();
}

std::string Programa::MotivoDeLectura() const {
  if (!e_.fallo_de_base.empty()) return "Falló la base: " + e_.fallo_de_base;
  const std::pair<const char*, const std::string&> lecturas[] = {
      {"la fila de la empresa", e_.motivo_empresa},
      {"la lista de tipos de liquidación", e_.tipos.motivo_fallo},
      {"la lista de tablas de usuario", e_.motivo_tablas},
      {"la lista de contratos del mes", e_.personas.motivo_fallo},
      {"la lista de conceptos", e_.conceptos.motivo_fallo},
      {"la lista de relaciones", e_.relaciones.motivo_fallo}};
  for (const auto& [que, motivo] : lecturas)
    if (!motivo.empty()) return std::string("No se pudo leer ") + que + ": " + motivo;
  return {};
}

std::string Programa::MotivoParaNoImportar() const {
  if (!sesion_.Abierta()) return "La Base no está Abierta";
  std::string motivo = MotivoDeLectura();
  if (motivo.empty() && grilla_a_medias_)
    motivo = "La grilla se cargó cuando la base no se podía leer entera, y hay que cargarla de nuevo.";
  return motivo;
}

void Programa::VerSoloLectura() { e_.solo_lectura = MotivoSoloLectura(sesion_.conexion.get()); }

void Programa::Pedir(unsigned recargas) {
  if (en_curso_)
    pendientes_ |= recargas;
  else
    Recargar(recargas);
}

// After a fault everything is read again, whatever was asked for. Relations that were read well stay: they
// may have been edited since.
void Programa::Recargar(unsigned recargas) {
  if (!e_.fallo_de_base.empty() && sesion_.Abierta()) {
    recargas |= kEmpresa | kTipos | kTablas | kPersonas | kConceptos;
    if (e_.relaciones.carga_fallida || !relaciones_automaticas_) recargas |= kRelaciones;
  }
  e_.fallo_de_base.clear();
  const bool leida = ConLaBase([&] { LeerTablas(recargas); });
  VerSoloLectura();
  if ((recargas & kGrilla) && leida) CargarGrilla();
}

void Programa::LeerTablas(unsigned recargas) {
  if (NombraBaseDeLaEmpresa(e_.referencia)) {
    if (recargas & kEmpresa) LeerEmpresa();
    if (recargas & kTipos) CargarTiposLiquidacion();
    if (recargas & kTablas) LeerTablasUsuario();
  }
  if (recargas & kPersonas) CargarVecDePersonas();
  if (recargas & kConceptos) ActuLSTdeConceptos();
  if (recargas & kRelaciones) LevantarRelaciones();
}

void Programa::CargarDatos() {
  if (en_curso_) return;
  if (!sesion_.Abierta() || MotivoDeLectura().empty()) return CargarGrilla();
  unsigned recargas = kEmpresa | kTipos | kTablas | kPersonas | kConceptos | kGrilla;
  if (e_.relaciones.carga_fallida) recargas |= kRelaciones;
  Recargar(recargas);
}

void Programa::Empezar(Tarea tarea) {
  en_curso_ = true;
  e_.tarea = tarea;
  Cambio();
}

void Programa::Terminado() {
  en_curso_ = false;
  e_.tarea = Tarea::Ninguna;
  const unsigned recargas = std::exchange(pendientes_, 0U);
  if (std::exchange(resguardo_pendiente_, false)) Guardar(true);
  Cambio();
  if (recargas != 0 && !cierre_pedido_) Recargar(recargas);
}

void Programa::CargarVecDePersonas() {
  if (refdata::CargarVecDePersonas(sesion_, e_.mes, e_.personas, puertos_.prompts, &errores_))
    ActuLSTdeConceptos();
  Cambio();
}

void Programa::ActuLSTdeConceptos() {
  ++e_.revision.conceptos;
  refdata::ActuLSTdeConceptos(sesion_, e_.opciones, e_.conceptos, &errores_);
  Cambio();
}

// From the settings as they stand now: another window may have written them. A file that has become
// unreadable is no reason to go on with the default relations, which closing would then store.
void Programa::LevantarRelaciones() {
  const settings::Ajustes ajustes = LeerAjustes();
  ++e_.revision.relaciones;
  e_.fila_relacion = -1;
  relaciones_automaticas_ = e_.opciones.MismoCodigoDeOrsa;
  relaciones_leidas_.clear();
  if (ajustes.estado == settings::EstadoAjustes::Ilegible) {
    e_.relaciones.Reemplazar("");
    e_.relaciones.carga_fallida = true;
    e_.relaciones.motivo_fallo = ajustes.motivo;
  } else {
    relations::LevantarRelaciones(sesion_, e_.opciones, ajustes.texto, e_.relaciones, &errores_);
  }
  relaciones_leidas_ = e_.relaciones.Texto();
  e_.fila_relacion = e_.relaciones.Cantidad() > 0 ? 0 : -1;
  Cambio();
}

void Programa::CargarTiposLiquidacion() {
  ++e_.revision.tipos;
  refdata::CargarTiposLiquidacion(sesion_, e_.opciones, e_.tipos, &errores_);
  for (Grid* grid : {&e_.GridAImportar, &e_.GridRelaciones}) {
    GridColumn* cc = grid->Columna("CC");
    cc->visible = e_.tipos.CC_visible;
    cc->ancho = e_.tipos.CC_ancho;
  }
  Cambio();
}

void Programa::LeerTablasUsuario() {
  e_.motivo_tablas.clear();
  base::ErrorIgnorado("Conectar: tablas de usuario", &errores_, [&] {
    try {
      e_.tablas.CargarTablasUsuario(sesion_, -1);
    } catch (const base::Error& e) {
      e_.motivo_tablas = e.Descripcion();
      throw;
    }
  });
}

}  // namespace app
