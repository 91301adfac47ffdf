// What a batch of changes does to the indexes of a table: gathered first, checked, then done in the order of
// the keys.
#pragma once

#include <string>
#include <vector>

#include "mdb/indexes/index_tree.h"
#include "mdb/tables/table_writer.h"

namespace mdb::internal {

class CambiosDeIndices {
 public:
  CambiosDeIndices(Paginas& paginas, Definicion& definicion);

  // Positions of the columns that some index has.
  const std::vector<std::size_t>& Columnas() const { return columnas_; }
  // A row that goes away, and one that comes; `nueva` is the row's place among those that come, and its
  // values must stay where they are until QuitarYRevisar. They throw ErrorDeClave for a Null where an index
  // takes none.
  void Sale(IdFila fila, const Fila& valores);
  void Entra(std::size_t nueva, const Fila& valores);
  // A row that stays with other values in these columns: only keys that differ are touched.
  void Cambia(IdFila fila, const Fila& antes, const Fila& despues, const std::vector<bool>& cambiadas);

  // Takes out the old entries; throws ErrorDeClave when a new key is there already, or twice among the new.
  void QuitarYRevisar();
  // Puts in the new ones; `nuevas` are the identities of the rows that came.
  void Poner(const std::vector<IdFila>& nuevas);

 private:
  struct Salida {
    Entrada entrada;
    bool sin_clave = false;  // the key cannot be made: found by its row
  };
  struct Llegada {
    Bytes clave;
    IdFila fila;            // of a row that stays
    std::size_t nueva = 0;  // of one that comes
    bool es_nueva = false, todos_nulos = false;
    const Fila* valores = nullptr;  // of a row that comes
    std::string texto;              // for a message about one that stays
  };
  struct Uno {
    std::size_t cual = 0;
    bool unico = false, requerido = false;
    std::vector<std::size_t> columnas;  // positions
    std::vector<Salida> salen;
    std::vector<Llegada> llegan;
  };
  Paginas& paginas_;
  Definicion& definicion_;
  std::vector<Uno> indices_;
  std::vector<std::size_t> columnas_;

  IndiceReal& Real(const Uno& u) const { return definicion_.reales[u.cual]; }
  ArbolDeIndice Arbol(const Uno& u) const { return {paginas_, definicion_.Pagina(), Real(u)}; }
  void Sale(Uno& u, IdFila fila, const Fila& valores);
  void Llega(Uno& u, Llegada llegada, const Fila& valores);
  void Revisar(Uno& u);
  std::string NombreDe(const Uno& u) const;
  std::string Valores(const Uno& u, const Fila& valores) const;
};

}  // namespace mdb::internal
