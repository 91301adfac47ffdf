// The rows of one table, for writing: encoded, placed, moved, with their long values. Knows no index.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "mdb/rows/long_value_write_internal.h"
#include "mdb/rows/row_encode_internal.h"
#include "mdb/tables/table_writer.h"

namespace mdb::internal {

// For one batch of changes; the definition must outlive it.
class EscritorDeFilas {
 public:
  EscritorDeFilas(Paginas& paginas, const Definicion& definicion);
  // All throw base::Error for values that the table does not hold, or a row that is not there; Danio.
  IdFila Insertar(const Fila& fila);
  void Cambiar(const CambioDeFila& cambio);
  void Borrar(IdFila fila);

 private:
  Paginas& paginas_;
  const Definicion& definicion_;
  ArmadorDeFilas armador_;
  AlmacenDeFilas almacen_;
  std::map<std::size_t, std::unique_ptr<ValoresLargos>> largos_;  // by position of the column
  // The row in hand: its columns, and the bytes of those that are not views of a stored row.
  std::vector<Crudo> crudos_;
  std::vector<Bytes> bytes_;
  Bytes fila_;

  ValoresLargos& Largos(std::size_t columna);
  void PonerValor(std::size_t columna, const Dato& dato);
  void Acortar();
  void Armar();
  void Colocar(IdFila fila, IdFila lugar);
};

// The bytes of a row that must be there; throws base::Error when it is not.
BytesDeFila ExigirFila(Paginas& paginas, const Definicion& definicion, IdFila fila);

}  // namespace mdb::internal
