// All rows of a result. Rows are materialised when the statement runs; copying shares nothing.
// A field or row that the result does not have is db::Error from every reader: an engine may answer with
// fewer columns than it was asked for.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/valor.h"

namespace db {

struct Columna {
  std::string nombre;
  base::Tipo tipo = base::Tipo::Nulo;  // Nulo: not known before the rows; each value has its own type
};
using Columnas = std::vector<Columna>;

class Recordset {
 public:
  Recordset() = default;
  // `celdas` row by row; throws db::Error when they do not fill whole rows. The column list is shared with
  // the engine's statement cache.
  Recordset(std::shared_ptr<const Columnas> columnas, std::vector<base::Valor> celdas,
            std::string fuente = {});

  const Columnas& Campos() const;
  // Index of the column whatever its case, -1 when there is none.
  int Posicion(std::string_view nombre) const;
  std::size_t Cantidad() const { return filas_; }
  bool Vacio() const { return filas_ == 0; }
  const base::Valor& En(std::size_t campo, std::size_t fila) const {
    if (static_cast<unsigned>(campo >= ancho_) | static_cast<unsigned>(fila >= filas_))
      ThrowOutside(campo, fila);  // one branch: 100,000 rows are read by place
    return celdas_[fila * ancho_ + campo];
  }

  // Of the first row. Both throw db::Error when there is none, or no such column.
  const base::Valor& Campo(std::size_t campo) const;
  const base::Valor& Campo(std::string_view nombre) const;

  // The SQL text it came from.
  const std::string& Fuente() const { return fuente_; }

 private:
  [[noreturn]] void ThrowOutside(std::size_t campo, std::size_t fila) const;

  std::shared_ptr<const Columnas> columnas_;
  std::vector<base::Valor> celdas_;
  std::string fuente_;
  std::size_t ancho_ = 0;
  std::size_t filas_ = 0;
};

}  // namespace db
