#include "mdb/pages/data_page_internal.h"
#include "mdb/pages/page_map.h"

namespace mdb {
namespace {

constexpr std::uint8_t kEnLinea = 0, kPorPaginas = 1;
constexpr std::size_t kBitsEnLinea = 5, kBitsDePagina = 4;

struct FilaDeMapa {
  Imagen imagen;
  Vista bytes;
};

FilaDeMapa BuscarMapa(Paginas& paginas, Puntero mapa) {
  auto lugar = internal::Seguir(paginas, mapa);
  if (lugar.ranura.banderas != 0) DanioEnPagina(mapa.pagina, "un mapa de páginas está borrado");
  const Vista bytes = lugar.ranura.bytes;
  if (bytes.empty() || bytes[0] > kPorPaginas || (bytes[0] == kEnLinea && bytes.size() < kBitsEnLinea))
    DanioEnPagina(mapa.pagina, "un mapa de páginas de otra clase");
  return {std::move(lugar.imagen), bytes};
}

std::size_t PaginasPorMapa(const Paginas& paginas) { return (paginas.Tamano() - kBitsDePagina) * 8; }

// The bitmap page of the k-th pointer, or 0. Negative numbers stand for none as 0 does.
NumPagina PaginaDeMapa(const Paginas& paginas, NumPagina de, Vista bytes, std::size_t k) {
  const std::int32_t numero = I32(bytes, 1 + 4 * k);
  if (numero <= 0) return 0;
  const auto pagina = static_cast<NumPagina>(numero);
  if (pagina >= paginas.Cantidad())
    DanioEnPagina(de, "un mapa lleva a la página " + std::to_string(pagina) + ", que no hay");
  return pagina;
}

Imagen LeerPaginaDeMapa(Paginas& paginas, NumPagina numero) {
  Imagen imagen = paginas.Leer(numero);
  if (imagen->at(0) != internal::kPaginaDeMapa) DanioEnPagina(numero, "no es una página de mapa");
  return imagen;
}

// Calls `visita` with each page of the map, rising, those beyond the end of the file too.
template <typename Visita>
void CadaBit(Vista bits, std::uint64_t primera, Visita&& visita) {
  for (std::size_t i = 0; i < bits.size(); ++i) {
    if (bits[i] == 0) continue;
    for (unsigned b = 0; b < 8; ++b)
      if ((bits[i] >> b & 1) != 0) visita(primera + 8 * i + b);
  }
}

template <typename Visita>
void CadaPagina(Paginas& paginas, Puntero mapa, Visita&& visita) {
  if (mapa.pagina == 0) return;
  const auto fila = BuscarMapa(paginas, mapa);
  if (fila.bytes[0] == kEnLinea) {
    CadaBit(fila.bytes.subspan(kBitsEnLinea), U32(fila.bytes, 1), visita);
    return;
  }
  for (std::size_t k = 0; 1 + 4 * (k + 1) <= fila.bytes.size(); ++k) {
    const NumPagina numero = PaginaDeMapa(paginas, mapa.pagina, fila.bytes, k);
    if (numero == 0) continue;
    const Imagen imagen = LeerPaginaDeMapa(paginas, numero);
    CadaBit(Vista(*imagen).subspan(kBitsDePagina), k * PaginasPorMapa(paginas), visita);
  }
}

bool Bit(Vista bits, std::uint64_t n) { return n / 8 < bits.size() && (bits[n / 8] >> (n % 8) & 1) != 0; }

}  // namespace

std::vector<NumPagina> LeerMapa(Paginas& paginas, Puntero mapa) {
  std::vector<NumPagina> salida;
  const NumPagina fin = paginas.Cantidad();
  CadaPagina(paginas, mapa, [&](std::uint64_t pagina) {
    if (pagina < fin) salida.push_back(static_cast<NumPagina>(pagina));
  });
  return salida;
}

std::vector<NumPagina> LeerMapaCompleto(Paginas& paginas, Puntero mapa) {
  std::vector<NumPagina> salida;
  const NumPagina fin = paginas.Cantidad();
  CadaPagina(paginas, mapa, [&](std::uint64_t pagina) {
    if (pagina >= fin)
      DanioEnPagina(mapa.pagina, "una tabla tiene la página " + std::to_string(pagina) +
                                     " y el archivo termina antes: está cortado");
    salida.push_back(static_cast<NumPagina>(pagina));
  });
  return salida;
}

std::vector<NumPagina> PaginasDelMapa(Paginas& paginas, Puntero mapa) {
  std::vector<NumPagina> salida;
  if (mapa.pagina == 0) return salida;
  const auto fila = BuscarMapa(paginas, mapa);
  if (fila.bytes[0] == kEnLinea) return salida;
  for (std::size_t k = 0; 1 + 4 * (k + 1) <= fila.bytes.size(); ++k)
    if (const NumPagina n = PaginaDeMapa(paginas, mapa.pagina, fila.bytes, k); n != 0) salida.push_back(n);
  return salida;
}

bool EnMapa(Paginas& paginas, Puntero mapa, NumPagina pagina) {
  if (mapa.pagina == 0) return false;
  const auto fila = BuscarMapa(paginas, mapa);
  if (fila.bytes[0] == kEnLinea) {
    const std::uint32_t primera = U32(fila.bytes, 1);
    return pagina >= primera && Bit(fila.bytes.subspan(kBitsEnLinea), pagina - primera);
  }
  const std::size_t por_mapa = PaginasPorMapa(paginas), k = pagina / por_mapa;
  if (1 + 4 * (k + 1) > fila.bytes.size()) return false;
  const NumPagina numero = PaginaDeMapa(paginas, mapa.pagina, fila.bytes, k);
  if (numero == 0) return false;
  const Imagen imagen = LeerPaginaDeMapa(paginas, numero);
  return Bit(Vista(*imagen).subspan(kBitsDePagina), pagina % por_mapa);
}

}  // namespace mdb
