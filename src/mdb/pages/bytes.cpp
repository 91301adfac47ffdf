#include "mdb/pages/bytes.h"

#include <algorithm>

namespace mdb {
namespace {

// The lowest `count` bytes of `n`, lowest first.
template <typename Target>
void Distribute(std::uint64_t n, int count, Target&& target) {
  for (int i = 0; i < count; ++i) target(i, static_cast<std::uint8_t>(n >> (8 * i)));
}

void Put(std::span<std::uint8_t> v, std::size_t pos, std::uint64_t n, int count) {
  Slice(v, pos, static_cast<std::size_t>(count));
  Distribute(n, count, [&](int i, std::uint8_t b) { v[pos + static_cast<std::size_t>(i)] = b; });
}

void Append(Bytes& v, std::uint64_t n, int count) {
  Distribute(n, count, [&](int, std::uint8_t b) { v.push_back(b); });
}

}  // namespace

void ThrowPageDamage(PageNumber page, const std::string& reason) {
  throw Damage("El archivo está dañado, página " + std::to_string(page) + ": " + reason, page, reason);
}

void ThrowFileDamage(const std::string& reason) {
  throw Damage("El archivo está dañado: " + reason, std::nullopt, reason);
}

void ThrowTooShort() { ThrowFileDamage("un largo lleva más allá de sus datos"); }

void Put8(std::span<std::uint8_t> v, std::size_t pos, std::uint8_t n) { Put(v, pos, n, 1); }
void Put16(std::span<std::uint8_t> v, std::size_t pos, std::uint16_t n) { Put(v, pos, n, 2); }
void Put24(std::span<std::uint8_t> v, std::size_t pos, std::uint32_t n) { Put(v, pos, n, 3); }
void Put32(std::span<std::uint8_t> v, std::size_t pos, std::uint32_t n) { Put(v, pos, n, 4); }
void Put64(std::span<std::uint8_t> v, std::size_t pos, std::uint64_t n) { Put(v, pos, n, 8); }
void PutBytes(std::span<std::uint8_t> v, std::size_t pos, View bytes) {
  Slice(v, pos, bytes.size());
  std::copy(bytes.begin(), bytes.end(), v.begin() + static_cast<std::ptrdiff_t>(pos));
}

void Append8(Bytes& v, std::uint8_t n) { v.push_back(n); }
void Append16(Bytes& v, std::uint16_t n) { Append(v, n, 2); }
void Append24(Bytes& v, std::uint32_t n) { Append(v, n, 3); }
void Append32(Bytes& v, std::uint32_t n) { Append(v, n, 4); }
void Append64(Bytes& v, std::uint64_t n) { Append(v, n, 8); }
void AppendBytes(Bytes& v, View bytes) { v.insert(v.end(), bytes.begin(), bytes.end()); }

}  // namespace mdb
