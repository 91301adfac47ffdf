#include "mdb/indexes/index_page.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string>

namespace mdb {
namespace {

constexpr std::uint8_t kNodo = 3, kHoja = 4;
constexpr std::size_t kCola = 4;  // page and row behind a key; a node's child takes as many again

// Where the fields stand.
struct Forma {
  std::size_t anterior, siguiente, cola, prefijo, nivel, mascara, datos;
};
constexpr Forma kJet4{12, 16, 20, 24, 26, 27, 480};
constexpr Forma kJet3{8, 12, 16, 20, 21, 22, 248};

const Forma& FormaDe(const Paginas& paginas) { return paginas.Cab().Jet3() ? kJet3 : kJet4; }

// Bit n of the mask: an entry ends n bytes after the start of the entries.
std::vector<std::size_t> Fines(Vista mascara) {
  std::array<std::uint16_t, 8 * 456> lugares;
  std::size_t cuantos = 0;
  const auto palabra = [&](std::uint64_t p, std::size_t primera) {
    for (; p != 0; p &= p - 1)
      lugares[cuantos++] =
          static_cast<std::uint16_t>(primera + static_cast<std::size_t>(std::countr_zero(p)));
  };
  const std::uint8_t* v = mascara.data();
  std::size_t i = 0;
  for (; i + 8 <= mascara.size(); i += 8, v += 8)
    palabra(std::uint64_t{v[0]} | std::uint64_t{v[1]} << 8 | std::uint64_t{v[2]} << 16 |
                std::uint64_t{v[3]} << 24 | std::uint64_t{v[4]} << 32 | std::uint64_t{v[5]} << 40 |
                std::uint64_t{v[6]} << 48 | std::uint64_t{v[7]} << 56,
            8 * i);
  for (; i < mascara.size(); ++i) palabra(mascara[i], 8 * i);
  return {lugares.begin(), lugares.begin() + static_cast<std::ptrdiff_t>(cuantos)};
}

void AgregarFila(Bytes& v, IdFila fila) {
  v.push_back(static_cast<std::uint8_t>(fila.pagina >> 16));
  v.push_back(static_cast<std::uint8_t>(fila.pagina >> 8));
  v.push_back(static_cast<std::uint8_t>(fila.pagina));
  v.push_back(fila.fila);
}

}  // namespace

PaginaDeIndice PaginaDeIndice::Leer(Paginas& paginas, NumPagina numero, NumPagina tabla) {
  const Forma& forma = FormaDe(paginas);
  Imagen imagen = paginas.Leer(numero);
  const Vista v = *imagen;
  if (v[0] != kNodo && v[0] != kHoja) DanioEnPagina(numero, "se esperaba una página de índice");
  PaginaDeIndice p(numero, v[0] == kHoja);
  p.duena = U32(v, 4);
  if (tabla != 0 && p.duena != tabla)
    DanioEnPagina(numero, "la página de índice es de otra tabla (página " + std::to_string(p.duena) + ")");
  p.anterior = U32(v, forma.anterior);
  p.siguiente = U32(v, forma.siguiente);
  p.cola = U32(v, forma.cola);
  p.prefijo = paginas.Cab().Jet3() ? U8(v, forma.prefijo) : U16(v, forma.prefijo);
  p.nivel = U8(v, forma.nivel);
  p.fines_ = Fines(Trozo(v, forma.mascara, forma.datos - forma.mascara));
  const std::size_t usados = p.BytesSinPrefijo(), hay = v.size() - forma.datos;
  if (usados > hay) DanioEnPagina(numero, "las entradas del índice no caben en la página");
  p.libres = hay - usados;
  p.libres_segun_pagina = U16(v, 2);
  p.ajenos_ = v.subspan(forma.datos, usados);
  p.imagen_ = std::move(imagen);
  p.propia_ = false;
  if (p.prefijo != 0 && p.Cantidad() > 1) p.DeshacerPrefijo();
  const std::size_t minimo = (p.hoja ? kCola : 2 * kCola) + 1;
  for (std::size_t i = 0, desde = 0; i < p.fines_.size(); desde = p.fines_[i++])
    if (p.fines_[i] - desde < minimo) DanioEnPagina(numero, "una entrada del índice es demasiado corta");
  return p;
}

void PaginaDeIndice::DeshacerPrefijo() {
  if (fines_[0] < prefijo)
    DanioEnPagina(numero, "la primera entrada del índice es más corta que la parte común de las demás");
  datos_.resize(ajenos_.size() + prefijo * (fines_.size() - 1));
  auto destino = std::copy_n(ajenos_.begin(), fines_[0], datos_.begin());
  for (std::size_t i = 1, desde = fines_[0]; i < fines_.size(); ++i) {
    const std::size_t hasta = fines_[i];
    destino = std::copy_n(ajenos_.begin(), prefijo, destino);
    destino = std::copy(ajenos_.begin() + static_cast<std::ptrdiff_t>(desde),
                        ajenos_.begin() + static_cast<std::ptrdiff_t>(hasta), destino);
    desde = hasta;
    fines_[i] = static_cast<std::size_t>(destino - datos_.begin());
  }
  propia_ = true;
  imagen_.reset();
}

Vista PaginaDeIndice::Completa(std::size_t i) const {
  const std::size_t desde = i == 0 ? 0 : fines_[i - 1];
  return Datos().subspan(desde, fines_[i] - desde);
}

Vista PaginaDeIndice::Clave(std::size_t i) const {
  const Vista v = Completa(i);
  return v.first(v.size() - (hoja ? kCola : 2 * kCola));
}

IdFila PaginaDeIndice::FilaDe(std::size_t i) const {
  const Vista v = Completa(i);
  const Vista f = v.subspan(v.size() - (hoja ? kCola : 2 * kCola));
  return {static_cast<NumPagina>(f[0] << 16 | f[1] << 8 | f[2]), f[3]};
}

NumPagina PaginaDeIndice::Hijo(std::size_t i) const {
  if (i == Cantidad()) return cola;
  const Vista v = Completa(i);
  const Vista h = v.last(kCola);
  return static_cast<NumPagina>(h[0]) << 24 | static_cast<NumPagina>(h[1] << 16 | h[2] << 8 | h[3]);
}

std::strong_ordering PaginaDeIndice::Comparar(std::size_t i, Vista clave, IdFila fila) const {
  const auto orden = CompararClaves(Clave(i), clave);
  return orden != 0 ? orden : FilaDe(i) <=> fila;
}

std::size_t PaginaDeIndice::Primera(Vista clave, IdFila fila) const {
  std::size_t desde = 0, hasta = Cantidad();
  while (desde < hasta) {
    const std::size_t medio = desde + (hasta - desde) / 2;
    if (Comparar(medio, clave, fila) < 0)
      desde = medio + 1;
    else
      hasta = medio;
  }
  return desde;
}

void PaginaDeIndice::Apropiar() {
  if (propia_) return;
  datos_.reserve(kCapacidad + kCapacidad / 2);
  datos_.assign(ajenos_.begin(), ajenos_.end());
  propia_ = true;
  imagen_.reset();
}

void PaginaDeIndice::Insertar(std::size_t i, Vista completa) {
  Apropiar();
  const std::size_t desde = i == 0 ? 0 : fines_[i - 1];
  datos_.insert(datos_.begin() + static_cast<std::ptrdiff_t>(desde), completa.begin(), completa.end());
  fines_.insert(fines_.begin() + static_cast<std::ptrdiff_t>(i), desde);
  for (std::size_t k = i; k < fines_.size(); ++k) fines_[k] += completa.size();
}

void PaginaDeIndice::Quitar(std::size_t desde, std::size_t hasta) {
  if (desde == hasta) return;
  Apropiar();
  const auto inicio = static_cast<std::ptrdiff_t>(desde == 0 ? 0 : fines_[desde - 1]);
  const auto fin = static_cast<std::ptrdiff_t>(fines_[hasta - 1]);
  datos_.erase(datos_.begin() + inicio, datos_.begin() + fin);
  fines_.erase(fines_.begin() + static_cast<std::ptrdiff_t>(desde),
               fines_.begin() + static_cast<std::ptrdiff_t>(hasta));
  for (std::size_t k = desde; k < fines_.size(); ++k) fines_[k] -= static_cast<std::size_t>(fin - inicio);
}

void PaginaDeIndice::Reemplazar(std::size_t i, Vista completa) {
  const Bytes copia(completa.begin(), completa.end());  // it may be part of this page
  Quitar(i, i + 1);
  Insertar(i, copia);
}

void PaginaDeIndice::Agregar(const PaginaDeIndice& otra, std::size_t desde, std::size_t hasta) {
  if (desde == hasta) return;
  Apropiar();
  const std::size_t inicio = desde == 0 ? 0 : otra.fines_[desde - 1], antes = datos_.size();
  AgregarBytes(datos_, otra.Datos().subspan(inicio, otra.fines_[hasta - 1] - inicio));
  for (std::size_t k = desde; k < hasta; ++k) fines_.push_back(antes + otra.fines_[k] - inicio);
}

std::size_t PaginaDeIndice::Comun() const {
  if (!hoja || Cantidad() < 2) return 0;
  const Vista a = Clave(0), b = Clave(Cantidad() - 1);
  return static_cast<std::size_t>(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
}

std::size_t PaginaDeIndice::BytesConPrefijo() const {
  return Cantidad() < 2 ? BytesSinPrefijo() : BytesSinPrefijo() - Comun() * (Cantidad() - 1);
}

void PaginaDeIndice::Escribir(Paginas& paginas, NumPagina tabla) {
  if (paginas.Cab().Jet3()) throw base::Error("Los índices de archivos de Access 97 no se escriben");
  Apropiar();
  prefijo = prefijo != 0 || BytesSinPrefijo() > kCapacidad ? Comun() : 0;
  Bytes& v = paginas.Modificar(numero);
  std::fill(v.begin(), v.end(), std::uint8_t{0});
  Poner8(v, 0, hoja ? kHoja : kNodo);
  Poner8(v, 1, 1);
  Poner32(v, 4, tabla);
  Poner32(v, kJet4.anterior, anterior);
  Poner32(v, kJet4.siguiente, siguiente);
  Poner32(v, kJet4.cola, hoja ? 0 : cola);
  Poner16(v, kJet4.prefijo, static_cast<std::uint16_t>(prefijo));
  Poner8(v, kJet4.nivel, nivel);
  std::size_t lugar = 0;
  for (std::size_t i = 0; i < Cantidad(); ++i) {
    const Vista trozo = Completa(i).subspan(i == 0 ? 0 : prefijo);
    PonerBytes(v, kJet4.datos + lugar, trozo);
    lugar += trozo.size();
    v[kJet4.mascara + lugar / 8] = static_cast<std::uint8_t>(v[kJet4.mascara + lugar / 8] | 1U << lugar % 8);
  }
  Poner16(v, 2, static_cast<std::uint16_t>(kCapacidad - lugar));
}

std::strong_ordering CompararClaves(Vista a, Vista b) {
  const std::size_t n = std::min(a.size(), b.size());
  const int orden = n == 0 ? 0 : std::memcmp(a.data(), b.data(), n);
  return orden != 0 ? orden <=> 0 : a.size() <=> b.size();
}

Bytes EntradaCompleta(Vista clave, IdFila fila) {
  Bytes v;
  v.reserve(clave.size() + 2 * kCola);
  AgregarBytes(v, clave);
  AgregarFila(v, fila);
  return v;
}

Bytes EntradaCompleta(Vista clave, IdFila fila, NumPagina hijo) {
  Bytes v = EntradaCompleta(clave, fila);
  for (int k = 24; k >= 0; k -= 8) v.push_back(static_cast<std::uint8_t>(hijo >> k));
  return v;
}

}  // namespace mdb
