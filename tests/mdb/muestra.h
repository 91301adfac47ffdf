// A base of no tables whose pages tell which they are, for tests of the file alone.
#pragma once

#include <string_view>

#include "mdb/pages/header.h"

namespace mdb_test {

inline mdb::Bytes BaseDeMuestra(mdb::NumPagina paginas, std::uint32_t clave = 0) {
  mdb::Cabecera c;
  mdb::Bytes bytes = mdb::NuevaCabecera(c);
  // The mask of the header is a XOR, and the key was 0.
  mdb::Poner32(bytes, 0x3E, mdb::U32(bytes, 0x3E) ^ clave);
  c.clave = clave;
  for (mdb::NumPagina n = 1; n < paginas; ++n) {
    mdb::Bytes pagina(4096);
    for (std::size_t i = 0; i < pagina.size(); ++i) pagina[i] = static_cast<std::uint8_t>(n * 7 + i);
    mdb::CifrarPagina(c, n, pagina);
    mdb::AgregarBytes(bytes, pagina);
  }
  return bytes;
}

inline std::string_view ComoTexto(const mdb::Bytes& b) {
  return {reinterpret_cast<const char*>(b.data()), b.size()};
}

}  // namespace mdb_test
