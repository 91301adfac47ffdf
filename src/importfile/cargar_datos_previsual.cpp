#include "base/text.h"
#include "importfile/line_formats.h"

namespace importfile {

std::vector<std::vector<std::string>> CargarDatosPrevisual(std::string_view previa,
                                                           const settings::Settings& opciones) {
  std::vector<std::vector<std::string>> filas;
  if (previa.empty() || (opciones.AnchoFijo && !SePuedeCortar(opciones.ConfDeAF))) return filas;
  for (const std::string& linea : base::Split(previa, base::kCrLf)) {
    const std::string fila = opciones.AnchoFijo ? base::Join(DevLineaAF(linea, opciones.ConfDeAF).campos, "*")
                                                : CortarDelimitada(linea, opciones.Separador).estrella;
    filas.push_back(base::Split(fila, "*"));
  }
  return filas;
}

}  // namespace importfile
