#include "mdb/schema/new_file.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/outside.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"
#include "mdb/verify/verify.h"

namespace {

constexpr std::uint16_t kOrdenes[] = {1033, 1034, 3082};

mdb::PaginasEnMemoria Nueva(std::uint16_t orden) {
  mdb::Bytes bytes = mdb::NuevaBase(orden, base::FechaDe(2026, 11, 21));
  const mdb::Cabecera cabecera = mdb::LeerCabecera(bytes);
  return {cabecera, std::move(bytes)};
}

TEST(NuevaBase, HasTheHeaderOfItsSortOrder) {
  for (const std::uint16_t orden : kOrdenes) {
    const auto paginas = Nueva(orden);
    EXPECT_EQ(paginas.Cab().version, mdb::Version::Jet4);
    EXPECT_EQ(paginas.Cab().orden, orden);
    EXPECT_EQ(paginas.Cab().version_orden, 0);
    EXPECT_EQ(paginas.Cab().pagina_de_codigos, 1252);
    EXPECT_EQ(paginas.Cab().clave, 0U);
    EXPECT_EQ(paginas.Cab().contrasena, "");
    EXPECT_EQ(paginas.Cantidad(), 16U);
  }
  EXPECT_THROW(mdb::NuevaBase(1036, base::Fecha{}), base::Error);
}

TEST(NuevaBase, HoldsItsSystemTables) {
  auto paginas = Nueva(3082);
  const mdb::Catalogo catalogo(paginas);
  std::vector<std::string> nombres;
  for (const auto& o : catalogo.Objetos()) {
    EXPECT_TRUE(o.DeSistema()) << o.nombre;
    nombres.push_back(o.nombre);
  }
  std::sort(nombres.begin(), nombres.end());
  EXPECT_EQ(nombres,
            (std::vector<std::string>{"Databases", "MSysACEs", "MSysDb", "MSysObjects", "MSysQueries",
                                      "MSysRelationships", "Relationships", "Tables"}));
  EXPECT_TRUE(catalogo.Relaciones().empty());
}

TEST(NuevaBase, DatesItsObjects) {
  auto paginas = Nueva(3082);
  const auto objetos = mdb::LeerDefinicion(paginas, 2);
  const auto creada = objetos.PorNombre("DateCreate");
  ASSERT_TRUE(creada);
  int filas = 0;
  mdb::RecorrerFilas(paginas, objetos, [&](mdb::IdFila, const mdb::Fila& fila) {
    EXPECT_EQ(fila[*creada], mdb::Dato(base::FechaDe(2026, 11, 21)));
    return ++filas > 0;
  });
  EXPECT_EQ(filas, 8);
}

// Neither do we, nor the independent checker where it is here.
TEST(NuevaBase, NobodyFindsAnything) {
  for (const std::uint16_t orden : kOrdenes) {
    auto pages = Nueva(orden);
    for (const auto& finding : mdb::Verificar(pages).hallazgos)
      ADD_FAILURE() << orden << ": " << finding.texto;
    EXPECT_EQ(mdb_test::Controlar(pages.Guardado(), true), "") << orden;
  }
}

TEST(NuevaBase, MdbtoolsListsItsTables) {
  if (!mdb_test::HayMdbtools()) GTEST_SKIP() << "no mdbtools";
  const auto bytes = Nueva(3082).Guardado();
  EXPECT_EQ(mdb_test::Mdbtools("mdb-tables", "-S -1", bytes),
            "MSysObjects\nMSysACEs\nMSysQueries\nMSysRelationships\n");
  EXPECT_EQ(mdb_test::Mdbtools("mdb-export", "-H -b strip", bytes, "MSysACEs").substr(0, 2), "2,");
}

// Password and header fields come back from the stored bytes.
TEST(NuevaCabecera, ComesBackWithItsPassword) {
  mdb::Cabecera c;
  c.orden = 1034;
  c.creada = 46347.25;
  c.sello = 0x12345678;
  c.contrasena = "Ñandú 12345678901234";  // 20 characters, the most that there is room for
  const mdb::Cabecera leida = mdb::LeerCabecera(mdb::NuevaCabecera(c));
  EXPECT_EQ(leida.contrasena, c.contrasena);
  EXPECT_EQ(leida.creada, c.creada);
  EXPECT_EQ(leida.sello, c.sello);
  EXPECT_EQ(leida.orden, 1034);
  c.contrasena += "5";
  EXPECT_THROW(mdb::NuevaCabecera(c), base::Error);
  c.contrasena.clear();
  c.clave = 1;
  EXPECT_THROW(mdb::NuevaCabecera(c), base::Error);
}

// A file that nobody has opened since it was made is the same, byte by byte: one put together apart from us
// and, where it is here, one of the original program.
TEST(NuevaCabecera, IsThatOfAFileOfOthers) {
  const auto sample = mdb_test::LoadSample("empty.mdb");
  EXPECT_EQ(mdb::NuevaCabecera(sample->Cab()), *sample->Leer(0));
  for (const std::string& path : mdb_test::ArchivosDeCorpus()) {
    if (path.find("adox_jet4.mdb") == std::string::npos) continue;
    const auto original = mdb_test::Cargar(path);
    EXPECT_EQ(mdb::NuevaCabecera(original->Cab()), *original->Leer(0));
  }
}

}  // namespace
