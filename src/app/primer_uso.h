// A file that the options make nothing of: how it seems to be cut is proposed before it is read.
#pragma once

#include <optional>
#include <string>

#include "app/base_de_datos.h"
#include "app/formato.h"
#include "app/opciones.h"
#include "importfile/proponer_formato.h"

namespace app {

class PrimerUso {
 public:
  struct Partes {
    const BaseDeDatos& base;
    Formato& formato;
    Opciones& opciones;
  };
  PrimerUso(Contexto& contexto, const Partes& partes);

  // Looks at the file of the path. Where the current options do not cut it, or none of its keys or codes is
  // known, it shows the first lines as they would be cut and asks; yes puts the proposal into the options.
  // Once for each state of a file, and only when the start asked for it.
  void Mirar();

 private:
  void Aplicar(const settings::Settings& propuestas);

  Contexto& c_;
  Estado& e_;
  Partes p_;
  std::string ruta_;  // of the last proposal
  std::optional<base::FileStamp> archivo_;
};

}  // namespace app
