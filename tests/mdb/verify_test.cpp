#include "mdb/verify/verify.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <random>

#include "base/date.h"
#include "mdb/corpus.h"
#include "mdb/definitions/definition.h"
#include "mdb/outside.h"
#include "mdb/pages/page_map.h"
#include "mdb/samples.h"
#include "mdb/schema/new_file.h"

namespace {

using Grado = mdb::Hallazgo::Grado;

mdb::PaginasEnMemoria Nueva() {
  mdb::Bytes bytes = mdb::NuevaBase(3082, base::FechaDe(2026, 11, 21));
  const mdb::Cabecera cabecera = mdb::LeerCabecera(bytes);
  return {cabecera, std::move(bytes)};
}

std::string Textos(const mdb::Informe& informe) {
  std::string t;
  for (const auto& h : informe.hallazgos) t += h.texto + "\n";
  return t;
}

TEST(Verificar, FindsNothingInANewFile) {
  auto paginas = Nueva();
  const mdb::Informe informe = mdb::Verificar(paginas);
  EXPECT_EQ(Textos(informe), "");
  EXPECT_TRUE(informe.Sano());
  EXPECT_EQ(informe.tablas, 4U);
  EXPECT_EQ(informe.indices, 7U);
  EXPECT_EQ(informe.paginas, 16U);
}

// Both checkers accept every file that is as it should be.
TEST(Verificar, AcceptsEveryFileAsTheOtherCheckerDoes) {
  std::size_t entradas = 0, archivos = 0;
  for (const std::string& ruta : mdb_test::EveryFile()) {
    SCOPED_TRACE(ruta);
    const auto paginas = mdb_test::Cargar(ruta);
    const mdb::Informe informe = mdb::Verificar(*paginas);
    EXPECT_TRUE(informe.Sano()) << Textos(informe);
    if (paginas->Cab().clave == 0) {  // the other one does not decrypt
      EXPECT_EQ(mdb_test::Controlar(paginas->Guardado(), false), "");
    }
    EXPECT_GE(informe.tablas, 4U);
    EXPECT_GE(informe.filas, 16U);  // an empty base of ours has so many
    entradas += informe.entradas;
    ++archivos;
  }
  std::cout << archivos << " files, " << entradas << " entries\n";
  EXPECT_GE(archivos, 20U);
}

TEST(Verificar, TellsWhatOnlyDriftsAsANote) {
  auto paginas = Nueva();
  auto d = mdb::LeerDefinicion(paginas, 3);
  mdb::Poner32(paginas.Modificar(3), 16, d.filas + 5);
  mdb::ReservarPagina(paginas);  // and nobody uses it
  const mdb::Informe informe = mdb::Verificar(paginas);
  EXPECT_TRUE(informe.Sano());
  ASSERT_EQ(informe.hallazgos.size(), 2U) << Textos(informe);
  EXPECT_EQ(informe.hallazgos[0].texto, "Página 3, tabla «MSysACEs»: la definición cuenta " +
                                            std::to_string(d.filas + 5) + " filas y hay " +
                                            std::to_string(d.filas));
  EXPECT_EQ(informe.hallazgos[0].pagina, 3U);
  EXPECT_EQ(informe.hallazgos[1].texto,
            "Una página no está libre ni la usa nadie (16); compactar la base recupera su lugar");
}

TEST(Verificar, TheListEndsAtItsLimitAndErrorsComeBeforeNotes) {
  auto paginas = Nueva();
  mdb::Poner32(paginas.Modificar(2), 16, 99);
  mdb::Poner32(paginas.Modificar(3), 16, 99);
  paginas.Modificar(15)[2] ^= 1;
  for (const std::size_t tope : {0U, 1U, 2U, 3U}) {
    const mdb::Informe informe = mdb::Verificar(paginas, tope);
    EXPECT_EQ(informe.hallazgos.size(), std::max<std::size_t>(tope, 1)) << tope;
    EXPECT_FALSE(informe.Sano()) << tope;
  }
}

TEST(Verificar, AFileWithoutPagesIsAFinding) {
  mdb::PaginasEnMemoria paginas(mdb::Cabecera{}, mdb::Bytes(4096));
  EXPECT_FALSE(mdb::Verificar(paginas).Sano());
}

// Whatever the bytes, the check ends and throws nothing. Each round changes some bytes of a file, or moves
// pages about, and checks it.
TEST(Verificar, EndsOnAnythingThatWasAFile) {
  std::size_t rondas = 0, malas = 0;
  for (const char* archivo :
       {"empty.mdb", "compound.mdb", "compound97.mdb", "relations.mdb", "relations97.mdb", "moved.mdb",
        "queries.mdb", "queries97.mdb", "types.accdb", "long.mdb"}) {
    SCOPED_TRACE(archivo);
    const auto bueno = mdb_test::LoadSample(archivo);
    std::mt19937 azar(41);
    const auto uno = [&](std::size_t hasta) { return static_cast<std::size_t>(azar()) % hasta; };
    for (int ronda = 0; ronda < 150; ++ronda, ++rondas) {
      mdb::Bytes bytes = bueno->Guardado();
      const std::size_t pagina = bueno->Tamano(), cantidad = bytes.size() / pagina - 1;
      const std::size_t cuantos = 1 + uno(ronda % 3 == 0 ? 200 : 4);
      for (std::size_t k = 0; k < cuantos; ++k) {
        const std::size_t base = pagina * (1 + uno(cantidad));
        // Half of the changes hit the first bytes of a page, where its structure is.
        const std::size_t pos = base + uno(uno(2) == 0 ? 64 : pagina);
        bytes[pos] = uno(3) == 0 ? 0xFF : static_cast<std::uint8_t>(azar());
      }
      if (ronda % 5 == 4) {
        const auto a = static_cast<std::ptrdiff_t>(pagina * (1 + uno(cantidad)));
        const auto b = static_cast<std::ptrdiff_t>(pagina * (1 + uno(cantidad)));
        std::copy_n(bytes.begin() + a, pagina, bytes.begin() + b);
      }
      if (ronda % 10 == 9) bytes.resize(pagina * (1 + uno(cantidad)));
      mdb::PaginasEnMemoria paginas(bueno->Cab(), std::move(bytes));
      mdb::Informe informe;
      EXPECT_NO_THROW(informe = mdb::Verificar(paginas)) << ronda;
      malas += informe.Sano() ? 0 : 1;
      EXPECT_FALSE(paginas.HayCambios());
    }
  }
  std::cout << rondas << " rounds, " << malas << " with errors\n";
  EXPECT_GT(malas * 2, rondas);
}

}  // namespace
