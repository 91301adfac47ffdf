#include <algorithm>

#include "mdb/definitions/definition_internal.h"
#include "mdb/pages/page_map.h"

namespace mdb {
namespace {

constexpr std::size_t kCabecera = 8;

// How many pages hold the joined bytes: the first holds its header too, the others drop theirs.
std::size_t PaginasPara(std::size_t bytes, std::size_t tamano) {
  const std::size_t util = tamano - kCabecera;
  return std::max<std::size_t>(1, (bytes - kCabecera + util - 1) / util);
}

// The bytes 28 to 39 of a definition that is there: a counter of later versions, and leftovers of its maker.
void ConservarDesconocidos(Vista anterior, Bytes& bytes) {
  if (U8(anterior, 0) == 2) PonerBytes(bytes, 28, Trozo(anterior, 28, 12));
}

}  // namespace

void EscribirDefinicion(Paginas& paginas, Definicion& definicion) {
  if (paginas.Cab().version != Version::Jet4)
    throw base::Error("Las tablas de este formato de Access solo se leen");
  Bytes bytes = SerializarDefinicion(definicion);
  const std::size_t hacen_falta = PaginasPara(bytes.size(), paginas.Tamano());
  auto& suyas = definicion.paginas;
  if (!suyas.empty()) ConservarDesconocidos(*paginas.Leer(suyas.front()), bytes);
  while (suyas.size() > hacen_falta) {
    LiberarPagina(paginas, suyas.back());
    suyas.pop_back();
  }
  while (suyas.size() < hacen_falta) suyas.push_back(ReservarPagina(paginas));

  const std::size_t util = paginas.Tamano() - kCabecera;
  for (std::size_t i = 0; i < suyas.size(); ++i) {
    const std::size_t desde = kCabecera + i * util;
    const Vista trozo = Trozo(bytes, desde, std::min(util, bytes.size() - desde));
    Bytes& pagina = paginas.Modificar(suyas[i]);
    std::fill(pagina.begin(), pagina.end(), std::uint8_t{0});
    PonerCabeceraDeDefinicion(pagina, kCabecera + trozo.size(), i + 1 < suyas.size() ? suyas[i + 1] : 0);
    PonerBytes(pagina, kCabecera, trozo);
  }
}

}  // namespace mdb
