#include "mdb/pages/page_map.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "mdb/pages/page_rows.h"

namespace mdb {
namespace {

constexpr std::uint8_t kMapaDeBits = 0, kMapaDePaginas = 1, kTipoPaginaDeMapa = 5;
constexpr std::size_t kBits = 5, kPunteros = 1;  // where they begin in the row
constexpr std::size_t kLargoDeMapa = 69;         // of a new one
constexpr std::size_t kCabeceraPaginaDeMapa = 4;
constexpr NumPagina kUltimaPagina = 0xFFFFFF;
constexpr Puntero kGlobal{1, 0};  // of the free pages
// How much longer the global map gets at a time (512 pages), where page 1 has the room.
constexpr std::size_t kAlargue = 64;
// The longest bitmap of another map (4096 pages, 16 MB): those of files that Access compacted are as long as
// their file needs. New maps leave some room on their page for it.
constexpr std::size_t kMasLargo = kBits + 512, kReserva = 1500;
// New maps go to a page of maps among the first and the last pages of the file, or to a new one: a walk over
// the whole file for each new map would be slow, and half-full pages of maps in its middle do no harm.
constexpr NumPagina kBuscaMapas = 512;

// The row of a map and what it says.
struct FilaDeMapa {
  NumPagina pagina = 0;
  unsigned fila = 0;
  std::size_t desde = 0, largo = 0;
  std::uint8_t clase = kMapaDeBits;
  NumPagina inicio = 0;  // of a bitmap
  bool global = false;
  NumPagina CantidadDeBits() const { return static_cast<NumPagina>((largo - kBits) * 8); }
  NumPagina CantidadDePunteros() const { return static_cast<NumPagina>((largo - kPunteros) / 4); }
  std::size_t PosPuntero(NumPagina k) const { return desde + kPunteros + 4 * std::size_t{k}; }
};

FilaDeMapa Buscar(Paginas& paginas, Puntero mapa) {
  if (paginas.Cab().Jet3()) throw base::Error("Los archivos de Access 97 solo se leen");
  const Imagen imagen = paginas.Leer(mapa.pagina);
  const Ranura r = LeerRanura(mapa.pagina, *imagen, mapa.fila);
  FilaDeMapa f{mapa.pagina, mapa.fila, r.desde, r.largo, 0, 0, mapa == kGlobal};
  if (r.marcas != 0 || r.largo < kBits) DanioEnPagina(mapa.pagina, "un mapa de páginas no es tal");
  f.clase = U8(*imagen, r.desde);
  if (f.clase > kMapaDePaginas) DanioEnPagina(mapa.pagina, "un mapa de páginas es de clase desconocida");
  if (f.clase == kMapaDeBits) f.inicio = U32(*imagen, r.desde + 1);
  // A page number has three bytes: beyond them a bitmap's numbers would come round to 0.
  if (f.inicio > kUltimaPagina)
    DanioEnPagina(mapa.pagina, "un mapa de páginas empieza tras la última posible");
  return f;
}

NumPagina PaginasPorPagina(const Paginas& paginas) {
  return static_cast<NumPagina>((paginas.Tamano() - kCabeceraPaginaDeMapa) * 8);
}

void PonerBit(std::span<std::uint8_t> bits, std::size_t n, bool valor) {
  const auto mascara = static_cast<std::uint8_t>(1U << (n % 8));
  std::uint8_t& b = bits[n / 8];
  b = static_cast<std::uint8_t>(valor ? b | mascara : b & ~mascara);
}

bool Bit(Vista bits, std::size_t n) { return (bits[n / 8] >> (n % 8) & 1) != 0; }

// The first bit set at or after `desde`, or the count of bits.
std::size_t PrimerBit(Vista bits, std::size_t desde) {
  std::size_t n = desde;
  while (n < bits.size() * 8) {
    if (n % 64 == 0 && n / 8 + 8 <= bits.size()) {
      std::uint64_t palabra = 0;
      std::memcpy(&palabra, bits.data() + n / 8, 8);
      if (palabra == 0) {
        n += 64;
        continue;
      }
    }
    if (Bit(bits, n)) return n;
    ++n;
  }
  return bits.size() * 8;
}

std::vector<NumPagina> PaginasDeBits(const FilaDeMapa& f, Vista pagina) {
  std::vector<NumPagina> puestas;
  const Vista bits = Trozo(pagina, f.desde + kBits, f.largo - kBits);
  for (std::size_t n = PrimerBit(bits, 0); n < bits.size() * 8; n = PrimerBit(bits, n + 1))
    puestas.push_back(f.inicio + static_cast<NumPagina>(n));
  return puestas;
}

void Cambiar(Paginas& paginas, Puntero mapa, NumPagina pagina, bool valor);

// The bitmap page that covers the k-th range, made when there is none. In the global map a set bit is a free
// page: a new page of it has the bits of all pages that the file does not have yet.
NumPagina PaginaDeRango(Paginas& paginas, const FilaDeMapa& f, NumPagina k) {
  if (k >= f.CantidadDePunteros())
    throw base::StorageFault("Un mapa de páginas no alcanza para el tamaño del archivo: compacte la base");
  const std::int32_t puntero = I32(*paginas.Leer(f.pagina), f.PosPuntero(k));
  if (puntero > 0) {
    const auto numero = static_cast<NumPagina>(puntero);
    if (U8(*paginas.Leer(numero), 0) != kTipoPaginaDeMapa)
      DanioEnPagina(numero, "no es una página de un mapa de páginas");
    return numero;
  }
  const NumPagina nueva = f.global ? paginas.Agregar() : ReservarPagina(paginas);
  Bytes& p = paginas.Modificar(nueva);
  Poner8(p, 0, kTipoPaginaDeMapa);
  Poner8(p, 1, 1);
  if (f.global) {
    const std::size_t por_pagina = PaginasPorPagina(paginas), base = k * por_pagina;
    const auto bits = std::span(p).subspan(kCabeceraPaginaDeMapa);
    for (std::size_t n = 0; n < por_pagina; ++n)
      if (base + n >= paginas.Cantidad()) PonerBit(bits, n, true);
  }
  Poner32(paginas.Modificar(f.pagina), f.PosPuntero(k), nueva);
  // It may stand in a range that has its bitmap page already, where it still counts as free.
  if (f.global) Cambiar(paginas, kGlobal, nueva, false);
  return nueva;
}

void CambiarEnRango(Paginas& paginas, const FilaDeMapa& f, NumPagina pagina, bool valor) {
  const NumPagina por_pagina = PaginasPorPagina(paginas), k = pagina / por_pagina;
  const bool hay = k < f.CantidadDePunteros() && I32(*paginas.Leer(f.pagina), f.PosPuntero(k)) > 0;
  if (!valor && !hay && !f.global) return;
  const NumPagina numero = PaginaDeRango(paginas, f, k);
  PonerBit(std::span(paginas.Modificar(numero)).subspan(kCabeceraPaginaDeMapa), pagina % por_pagina, valor);
}

// Turns a bitmap into a list of bitmap pages, in place.
void HacerDePaginas(Paginas& paginas, Puntero mapa) {
  FilaDeMapa f = Buscar(paginas, mapa);
  const NumPagina cantidad = paginas.Cantidad();  // the bitmap pages to come are not free, whatever it says
  const std::vector<NumPagina> puestas = PaginasDeBits(f, *paginas.Leer(f.pagina));
  const auto fila = std::span(paginas.Modificar(f.pagina)).subspan(f.desde, f.largo);
  std::fill(fila.begin(), fila.end(), std::uint8_t{0});
  fila[0] = f.clase = kMapaDePaginas;
  if (f.global) {
    const NumPagina por_pagina = PaginasPorPagina(paginas);
    for (NumPagina k = 0; k <= (paginas.Cantidad() - 1) / por_pagina; ++k) PaginaDeRango(paginas, f, k);
  }
  for (const NumPagina p : puestas)
    if (!f.global || p < cantidad) CambiarEnRango(paginas, f, p, true);
}

// Moves the window of a bitmap so that it holds the page too, or makes it longer where its page has room;
// false when neither will do.
bool CorrerVentana(Paginas& paginas, const FilaDeMapa& f, NumPagina pagina) {
  const Imagen imagen = paginas.Leer(f.pagina);
  const std::vector<NumPagina> puestas = PaginasDeBits(f, *imagen);
  const NumPagina primera = puestas.empty() ? pagina : std::min(pagina, puestas.front());
  const NumPagina ultima = puestas.empty() ? pagina : std::max(pagina, puestas.back());
  const NumPagina inicio = primera & ~NumPagina{7};
  const std::size_t largo = std::max(f.largo, ((ultima - inicio) / 8 + 4) / 4 * 4 + kBits);
  if (largo > f.largo && (largo > kMasLargo || largo - f.largo > Hueco(*imagen))) return false;
  Bytes fila(largo, 0);
  Poner32(fila, 1, inicio);
  const auto bits = std::span(fila).subspan(kBits);
  for (const NumPagina p : puestas) PonerBit(bits, p - inicio, true);
  PonerBit(bits, pagina - inicio, true);
  return CambiarFila(f.pagina, paginas.Modificar(f.pagina), f.fila, fila);
}

// A longer bitmap for the global map, while page 1 has room: the pages that the file does not have yet are
// free, others that the map did not name are not to be trusted. False when there is no room.
bool Alargar(Paginas& paginas, const FilaDeMapa& f, NumPagina pagina) {
  const std::size_t necesario = ((pagina - f.inicio) / 8 + 4) / 4 * 4 + kBits;
  const Imagen imagen = paginas.Leer(f.pagina);
  const std::size_t mas = f.largo + Hueco(*imagen);
  if (necesario > mas) return false;
  const Vista fila = Trozo(*imagen, f.desde, f.largo);
  Bytes larga(fila.begin(), fila.end());
  larga.resize(necesario + kAlargue <= mas ? necesario + kAlargue : necesario);
  for (std::size_t n = f.CantidadDeBits(); n < (larga.size() - kBits) * 8; ++n)
    if (f.inicio + n >= paginas.Cantidad()) PonerBit(std::span(larga).subspan(kBits), n, true);
  return CambiarFila(f.pagina, paginas.Modificar(f.pagina), f.fila, larga);
}

void CambiarFueraDeVentana(Paginas& paginas, const FilaDeMapa& f, Puntero mapa, NumPagina pagina,
                           bool valor) {
  const bool delante = pagina < f.inicio;
  if (f.global) {
    // Pages before the window of the global map (other programs move it) cannot be told from used ones.
    if (delante && !valor) return;
    if (!delante && Alargar(paginas, f, pagina)) return Cambiar(paginas, mapa, pagina, valor);
  } else {
    if (!valor || CorrerVentana(paginas, f, pagina)) return;
  }
  HacerDePaginas(paginas, mapa);
  Cambiar(paginas, mapa, pagina, valor);
}

void Cambiar(Paginas& paginas, Puntero mapa, NumPagina pagina, bool valor) {
  const FilaDeMapa f = Buscar(paginas, mapa);
  if (f.clase == kMapaDePaginas) return CambiarEnRango(paginas, f, pagina, valor);
  if (pagina < f.inicio || pagina - f.inicio >= f.CantidadDeBits())
    return CambiarFueraDeVentana(paginas, f, mapa, pagina, valor);
  const auto bits = std::span(paginas.Modificar(f.pagina)).subspan(f.desde + kBits, f.largo - kBits);
  PonerBit(bits, pagina - f.inicio, valor);
}

// The lowest free page that the file has, or 0. Pages 0 to 2 are never free, whatever a damaged map says.
NumPagina BuscarLibre(Paginas& paginas) {
  const FilaDeMapa f = Buscar(paginas, kGlobal);
  const Imagen imagen = paginas.Leer(f.pagina);
  const auto en = [&](Vista bits, NumPagina base) -> NumPagina {
    const std::size_t n = PrimerBit(bits, base < 3 ? 3 - base : 0);
    const std::size_t pagina = base + n;
    return n < bits.size() * 8 && pagina < paginas.Cantidad() ? static_cast<NumPagina>(pagina) : 0;
  };
  if (f.clase == kMapaDeBits) return en(Trozo(*imagen, f.desde + kBits, f.largo - kBits), f.inicio);
  const NumPagina por_pagina = PaginasPorPagina(paginas);
  for (NumPagina k = 0; k < f.CantidadDePunteros(); ++k) {
    const std::int32_t puntero = I32(*imagen, f.PosPuntero(k));
    if (puntero <= 0) continue;
    const Imagen bits = paginas.Leer(static_cast<NumPagina>(puntero));
    if (const NumPagina p = en(Vista(*bits).subspan(kCabeceraPaginaDeMapa), k * por_pagina); p != 0) return p;
  }
  return 0;
}

bool EsPaginaDeMapas(Paginas& paginas, NumPagina numero) {
  const Imagen p = paginas.Leer(numero);
  return U8(*p, 0) == 1 && U8(*p, 1) == 1 && DuenoDe(*p) == kDuenoMapas &&
         CabeFila(*p, kLargoDeMapa + kReserva);
}

NumPagina PaginaParaMapas(Paginas& paginas) {
  const NumPagina cantidad = paginas.Cantidad();
  for (NumPagina p = 2; p < std::min(cantidad, kBuscaMapas); ++p)
    if (EsPaginaDeMapas(paginas, p)) return p;
  for (NumPagina p = cantidad; p > kBuscaMapas && p + kBuscaMapas > cantidad; --p)
    if (EsPaginaDeMapas(paginas, p - 1)) return p - 1;
  const NumPagina nueva = ReservarPagina(paginas);
  NuevaPaginaDeFilas(paginas.Modificar(nueva), kDuenoMapas);
  return nueva;
}

}  // namespace

void PonerEnMapa(Paginas& paginas, Puntero mapa, NumPagina pagina) { Cambiar(paginas, mapa, pagina, true); }

void QuitarDeMapa(Paginas& paginas, Puntero mapa, NumPagina pagina) {
  if (mapa.pagina != 0) Cambiar(paginas, mapa, pagina, false);
}

Puntero NuevoMapa(Paginas& paginas) {
  const NumPagina pagina = PaginaParaMapas(paginas);
  const Bytes vacio(kLargoDeMapa, std::uint8_t{0});
  return {pagina, AgregarFila(pagina, paginas.Modificar(pagina), vacio)};
}

void BorrarMapa(Paginas& paginas, Puntero mapa) {
  if (mapa.pagina == 0) return;
  for (const NumPagina p : PaginasDelMapa(paginas, mapa)) LiberarPagina(paginas, p);
  Bytes& pagina = paginas.Modificar(mapa.pagina);
  QuitarFila(mapa.pagina, pagina, mapa.fila);
  if (mapa.pagina > 2 && SinFilas(pagina)) LiberarPagina(paginas, mapa.pagina);
}

NumPagina ReservarPagina(Paginas& paginas) {
  NumPagina pagina = BuscarLibre(paginas);
  if (pagina != 0) {
    Bytes& bytes = paginas.Modificar(pagina);
    std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
  } else {
    pagina = paginas.Agregar();
  }
  Cambiar(paginas, kGlobal, pagina, false);
  return pagina;
}

void LiberarPagina(Paginas& paginas, NumPagina pagina) {
  Poner32(paginas.Modificar(pagina), 0, 0);
  Cambiar(paginas, kGlobal, pagina, true);
}

}  // namespace mdb
