// A tree of an index in a file of its own, beside a set that says what it must hold.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <set>
#include <string>

#include "mdb/indexes/index_page.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/pages/pages.h"

namespace mdb_test {

struct Arbol {
  std::unique_ptr<mdb::PaginasEnMemoria> paginas;
  mdb::NumPagina tabla = 0;
  mdb::IndiceReal indice;
  mdb::ArbolDeIndice Abrir() const { return {*paginas, tabla, indice}; }
};

// An empty tree in a new file.
Arbol ArbolNuevo();

// Fixed random numbers: one below `hasta`.
using Azar = std::mt19937;
std::uint32_t Uno(Azar& azar, std::uint32_t hasta);

// Keys and rows of short trees, in the order of their numbers.
mdb::Bytes Numero(std::uint32_t n);
mdb::IdFila Fila(std::uint32_t n);
Arbol ConNumeros(const std::vector<std::uint32_t>& numeros);

struct Aspecto {
  std::size_t niveles = 0, paginas = 0, bytes = 0;  // bytes of entries, prefixes undone
};

// Walks the tree by its bytes and holds it to every rule of its format: types, owners, free fields, order,
// tails, keys of nodes, links of each level, level bytes, the page map, children a node has. Every violation
// is a failure of the running test. Returns the entries through `entradas` when given.
Aspecto Revisar(const Arbol& arbol, std::vector<mdb::Entrada>* entradas = nullptr);

// Revisar, and the entries compared with the model.
::testing::AssertionResult EsIgual(const Arbol& arbol, const std::set<mdb::Entrada>& modelo);

}  // namespace mdb_test
