#include "formula/vectores/vector_utils.h"

namespace formula {

std::ptrdiff_t FindInColumn(std::string_view valor, const Vector& vector, std::size_t columna) {
  for (std::size_t i = 0; i < vector.Cantidad(); ++i)
    if (vector.Campo(columna, i) == valor) return static_cast<std::ptrdiff_t>(i);
  return -1;
}

std::ptrdiff_t FindInColumn(std::string_view valor, const std::vector<std::string>& lista) {
  for (std::size_t i = 0; i < lista.size(); ++i)
    if (lista[i] == valor) return static_cast<std::ptrdiff_t>(i);
  return -1;
}

}  // namespace formula
