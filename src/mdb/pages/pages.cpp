#include "mdb/pages/pages.h"

#include <algorithm>

namespace mdb {
namespace {

// Clean images kept for the next reader (32 MB of 4 KB pages). All go at once: whoever reads a table reads
// each of its pages once.
constexpr std::size_t kLimpias = 8192;

// The format's greatest file: 2 GiB, 1 GiB in Jet 3.
NumPagina MasPaginas(const Cabecera& c) {
  return static_cast<NumPagina>((c.Jet3() ? (1ULL << 30) : (1ULL << 31)) / c.tamano_pagina);
}

}  // namespace

Imagen Paginas::Leer(NumPagina numero) {
  if (const auto c = cambiadas_.find(numero); c != cambiadas_.end()) return c->second;
  if (const auto l = limpias_.find(numero); l != limpias_.end()) return l->second;
  if (numero >= cantidad_)
    DanioEnPagina(numero, "el archivo tiene " + std::to_string(cantidad_) + " páginas");
  auto imagen = std::make_shared<const Bytes>(Traer(numero));
  if (limpias_.size() >= kLimpias) limpias_.clear();
  limpias_.emplace(numero, imagen);
  return imagen;
}

Bytes& Paginas::Modificar(NumPagina numero) {
  if (!motivo_.empty()) throw base::StorageFault(motivo_);
  auto it = cambiadas_.find(numero);
  if (it == cambiadas_.end()) {
    it = cambiadas_.emplace(numero, std::make_shared<Bytes>(*Leer(numero))).first;
    limpias_.erase(numero);
  } else if (it->second.use_count() > 1) {
    it->second = std::make_shared<Bytes>(*it->second);
  }
  return *it->second;
}

NumPagina Paginas::Agregar() {
  if (!motivo_.empty()) throw base::StorageFault(motivo_);
  if (cantidad_ >= MasPaginas(cabecera_))
    throw base::StorageFault(
        "La base llegó al tamaño más grande que admite su formato: compáctela antes de seguir");
  cambiadas_.emplace(cantidad_, std::make_shared<Bytes>(Tamano(), std::uint8_t{0}));
  return cantidad_++;
}

void Paginas::Confirmar() {
  if (cambiadas_.empty()) return;
  try {
    Volcar(cambiadas_, guardadas_, cantidad_);
  } catch (const base::Error&) {
    Deshacer();
    throw;
  }
  guardadas_ = cantidad_;
  for (auto& [numero, bytes] : cambiadas_) limpias_[numero] = std::move(bytes);
  cambiadas_.clear();
}

void Paginas::Deshacer() {
  cambiadas_.clear();
  cantidad_ = guardadas_;
}

void Paginas::Volver(Punto punto) {
  cambiadas_ = std::move(punto.cambiadas);
  cantidad_ = punto.cantidad;
}

PaginasEnMemoria::PaginasEnMemoria(Cabecera cabecera, Bytes bytes)
    : Paginas(cabecera, static_cast<NumPagina>(bytes.size() / cabecera.tamano_pagina)),
      bytes_(std::move(bytes)) {}

Bytes PaginasEnMemoria::Traer(NumPagina numero) {
  const Vista pagina = Trozo(bytes_, numero * Tamano(), Tamano());
  Bytes plana(pagina.begin(), pagina.end());
  CifrarPagina(Cab(), numero, plana);
  return plana;
}

void PaginasEnMemoria::Volcar(const Cambiadas& cambiadas, NumPagina, NumPagina cantidad) {
  bytes_.resize(cantidad * Tamano());
  for (const auto& [numero, plana] : cambiadas) {
    Bytes guardada = *plana;
    CifrarPagina(Cab(), numero, guardada);
    std::copy(guardada.begin(), guardada.end(),
              bytes_.begin() + static_cast<std::ptrdiff_t>(numero * Tamano()));
  }
}

}  // namespace mdb
