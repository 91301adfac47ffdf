#include "mdb/page_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "mdb/corpus.h"
#include "mdb/database.h"
#include "support/temp_folder.h"

namespace {

using mdb::PaginasDeArchivo;
using support::CarpetaTemporal;

// A base of our own making, of `paginas` pages whose bytes tell which they are.
mdb::Bytes BaseDeMuestra(mdb::NumPagina paginas, std::uint32_t clave = 0) {
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

std::string_view Texto(const mdb::Bytes& b) { return {reinterpret_cast<const char*>(b.data()), b.size()}; }

TEST(PaginasDeArchivo, ReadsEveryPageOfTheFile) {
  SALTAR_SIN_CORPUS();
  for (const auto& ruta : mdb_test::ArchivosDeCorpus()) {
    SCOPED_TRACE(ruta);
    const auto en_memoria = mdb_test::Cargar(ruta);
    const auto en_disco = PaginasDeArchivo::Abrir(ruta, true);
    ASSERT_EQ(en_disco->Cantidad(), en_memoria->Cantidad());
    for (mdb::NumPagina n = 0; n < en_disco->Cantidad(); ++n)
      ASSERT_EQ(*en_disco->Leer(n), *en_memoria->Leer(n)) << "page " << n;
  }
}

TEST(PaginasDeArchivo, ACommitIsInTheFileAndTheJournalGone) {
  const CarpetaTemporal c;
  const mdb::Bytes antes = BaseDeMuestra(5);
  const std::string ruta = c.Escribir("a.mdb", Texto(antes));
  {
    const auto p = PaginasDeArchivo::Abrir(ruta);
    ASSERT_EQ(p->MotivoSoloLectura(), "");
    p->Modificar(3)[10] = 99;
    p->Modificar(p->Agregar())[4095] = 5;
    p->Confirmar();
    EXPECT_EQ((*p->Leer(3))[10], 99);
    EXPECT_EQ(p->Cantidad(), 6U);
  }
  mdb::Bytes esperado = antes;
  esperado[3 * 4096 + 10] = 99;
  esperado.resize(6 * 4096);
  esperado.back() = 5;
  EXPECT_EQ(c.Leer("a.mdb"), Texto(esperado));
  EXPECT_FALSE(std::filesystem::exists(ruta + "-diario"));
}

TEST(PaginasDeArchivo, NothingWrittenLeavesBytesAndDate) {
  const CarpetaTemporal c;
  const mdb::Bytes antes = BaseDeMuestra(5);
  const std::string ruta = c.Escribir("a.mdb", Texto(antes));
  const auto ayer = std::filesystem::last_write_time(ruta) - std::chrono::hours(24);
  std::filesystem::last_write_time(ruta, ayer);
  {
    const auto p = PaginasDeArchivo::Abrir(ruta);
    p->Confirmar();
    p->Modificar(2)[0] ^= 1;
    p->Agregar();
    p->Deshacer();
    p->Confirmar();
    // Changed and changed back.
    p->Modificar(2)[0] ^= 1;
    p->Modificar(2)[0] ^= 1;
    p->Confirmar();
  }
  EXPECT_EQ(std::filesystem::last_write_time(ruta), ayer);
  EXPECT_EQ(c.Leer("a.mdb"), Texto(antes));
}

}  // namespace
