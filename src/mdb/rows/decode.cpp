#include <algorithm>
#include <bit>

#include "mdb/pages/data_page_internal.h"
#include "mdb/pages/text.h"
#include "mdb/rows/row_internal.h"

namespace mdb {
namespace {

constexpr std::size_t kCampoLargo = 12;
constexpr std::uint32_t kEnLinea = 0x80000000, kEnUnaFila = 0x40000000, kLargo = 0x3FFFFFFF;

// One row of a page of long values.
internal::Lugar Pieza(Paginas& paginas, Puntero puntero) {
  std::uint32_t dueno = 0;
  auto lugar = internal::Seguir(paginas, puntero, &dueno);
  if (dueno != internal::kLval || lugar.ranura.banderas != 0)
    DanioEnPagina(puntero.pagina, "un valor largo lleva a una fila que no lo es");
  return lugar;
}

// Rows that each start with the pointer to the next. A chain that comes back ends at the value's length.
Bytes LeerCadena(Paginas& paginas, Puntero puntero, std::size_t largo) {
  Bytes valor;
  while (valor.size() < largo) {
    if (puntero.pagina == 0) throw Danio("El archivo está dañado: un valor largo está incompleto");
    const auto pieza = Pieza(paginas, puntero);
    if (pieza.ranura.bytes.size() <= 4) DanioEnPagina(puntero.pagina, "un valor largo tiene una pieza vacía");
    AgregarBytes(valor, pieza.ranura.bytes.subspan(4));
    puntero = internal::LeerPuntero(pieza.ranura.bytes, 0);
  }
  valor.resize(largo);
  return valor;
}

// Calls `uso` with the value's bytes, which stay where they are as long as they stand in one piece.
template <typename Uso>
void ConValorLargo(Paginas& paginas, Vista campo, Uso&& uso) {
  const std::uint32_t palabra = U32(campo, 0);
  const std::size_t largo = palabra & kLargo;
  if ((palabra & kEnLinea) != 0) return uso(Trozo(campo, kCampoLargo, largo));
  const Puntero puntero = internal::LeerPuntero(campo, 4);
  Trozo(campo, 8, 4);
  if (largo == 0) return uso(Vista());
  // No value is longer than its file: what a damaged length could make us allocate ends there.
  if (largo > paginas.Cantidad() * paginas.Tamano())
    throw Danio("El archivo está dañado: un valor largo es más largo que el archivo");
  if ((palabra & kEnUnaFila) == 0) return uso(Vista(LeerCadena(paginas, puntero, largo)));
  const auto pieza = Pieza(paginas, puntero);
  internal::NombrandoPagina(puntero.pagina, "un valor largo está incompleto",
                            [&] { Trozo(pieza.ranura.bytes, 0, largo); });
  uso(pieza.ranura.bytes.first(largo));
}

template <typename T>
T& Reusar(Dato& d) {
  if (auto* t = std::get_if<T>(&d)) return *t;
  return d.emplace<T>();
}

void PonerBytesEn(Vista bytes, Dato& destino) { Reusar<Bytes>(destino).assign(bytes.begin(), bytes.end()); }

Guid LeerGuid(Vista v) {
  constexpr std::array<std::uint8_t, 16> kOrden = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  Guid g;
  Trozo(v, 0, 16);
  for (std::size_t i = 0; i < 16; ++i) g.bytes[i] = v[kOrden[i]];
  return g;
}

Decimal LeerDecimal(Vista v, std::uint8_t escala) {
  Decimal d;
  d.negativo = U8(v, 0) != 0;
  for (std::size_t i = 0; i < 4; ++i) d.magnitud[i] = U32(v, 1 + 4 * i);
  d.escala = escala;
  return d;
}

// A calculated column keeps its result with its length in front, behind 16 bytes of its own.
Vista QuitarEnvoltura(Vista v) {
  const std::size_t largo = U32(v, 16);
  return Trozo(v, 20, largo);
}

void LeerLarga(Paginas& paginas, const Columna& columna, Vista bytes, Dato& destino) {
  ConValorLargo(paginas, bytes, [&](Vista valor) {
    if (columna.Calculada()) valor = QuitarEnvoltura(valor);
    if (columna.tipo == TipoColumna::Memo) {
      internal::LeerTexto(paginas.Cab(), valor, Reusar<std::string>(destino));
    } else {
      PonerBytesEn(valor, destino);
    }
  });
}

}  // namespace

namespace internal {

void DecodificarEn(Paginas& paginas, const Columna& columna, Vista bytes, Dato& destino) {
  if (columna.EsLarga()) return LeerLarga(paginas, columna, bytes, destino);
  if (columna.Calculada()) bytes = QuitarEnvoltura(bytes);
  switch (columna.tipo) {
    case TipoColumna::Booleano:
      destino = U8(bytes, 0) != 0;
      return;
    case TipoColumna::Byte:
      destino = std::int64_t{U8(bytes, 0)};
      return;
    case TipoColumna::Entero:
      destino = std::int64_t{I16(bytes, 0)};
      return;
    case TipoColumna::Largo:
    case TipoColumna::Complejo:
      destino = std::int64_t{I32(bytes, 0)};
      return;
    case TipoColumna::EnteroGrande:
      destino = I64(bytes, 0);
      return;
    case TipoColumna::Moneda:
      destino = base::Moneda{I64(bytes, 0)};
      return;
    case TipoColumna::Simple:
      destino = F32(bytes, 0);
      return;
    case TipoColumna::Doble:
      destino = F64(bytes, 0);
      return;
    case TipoColumna::Fecha:
      destino = base::Fecha{F64(bytes, 0)};
      return;
    case TipoColumna::Texto:
      return LeerTexto(paginas.Cab(), bytes, Reusar<std::string>(destino));
    case TipoColumna::Guid:
      destino = LeerGuid(bytes);
      return;
    case TipoColumna::Decimal:
      destino = LeerDecimal(bytes, columna.escala);
      return;
    case TipoColumna::FechaExtendida: {
      const auto fin = std::find(bytes.begin(), bytes.end(), 0);
      Reusar<std::string>(destino).assign(bytes.begin(), fin);
      return;
    }
    default:  // Binary, and types that later versions may bring: their bytes
      PonerBytesEn(bytes, destino);
  }
}

}  // namespace internal

Dato Decodificar(Paginas& paginas, const Columna& columna, Vista bytes) {
  Dato d;
  internal::DecodificarEn(paginas, columna, bytes, d);
  return d;
}

}  // namespace mdb
