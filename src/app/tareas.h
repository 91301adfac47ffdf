// One load or import at a time: what is asked for meanwhile waits for its end.
#pragma once

#include <functional>

#include "app/contexto.h"

namespace app {

// What can be asked to be read again, as bits.
enum Recarga : unsigned {
  kEmpresa = 1,
  kTipos = 2,
  kTablas = 4,
  kPersonas = 8,
  kConceptos = 16,
  kRelaciones = 32,
  kGrilla = 64
};

class Tareas {
 public:
  // What a task leaves to others. Both are set before the first of them begins.
  struct Encargos {
    std::function<void(unsigned recargas)> recargar;
    std::function<void()> guardar;
  };
  Tareas(Contexto& contexto, Encargos encargos);

  bool EnCurso() const { return c_.estado.tarea != Tarea::Ninguna; }
  bool CierrePedido() const { return cierre_pedido_; }
  void Empezar(Tarea tarea);
  void Terminado();
  // Reloads now, or when the load or import under way has ended.
  void Pedir(unsigned recargas);
  // Saves when the task under way has ended.
  void PedirResguardo() { resguardo_pendiente_ = true; }
  // Nothing is read again any more. False while a task runs: a load is told to stop.
  bool PedirCierre();
  // The operator wants the load or the import under way to stop.
  void Cancelar();

 private:
  Contexto& c_;
  Encargos encargos_;
  unsigned pendientes_ = 0;
  bool resguardo_pendiente_ = false;
  bool cierre_pedido_ = false;
};

}  // namespace app
