#include "mdb/pages/data_page_internal.h"

namespace mdb::internal {
namespace {
constexpr std::uint16_t kPosicion = 0x1FFF, kBanderas = 0xC000;
}

PaginaDeDatos::PaginaDeDatos(const Cabecera& cabecera, NumPagina numero, Vista bytes)
    : bytes_(bytes),
      numero_(numero),
      lista_(cabecera.Jet3() ? 10 : 14),
      cantidad_(U16(bytes, cabecera.Jet3() ? 8 : 12)) {
  if (bytes[0] != kPaginaDeDatos) DanioEnPagina(numero, "no es una página de datos");
  if (lista_ + 2U * cantidad_ > bytes.size()) DanioEnPagina(numero, "la lista de filas no cabe");
}

Ranura PaginaDeDatos::En(unsigned fila) const {
  if (fila >= cantidad_) DanioEnPagina(numero_, "no tiene la fila " + std::to_string(fila));
  const std::uint16_t palabra = U16(bytes_, lista_ + 2U * fila);
  const std::size_t desde = palabra & kPosicion;
  const std::size_t hasta = fila == 0 ? bytes_.size() : U16(bytes_, lista_ + 2U * (fila - 1)) & kPosicion;
  if (desde > hasta || hasta > bytes_.size() || desde < lista_ + 2U * cantidad_)
    DanioEnPagina(numero_, "la fila " + std::to_string(fila) + " está fuera de lugar");
  return {static_cast<std::uint16_t>(palabra & kBanderas), bytes_.subspan(desde, hasta - desde)};
}

Lugar Seguir(Paginas& paginas, Puntero puntero, std::uint32_t* dueno) {
  Lugar lugar;
  lugar.imagen = paginas.Leer(puntero.pagina);
  const PaginaDeDatos datos(paginas.Cab(), puntero.pagina, *lugar.imagen);
  if (dueno != nullptr) *dueno = datos.Dueno();
  lugar.ranura = datos.En(puntero.fila);
  return lugar;
}

}  // namespace mdb::internal
