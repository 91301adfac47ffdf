#include <new>

#include "app/programa.h"
#include "base/file.h"
#include "base/text.h"
#include "settings/config_file.h"

namespace app {

bool Programa::Unload(bool callado) {
  cierre_pedido_ = true;
  if (en_curso_) {
    barra_.Cancelar(true);
    return false;
  }
  e_.Timer1_enabled = false;
  Guardar(callado);
  return true;
}

// An import has the base in the middle of its transaction: the relations wait for its end.
void Programa::Resguardar() {
  if (e_.tarea != Tarea::Importacion) return Guardar(true);
  resguardo_pendiente_ = true;
  if (!e_.cargando) GuardarOpciones();
}

// Nothing can keep the window from closing, and nothing that was edited may vanish with it.
void Programa::Guardar(bool callado) {
  if (e_.cargando || !e_.motivo_fin.empty()) return;  // the options were not all read
  std::string aviso;
  for (const std::string& motivo : {GuardarOpciones(), GuardarRelaciones()})
    if (!motivo.empty()) aviso += motivo + "\r\n";
  if (aviso.empty()) return;
  const std::string aparte = EscribirAparte();
  aviso += aparte.empty() ? "Tampoco se pudieron escribir en otro lugar." : "Quedaron escritos en " + aparte;
  if (!callado) Avisar(std::move(aviso));
}

// Whether the relations come from where the options say. While a load runs the option of the automatic link
// is already another, and the relations are still those of before: they are nobody's to store.
bool Programa::RelacionesDeLaOpcion() const {
  return relaciones_automaticas_ == e_.opciones.MismoCodigoDeOrsa;
}

std::optional<std::string> Programa::ConceptosAGuardar() const {
  if (e_.opciones.MismoCodigoDeOrsa || e_.relaciones.carga_fallida || !RelacionesDeLaOpcion())
    return std::nullopt;
  return e_.relaciones.Texto();
}

std::string Programa::GuardarOpciones() {
  if (arranque_.ajustes) return {};
  constexpr std::string_view kNo = "Los ajustes no se pudieron guardar. ";
  const std::string ruta = settings::RutaDeAjustes(arranque_.carpeta);
  const settings::Ajustes viejos = settings::LeerAjustes(ruta);
  if (viejos.estado == settings::EstadoAjustes::Ilegible) return std::string(kNo) + viejos.motivo;
  const std::string texto = settings::TextoConSettings(viejos.texto, e_.opciones, ConceptosAGuardar());
  if (settings::GuardarAjustes(ruta, texto) || texto == viejos.texto) return {};
  return std::string(kNo) + "No se puede escribir el archivo '" + ruta + "'.";
}

// Relations as they were read are not lost when they cannot be stored again.
std::string Programa::GuardarRelaciones() {
  std::string motivo;
  if (e_.relaciones.carga_fallida) {
    const bool se_guardan = !e_.opciones.MismoCodigoDeOrsa || e_.relaciones.tipo_dato_externo != 0;
    if (se_guardan) motivo = e_.relaciones.motivo_fallo;
  } else if (RelacionesDeLaOpcion()) {
    try {
      motivo = relations::GuardarRelacionesEnBase(sesion_, e_.relaciones, &errores_);
    } catch (const base::Error& e) {
      motivo = e.Descripcion();
    } catch (const std::bad_alloc&) {
      motivo = "No hay memoria suficiente.";
    }
    if (motivo.empty()) relaciones_leidas_ = e_.relaciones.Texto();
  }
  if (motivo.empty() || !RelacionesEditadas()) return {};
  return "Las relaciones no se pudieron guardar. " + motivo;
}

// The settings with all that was to be stored, in the first folder that takes them; where, or "".
std::string Programa::EscribirAparte() const {
  std::optional<std::string> conceptos = ConceptosAGuardar();
  if (!conceptos && RelacionesEditadas()) conceptos = e_.relaciones.Texto();
  const std::string texto = settings::TextoConSettings(LeerAjustes().texto, e_.opciones, conceptos);
  const base::Fecha ahora = puertos_.reloj.Ahora();
  const std::string nombre =
      "ImportDeMarcas sin guardar " + base::Reemplazar(base::FechaIso(ahora), ":", "") + ".ini";
  const std::string de_usuario = base::CarpetaConfiguracionUsuario();
  for (const std::string& carpeta :
       {arranque_.carpeta, de_usuario, base::CarpetaDe(e_.referencia), base::TemporaryFolder()}) {
    if (carpeta.empty() || (carpeta == de_usuario && !base::CrearCarpeta(carpeta))) continue;
    const std::string ruta = base::UnirRuta(carpeta, nombre);
    if (settings::GuardarAjustes(ruta, texto)) return ruta;
  }
  return {};
}

}  // namespace app
