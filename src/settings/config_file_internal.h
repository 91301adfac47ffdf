// The two tags of an entry.
#pragma once

#include <string>
#include <string_view>

namespace settings {

struct Etiquetas {
  std::string apertura, cierre;
};

inline Etiquetas EtiquetasDe(std::string_view clave) {
  Etiquetas etiquetas{"[", "[/"};
  etiquetas.apertura.append(clave).append("]");
  etiquetas.cierre.append(clave).append("]");
  return etiquetas;
}

}  // namespace settings
