#include "mdb/definitions/definition.h"

namespace mdb {

// All of it stands on the first page, whatever the length of the definition: 32 indexes end long before the
// page does.
void EscribirContadores(Paginas& paginas, const Definicion& definicion) {
  constexpr std::size_t kFilas = 16, kUltimoAutomatico = 20, kIndices = 63, kDeIndice = 12, kDistintas = 4;
  if (paginas.Cab().Jet3()) throw base::Error("Los archivos de Access 97 solo se leen");
  Bytes& p = paginas.Modificar(definicion.Pagina());
  if (U8(p, 0) != 2) DanioEnPagina(definicion.Pagina(), "no es la definición de una tabla");
  Poner32(p, kFilas, definicion.filas);
  Poner32(p, kUltimoAutomatico, static_cast<std::uint32_t>(definicion.ultimo_automatico));
  for (std::size_t i = 0; i < definicion.reales.size(); ++i) {
    Poner32(p, kIndices + i * kDeIndice, definicion.reales[i].entradas);
    Poner32(p, kIndices + i * kDeIndice + kDistintas, definicion.reales[i].distintas);
  }
}

}  // namespace mdb
