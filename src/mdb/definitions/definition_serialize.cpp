#include "base/encoding.h"
#include "mdb/definitions/definition_internal.h"

namespace mdb {
namespace {

constexpr std::uint32_t kMarca = 1625, kMarcaDeIndice = 1923;
constexpr std::size_t kPartes = 10;  // columns of one index

void AgregarPuntero(Bytes& v, Puntero p) {
  Agregar8(v, p.fila);
  Agregar24(v, p.pagina);
}

void AgregarNombre(Bytes& v, const std::string& nombre) {
  const std::u16string texto = base::AUtf16(nombre);
  Agregar16(v, static_cast<std::uint16_t>(texto.size() * 2));
  for (const char16_t u : texto) Agregar16(v, static_cast<std::uint16_t>(u));
}

void AgregarComienzo(Bytes& v, const Definicion& d) {
  Agregar64(v, 0);  // the page's header
  Agregar32(v, 0);  // total length, known at the end
  Agregar32(v, kMarca);
  Agregar32(v, d.filas);
  Agregar32(v, static_cast<std::uint32_t>(d.ultimo_automatico));
  Agregar32(v, static_cast<std::uint32_t>(d.incremento));
  Agregar32(v, 0);  // last autonumber of a complex column, which Jet 4 does not have
  Agregar64(v, 0);
  Agregar8(v, d.clase);
  Agregar16(v, d.max_columnas);
  Agregar16(v, d.variables);
  Agregar16(v, static_cast<std::uint16_t>(d.columnas.size()));
  Agregar32(v, static_cast<std::uint32_t>(d.logicos.size()));
  Agregar32(v, static_cast<std::uint32_t>(d.reales.size()));
  AgregarPuntero(v, d.propias);
  AgregarPuntero(v, d.libres);
  for (const auto& r : d.reales) {
    Agregar32(v, r.entradas);
    Agregar32(v, r.distintas);
    Agregar32(v, 0);
  }
}

void AgregarColumna(Bytes& v, const Columna& c) {
  Agregar8(v, static_cast<std::uint8_t>(c.tipo));
  Agregar32(v, kMarca);
  Agregar16(v, c.numero);
  Agregar16(v, c.variable);
  Agregar16(v, c.posicion);
  if (c.tipo == TipoColumna::Decimal) {
    Agregar8(v, c.precision);
    Agregar8(v, c.escala);
  } else {
    Agregar16(v, c.lcid);
  }
  Agregar8(v, 0);
  Agregar8(v, c.version_orden);
  Agregar8(v, c.banderas);
  Agregar8(v, c.banderas_ext);
  Agregar32(v, 0);
  Agregar16(v, c.desplazamiento);
  Agregar16(v, c.largo);
}

void AgregarReal(Bytes& v, const IndiceReal& r) {
  if (r.partes.size() > kPartes) throw base::Error("Un índice no puede tener más de 10 columnas");
  Agregar32(v, kMarcaDeIndice);
  for (std::size_t i = 0; i < kPartes; ++i) {
    const bool hay = i < r.partes.size();
    Agregar16(v, hay ? r.partes[i].columna : std::uint16_t{0xFFFF});
    Agregar8(v, hay && !r.partes[i].descendente ? 1 : 0);
  }
  AgregarPuntero(v, r.mapa);
  Agregar32(v, r.raiz);
  Agregar32(v, 0);
  Agregar8(v, r.banderas);
  Agregar8(v, 0);
  Agregar32(v, 0);
}

void AgregarLogico(Bytes& v, const IndiceLogico& l) {
  Agregar32(v, kMarca);
  Agregar32(v, l.numero);
  Agregar32(v, l.real);
  Agregar8(v, l.lado);
  Agregar32(v, static_cast<std::uint32_t>(l.otro_indice));
  Agregar32(v, l.otra_tabla);
  Agregar8(v, l.actualiza_en_cascada);
  Agregar8(v, l.borra_en_cascada);
  Agregar8(v, l.clase);
  Agregar32(v, 0);
}

}  // namespace

Bytes SerializarDefinicion(const Definicion& d) {
  if (d.columnas.size() > Definicion::kColumnas || d.max_columnas > Definicion::kColumnas)
    throw base::Error("Una tabla no puede tener más de 255 columnas, contando las que tuvo antes");
  Bytes v;
  AgregarComienzo(v, d);
  for (const auto& c : d.columnas) AgregarColumna(v, c);
  for (const auto& c : d.columnas) AgregarNombre(v, c.nombre);
  for (const auto& r : d.reales) AgregarReal(v, r);
  for (const auto& l : d.logicos) AgregarLogico(v, l);
  for (const auto& l : d.logicos) AgregarNombre(v, l.nombre);
  for (const auto& c : d.columnas) {
    if (!c.EsLarga()) continue;
    Agregar16(v, c.numero);
    AgregarPuntero(v, c.lv_propias);
    AgregarPuntero(v, c.lv_libres);
  }
  Agregar16(v, 0xFFFF);
  Poner32(v, 8, static_cast<std::uint32_t>(v.size()));
  return v;
}

void PonerCabeceraDeDefinicion(std::span<std::uint8_t> pagina, std::size_t usados, NumPagina siguiente) {
  Poner16(pagina, 0, 0x0102);
  // Counted without 8 bytes that nothing seems to use; a page filled beyond them has none.
  const std::size_t lleno = pagina.size() - 8;
  Poner16(pagina, 2, static_cast<std::uint16_t>(usados < lleno ? lleno - usados : 0));
  Poner32(pagina, 4, siguiente);
}

}  // namespace mdb
