#include "app/cierre.h"

#include <new>

#include "base/file.h"
#include "base/text.h"
#include "settings/config_file.h"

namespace app {

Cierre::Cierre(Contexto& contexto, const BaseDeDatos& base, Tareas& tareas)
    : c_(contexto), e_(contexto.estado), base_(base), tareas_(tareas) {}

bool Cierre::Unload(bool callado) {
  if (!tareas_.PedirCierre()) return false;
  e_.Timer1_enabled = false;
  Guardar(callado);
  return true;
}

// An import has the base in the middle of its transaction: the relations wait for its end.
void Cierre::Resguardar() {
  if (e_.tarea != Tarea::Importacion) return Guardar(true);
  tareas_.PedirResguardo();
  if (!e_.cargando) GuardarOpciones();
}

// Nothing can keep the window from closing, and nothing that was edited may vanish with it.
void Cierre::Guardar(bool callado) {
  if (e_.cargando || !e_.motivo_fin.empty()) return;  // the options were not all read
  std::string aviso;
  for (const std::string& motivo : {GuardarOpciones(), GuardarRelaciones()})
    if (!motivo.empty()) aviso += motivo + "\r\n";
  if (aviso.empty()) return;
  const std::string aparte = EscribirAparte();
  aviso += aparte.empty() ? "Tampoco se pudieron escribir en otro lugar." : "Quedaron escritos en " + aparte;
  if (!callado) c_.Avisar(std::move(aviso));
}

// Whether the relations come from where the options say. While a load runs the option of the automatic link
// is already another, and the relations are still those of before: they are nobody's to store.
bool Cierre::RelacionesDeLaOpcion() const {
  return e_.relaciones_automaticas == e_.opciones.MismoCodigoDeOrsa;
}

bool Cierre::RelacionesEditadas() const { return e_.relaciones.Texto() != e_.relaciones_leidas; }

std::optional<std::string> Cierre::ConceptosAGuardar() const {
  if (e_.opciones.MismoCodigoDeOrsa || e_.relaciones.carga_fallida || !RelacionesDeLaOpcion())
    return std::nullopt;
  return e_.relaciones.Texto();
}

std::string Cierre::GuardarOpciones() {
  if (c_.arranque.ajustes) return {};
  constexpr std::string_view kNo = "Los ajustes no se pudieron guardar. ";
  const std::string ruta = settings::RutaDeAjustes(c_.arranque.carpeta);
  const settings::Ajustes viejos = settings::LeerAjustes(ruta);
  if (viejos.estado == settings::EstadoAjustes::Ilegible) return std::string(kNo) + viejos.motivo;
  const std::string texto = settings::TextoConSettings(viejos.texto, e_.opciones, ConceptosAGuardar());
  if (settings::GuardarAjustes(ruta, texto) || texto == viejos.texto) return {};
  return std::string(kNo) + "No se puede escribir el archivo '" + ruta + "'.";
}

// Relations as they were read are not lost when they cannot be stored again.
std::string Cierre::GuardarRelaciones() {
  std::string motivo;
  if (e_.relaciones.carga_fallida) {
    const bool se_guardan = !e_.opciones.MismoCodigoDeOrsa || e_.relaciones.tipo_dato_externo != 0;
    if (se_guardan) motivo = e_.relaciones.motivo_fallo;
  } else if (RelacionesDeLaOpcion()) {
    try {
      motivo = relations::GuardarRelacionesEnBase(base_.Sesion(), e_.relaciones, &c_.errores);
    } catch (const base::Error& e) {
      motivo = e.Description();
    } catch (const std::bad_alloc&) {
      motivo = "No hay memoria suficiente.";
    }
    if (motivo.empty()) e_.relaciones_leidas = e_.relaciones.Texto();
  }
  if (motivo.empty() || !RelacionesEditadas()) return {};
  return "Las relaciones no se pudieron guardar. " + motivo;
}

// The settings with all that was to be stored, in the first folder that takes them; where, or "".
std::string Cierre::EscribirAparte() const {
  std::optional<std::string> conceptos = ConceptosAGuardar();
  if (!conceptos && RelacionesEditadas()) conceptos = e_.relaciones.Texto();
  const std::string texto = settings::TextoConSettings(c_.LeerAjustes().texto, e_.opciones, conceptos);
  const base::Date ahora = c_.puertos.reloj.Now();
  const std::string nombre =
      "ImportDeMarcas sin guardar " + base::Replace(base::IsoDate(ahora), ":", "") + ".ini";
  const std::string de_usuario = base::UserConfigFolder();
  for (const std::string& carpeta :
       {c_.arranque.carpeta, de_usuario, base::FolderOf(e_.referencia), base::TemporaryFolder()}) {
    if (carpeta.empty() || (carpeta == de_usuario && !base::CreateFolder(carpeta))) continue;
    const std::string ruta = base::JoinPath(carpeta, nombre);
    if (settings::GuardarAjustes(ruta, texto)) return ruta;
  }
  return {};
}

}  // namespace app
