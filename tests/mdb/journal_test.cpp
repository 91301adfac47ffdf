// What an opening does with the journals that it may find.
#include "mdb/pages/journal.h"

#include <gtest/gtest.h>

#include <functional>

#include "mdb/disco_simulado.h"
#include "mdb/muestra.h"
#include "mdb/pages/lock.h"
#include "mdb/pages/page_file.h"

namespace {

using mdb::Bytes;
using mdb::PaginasDeArchivo;
using mdb_test::BaseDeMuestra;
using mdb_test::DiscoSimulado;

const std::string kRuta = "Personal.mdb", kDiario = "Personal.mdb-diario";
constexpr std::size_t kRegistro = 16 + 8 * 4 + 4096;

// A commit of pages 2 and 3 that grows the base from 4 pages to 5, cut when page 2 was written by half and
// the rest not at all.
struct Cortada {
  Bytes antes = BaseDeMuestra(4), a_medias, diario;

  Cortada() {
    DiscoSimulado disco;
    mdb::DatosDeDiario d;
    d.antes = 4;
    d.despues = 5;
    d.cantidad = 2;
    d.marca = 77;
    d.suma_primera = mdb::Suma(mdb::Vista(antes).first(4096));
    mdb::EscritorDeDiario escritor(disco, kRuta, d);
    const Bytes nueva(4096, 0xEE);
    a_medias = antes;
    for (const std::size_t n : {2U, 3U})
      escritor.Agregar(static_cast<mdb::NumPagina>(n), mdb::Vista(antes).subspan(n * 4096, 4096), nueva);
    escritor.Sellar();
    std::copy(nueva.begin(), nueva.begin() + 2048, a_medias.begin() + 2 * 4096);
    diario = disco.Contenido(kDiario);
  }
};

struct Resultado {
  std::string error;
  Bytes base;
  bool hay_diario = false;
};

Resultado Abrir(const Bytes& base, const Bytes& diario) {
  const auto disco = std::make_shared<DiscoSimulado>();
  disco->Poner(kRuta, base);
  disco->Poner(kDiario, diario);
  Resultado r;
  try {
    EXPECT_EQ(PaginasDeArchivo::Abrir(kRuta, false, disco)->MotivoSoloLectura(), "");
  } catch (const base::Error& e) {
    r.error = e.Descripcion();
  }
  r.base = disco->Contenido(kRuta);
  r.hay_diario = disco->Existe(kDiario);
  return r;
}

TEST(Diario, HasTheLayoutThatIsWritten) {
  const Cortada c;
  ASSERT_EQ(c.diario.size(), 64 + 2 * kRegistro + 24);
  EXPECT_EQ(std::string(c.diario.begin(), c.diario.begin() + 7), "IDMDIAR");
  EXPECT_EQ(mdb::U32(c.diario, 8), 1U);
  EXPECT_EQ(mdb::U32(c.diario, 12), 4096U);
  EXPECT_EQ(mdb::U32(c.diario, 16), 4U);
  EXPECT_EQ(mdb::U32(c.diario, 20), 5U);
  EXPECT_EQ(mdb::U32(c.diario, 24), 2U);
  EXPECT_EQ(mdb::U64(c.diario, 32), 77U);
  EXPECT_EQ(mdb::U32(c.diario, 64), 2U);
  EXPECT_EQ(mdb::U32(c.diario, 64 + kRegistro), 3U);
  EXPECT_TRUE(std::equal(c.antes.begin() + 2 * 4096, c.antes.begin() + 3 * 4096, c.diario.begin() + 64 + 48));
  EXPECT_EQ(std::string(c.diario.end() - 24, c.diario.end() - 17), "IDMFIN!");
}

TEST(Diario, ACompleteOneIsRolledBackAndRemoved) {
  const Cortada c;
  const Resultado r = Abrir(c.a_medias, c.diario);
  EXPECT_EQ(r.error, "");
  EXPECT_EQ(r.base, c.antes);
  EXPECT_FALSE(r.hay_diario);
  // Also when the file had grown, whole or in part, and when not a byte had been written.
  for (const std::size_t mas : {4096U, 1000U, 0U}) {
    Bytes base = c.a_medias;
    base.resize(base.size() + mas);
    EXPECT_EQ(Abrir(base, c.diario).base, c.antes);
  }
  EXPECT_EQ(Abrir(c.antes, c.diario).base, c.antes);
}

TEST(Diario, OneWithoutItsEndIsIgnoredAndRemoved) {
  const Cortada c;
  std::vector<Bytes> diarios;
  for (const std::size_t largo :
       {0UL, 1UL, 63UL, 64UL, 64 + kRegistro, c.diario.size() - 24, c.diario.size() - 1})
    diarios.emplace_back(c.diario.begin(), c.diario.begin() + static_cast<std::ptrdiff_t>(largo));
  // An end of which any piece did not reach the disk.
  for (const std::size_t resto : {24U, 16U, 8U})
    for (const std::size_t cuantos : {1U, 8U}) {
      diarios.push_back(c.diario);
      std::fill_n(diarios.back().end() - static_cast<std::ptrdiff_t>(resto), cuantos, std::uint8_t{0});
    }
  // A header that did not: its count would ask for more than the file has.
  diarios.push_back(c.diario);
  mdb::Poner32(diarios.back(), 24, 0xFFFFFFFF);
  for (const auto& diario : diarios) {
    SCOPED_TRACE(diario.size());
    const Resultado r = Abrir(c.antes, diario);
    EXPECT_EQ(r.error, "");
    EXPECT_EQ(r.base, c.antes);
    EXPECT_FALSE(r.hay_diario);
  }
}

TEST(Diario, AFalseCountWithItsSumRightAsksForNoMemory) {
  Cortada c;
  mdb::Poner32(c.diario, 24, 0xFFFFFFFF);
  mdb::Poner64(c.diario, 56, mdb::Suma(mdb::Vista(c.diario).first(56)));
  const Resultado r = Abrir(c.antes, c.diario);
  EXPECT_EQ(r.error, "");
  EXPECT_FALSE(r.hay_diario);
}

TEST(Diario, DamageBehindASealIsRefusedAndNothingTouched) {
  const Cortada c;
  const std::size_t fin = c.diario.size() - 24;
  for (const std::size_t pos : {64UL, 72UL, 80UL, 64UL + 48, 64 + kRegistro, 64 + kRegistro + 8, fin - 1}) {
    SCOPED_TRACE(pos);
    Bytes diario = c.diario;
    diario[pos] ^= 1;
    const Resultado r = Abrir(c.a_medias, diario);
    EXPECT_NE(r.error.find("está dañado"), std::string::npos) << r.error;
    EXPECT_EQ(r.base, c.a_medias);
    EXPECT_TRUE(r.hay_diario);
  }
}

TEST(Diario, OneOfAnotherVersionIsLeftToIt) {
  Cortada c;
  mdb::Poner32(c.diario, 8, 2);
  mdb::Poner64(c.diario, 56, mdb::Suma(mdb::Vista(c.diario).first(56)));
  const Resultado r = Abrir(c.a_medias, c.diario);
  EXPECT_NE(r.error.find("otra versión del programa"), std::string::npos) << r.error;
  EXPECT_EQ(r.base, c.a_medias);
  EXPECT_TRUE(r.hay_diario);
}

TEST(Diario, ABaseThatWasReplacedOrChangedSinceIsNotTouched) {
  const Cortada c;
  const std::vector<std::pair<const char*, std::function<void(Bytes&)>>> cambios{
      {"another header", [](Bytes& b) { b[0xE02] ^= 1; }},
      {"a journalled page that is neither old nor new", [](Bytes& b) { b[3 * 4096 + 600] ^= 1; }},
      {"a sector that mixes old and new", [](Bytes& b) { b[2 * 4096 + 2048] = 0xEE; }},
      {"shorter", [](Bytes& b) { b.resize(3 * 4096); }},
      {"longer than the commit made it", [](Bytes& b) { b.resize(5 * 4096 + 1); }}};
  for (const auto& [que, cambiar] : cambios) {
    SCOPED_TRACE(que);
    Bytes base = c.a_medias;
    cambiar(base);
    const Resultado r = Abrir(base, c.diario);
    EXPECT_NE(r.error.find("no es la que ese diario conoce"), std::string::npos) << r.error;
    EXPECT_EQ(r.base, base);
    EXPECT_TRUE(r.hay_diario);
  }
}

TEST(Diario, IsNotRolledBackWhileItsWriterLives) {
  const Cortada c;
  const auto disco = std::make_shared<DiscoSimulado>();
  disco->Poner(kRuta, c.a_medias);
  disco->Poner(kDiario, c.diario);
  const auto escritor = disco->Abrir(kDiario, base::ModoArchivo::Escritura);
  ASSERT_TRUE(escritor->Bloquear(mdb::kByteEscritor, 1, true));
  EXPECT_THROW(PaginasDeArchivo::Abrir(kRuta, false, disco), base::Error);
  EXPECT_THROW(PaginasDeArchivo::Abrir(kRuta, true, disco), base::Error);
  EXPECT_EQ(disco->Contenido(kRuta), c.a_medias);
  EXPECT_EQ(disco->Contenido(kDiario), c.diario);
}

TEST(Diario, OpeningForReadingRollsBackToo) {
  const Cortada c;
  const auto disco = std::make_shared<DiscoSimulado>();
  disco->Poner(kRuta, c.a_medias);
  disco->Poner(kDiario, c.diario);
  const auto p = PaginasDeArchivo::Abrir(kRuta, true, disco);
  EXPECT_EQ(p->MotivoSoloLectura(), "La base se abrió solo para leer");
  EXPECT_EQ(disco->Contenido(kRuta), c.antes);
  EXPECT_FALSE(disco->Existe(kDiario));
}

// A reader that could not roll back keeps seeing the base as it was after somebody else did.
TEST(Diario, AReaderOverTheJournalOutlivesTheRollback) {
  const Cortada c;
  const auto disco = std::make_shared<DiscoSimulado>();
  disco->Poner(kRuta, c.antes);  // nothing was written: the date will be the same
  disco->Poner(kDiario, c.diario);
  disco->PonerSoloLectura(true);
  const auto p = PaginasDeArchivo::Abrir(kRuta, true, disco);
  EXPECT_EQ(*p->Leer(2), Bytes(c.antes.begin() + 8192, c.antes.begin() + 12288));
  disco->PonerSoloLectura(false);
  disco->Borrar(kDiario);
  EXPECT_EQ(*p->Leer(3), Bytes(c.antes.begin() + 12288, c.antes.end()));
}

}  // namespace
