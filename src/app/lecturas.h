// What is read from the base and from the settings, and when it is read again.
#pragma once

#include <string>

#include "app/base_de_datos.h"
#include "app/tareas.h"

namespace app {

class Lecturas {
 public:
  Lecturas(Contexto& contexto, BaseDeDatos& base);

  // At the start: opens the base and reads what its first showing needs.
  void AbrirBase(std::string referencia);
  // The base and its company alone. False: it is not open.
  bool Abrir(const std::string& referencia);
  // The same for another base while the program runs: "", or why it cannot be opened (see
  // BaseDeDatos::Cambiar). What was read from the one before is forgotten.
  std::string CambiarBase(const std::string& referencia);
  void LevantarRelaciones();
  // Reads again what is asked for; after a fault, everything. False: a fault of the base ended it.
  bool Releer(unsigned recargas);

 private:
  void LeerTablas(unsigned recargas);
  void LeerTablasUsuario();
  void CargarVecDePersonas();
  void ActuLSTdeConceptos();
  void CargarTiposLiquidacion();
  void LeerPersonas();
  void PonerCentros();
  void Olvidar();

  Contexto& c_;
  Estado& e_;
  BaseDeDatos& base_;
};

}  // namespace app
