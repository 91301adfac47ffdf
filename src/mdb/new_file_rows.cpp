#include <algorithm>
#include <bit>

#include "base/encoding.h"
#include "base/sort_order.h"
#include "mdb/new_file_internal.h"

namespace mdb {
namespace {

constexpr std::size_t kTablaDeFilas = 14, kMascaraDeEntradas = 27, kEntradas = 480;

// What stands in the row for a value; none for Null and for a Boolean.
Bytes Guardado(const Columna& columna, const Dato& dato) {
  Bytes v;
  if (const auto* n = std::get_if<std::int64_t>(&dato)) {
    for (std::uint16_t i = 0; i < columna.largo; ++i)
      v.push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(*n) >> (8 * i)));
  } else if (const auto* f = std::get_if<base::Fecha>(&dato)) {
    Agregar64(v, std::bit_cast<std::uint64_t>(f->serie));
  } else if (const auto* t = std::get_if<std::string>(&dato)) {
    for (const char16_t u : base::AUtf16(*t)) Agregar16(v, static_cast<std::uint16_t>(u));
  } else if (const auto* b = std::get_if<Bytes>(&dato)) {
    v = *b;
  }
  return v;
}

bool EstaEnMascara(const Dato& dato) {
  if (const auto* b = std::get_if<bool>(&dato)) return *b;
  return !EsNulo(dato);
}

Bytes FilaGuardada(const Definicion& d, std::vector<const Columna*> por_numero,
                   const std::vector<Dato>& fila) {
  Bytes fijas, variables, mascara((d.max_columnas + 7U) / 8U, 0);
  std::vector<std::uint16_t> comienzos;
  for (const auto* c : por_numero) {
    const Dato dato = c->numero < fila.size() ? fila[c->numero] : Dato{};
    if (EstaEnMascara(dato))
      mascara[c->numero / 8] = static_cast<std::uint8_t>(mascara[c->numero / 8] | 1U << (c->numero % 8));
    if (!c->Fija()) comienzos.push_back(static_cast<std::uint16_t>(variables.size()));
    AgregarBytes(c->Fija() ? fijas : variables, Guardado(*c, dato));
  }
  Bytes v;
  Agregar16(v, d.max_columnas);
  AgregarBytes(v, fijas);
  const auto base_variables = static_cast<std::uint16_t>(v.size());
  AgregarBytes(v, variables);
  comienzos.push_back(static_cast<std::uint16_t>(variables.size()));
  std::for_each(comienzos.rbegin(), comienzos.rend(),
                [&](std::uint16_t c) { Agregar16(v, static_cast<std::uint16_t>(base_variables + c)); });
  Agregar16(v, d.variables);
  AgregarBytes(v, mascara);
  return v;
}

void AgregarClave(const Dato& dato, base::Orden orden, std::string& clave) {
  clave.push_back('\x7F');
  if (const auto* n = std::get_if<std::int64_t>(&dato)) {
    const auto u = static_cast<std::uint32_t>(*n) ^ 0x80000000U;
    for (int i = 24; i >= 0; i -= 8) clave.push_back(static_cast<char>(u >> i));
  } else {
    clave += base::ClaveDeIndice(std::get<std::string>(dato), orden);
  }
}

base::Orden OrdenDe(std::uint16_t lcid) {
  if (lcid == 1033) return base::Orden::General;
  return lcid == 1034 ? base::Orden::EspanolTradicional : base::Orden::EspanolModerno;
}

void EscribirRaiz(Paginas& paginas, IndiceReal& indice, std::vector<std::string> entradas) {
  std::sort(entradas.begin(), entradas.end());
  Bytes& p = paginas.Modificar(indice.raiz);
  std::size_t usado = 0;
  for (const auto& e : entradas) {
    PonerBytes(p, kEntradas + usado, Vista(reinterpret_cast<const std::uint8_t*>(e.data()), e.size()));
    usado += e.size();
    const std::size_t byte = kMascaraDeEntradas + usado / 8;
    Poner8(p, byte, static_cast<std::uint8_t>(p[byte] | 1U << (usado % 8)));
  }
  Poner16(p, 2, static_cast<std::uint16_t>(p.size() - kEntradas - usado));
  // An entry is the key and four bytes that say whose it is.
  for (auto& e : entradas) e.resize(e.size() - 4);
  indice.distintas =
      static_cast<std::uint32_t>(std::unique(entradas.begin(), entradas.end()) - entradas.begin());
}

}  // namespace

void MarcarEnMapa(Paginas& paginas, Puntero mapa, NumPagina pagina) {
  Bytes& p = paginas.Modificar(mapa.pagina);
  const std::size_t bitmap = U16(p, kTablaDeFilas + 2U * mapa.fila) + 5U;
  const std::size_t byte = bitmap + pagina / 8;
  Poner8(p, byte, static_cast<std::uint8_t>(U8(p, byte) | 1U << (pagina % 8)));
}

void EscribirPrimerasFilas(Paginas& paginas, Definicion& definicion, NumPagina datos,
                           const std::vector<std::vector<Dato>>& filas) {
  std::vector<const Columna*> por_numero;
  for (const auto& c : definicion.columnas) por_numero.push_back(&c);
  std::sort(por_numero.begin(), por_numero.end(), [](auto* a, auto* b) { return a->numero < b->numero; });
  Bytes& p = paginas.Modificar(datos);
  std::size_t fin = p.size();
  for (std::size_t i = 0; i < filas.size(); ++i) {
    const Bytes fila = FilaGuardada(definicion, por_numero, filas[i]);
    fin -= fila.size();
    PonerBytes(p, fin, fila);
    Poner16(p, kTablaDeFilas + 2 * i, static_cast<std::uint16_t>(fin));
  }
  Poner16(p, 0, 0x0101);
  Poner16(p, 2, static_cast<std::uint16_t>(fin - kTablaDeFilas - 2 * filas.size()));
  Poner32(p, 4, definicion.Pagina());
  Poner16(p, 12, static_cast<std::uint16_t>(filas.size()));
  MarcarEnMapa(paginas, definicion.propias, datos);
  MarcarEnMapa(paginas, definicion.libres, datos);
  definicion.filas = static_cast<std::uint32_t>(filas.size());

  const base::Orden orden = OrdenDe(paginas.Cab().orden);
  for (auto& indice : definicion.reales) {
    std::vector<std::string> entradas;
    for (std::size_t i = 0; i < filas.size(); ++i) {
      std::string e;
      for (const auto& parte : indice.partes) AgregarClave(filas[i][parte.columna], orden, e);
      e += {'\0', static_cast<char>(datos >> 8), static_cast<char>(datos), static_cast<char>(i)};
      entradas.push_back(std::move(e));
    }
    EscribirRaiz(paginas, indice, std::move(entradas));
  }
}

}  // namespace mdb
