#include "app/tareas.h"

#include <utility>

namespace app {

Tareas::Tareas(Contexto& contexto, Encargos encargos) : c_(contexto), encargos_(std::move(encargos)) {}

void Tareas::Empezar(Tarea tarea) {
  c_.estado.tarea = tarea;
  c_.barra.Cancelar(false);
  c_.Cambio();
}

void Tareas::Terminado() {
  c_.estado.tarea = Tarea::Ninguna;
  c_.barra.Stage("");
  const unsigned recargas = std::exchange(pendientes_, 0U);
  if (std::exchange(resguardo_pendiente_, false)) encargos_.guardar();
  c_.Cambio();
  if (recargas != 0 && !cierre_pedido_) encargos_.recargar(recargas);
}

void Tareas::Pedir(unsigned recargas) {
  if (EnCurso())
    pendientes_ |= recargas;
  else
    encargos_.recargar(recargas);
}

bool Tareas::PedirCierre() {
  cierre_pedido_ = true;
  if (c_.estado.tarea == Tarea::Carga) c_.barra.Cancelar(true);  // an import ends first
  return !EnCurso();
}

void Tareas::Cancelar() {
  if (!EnCurso()) return;
  c_.barra.Cancelar(true);
  c_.Cambio();
}

}  // namespace app
