// Rows of one page of type 1: data, long values and page maps alike (Jet 4).
//
// Rows lie from the end of the page downwards in the order of their slots, without gaps between them, so the
// room of a page is one piece between the table of slots and the last row. Whatever is changed here keeps
// that, and the page's free-space field exact. Slots are never renumbered or removed: a row's number is its
// identity.
//
// The views given must not lie in the page that is changed.
#pragma once

#include "mdb/pages/pages.h"

namespace mdb {

struct Ranura {
  static constexpr std::uint16_t kMovida = 0x4000, kDestino = 0x8000, kBorrada = 0xC000, kMascara = 0xC000;
  static constexpr std::size_t kPrimera = 14;  // offset of the first slot
  static constexpr unsigned kMas = 255;        // slots a page

  std::size_t desde = 0, largo = 0;
  std::uint16_t marcas = 0;
  bool Borrada() const { return marcas == kBorrada; }
};

constexpr std::uint32_t kDuenoMapas = 0, kDuenoLargos = 0x4C41564C;  // "LVAL"

// Makes an empty page of rows of these bytes.
void NuevaPaginaDeFilas(std::span<std::uint8_t> pagina, std::uint32_t dueno);
inline std::uint32_t DuenoDe(Vista pagina) { return U32(pagina, 4); }
// Throws Danio when the page is none of rows, or its slots do not fall or reach out of it.
void RevisarPaginaDeFilas(NumPagina numero, Vista pagina);

unsigned CantidadDeRanuras(Vista pagina);
// Throws Danio for a row that the page does not have.
Ranura LeerRanura(NumPagina numero, Vista pagina, unsigned fila);
// Bytes between the slots and the last row.
std::size_t Hueco(Vista pagina);
// Whether one more row of this length has its place.
bool CabeFila(Vista pagina, std::size_t largo);
// Whether every row is deleted.
bool SinFilas(Vista pagina);

// The caller has made sure of the room. Returns the number of the new row.
std::uint8_t AgregarFila(NumPagina numero, std::span<std::uint8_t> pagina, Vista bytes,
                         std::uint16_t marcas = 0);
// Gives a row other bytes and flags and moves the rows behind it. False, and nothing changed, when the page
// has no room for it.
bool CambiarFila(NumPagina numero, std::span<std::uint8_t> pagina, unsigned fila, Vista bytes,
                 std::uint16_t marcas = 0);
// Deletes a row and takes its bytes back.
void QuitarFila(NumPagina numero, std::span<std::uint8_t> pagina, unsigned fila);

}  // namespace mdb
