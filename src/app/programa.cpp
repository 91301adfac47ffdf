#include "app/programa.h"

namespace app {

Programa::Programa(const Puertos& puertos, Arranque arranque)
    : c_(puertos, std::move(arranque)),
      base_(c_),
      lecturas_(c_, base_),
      tareas_(c_,
              {[this](unsigned recargas) { lineas_.Recargar(recargas); }, [this] { cierre_.Guardar(true); }}),
      cierre_(c_, base_, tareas_),
      formato_(c_),
      lineas_(c_, {base_, lecturas_, tareas_, formato_}),
      archivo_(c_, tareas_, lineas_),
      opciones_(c_, base_, tareas_),
      relaciones_(c_, base_, tareas_),
      importador_(c_, {base_, tareas_, lineas_}),
      historial_(c_, {base_, tareas_}),
      informes_(c_),
      cambio_de_base_(c_, {lecturas_, tareas_, lineas_, cierre_, base_}),
      primer_uso_(c_, {base_, formato_, opciones_}),
      inicio_(c_, {base_, lecturas_, archivo_, formato_, opciones_}) {
  importador_.importado_antes = [this] {
    std::vector<std::string> textos;
    std::string motivo;
    for (const corridas::ImportadaAntes& repetida : historial_.YaImportado(motivo))
      textos.push_back(corridas::TextoDe(repetida));
    if (!motivo.empty()) textos.push_back(std::move(motivo));
    return textos;
  };
  lineas_.antes_de_leer = [this] { primer_uso_.Mirar(); };
}

}  // namespace app
