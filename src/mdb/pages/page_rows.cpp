#include "mdb/pages/page_rows.h"

#include <cstring>

namespace mdb {
namespace {

constexpr std::size_t kLibre = 2, kDueno = 4, kRanuras = 12;
constexpr std::uint16_t kDesplazamiento = 0x1FFF;

std::size_t PosRanura(unsigned fila) { return Ranura::kPrimera + 2 * std::size_t{fila}; }

std::size_t Desde(Vista p, unsigned fila) { return U16(p, PosRanura(fila)) & kDesplazamiento; }

// Where the last row begins; the page's end when there is none.
std::size_t Ultima(Vista p) {
  const unsigned n = CantidadDeRanuras(p);
  return n == 0 ? p.size() : Desde(p, n - 1);
}

void AnotarHueco(std::span<std::uint8_t> p) { Poner16(p, kLibre, static_cast<std::uint16_t>(Hueco(p))); }

}  // namespace

void NuevaPaginaDeFilas(std::span<std::uint8_t> pagina, std::uint32_t dueno) {
  std::fill(pagina.begin(), pagina.end(), std::uint8_t{0});
  Poner8(pagina, 0, 1);
  Poner8(pagina, 1, 1);
  Poner32(pagina, kDueno, dueno);
  AnotarHueco(pagina);
}

void RevisarPaginaDeFilas(NumPagina numero, Vista pagina) {
  if (U8(pagina, 0) != 1) DanioEnPagina(numero, "no es una página de filas");
  const unsigned n = CantidadDeRanuras(pagina);
  const std::size_t fin = PosRanura(n);
  if (fin > pagina.size()) DanioEnPagina(numero, "la cantidad de filas no cabe en la página");
  std::size_t antes = pagina.size();
  for (unsigned i = 0; i < n; ++i) {
    const std::size_t desde = Desde(pagina, i);
    if (desde > antes || desde < fin)
      DanioEnPagina(numero, "la fila " + std::to_string(i) + " está fuera de su lugar");
    antes = desde;
  }
}

unsigned CantidadDeRanuras(Vista pagina) { return U16(pagina, kRanuras); }

Ranura LeerRanura(NumPagina numero, Vista pagina, unsigned fila) {
  if (U8(pagina, 0) != 1) DanioEnPagina(numero, "no es una página de filas");
  if (fila >= CantidadDeRanuras(pagina)) DanioEnPagina(numero, "no tiene la fila " + std::to_string(fila));
  const std::size_t desde = Desde(pagina, fila), hasta = fila == 0 ? pagina.size() : Desde(pagina, fila - 1);
  if (desde > hasta || desde < PosRanura(fila + 1) || hasta > pagina.size())
    DanioEnPagina(numero, "la fila " + std::to_string(fila) + " está fuera de su lugar");
  return {desde, hasta - desde, static_cast<std::uint16_t>(U16(pagina, PosRanura(fila)) & Ranura::kMascara)};
}

std::size_t Hueco(Vista pagina) {
  const std::size_t fin = PosRanura(CantidadDeRanuras(pagina)), ultima = Ultima(pagina);
  return ultima > fin ? ultima - fin : 0;
}

bool CabeFila(Vista pagina, std::size_t largo) {
  return CantidadDeRanuras(pagina) < Ranura::kMas && Hueco(pagina) >= largo + 2;
}

bool SinFilas(Vista pagina) {
  for (unsigned i = CantidadDeRanuras(pagina); i-- > 0;)
    if ((U16(pagina, PosRanura(i)) & Ranura::kMascara) != Ranura::kBorrada) return false;
  return true;
}

std::uint8_t AgregarFila(NumPagina numero, std::span<std::uint8_t> pagina, Vista bytes,
                         std::uint16_t marcas) {
  if (!CabeFila(pagina, bytes.size())) DanioEnPagina(numero, "no tiene lugar para una fila más");
  const unsigned n = CantidadDeRanuras(pagina);
  const std::size_t desde = Ultima(pagina) - bytes.size();
  PonerBytes(pagina, desde, bytes);
  Poner16(pagina, PosRanura(n), static_cast<std::uint16_t>(desde | marcas));
  Poner16(pagina, kRanuras, static_cast<std::uint16_t>(n + 1));
  AnotarHueco(pagina);
  return static_cast<std::uint8_t>(n);
}

bool CambiarFila(NumPagina numero, std::span<std::uint8_t> pagina, unsigned fila, Vista bytes,
                 std::uint16_t marcas) {
  RevisarPaginaDeFilas(numero, pagina);
  const Ranura r = LeerRanura(numero, pagina, fila);
  if (bytes.size() > r.largo && bytes.size() - r.largo > Hueco(pagina)) return false;
  const std::size_t hasta = r.desde + r.largo, ultima = Ultima(pagina), desde = hasta - bytes.size();
  std::memmove(pagina.data() + ultima + desde - r.desde, pagina.data() + ultima, r.desde - ultima);
  const unsigned n = CantidadDeRanuras(pagina);
  for (unsigned i = fila + 1; i < n; ++i) {
    const std::uint16_t v = U16(pagina, PosRanura(i));
    const std::size_t nuevo = (v & kDesplazamiento) + desde - r.desde;
    Poner16(pagina, PosRanura(i), static_cast<std::uint16_t>(nuevo | (v & Ranura::kMascara)));
  }
  PonerBytes(pagina, desde, bytes);
  Poner16(pagina, PosRanura(fila), static_cast<std::uint16_t>(desde | marcas));
  AnotarHueco(pagina);
  return true;
}

void QuitarFila(NumPagina numero, std::span<std::uint8_t> pagina, unsigned fila) {
  CambiarFila(numero, pagina, fila, {}, Ranura::kBorrada);
}

}  // namespace mdb
