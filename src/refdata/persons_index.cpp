#include "refdata/persons_index.h"

#include <utility>

namespace refdata {

int PersonsIndex::Buscar(std::string_view clave, int columna) const {
  if (clave.empty() || columna < 0 || columna >= static_cast<int>(kColumnasPersona)) return -1;
  const auto c = static_cast<std::size_t>(columna);
  Indice& indice = por_clave_[c];
  if (!indexada_[c]) {
    indice.reserve(filas_.size());
    // emplace keeps what is there, so that the first row of a shared key wins
    for (std::size_t i = 0; i < filas_.size(); ++i) indice.emplace(filas_[i][c], static_cast<int>(i));
    indexada_[c] = true;
  }
  const auto it = indice.find(clave);
  return it == indice.end() ? -1 : it->second;
}

void PersonsIndex::Reemplazar(std::vector<Fila> filas) {
  filas_ = std::move(filas);
  for (auto& indice : por_clave_) indice.clear();
  indexada_.fill(false);
}

}  // namespace refdata
