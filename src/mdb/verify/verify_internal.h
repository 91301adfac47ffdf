// The check of a whole file: what its parts share.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "mdb/definitions/definition.h"
#include "mdb/rows/value.h"
#include "mdb/verify/verify.h"

namespace mdb::internal {

std::string Entre(const std::string& nombre);                             // «nombre»
std::string Cuantas(std::size_t n, const char* una, const char* varias);  // "una", or "7 varias"
std::string DeFila(IdFila fila);                                          // "la fila 3 de la página 12"

// A page map, and the range of pages that it can name.
struct MapaVisto {
  bool legible = false;
  NumPagina inicio = 0;
  std::uint64_t fin = 0;
  std::vector<NumPagina> paginas;  // of those that the file has, rising
};

// The findings so far and who owns which page.
class Revision {
 public:
  Revision(Paginas& de, std::size_t tope);
  Paginas& paginas;
  Informe informe;

  // `donde` names the table, and the index ("tabla «Clientes», índice «PrimaryKey»"); may be empty.
  void Error(NumPagina pagina, const std::string& donde, const std::string& motivo);
  void Nota(NumPagina pagina, const std::string& donde, const std::string& motivo);
  // Runs a step; what it throws becomes a finding. True when it ended well.
  template <typename Paso>
  bool Probar(NumPagina pagina, const std::string& donde, Paso&& paso) {
    try {
      paso();
      return true;
    } catch (const base::Error& e) {
      Anotar(pagina, donde, e.Descripcion());
      return false;
    }
  }

  using Dueno = std::uint32_t;
  static constexpr Dueno kNadie = 0, kMapas = 1, kSistema = 2;
  Dueno NuevoDueno(std::string nombre);
  // Claims a page. False, with a finding, for a page that the file does not have or that somebody else has;
  // pages of maps may be claimed as such again.
  bool Tomar(NumPagina pagina, Dueno dueno, const std::string& donde);
  bool Tomada(NumPagina pagina) const { return duenos_[pagina] != kNadie; }
  const std::string& NombreDe(NumPagina pagina) const { return nombres_[duenos_[pagina]]; }

  // Reads a map, whose own pages are claimed. A pointer with page 0 is an empty one.
  MapaVisto Mapa(Puntero mapa, Dueno dueno, const std::string& donde);
  // The slots of a page of rows: their offsets, flags and the free-space field. False when its rows cannot be
  // trusted.
  bool PaginaDeFilas(NumPagina numero, const std::string& donde);
  // The pages of maps, once each.
  void PaginasDeMapas();

  std::unordered_set<std::uint64_t> piezas;  // rows of long values that some row has named

 private:
  void Anotar(NumPagina pagina, const std::string& donde, const std::string& descripcion);
  void Agregar(Hallazgo::Grado grado, NumPagina pagina, const std::string& donde, const std::string& motivo);
  void LeerBits(Puntero mapa, const std::string& donde, Dueno dueno, MapaVisto& visto);
  std::size_t tope_;
  std::vector<Dueno> duenos_;
  std::vector<std::string> nombres_;
  std::set<Puntero> mapas_;
};

// One entry of the catalog as the check needs it.
struct ObjetoVisto {
  std::int64_t id = 0, padre = 0, tipo = 0;
  std::string nombre;
  IdFila fila;
};

// A row's values go here; only the columns that were asked for are there.
using AlVer = std::function<void(IdFila, const Fila&)>;

// The definition's own bytes: length, constants, numbers of columns.
void RevisarDefinicion(Revision& revision, const Definicion& definicion, const std::string& donde);
// Everything of one table: definition, maps, pages, rows, long values, indexes. `columnas` are decoded for
// `al_ver` in addition to what the check itself needs.
void RevisarTabla(Revision& revision, const Definicion& definicion,
                  const std::vector<std::size_t>& columnas = {}, const AlVer& al_ver = {});

// The rows of a table that have been seen, in the order of their identities, with what each index must hold.
struct FilasVistas {
  struct DeIndice {
    bool con_claves = false;           // keys of this index can be made
    Bytes claves;                      // one after another
    std::vector<std::size_t> fines;    // where each row's key ends
    std::vector<std::uint8_t> marcas;  // per row
    static constexpr std::uint8_t kTodosNulos = 1, kSinClave = 2, kDudosa = 4, kEntrada = 8, kAlgunNulo = 16;
    Vista Clave(std::size_t fila) const;
  };
  std::vector<IdFila> ids;
  std::vector<bool> legible;
  std::vector<DeIndice> indices;
};
// The tree of one real index, and its entries against the rows.
void RevisarIndice(Revision& revision, const Definicion& definicion, std::size_t indice, FilasVistas& filas);

// Between the tables.
using Tablas = std::map<NumPagina, Definicion>;
void RevisarRelaciones(Revision& revision, const Tablas& tablas, const std::vector<ObjetoVisto>& objetos);
void RevisarConsultas(Revision& revision, const std::vector<ObjetoVisto>& objetos);

}  // namespace mdb::internal
