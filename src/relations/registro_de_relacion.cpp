#include "base/number.h"
#include "relations/code_relations.h"

namespace relations {
namespace {

constexpr std::string_view kGuion = " - ";

// An id that is no number is 0, which is nobody's.
std::int64_t EnteroDe(std::string_view texto) {
  std::int64_t entero = 0;
  base::ErrorIgnorado("RegistroDeRelacion", nullptr,
                      [&] { entero = base::EnteroBancario(base::Parse(texto)); });
  return entero;
}

}  // namespace

std::string RegistroDeRelacion(const DatosRelacion& datos) {
  const std::string codigo = datos.texto_combo.substr(0, datos.texto_combo.find(kGuion));
  return codigo + "*" + std::to_string(datos.color) + "*," + datos.txtTipo + ",*" +
         std::to_string(EnteroDe(datos.id_concepto)) + "*" + datos.lblConcepto + "*" +
         std::to_string(datos.cc);
}

}  // namespace relations
