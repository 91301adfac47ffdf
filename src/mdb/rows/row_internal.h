// Cutting the bytes of a row into those of its columns.
#pragma once

#include <array>

#include "mdb/rows/table.h"

namespace mdb::internal {

// Bytes of a value of a type that has but one width; 0 for the others, and for a Boolean, which stands in the
// null mask.
std::uint16_t AnchoDeTipo(TipoColumna tipo);
// Whether a new column of the type stands among the variable ones (that of a file is told by its flag).
bool EsDeLargoVariable(TipoColumna tipo);
// Bytes of a fixed column, by its type.
std::size_t AnchoFijo(const Columna& columna);
// A row as cut for reading: what does not depend on the column is worked out once.
class FilaAbierta {
 public:
  // Throws Danio when the row's own lengths do not fit in it.
  FilaAbierta(const Cabecera& cabecera, const Definicion& definicion, Vista bytes);
  Crudo De(const Columna& columna) const;

 private:
  void AbrirJet3(std::size_t mascara);
  void AbrirJet4(std::size_t mascara);
  Vista Variable(unsigned i) const;

  Vista bytes_, mascara_;
  bool jet3_;
  unsigned columnas_;
  unsigned variables_ = 0;                 // that the row has
  std::size_t fin_;                        // where the columns' bytes may reach
  std::size_t tabla_ = 0;                  // Jet 4: of the first variable's offset; the next ones before it
  std::array<std::uint16_t, 257> inicio_;  // Jet 3: of each variable column, and the end of the last
};

// As Decodificar, into a value whose memory is reused when it is of the right kind.
void DecodificarEn(Paginas& paginas, const Columna& columna, Vista bytes, Dato& destino);

}  // namespace mdb::internal
