#include "formula/evaluador/evaluator_internal.h"

namespace formula {

// Whether a separator splits depends on all that stands before it: a ")" too many early in the text makes up
// for a "(" later on. One pass, whatever the number of pieces.
std::vector<std::string_view> SepararFueraDeParentesis(std::string_view texto, char separador) {
  std::vector<std::string_view> piezas;
  long long abiertos = 0;
  std::size_t desde = 0;
  for (std::size_t i = 0; i < texto.size(); ++i) {
    const char c = texto[i];
    if (c == separador) {
      if (abiertos <= 0) {
        piezas.push_back(texto.substr(desde, i - desde));
        desde = i + 1;
      }
    } else if (c == '(') {
      ++abiertos;
    } else if (c == ')') {
      --abiertos;
    }
  }
  piezas.push_back(texto.substr(desde));
  return piezas;
}

}  // namespace formula
