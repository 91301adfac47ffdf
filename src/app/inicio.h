// Start-up, in its order: the options, the base, the relations.
#pragma once

#include <string>
#include <string_view>

#include "app/archivo.h"
#include "app/formato.h"
#include "app/lecturas.h"
#include "app/opciones.h"

namespace app {

class Inicio {
 public:
  struct Partes {
    BaseDeDatos& base;
    Lecturas& lecturas;
    Archivo& archivo;
    Formato& formato;
    Opciones& opciones;
  };
  Inicio(Contexto& contexto, const Partes& partes);

  // On a command line. False: the program is to end at once, with an error when motivo_fin says why.
  bool Iniciar(std::string_view linea_de_comandos);
  // On a reference and an import file already told apart.
  bool IniciarCon(std::string referencia, std::string archivo);

 private:
  bool PrepararVentana();
  void LeerOpciones(std::string_view ajustes);
  bool ElegirBase(std::string_view linea);
  bool TerminarInicio();

  Contexto& c_;
  Estado& e_;
  Partes p_;
};

}  // namespace app
