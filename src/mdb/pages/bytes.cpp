#include "mdb/pages/bytes.h"

#include <algorithm>

namespace mdb {
namespace {

// The lowest `cantidad` bytes of `n`, lowest first.
template <typename Destino>
void Repartir(std::uint64_t n, int cantidad, Destino&& destino) {
  for (int i = 0; i < cantidad; ++i) destino(i, static_cast<std::uint8_t>(n >> (8 * i)));
}

void Poner(std::span<std::uint8_t> v, std::size_t pos, std::uint64_t n, int cantidad) {
  Trozo(v, pos, static_cast<std::size_t>(cantidad));
  Repartir(n, cantidad, [&](int i, std::uint8_t b) { v[pos + static_cast<std::size_t>(i)] = b; });
}

void Agregar(Bytes& v, std::uint64_t n, int cantidad) {
  Repartir(n, cantidad, [&](int, std::uint8_t b) { v.push_back(b); });
}

}  // namespace

void DanioEnPagina(NumPagina pagina, const std::string& motivo) {
  throw Danio("El archivo está dañado, página " + std::to_string(pagina) + ": " + motivo, true);
}

void LanzarCorto() { throw Danio("El archivo está dañado: un largo lleva más allá de sus datos"); }

void Poner8(std::span<std::uint8_t> v, std::size_t pos, std::uint8_t n) { Poner(v, pos, n, 1); }
void Poner16(std::span<std::uint8_t> v, std::size_t pos, std::uint16_t n) { Poner(v, pos, n, 2); }
void Poner24(std::span<std::uint8_t> v, std::size_t pos, std::uint32_t n) { Poner(v, pos, n, 3); }
void Poner32(std::span<std::uint8_t> v, std::size_t pos, std::uint32_t n) { Poner(v, pos, n, 4); }
void Poner64(std::span<std::uint8_t> v, std::size_t pos, std::uint64_t n) { Poner(v, pos, n, 8); }
void PonerBytes(std::span<std::uint8_t> v, std::size_t pos, Vista bytes) {
  Trozo(v, pos, bytes.size());
  std::copy(bytes.begin(), bytes.end(), v.begin() + static_cast<std::ptrdiff_t>(pos));
}

void Agregar8(Bytes& v, std::uint8_t n) { v.push_back(n); }
void Agregar16(Bytes& v, std::uint16_t n) { Agregar(v, n, 2); }
void Agregar24(Bytes& v, std::uint32_t n) { Agregar(v, n, 3); }
void Agregar32(Bytes& v, std::uint32_t n) { Agregar(v, n, 4); }
void Agregar64(Bytes& v, std::uint64_t n) { Agregar(v, n, 8); }
void AgregarBytes(Bytes& v, Vista bytes) { v.insert(v.end(), bytes.begin(), bytes.end()); }

}  // namespace mdb
