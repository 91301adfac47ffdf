// The check of a whole Access file.
#pragma once

#include <string>

#include "mdb/verify/verify.h"

namespace app {

enum class Acceso { Bien, NoExiste, NoSeLee };

struct Verificacion {
  Acceso acceso = Acceso::Bien;
  std::string motivo;  // why it could not be read, in Spanish
  mdb::Report informe;
};

// Opens the file for reading and checks all of it; its password does not matter. Never throws for what a file
// can hold.
Verificacion VerificarArchivo(const std::string& ruta);

}  // namespace app
