// A base of no tables whose pages tell which they are, for tests of the file alone.
#pragma once

#include <string_view>

#include "mdb/pages/header.h"

namespace mdb_test {

inline mdb::Bytes SampleDatabase(mdb::PageNumber pages, std::uint32_t key = 0) {
  mdb::FileHeader c;
  mdb::Bytes bytes = mdb::MakeHeader(c);
  // The mask of the header is a XOR, and the key was 0.
  mdb::Put32(bytes, 0x3E, mdb::U32(bytes, 0x3E) ^ key);
  c.key = key;
  for (mdb::PageNumber n = 1; n < pages; ++n) {
    mdb::Bytes page(4096);
    for (std::size_t i = 0; i < page.size(); ++i) page[i] = static_cast<std::uint8_t>(n * 7 + i);
    mdb::EncryptPage(c, n, page);
    mdb::AppendBytes(bytes, page);
  }
  return bytes;
}

inline std::string_view AsText(const mdb::Bytes& b) {
  return {reinterpret_cast<const char*>(b.data()), b.size()};
}

}  // namespace mdb_test
