#include "base/text.h"
#include "importfile/line_formats.h"

namespace importfile {

ResultadoCorte CortarDelimitada(std::string_view linea, std::string_view separador) {
  return {base::Split(linea, separador), base::Replace(linea, separador, "*")};
}

}  // namespace importfile
