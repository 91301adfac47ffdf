// The pages of one owner: where its rows find room, and what becomes of pages that empty.
#pragma once

#include <unordered_set>
#include <vector>

#include "mdb/pages/page_rows.h"

namespace mdb::internal {

// Keeps the owner's two page maps: a page leaves the map of those with room when little is left on it, and
// comes back when a row goes or shrinks; a page without rows is given back to the file. Lives for one batch
// of changes, during which nobody else may take rows from these pages.
class AlmacenDeFilas {
 public:
  // `dueno` is what stands in the pages: the table's definition page, or kDuenoLargos. `libres` may be none.
  AlmacenDeFilas(Paginas& paginas, std::uint32_t dueno, Puntero propias, Puntero libres)
      : paginas_(paginas), dueno_(dueno), propias_(propias), libres_(libres) {}

  // On a page with room, or a new one. The cost does not depend on how many pages there are.
  IdFila Agregar(Vista bytes, std::uint16_t marcas = 0);
  // Other bytes and flags for a row in its place; false, and nothing changed, when its page has no room.
  bool Cambiar(IdFila fila, Vista bytes, std::uint16_t marcas = 0);
  void Quitar(IdFila fila);

 private:
  struct Abierta {
    NumPagina numero = 0;
    std::size_t hueco = 0;
  };
  Paginas& paginas_;
  std::uint32_t dueno_;
  Puntero propias_, libres_;
  std::vector<Abierta> abiertas_;      // with room, the last used behind
  std::vector<NumPagina> pendientes_;  // of the map, not looked at yet
  bool leido_ = false;
  std::unordered_set<NumPagina> soltadas_;  // given back meanwhile

  Bytes& Abrir(NumPagina numero);
  NumPagina Elegir(std::size_t largo);
  NumPagina BuscarPendiente(std::size_t largo);
  NumPagina PaginaNueva();
  void Anotar(NumPagina numero, Vista pagina);
  void Cerrar(NumPagina numero);
  void Soltar(NumPagina numero);
};

}  // namespace mdb::internal
