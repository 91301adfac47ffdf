#include <algorithm>
#include <bit>

#include "base/encoding.h"
#include "mdb/pages/header_internal.h"

namespace mdb {
namespace {

constexpr std::size_t kPasswordUnits = 20;

void PutPassword(std::span<std::uint8_t> p, const FileHeader& c) {
  std::u16string text = base::ToUtf16(c.password);
  if (text.size() > kPasswordUnits)
    throw base::Error("La contraseña de una base no puede tener más de 20 caracteres");
  text.resize(kPasswordUnits, u'\0');
  const std::uint32_t salt = PasswordSalt(c.created);
  for (std::size_t i = 0; i < text.size(); ++i)
    Put16(p, 0x42 + 2 * i, static_cast<std::uint16_t>(text[i] ^ (i % 2 == 0 ? salt : salt >> 16)));
}

}  // namespace

Bytes MakeHeader(const FileHeader& header) {
  if (header.version != Version::Jet4 || header.key != 0)
    throw base::Error("Solo se crean bases de Access 2000 a 2003 sin cifrar");
  Bytes p(header.page_size, 0);
  Put32(p, 0, 0x100);
  std::copy(kJetName.begin(), kJetName.end(), p.begin() + 4);
  Put32(p, 0x14, 1);
  // The map of free pages and the second map: rows 0 and 1 of page 1.
  Put32(p, 0x18, 0x100);
  Put32(p, 0x1C, 0x101);
  Put32(p, 0x20, header.objects);
  Put32(p, 0x24, header.permissions);
  Put32(p, 0x28, header.queries);
  Put32(p, 0x2C, header.relationships);
  Put16(p, 0x3C, header.code_page);
  PutPassword(p, header);
  Put32(p, 0x6A, header.stamp);
  Put16(p, 0x6E, header.order);
  Put8(p, 0x71, header.order_version);
  Put64(p, 0x72, std::bit_cast<std::uint64_t>(header.created));
  MaskHeader(p, false);
  Put32(p, 0x98, 0x654);
  const std::string_view version = "4.0";
  std::copy(version.begin(), version.end(), p.begin() + 0x9C);
  // Commit counters, a pair for each user and the first for exclusive use: the state of a file that nobody
  // has opened yet.
  for (std::size_t i = 0xE00; i < p.size(); i += 2) Put16(p, i, 0x100);
  Put16(p, 0xE00, 0x101);
  return p;
}

}  // namespace mdb
