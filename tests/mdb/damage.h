// Damage planted into copies of the samples: what finds the right byte, and what asks the check about it.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "mdb/corpus.h"
#include "mdb/indexes/index_page.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/pages/page_map.h"
#include "mdb/pages/page_rows.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"

namespace mdb_test {

using mdb::Bytes;
using mdb::IdFila;
using mdb::NumPagina;

constexpr std::size_t kMascara = 27, kEntradas = 480;  // of an index page

// A copy of a file, with what one needs to find the right byte.
class Obra {
 public:
  explicit Obra(const std::string& archivo);

  std::unique_ptr<mdb::PaginasEnMemoria> paginas;

  Bytes& P(NumPagina n) { return paginas->Modificar(n); }
  mdb::Definicion Def(const std::string& tabla);
  NumPagina Datos(const std::string& tabla, std::size_t k = 0);  // its k-th page of rows
  std::vector<IdFila> Filas(const std::string& tabla);
  mdb::ArbolDeIndice Arbol(const std::string& tabla, std::size_t indice);
  mdb::PaginaDeIndice Indice(NumPagina n) { return mdb::PaginaDeIndice::Leer(*paginas, n, 0); }
  std::vector<mdb::Entrada> Entradas(const std::string& tabla, std::size_t indice);
  struct Lugar {
    NumPagina pagina;
    std::size_t pos, largo;
  };
  // Where the bytes of a row, or of one of its columns, stand.
  Lugar Fila(const std::string& tabla, IdFila id);
  Lugar Celda(const std::string& tabla, IdFila id, const std::string& columna);
  // The first row whose column is this.
  IdFila Donde(const std::string& tabla, const std::string& columna, const mdb::Dato& valor);
  // In the first page of a definition: its columns, and its real and logical indexes.
  std::size_t PosColumna(const std::string& tabla, std::size_t k);
  std::size_t PosReal(const std::string& tabla, std::size_t k);
  std::size_t PosLogico(const std::string& tabla, std::size_t k);
  // The row of a map.
  Lugar Mapa(mdb::Puntero mapa);
};

constexpr std::size_t Ranura(std::size_t fila) { return 14 + 2 * fila; }

inline void Sumar16(Bytes& v, std::size_t pos, int n) {
  mdb::Poner16(v, pos, static_cast<std::uint16_t>(mdb::U16(v, pos) + n));
}

struct Dano {
  const char* nombre;
  const char* archivo;
  std::function<NumPagina(Obra&)> plantar;  // returns the page that the finding must name, or 0
  const char* hallazgo;
};

constexpr const char *kCompuesto = "compound.mdb", *kIndices = "relations.mdb", *kMovidas = "moved.mdb",
                     *kConsultas = "queries.mdb", *kDosPaginas = "long.mdb";

// Each in a copy of its own: the check finds nothing before, and afterwards an error with these words that
// names the page.
void Plantar(const std::vector<Dano>& danos);

}  // namespace mdb_test
