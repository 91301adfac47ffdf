#include "mdb/pages/header.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "base/encoding.h"
#include "mdb/pages/header_internal.h"

namespace mdb {
namespace {

constexpr std::array<std::uint8_t, 4> kMaskKey{0xC7, 0xDA, 0x39, 0x6B};

// RC4, the cipher of the header's mask and of encrypted pages.
void Rc4(View key, std::span<std::uint8_t> bytes) {
  std::array<std::uint8_t, 256> s;
  std::iota(s.begin(), s.end(), std::uint8_t{0});
  for (unsigned i = 0, j = 0; i < 256; ++i) {
    j = (j + s[i] + key[i % key.size()]) & 255U;
    std::swap(s[i], s[j]);
  }
  unsigned i = 0, j = 0;
  for (auto& b : bytes) {
    i = (i + 1) & 255U;
    j = (j + s[i]) & 255U;
    std::swap(s[i], s[j]);
    b ^= s[(s[i] + s[j]) & 255U];
  }
}

// Jet 4 keeps UTF-16 XORed with the whole days of the creation date; Jet 3 bytes of its code page.
std::string ReadPassword(View p, const FileHeader& c) {
  if (c.Jet3()) {
    std::string text;
    for (const auto b : Slice(p, 0x42, 20)) {
      if (b == 0) break;
      text.push_back(static_cast<char>(b));
    }
    return base::FromCp1252(text);
  }
  const std::uint32_t salt = PasswordSalt(c.created);
  std::u16string text;
  for (std::size_t i = 0; i < 40; i += 2) {
    const auto unit =
        static_cast<char16_t>(U16(p, 0x42 + i) ^ static_cast<std::uint16_t>(salt >> (i % 4 * 8)));
    if (unit == 0) break;
    text.push_back(unit);
  }
  return base::FromUtf16(text);
}

}  // namespace

void MaskHeader(std::span<std::uint8_t> page, bool jet3) {
  Rc4(kMaskKey, page.subspan(0x18, jet3 ? 126 : 128));
}

std::uint32_t PasswordSalt(double created) {
  const bool measurable = created > -2147483648.0 && created < 2147483647.0;
  return static_cast<std::uint32_t>(static_cast<std::int32_t>(measurable ? created : 0));
}

FileHeader ReadHeader(View first) {
  if (first.size() < 0x15)
    throw base::StorageFault("El archivo es demasiado corto para ser una base de Access");
  const std::string_view name(reinterpret_cast<const char*>(first.data()) + 4, 16);
  if (name != kJetName && name != kAceName) throw base::StorageFault("El archivo no es una base de Access");
  const std::uint8_t version = first[0x14];
  FileHeader c;
  c.version = name == kAceName ? Version::Ace : (version == 0 ? Version::Jet3 : Version::Jet4);
  if (version > 6 || (name == kJetName && version > 1))
    throw base::StorageFault("La base es de una versión de Access que no se conoce (" +
                             std::to_string(version) + ")");
  c.page_size = c.Jet3() ? 2048 : 4096;
  if (first.size() < 2048)
    throw base::StorageFault("El archivo es demasiado corto para ser una base de Access");
  Bytes p(first.begin(), first.begin() + 2048);
  MaskHeader(p, c.Jet3());
  c.code_page = U16(p, 0x3C);
  c.key = U32(p, 0x3E);
  c.objects = U32(p, 0x20);
  c.permissions = U32(p, 0x24);
  c.queries = U32(p, 0x28);
  c.relationships = U32(p, 0x2C);
  if (c.Jet3()) {
    c.order = U16(p, 0x3A);
  } else {
    c.stamp = U32(p, 0x6A);
    c.order = U16(p, 0x6E);
    c.order_version = U8(p, 0x71);
    c.created = F64(p, 0x72);
  }
  c.foreign_encryption = c.version == Version::Ace && c.key != 0;
  if (c.key == 0 || !c.foreign_encryption) c.password = ReadPassword(p, c);
  return c;
}

void EncryptPage(const FileHeader& header, PageNumber number, std::span<std::uint8_t> bytes) {
  if (number == 0 || header.key == 0 || header.foreign_encryption) return;
  Bytes key;
  Append32(key, header.key ^ number);
  Rc4(key, bytes);
}

}  // namespace mdb
