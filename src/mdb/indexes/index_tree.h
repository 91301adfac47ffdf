// The tree of one real index: nodes and leaves (pages of types 3 and 4).
#pragma once

#include <compare>
#include <functional>
#include <vector>

#include "mdb/definitions/definition.h"

namespace mdb {

struct Entrada {
  Bytes clave;
  IdFila fila;
  std::strong_ordering operator<=>(const Entrada& otra) const;  // the order of the leaves
  bool operator==(const Entrada&) const = default;
};

class ArbolDeIndice {
 public:
  // `tabla` is the page of the definition, written into each index page.
  ArbolDeIndice(Paginas& paginas, NumPagina tabla, const IndiceReal& indice)
      : paginas_(paginas), tabla_(tabla), raiz_(indice.raiz), mapa_(indice.mapa) {}

  // In the order of the leaves; false ends the walk. Prefixes are undone. Throws Danio on pages that come
  // back, are of another type or table.
  void Recorrer(const std::function<bool(const Entrada&)>& visita) const;
  // Whether there is an entry with this key, whatever its row.
  bool Hay(Vista clave) const;
  bool Tiene(Vista clave, IdFila fila) const;
  // The entry must not be there. The root keeps its page number.
  void Insertar(Vista clave, IdFila fila);
  // False when it is not there.
  bool Borrar(Vista clave, IdFila fila);
  // Removes the entry of a row whatever its key, by walking all leaves; for keys that another program made
  // otherwise.
  bool BorrarPorFila(IdFila fila);
  // Fills an empty tree from sorted entries, pages well filled.
  void Construir(const std::vector<Entrada>& ordenadas);
  // Frees all pages but the root, which becomes an empty leaf.
  void Vaciar();

 private:
  Paginas& paginas_;
  NumPagina tabla_, raiz_;
  Puntero mapa_;
};

// A new root: an empty leaf, entered in the map.
NumPagina NuevaRaiz(Paginas& paginas, NumPagina tabla, Puntero mapa);

}  // namespace mdb
