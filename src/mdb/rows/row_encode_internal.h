// From values to the bytes of a row (Jet 4).
#pragma once

#include <string>
#include <vector>

#include "mdb/rows/table.h"

namespace mdb::internal {

constexpr std::size_t kFilaMasLarga = 4060;

// "columna "X" de la tabla "T"", for messages.
std::string NombreCompleto(const Definicion& definicion, const Columna& columna);

// The stored bytes of a value that is not Null, at the end of `destino`; for a Memo or OLE the long value
// itself, for a Boolean one byte. Throws base::Error for a value of another kind or one that the column does
// not hold.
void CodificarValor(const Definicion& definicion, const Columna& columna, const Dato& dato, Bytes& destino);
// Text as Jet 4 stores it: UTF-16, or a byte a character when the column compresses and the text allows it.
// Throws base::Error for a text that no reader would give back.
void CodificarTexto(std::string_view texto, bool comprime, Bytes& destino);

// Lays out rows of one definition.
class ArmadorDeFilas {
 public:
  // Throws Danio when the definition's numbers do not fit together.
  explicit ArmadorDeFilas(const Definicion& definicion);
  std::size_t Largo(const std::vector<Crudo>& crudos) const;
  // One view for each column of the definition, absent for Null; `fila` is emptied first.
  void Armar(const std::vector<Crudo>& crudos, Bytes& fila) const;

 private:
  const Definicion& definicion_;
  std::size_t fijos_ = 2;              // where the variable columns begin
  std::vector<std::size_t> variable_;  // by place among the variable ones: position of the column, or none
};

}  // namespace mdb::internal
