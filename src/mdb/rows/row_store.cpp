#include <algorithm>

#include "mdb/pages/page_map.h"
#include "mdb/rows/row_store_internal.h"

namespace mdb::internal {
namespace {

// Bytes left with which a page leaves the map at once, with which it leaves when a row found no room on it,
// and with which it comes back.
constexpr std::size_t kLlena = 64, kCasiLlena = 200, kConLugar = 200;
constexpr std::size_t kAbiertas = 8;  // pages in hand
constexpr std::size_t kIntentos = 4;  // pages of the map looked at for one row

}  // namespace

Bytes& AlmacenDeFilas::Abrir(NumPagina numero) {
  Bytes& pagina = paginas_.Modificar(numero);
  if (U8(pagina, 0) != 1 || DuenoDe(pagina) != dueno_)
    DanioEnPagina(numero, "no es de las filas que dice el mapa de páginas");
  return pagina;
}

IdFila AlmacenDeFilas::Agregar(Vista bytes, std::uint16_t marcas) {
  const NumPagina numero = Elegir(bytes.size());
  Bytes& pagina = Abrir(numero);
  const IdFila fila{numero, AgregarFila(numero, pagina, bytes, marcas)};
  Anotar(numero, pagina);
  return fila;
}

bool AlmacenDeFilas::Cambiar(IdFila fila, Vista bytes, std::uint16_t marcas) {
  Bytes& pagina = Abrir(fila.pagina);
  if (!CambiarFila(fila.pagina, pagina, fila.fila, bytes, marcas)) return false;
  Anotar(fila.pagina, pagina);
  return true;
}

void AlmacenDeFilas::Quitar(IdFila fila) {
  Bytes& pagina = Abrir(fila.pagina);
  if (LeerRanura(fila.pagina, pagina, fila.fila).Borrada())
    DanioEnPagina(fila.pagina, "la fila " + std::to_string(fila.fila) + " ya estaba borrada");
  QuitarFila(fila.pagina, pagina, fila.fila);
  if (SinFilas(pagina)) return Soltar(fila.pagina);
  Anotar(fila.pagina, pagina);
}

NumPagina AlmacenDeFilas::Elegir(std::size_t largo) {
  for (auto a = abiertas_.rbegin(); a != abiertas_.rend(); ++a)
    if (a->hueco >= largo + 2) return a->numero;
  if (const NumPagina p = BuscarPendiente(largo); p != 0) return p;
  return PaginaNueva();
}

// Looks at a few pages of the map, the newest first; those without room for the row are kept in hand for
// shorter ones, or leave the map when hardly any row would find room there.
NumPagina AlmacenDeFilas::BuscarPendiente(std::size_t largo) {
  if (!leido_) pendientes_ = LeerMapa(paginas_, libres_);
  leido_ = true;
  for (std::size_t i = 0; i < kIntentos && !pendientes_.empty(); ++i) {
    const NumPagina numero = pendientes_.back();
    pendientes_.pop_back();
    if (soltadas_.contains(numero)) continue;
    const Imagen pagina = paginas_.Leer(numero);
    RevisarPaginaDeFilas(numero, *pagina);
    if (DuenoDe(*pagina) != dueno_) DanioEnPagina(numero, "es de otra tabla");
    const bool cabe = CabeFila(*pagina, largo);
    if (!cabe && (Hueco(*pagina) < kCasiLlena || !CabeFila(*pagina, 0))) {
      QuitarDeMapa(paginas_, libres_, numero);
      continue;
    }
    Anotar(numero, *pagina);
    if (cabe) return numero;
  }
  return 0;
}

NumPagina AlmacenDeFilas::PaginaNueva() {
  const NumPagina numero = ReservarPagina(paginas_);
  NuevaPaginaDeFilas(paginas_.Modificar(numero), dueno_);
  PonerEnMapa(paginas_, propias_, numero);
  soltadas_.erase(numero);
  return numero;
}

// Brings the map of pages with room, and the pages in hand, up to what the page has now.
void AlmacenDeFilas::Anotar(NumPagina numero, Vista pagina) {
  const std::size_t hueco = Hueco(pagina);
  const auto en_mano =
      std::find_if(abiertas_.begin(), abiertas_.end(), [&](const Abierta& a) { return a.numero == numero; });
  if (hueco < kLlena || !CabeFila(pagina, 0)) {
    Cerrar(numero);
    if (libres_.pagina != 0 && EnMapa(paginas_, libres_, numero)) QuitarDeMapa(paginas_, libres_, numero);
    return;
  }
  if (en_mano != abiertas_.end()) {
    en_mano->hueco = hueco;
    return;
  }
  const bool en_mapa = libres_.pagina != 0 && EnMapa(paginas_, libres_, numero);
  if (!en_mapa && hueco < kConLugar) return;
  if (!en_mapa && libres_.pagina != 0) PonerEnMapa(paginas_, libres_, numero);
  if (abiertas_.size() == kAbiertas) {
    if (abiertas_.front().hueco < kCasiLlena) QuitarDeMapa(paginas_, libres_, abiertas_.front().numero);
    abiertas_.erase(abiertas_.begin());
  }
  abiertas_.push_back({numero, hueco});
}

void AlmacenDeFilas::Cerrar(NumPagina numero) {
  std::erase_if(abiertas_, [&](const Abierta& a) { return a.numero == numero; });
}

void AlmacenDeFilas::Soltar(NumPagina numero) {
  Cerrar(numero);
  QuitarDeMapa(paginas_, libres_, numero);
  QuitarDeMapa(paginas_, propias_, numero);
  LiberarPagina(paginas_, numero);
  soltadas_.insert(numero);
}

}  // namespace mdb::internal
