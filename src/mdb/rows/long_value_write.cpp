#include <algorithm>

#include "mdb/pages/data_page_internal.h"
#include "mdb/pages/page_map.h"
#include "mdb/rows/long_value_write_internal.h"

namespace mdb::internal {
namespace {

Bytes Campo(std::uint32_t palabra, IdFila fila) {
  Bytes campo;
  Agregar32(campo, palabra);
  AgregarBytes(campo, Puntero4(fila));
  Agregar32(campo, 0);
  return campo;
}

}  // namespace

Bytes Puntero4(IdFila fila) {
  Bytes b;
  Agregar8(b, fila.fila);
  Agregar24(b, fila.pagina);
  return b;
}

ValoresLargos::ValoresLargos(Paginas& paginas, const Definicion& definicion, const Columna& columna)
    : paginas_(paginas),
      donde_("la columna \"" + columna.nombre + "\" de la tabla \"" + definicion.nombre + "\""),
      propias_(columna.lv_propias),
      almacen_(paginas, kDuenoLargos, columna.lv_propias, columna.lv_libres) {}

Bytes ValoresLargos::Guardar(Vista valor, bool puede_en_linea) {
  const auto largo = static_cast<std::uint32_t>(valor.size());
  if (valor.size() <= kLargoEnLinea && puede_en_linea) {
    Bytes campo = Campo(largo | kEnLinea, {});
    AgregarBytes(campo, valor);
    return campo;
  }
  if (valor.size() > kLargoMas)
    throw base::Error("El valor es demasiado largo para " + donde_ + ": el formato llega a 1 GB");
  if (propias_.pagina == 0) throw base::Error("No hay dónde guardar valores largos de " + donde_);
  if (valor.size() <= kLargoDePieza) return Campo(largo | kEnUnaFila, almacen_.Agregar(valor));
  // A chain, made from its end: each piece names the next. Only the last one may be short.
  const std::size_t de_pieza = kLargoDePieza - 4;
  IdFila siguiente{};
  for (std::size_t fin = valor.size(); fin > 0;) {
    const std::size_t desde = (fin - 1) / de_pieza * de_pieza;
    Bytes pieza = Puntero4(siguiente);
    AgregarBytes(pieza, valor.subspan(desde, fin - desde));
    siguiente = almacen_.Agregar(pieza);
    fin = desde;
  }
  return Campo(largo, siguiente);
}

void ValoresLargos::Soltar(Vista campo) {
  if (campo.size() < kCampoLargo) return;
  const std::uint32_t palabra = U32(campo, 0);
  if ((palabra & kEnLinea) != 0) return;
  IdFila pieza = LeerPuntero(campo, 4);
  // No longer than its value, so that a damaged chain that comes back ends.
  for (std::size_t quedan = palabra & kLargoMas; pieza.pagina != 0 && quedan > 0;) {
    if (!EnMapa(paginas_, propias_, pieza.pagina)) return;
    IdFila siguiente{};
    std::size_t largo = quedan;
    if ((palabra & kEnUnaFila) == 0) {
      const Imagen pagina = paginas_.Leer(pieza.pagina);
      const auto r = LeerRanura(pieza.pagina, *pagina, pieza.fila);
      if (r.largo <= 4) DanioEnPagina(pieza.pagina, "un valor largo tiene una pieza vacía");
      siguiente = LeerPuntero(*pagina, r.desde);
      largo = std::min(quedan, r.largo - 4);
    }
    almacen_.Quitar(pieza);
    quedan -= largo;
    pieza = siguiente;
  }
}

}  // namespace mdb::internal
