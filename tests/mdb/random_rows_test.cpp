// Thousands of random inserts, updates and deletes on copies of the samples, read back after each batch, and
// the file looked at by programs that share no code with ours.
#include "mdb/random_rows.h"

#include <gtest/gtest.h>

#include <iostream>
#include <map>
#include <sstream>

#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/exported.h"
#include "mdb/new_base.h"
#include "mdb/samples.h"

namespace {

using mdb_test::Azar;
using mdb_test::TablaConModelo;

struct Caso {
  std::string archivo;  // its path
  unsigned semilla, lotes, largo;
};
void PrintTo(const Caso& c, std::ostream* salida) { *salida << mdb_test::CaseName(c.archivo); }

// Random rows do not obey relationships, which are not the concern of whoever writes rows.
std::string SinRelaciones(const std::string& hallazgos) {
  std::istringstream entrada(hallazgos);
  std::string quedan;
  for (std::string linea; std::getline(entrada, linea);)
    if (linea.find("elación «") == std::string::npos) quedan += linea + "\n";
  return quedan;
}

// How many rows mdb-export prints. Real texts have line ends, so rows are told apart by another mark.
std::size_t FilasDeFuera(const mdb::Bytes& archivo, const std::string& tabla) {
  const std::string marca = "<=fila=>";
  const std::string salida = mdb_test::Mdbtools("mdb-export", "-H -b strip -R '" + marca + "'", archivo,
                                                mdb_test::Entrecomillado(tabla));
  std::size_t filas = 0;
  for (auto p = salida.find(marca); p != std::string::npos; p = salida.find(marca, p + 1)) ++filas;
  return filas;
}

class CambiosAlAzar : public testing::TestWithParam<Caso> {};

TEST_P(CambiosAlAzar, LeaveTheRowsAndIndexesOfTheModel) {
  const Caso& caso = GetParam();
  const auto paginas = mdb_test::Cargar(caso.archivo);
  const mdb::Catalogo catalogo(*paginas);
  Azar azar(caso.semilla);
  mdb_test::Cuentas todas;
  unsigned tablas = 0;
  std::map<std::string, std::size_t> filas;  // by table
  for (const auto& objeto : catalogo.Objetos()) {
    if (objeto.tipo != mdb::Objeto::Tabla || objeto.DeSistema() || objeto.nombre.starts_with("MSys"))
      continue;
    SCOPED_TRACE(objeto.nombre);
    TablaConModelo tabla(*paginas, static_cast<mdb::NumPagina>(objeto.id), objeto.nombre);
    ASSERT_EQ(mdb::MotivoNoEscribible(paginas->Cab(), tabla.Def()), "");
    for (unsigned lote = 0; lote < caso.lotes; ++lote) {
      ASSERT_NO_FATAL_FAILURE(tabla.Cambiar(azar, lote % 10 == 0 ? caso.largo * 5 : caso.largo));
      if (lote % 4 == 0) {
        ASSERT_NO_FATAL_FAILURE(tabla.Comparar());
      }
      if (lote % 16 == 5) paginas->Confirmar();
    }
    ASSERT_NO_FATAL_FAILURE(tabla.Rotar());
    ASSERT_NO_FATAL_FAILURE(tabla.Comparar());
    if (tablas % 5 == 2) {
      ASSERT_NO_FATAL_FAILURE(tabla.BorrarTodo());
      ASSERT_NO_FATAL_FAILURE(tabla.Comparar());
      ASSERT_NO_FATAL_FAILURE(tabla.Cambiar(azar, caso.largo));
    }
    ++tablas;
    filas[objeto.nombre] = tabla.Filas().size();
    todas.nuevas += tabla.cuentas.nuevas;
    todas.cambiadas += tabla.cuentas.cambiadas;
    todas.borradas += tabla.cuentas.borradas;
    todas.rechazadas += tabla.cuentas.rechazadas;
  }
  ASSERT_GT(tablas, 0U);
  paginas->Confirmar();
  EXPECT_EQ(mdb_test::Controlar(paginas->Guardado(), false), "");
  for (const auto& [nombre, cantidad] : filas) {
    if (mdb_test::HayMdbtools()) {
      EXPECT_EQ(FilasDeFuera(paginas->Guardado(), nombre), cantidad) << nombre;
    }
  }
  EXPECT_EQ(SinRelaciones(mdb_test::Hallazgos(*paginas, false)), "");
  std::cout << caso.archivo << ": " << tablas << " tables, " << todas.nuevas << " inserts, "
            << todas.cambiadas << " updates, " << todas.borradas << " deletes, " << todas.rechazadas
            << " batches refused\n";
  EXPECT_GT(todas.Hechas(), 1000U);
}

std::vector<Caso> Cases() {
  std::vector<Caso> cases;
  const auto add = [&](const std::string& path, unsigned batches, unsigned length) {
    cases.push_back({path, static_cast<unsigned>(cases.size() + 1), batches, length});
  };
  struct Given {
    const char* name;
    unsigned batches, length;
  };
  for (const Given& g :
       {Given{"compound.mdb", 120, 40}, Given{"types.mdb", 40, 20}, Given{"moved.mdb", 120, 30},
        Given{"relations.mdb", 120, 30}, Given{"long.mdb", 60, 12}, Given{"texts.mdb", 60, 40},
        Given{"texts_3082.mdb", 60, 40}, Given{"texts_1034.mdb", 60, 40}, Given{"names.mdb", 80, 20},
        Given{"queries.mdb", 80, 20}})
    add(mdb_test::SamplePath(g.name), g.batches, g.length);
  if (mdb_test::CarpetaDeCorpus().empty()) return cases;
  for (const Given& g :
       {Given{"compIndexTestV2000.mdb", 120, 40}, Given{"compIndexTestV2003.mdb", 120, 40},
        Given{"delTestV2000.mdb", 120, 40}, Given{"delColTestV2000.mdb", 120, 40},
        Given{"fixedNumericTestV2000.mdb", 80, 20}, Given{"indexTestV2000.mdb", 120, 30},
        Given{"indexTestV2003.mdb", 120, 30}, Given{"overflowTestV2000.mdb", 120, 40},
        Given{"pivot.mdb", 120, 30}, Given{"test2V2000.mdb", 60, 12},
        Given{"testIndexCodes_7c04f9e8.mdb", 24, 20}, Given{"testIndexPropertiesV2000.mdb", 80, 20},
        Given{"weirdObjectNames.mdb", 80, 20}})
    add(mdb_test::CarpetaDeCorpus() + "/" + g.name, g.batches, g.length);
  return cases;
}
INSTANTIATE_TEST_SUITE_P(Files, CambiosAlAzar, testing::ValuesIn(Cases()),
                         [](const auto& c) { return mdb_test::CaseName(c.param.archivo); });

}  // namespace
