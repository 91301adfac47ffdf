#include "app/programa.h"
#include "base/encoding.h"
#include "base/file.h"
#include "settings/config_file.h"

namespace app {

bool Programa::Unload() {
  cierre_pedido_ = true;
  if (en_curso_) {
    barra_.Cancelar(true);
    return false;
  }
  e_.Timer1_enabled = false;
  GuardarOpciones();
  relations::GuardarRelacionesEnBase(sesion_, e_.relaciones, &errores_);
  return true;
}

void Programa::GuardarOpciones() {
  if (arranque_.ajustes) return;
  const std::string ruta = settings::RutaDeAjustes(arranque_.carpeta);
  const auto bytes = base::LeerArchivo(ruta);
  if (!bytes && base::ExisteArchivo(ruta)) return;  // what cannot be read is not replaced
  std::optional<std::string> conceptos;
  if (!e_.opciones.MismoCodigoDeOrsa && !e_.relaciones.carga_fallida) conceptos = e_.relaciones.Texto();
  const std::string texto =
      settings::TextoConSettings(base::DeCp1252(bytes.value_or("")), e_.opciones, conceptos);
  base::EscribirArchivo(ruta, base::ACp1252(texto));
}

}  // namespace app
