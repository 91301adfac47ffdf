// The integers of Access files: little-endian, read with their bounds checked.
//
// A read beyond the end throws mdb::Danio, so that a damaged length never leads out of a page; whoever knows
// the page says so with DanioEnPagina.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "base/error.h"

namespace mdb {

using Bytes = std::vector<std::uint8_t>;
using Vista = std::span<const std::uint8_t>;
using NumPagina = std::uint32_t;

// Damage: what the file holds is not what its format allows. The description names the page, if it is known.
class Danio : public base::StorageFault {
 public:
  explicit Danio(const std::string& descripcion, bool names_page = false)
      : base::StorageFault(descripcion), names_page_(names_page) {}
  bool NamesPage() const { return names_page_; }

 private:
  bool names_page_;
};
// Throws Danio: "Página N: motivo".
[[noreturn]] void DanioEnPagina(NumPagina pagina, const std::string& motivo);
[[noreturn]] void LanzarCorto();

// `cantidad` bytes from `pos`; throws Danio when they are not all there.
inline Vista Trozo(Vista v, std::size_t pos, std::size_t cantidad) {
  if (pos > v.size() || cantidad > v.size() - pos) LanzarCorto();
  return v.subspan(pos, cantidad);
}

inline std::uint8_t U8(Vista v, std::size_t pos) { return Trozo(v, pos, 1)[0]; }
inline std::uint16_t U16(Vista v, std::size_t pos) {
  const Vista t = Trozo(v, pos, 2);
  return static_cast<std::uint16_t>(t[0] | t[1] << 8);
}
inline std::uint32_t U24(Vista v, std::size_t pos) {
  const Vista t = Trozo(v, pos, 3);
  return t[0] | static_cast<std::uint32_t>(t[1]) << 8 | static_cast<std::uint32_t>(t[2]) << 16;
}
inline std::uint32_t U32(Vista v, std::size_t pos) {
  const Vista t = Trozo(v, pos, 4);
  return t[0] | static_cast<std::uint32_t>(t[1]) << 8 | static_cast<std::uint32_t>(t[2]) << 16 |
         static_cast<std::uint32_t>(t[3]) << 24;
}
inline std::uint64_t U64(Vista v, std::size_t pos) {
  return U32(v, pos) | static_cast<std::uint64_t>(U32(v, pos + 4)) << 32;
}
inline std::int16_t I16(Vista v, std::size_t pos) { return static_cast<std::int16_t>(U16(v, pos)); }
inline std::int32_t I32(Vista v, std::size_t pos) { return static_cast<std::int32_t>(U32(v, pos)); }
inline std::int64_t I64(Vista v, std::size_t pos) { return static_cast<std::int64_t>(U64(v, pos)); }
inline double F64(Vista v, std::size_t pos) { return std::bit_cast<double>(U64(v, pos)); }
inline float F32(Vista v, std::size_t pos) { return std::bit_cast<float>(U32(v, pos)); }

// The same for writing over bytes that are there; throws Danio beyond the end.
void Poner8(std::span<std::uint8_t> v, std::size_t pos, std::uint8_t n);
void Poner16(std::span<std::uint8_t> v, std::size_t pos, std::uint16_t n);
void Poner24(std::span<std::uint8_t> v, std::size_t pos, std::uint32_t n);
void Poner32(std::span<std::uint8_t> v, std::size_t pos, std::uint32_t n);
void Poner64(std::span<std::uint8_t> v, std::size_t pos, std::uint64_t n);
void PonerBytes(std::span<std::uint8_t> v, std::size_t pos, Vista bytes);

// The same at the end of a growing text.
void Agregar8(Bytes& v, std::uint8_t n);
void Agregar16(Bytes& v, std::uint16_t n);
void Agregar24(Bytes& v, std::uint32_t n);
void Agregar32(Bytes& v, std::uint32_t n);
void Agregar64(Bytes& v, std::uint64_t n);
void AgregarBytes(Bytes& v, Vista bytes);

}  // namespace mdb
