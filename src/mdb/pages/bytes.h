// The integers of Access files: little-endian, read with their bounds checked.
//
// A read beyond the end throws mdb::Damage, so that a damaged length never leads out of a page; whoever knows
// the page says so with ThrowPageDamage.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/error.h"

namespace mdb {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;
using PageNumber = std::uint32_t;

// Damage: what the file holds is not what its format allows. The description names the page, if it is known.
class Damage : public base::StorageFault {
 public:
  // Of no known page; what is said is the reason alone.
  explicit Damage(const std::string& reason) : base::StorageFault(reason), reason_(reason) {}
  Damage(const std::string& description, std::optional<PageNumber> page, std::string reason)
      : base::StorageFault(description), page_(page), reason_(std::move(reason)) {}
  bool NamesPage() const { return page_.has_value(); }
  std::optional<PageNumber> Page() const { return page_; }
  const std::string& Reason() const { return reason_; }  // the description without file and page

 private:
  std::optional<PageNumber> page_;
  std::string reason_;
};
// Throws Damage: "El archivo está dañado, página N: reason".
[[noreturn]] void ThrowPageDamage(PageNumber page, const std::string& reason);
// The same where no page is to blame: "El archivo está dañado: reason".
[[noreturn]] void ThrowFileDamage(const std::string& reason);
[[noreturn]] void ThrowTooShort();

// `count` bytes from `pos`; throws Damage when they are not all there.
inline View Slice(View v, std::size_t pos, std::size_t count) {
  if (pos > v.size() || count > v.size() - pos) ThrowTooShort();
  return v.subspan(pos, count);
}

inline std::uint8_t U8(View v, std::size_t pos) { return Slice(v, pos, 1)[0]; }
inline std::uint16_t U16(View v, std::size_t pos) {
  const View t = Slice(v, pos, 2);
  return static_cast<std::uint16_t>(t[0] | t[1] << 8);
}
inline std::uint32_t U24(View v, std::size_t pos) {
  const View t = Slice(v, pos, 3);
  return t[0] | static_cast<std::uint32_t>(t[1]) << 8 | static_cast<std::uint32_t>(t[2]) << 16;
}
inline std::uint32_t U32(View v, std::size_t pos) {
  const View t = Slice(v, pos, 4);
  return t[0] | static_cast<std::uint32_t>(t[1]) << 8 | static_cast<std::uint32_t>(t[2]) << 16 |
         static_cast<std::uint32_t>(t[3]) << 24;
}
inline std::uint64_t U64(View v, std::size_t pos) {
  return U32(v, pos) | static_cast<std::uint64_t>(U32(v, pos + 4)) << 32;
}
inline std::int16_t I16(View v, std::size_t pos) { return static_cast<std::int16_t>(U16(v, pos)); }
inline std::int32_t I32(View v, std::size_t pos) { return static_cast<std::int32_t>(U32(v, pos)); }
inline std::int64_t I64(View v, std::size_t pos) { return static_cast<std::int64_t>(U64(v, pos)); }
inline double F64(View v, std::size_t pos) { return std::bit_cast<double>(U64(v, pos)); }
inline float F32(View v, std::size_t pos) { return std::bit_cast<float>(U32(v, pos)); }

// The same for writing over bytes that are there; throws Damage beyond the end.
void Put8(std::span<std::uint8_t> v, std::size_t pos, std::uint8_t n);
void Put16(std::span<std::uint8_t> v, std::size_t pos, std::uint16_t n);
void Put24(std::span<std::uint8_t> v, std::size_t pos, std::uint32_t n);
void Put32(std::span<std::uint8_t> v, std::size_t pos, std::uint32_t n);
void Put64(std::span<std::uint8_t> v, std::size_t pos, std::uint64_t n);
void PutBytes(std::span<std::uint8_t> v, std::size_t pos, View bytes);

// The same at the end of a growing text.
void Append8(Bytes& v, std::uint8_t n);
void Append16(Bytes& v, std::uint16_t n);
void Append24(Bytes& v, std::uint32_t n);
void Append32(Bytes& v, std::uint32_t n);
void Append64(Bytes& v, std::uint64_t n);
void AppendBytes(Bytes& v, View bytes);

}  // namespace mdb
