// Another base while the program runs.
#pragma once

#include <string>

#include "app/cierre.h"
#include "app/lecturas.h"
#include "app/lineas.h"

namespace app {

class CambioDeBase {
 public:
  struct Partes {
    Lecturas& lecturas;
    Tareas& tareas;
    Lineas& lineas;
    Cierre& cierre;
    BaseDeDatos& base;
  };
  CambioDeBase(Contexto& contexto, const Partes& partes);

  // Asks for the base. True: another one is open.
  bool Elegir();
  // Saves what closing saves, and goes through the order of the start-up on that reference; the file of the
  // path is loaded again, and no row of the old base stays. False: it cannot be opened, which is told, and
  // the base that was open stays so; or a load or an import runs.
  bool Abrir(const std::string& referencia);

 private:
  void VaciarGrilla();

  Contexto& c_;
  Estado& e_;
  Partes p_;
};

}  // namespace app
