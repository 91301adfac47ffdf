// Shutdown: what is saved, and where when it cannot be.
#pragma once

#include <optional>
#include <string>

#include "app/base_de_datos.h"
#include "app/tareas.h"

namespace app {

class Cierre {
 public:
  Cierre(Contexto& contexto, const BaseDeDatos& base, Tareas& tareas);

  // False while a load runs: it is told to stop, and Unload is to be called again when it has. What cannot be
  // saved is written beside, and a box says where; `callado`: nobody is there to read boxes.
  bool Unload(bool callado);
  // The desktop session may be about to end: saves as closing does, without a word and without closing.
  void Resguardar();
  void Guardar(bool callado);

 private:
  // Why what they are about was not saved; "" when it was, or when nothing is lost by it.
  std::string GuardarOpciones();
  std::string GuardarRelaciones();
  bool RelacionesDeLaOpcion() const;
  bool RelacionesEditadas() const;
  std::optional<std::string> ConceptosAGuardar() const;
  std::string EscribirAparte() const;

  Contexto& c_;
  Estado& e_;
  const BaseDeDatos& base_;
  Tareas& tareas_;
};

}  // namespace app
