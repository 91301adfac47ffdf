// The way from the root of an index to one of its leaves, and what a change does along it.
#pragma once

#include <functional>
#include <vector>

#include "mdb/indexes/index_page.h"

namespace mdb {

struct PasoDeArbol {
  PaginaDeIndice pagina;
  std::size_t lugar = 0;  // of the child taken (the tail is the last), or of the entry in a leaf
  bool cambiada = false;
};
// From the root down. Each page differs from the others.
using Camino = std::vector<PasoDeArbol>;

// Which tree: its pages, the page of the table's definition, the root and the index's page map.
struct DatosDeArbol {
  Paginas& paginas;
  NumPagina tabla;
  NumPagina raiz;
  Puntero mapa;
};

// A page of the tree; a node without a tail gets its last child as one, and `completada`, when given, tells.
PaginaDeIndice LeerDeArbol(const DatosDeArbol& arbol, NumPagina numero, bool* completada = nullptr);
// To the leaf where (key, row) belongs; `lugar` of the leaf is the first entry not before it.
Camino Bajar(const DatosDeArbol& arbol, Vista clave, IdFila fila);
// Calls `visita` with the way to each leaf, from left to right; true ends the walk, and is returned.
// `vistas`, when given, gets the numbers of all pages in the order in which they are met.
bool PorHojas(const DatosDeArbol& arbol, const std::function<bool(Camino&)>& visita,
              std::vector<NumPagina>* vistas = nullptr);

// The leaf at the end has a new entry at its `lugar`: writes everything that follows.
void GuardarInsercion(const DatosDeArbol& arbol, Camino& camino);
// The leaf at the end loses the entry at its `lugar`: the same.
void GuardarBorrado(const DatosDeArbol& arbol, Camino& camino);

// Pages of the index, kept in its map.
NumPagina NuevaPaginaDeArbol(const DatosDeArbol& arbol);
void LiberarPaginaDeArbol(const DatosDeArbol& arbol, NumPagina numero);
// Writes one neighbour of a page, which is 0 when there is none.
void PonerAnterior(const DatosDeArbol& arbol, NumPagina de, NumPagina anterior);
void PonerSiguiente(const DatosDeArbol& arbol, NumPagina de, NumPagina siguiente);
// Writes the page at `nivel` of the way; what does not fit goes to new pages at its left, which the node
// above learns of (it is not yet written). A root that does not fit moves away and becomes a node.
void GuardarPaso(const DatosDeArbol& arbol, Camino& camino, std::size_t nivel);
// The last entry below the page at `nivel` is now this one: the node above that names it is told.
void PonerClaveArriba(Camino& camino, std::size_t nivel, Vista clave, IdFila fila);

}  // namespace mdb
