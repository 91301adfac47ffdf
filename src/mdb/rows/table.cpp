#include "mdb/rows/table.h"

#include "mdb/pages/data_page_internal.h"
#include "mdb/pages/page_map.h"
#include "mdb/rows/row_internal.h"

namespace mdb {
namespace {

using internal::PaginaDeDatos;
using internal::Ranura;

PaginaDeDatos AbrirPagina(const Paginas& paginas, const Definicion& definicion, NumPagina numero,
                          const Imagen& imagen) {
  const PaginaDeDatos datos(paginas.Cab(), numero, *imagen);
  if (datos.Dueno() != definicion.Pagina()) DanioEnPagina(numero, "es de otra tabla");
  return datos;
}

// The place of a moved row. Only such a place may be pointed at, so that no row leads on to another.
BytesDeFila SeguirMovida(Paginas& paginas, const Definicion& definicion, Vista ranura) {
  const IdFila lugar = internal::LeerPuntero(ranura, 0);
  BytesDeFila fila{paginas.Leer(lugar.pagina), {}, lugar};
  const Ranura r = AbrirPagina(paginas, definicion, lugar.pagina, fila.imagen).En(lugar.fila);
  if (!r.Destino()) DanioEnPagina(lugar.pagina, "una fila movida no está donde debe");
  fila.bytes = r.bytes;
  return fila;
}

[[noreturn]] void FilaIlegible(IdFila id, const Danio& d) {
  if (d.NamesPage()) throw d;
  DanioEnPagina(id.pagina, "la fila " + std::to_string(id.fila) + " no se puede leer");
}

// Decodes chosen columns of one row after another into the same values.
class Decodificador {
 public:
  Decodificador(Paginas& paginas, const Definicion& definicion, const std::vector<std::size_t>& columnas)
      : paginas_(paginas), definicion_(definicion), elegidas_(columnas), fila_(definicion.columnas.size()) {
    if (!elegidas_.empty()) return;
    for (std::size_t i = 0; i < definicion.columnas.size(); ++i) elegidas_.push_back(i);
  }

  const Fila& Leer(Vista bytes) {
    const internal::FilaAbierta abierta(paginas_.Cab(), definicion_, bytes);
    for (const std::size_t i : elegidas_) {
      const Columna& columna = definicion_.columnas[i];
      if (const Crudo crudo = abierta.De(columna)) {
        internal::DecodificarEn(paginas_, columna, *crudo, fila_[i]);
      } else {
        fila_[i] = base::Nulo{};
      }
    }
    return fila_;
  }

 private:
  Paginas& paginas_;
  const Definicion& definicion_;
  std::vector<std::size_t> elegidas_;
  Fila fila_;
};

}  // namespace

void RecorrerFilas(Paginas& paginas, const Definicion& definicion, const Visita& visita,
                   const std::vector<std::size_t>& columnas) {
  Decodificador decodificador(paginas, definicion, columnas);
  const auto leer = [&](IdFila id, Vista bytes) -> const Fila& {
    try {
      return decodificador.Leer(bytes);
    } catch (const Danio& d) {
      FilaIlegible(id, d);
    }
  };
  for (const NumPagina numero : LeerMapaCompleto(paginas, definicion.propias)) {
    const Imagen imagen = paginas.Leer(numero);
    const PaginaDeDatos datos = AbrirPagina(paginas, definicion, numero, imagen);
    for (unsigned i = 0; i < datos.Cantidad(); ++i) {
      const Ranura r = datos.En(i);
      if (r.Salteada()) continue;
      const IdFila id{numero, static_cast<std::uint8_t>(i)};
      if (r.Movida()) {
        const auto movida = internal::NombrandoPagina(numero, "una fila movida no se puede seguir", [&] {
          return SeguirMovida(paginas, definicion, r.bytes);
        });
        if (!visita(id, leer(movida.lugar, movida.bytes))) return;
      } else if (!visita(id, leer(id, r.bytes))) {
        return;
      }
    }
  }
}

std::optional<BytesDeFila> BuscarFila(Paginas& paginas, const Definicion& definicion, IdFila id) {
  BytesDeFila fila{paginas.Leer(id.pagina), {}, id};
  const PaginaDeDatos datos = AbrirPagina(paginas, definicion, id.pagina, fila.imagen);
  if (id.fila >= datos.Cantidad()) return {};
  const Ranura r = datos.En(id.fila);
  if (r.Salteada()) return {};
  if (r.Movida())
    return internal::NombrandoPagina(id.pagina, "una fila movida no se puede seguir",
                                     [&] { return SeguirMovida(paginas, definicion, r.bytes); });
  fila.bytes = r.bytes;
  return fila;
}

std::optional<Fila> LeerFila(Paginas& paginas, const Definicion& definicion, IdFila id) {
  const auto bytes = BuscarFila(paginas, definicion, id);
  if (!bytes) return {};
  try {
    return Decodificador(paginas, definicion, {}).Leer(bytes->bytes);
  } catch (const Danio& d) {
    FilaIlegible(bytes->lugar, d);
  }
}

}  // namespace mdb
