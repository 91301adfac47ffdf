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
      inicio_(c_, {base_, lecturas_, archivo_, formato_, opciones_}) {}

}  // namespace app
