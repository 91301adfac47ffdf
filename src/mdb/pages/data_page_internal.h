// The slots of a data page (type 1): rows, long values, page maps.
#pragma once

#include "mdb/pages/pages.h"

namespace mdb::internal {

constexpr std::uint8_t kPaginaDeDatos = 1, kPaginaDeDefinicion = 2, kPaginaDeMapa = 5;

struct Ranura {
  static constexpr std::uint16_t kMovida = 0x4000, kOculta = 0x8000;
  std::uint16_t banderas = 0;
  Vista bytes;
  // Deleted, or the place where a moved row stands: not a row of its own.
  bool Salteada() const { return (banderas & kOculta) != 0; }
  bool Movida() const { return banderas == kMovida; }
  bool Destino() const { return banderas == kOculta; }
};

// A data page, looked at through an image that its user keeps.
class PaginaDeDatos {
 public:
  // Throws Danio unless the page is one of data whose list of slots is all there.
  PaginaDeDatos(const Cabecera& cabecera, NumPagina numero, Vista bytes);
  std::uint32_t Dueno() const { return U32(bytes_, 4); }
  unsigned Cantidad() const { return cantidad_; }
  // Throws Danio for a slot beyond the list, or with bytes outside its page.
  Ranura En(unsigned fila) const;

 private:
  Vista bytes_;
  NumPagina numero_;
  std::size_t lista_;  // where the list of slots starts
  unsigned cantidad_;
};

// What a data pointer leads to: one slot and the image that it stands in.
struct Lugar {
  Imagen imagen;
  Ranura ranura;
};
Lugar Seguir(Paginas& paginas, Puntero puntero, std::uint32_t* dueno = nullptr);

inline Puntero LeerPuntero(Vista v, std::size_t pos) { return {U24(v, pos + 1), U8(v, pos)}; }

// The owner field of a page of long values.
constexpr std::uint32_t kLval = 0x4C41564C;

// Runs `lectura`; a Danio that does not name a page leaves as one that names `pagina` and says `que`.
template <typename Lectura>
decltype(auto) NombrandoPagina(NumPagina pagina, const char* que, Lectura&& lectura) {
  try {
    return lectura();
  } catch (const Danio& d) {
    if (d.NamesPage()) throw;
    DanioEnPagina(pagina, que);
  }
}

}  // namespace mdb::internal
