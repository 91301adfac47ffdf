#include "base/error.h"

namespace base {

std::string ErrorDescription(int number) {
  switch (number) {
    case 5:
      return "Argumento o llamada a procedimiento no válidos";
    case 6:
      return "Desbordamiento";
    case 9:
      return "El subíndice está fuera del intervalo";
    case 11:
      return "División por cero";
    case 13:
      return "No coinciden los tipos";
    case 53:
      return "No se ha encontrado el archivo";
    case 70:
      return "Permiso denegado";
    case 93:
      return "Cadena de modelo no válida";
    case 94:
      return "Uso no válido de Null";
    default:
      return "Error " + std::to_string(number);
  }
}

}  // namespace base
