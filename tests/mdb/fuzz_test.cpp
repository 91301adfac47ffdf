// Damaged files: whatever a byte says, reading ends, soon, with rows or with base::Error.
#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "engine_mdb/query_text.h"
#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/pages/page_map.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"

namespace {

struct Cuenta {
  std::size_t leidos = 0, errores = 0, filas = 0;
};

template <typename Paso>
void Intentar(Cuenta& cuenta, Paso&& paso) {
  try {
    paso();
    ++cuenta.leidos;
  } catch (const base::Error& e) {
    EXPECT_FALSE(e.Descripcion().empty());
    ++cuenta.errores;
  }
}

void LeerTabla(mdb::Paginas& paginas, const mdb::Objeto& o, Cuenta& cuenta) {
  const auto definicion = mdb::LeerDefinicion(paginas, static_cast<mdb::NumPagina>(o.id));
  std::vector<mdb::IdFila> filas;
  Intentar(cuenta, [&] {
    mdb::RecorrerFilas(paginas, definicion, [&](mdb::IdFila id, const mdb::Fila&) {
      filas.push_back(id);
      ++cuenta.filas;
      return filas.size() < 3000;
    });
  });
  for (std::size_t i = 0; i < filas.size(); i += 7)
    Intentar(cuenta, [&] { mdb::LeerFila(paginas, definicion, filas[i]); });
  for (const auto mapa : {definicion.propias, definicion.libres}) {
    Intentar(cuenta, [&] { mdb::PaginasDelMapa(paginas, mapa); });
    Intentar(cuenta, [&] { mdb::EnMapa(paginas, mapa, 40); });
  }
  for (const auto& indice : definicion.reales) Intentar(cuenta, [&] { mdb::LeerMapa(paginas, indice.mapa); });
}

// All that this side of the module reads.
Cuenta LeerTodo(const mdb::Bytes& bytes) {
  Cuenta cuenta;
  Intentar(cuenta, [&] {
    const auto cabecera = mdb::LeerCabecera(bytes);
    mdb::PaginasEnMemoria paginas(cabecera, bytes);
    Intentar(cuenta, [&] { mdb::LeerMapa(paginas, {1, 0}); });
    const mdb::Catalogo catalogo(paginas);
    Intentar(cuenta, [&] { catalogo.Relaciones(); });
    for (const auto& o : catalogo.Objetos()) {
      Intentar(cuenta, [&] { mdb::LeerPropiedades(cabecera, o.propiedades); });
      if (o.tipo == mdb::Objeto::Tabla) Intentar(cuenta, [&] { LeerTabla(paginas, o, cuenta); });
      if (o.tipo == mdb::Objeto::Consulta)
        Intentar(cuenta, [&] { engine_mdb::QueryText(catalogo.ConsultaDe(o.nombre)); });
    }
  });
  return cuenta;
}

class Danador {
 public:
  explicit Danador(unsigned semilla) : azar_(semilla) {}

  // A few bytes changed: mostly those that say where things are, at the start and the end of a page.
  void Danar(mdb::Bytes& bytes, std::size_t pagina) {
    for (unsigned i = 0, veces = 1 + azar_() % 8; i < veces; ++i) {
      const std::size_t base = azar_() % (bytes.size() / pagina) * pagina;
      std::size_t lugar = azar_() % pagina;
      if (const unsigned cual = azar_() % 4; cual == 0) {
        lugar = azar_() % 128;
      } else if (cual == 1) {
        lugar = pagina - 1 - azar_() % 256;
      }
      Cambiar(bytes, base + lugar);
    }
  }

 private:
  void Cambiar(mdb::Bytes& bytes, std::size_t lugar) {
    constexpr std::uint32_t kNotables[] = {0,    1,      2,          0x7F,       0x80,
                                           0xFF, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    switch (azar_() % 4) {
      case 0:
        bytes[lugar] ^= static_cast<std::uint8_t>(1U << azar_() % 8);
        break;
      case 1:
        bytes[lugar] = static_cast<std::uint8_t>(azar_());
        break;
      default: {
        const std::uint32_t n = kNotables[azar_() % std::size(kNotables)];
        const std::size_t ancho = std::min<std::size_t>(std::size_t{1} << azar_() % 3, bytes.size() - lugar);
        for (std::size_t i = 0; i < ancho; ++i) bytes[lugar + i] = static_cast<std::uint8_t>(n >> (8 * i));
      }
    }
  }
  std::mt19937 azar_;
};

class Danados : public testing::TestWithParam<std::string> {};

TEST_P(Danados, AreReadToTheirEndOrRefused) {
  const auto entero = mdb_test::Cargar(GetParam());
  const mdb::Bytes bytes = entero->Guardado();
  const auto sano = LeerTodo(bytes);
  ASSERT_EQ(sano.errores, 0U);
  ASSERT_GT(sano.leidos, 30U);
  std::size_t danados = 0;
  for (unsigned semilla = 0; semilla < 700; ++semilla) {
    SCOPED_TRACE(semilla);
    mdb::Bytes copia = bytes;
    Danador(semilla).Danar(copia, entero->Tamano());
    const auto antes = std::chrono::steady_clock::now();
    danados += LeerTodo(copia).errores > 0 ? 1 : 0;
    EXPECT_LT(std::chrono::steady_clock::now() - antes, std::chrono::seconds(10));
  }
  // Most changes hit free space; enough of them must have been noticed for the test to mean anything.
  EXPECT_GT(danados, 30U);
}

// A file cut short must never pass for one with fewer rows.
TEST_P(Danados, CutShortLoseNoRowInSilence) {
  const auto entero = mdb_test::Cargar(GetParam());
  const mdb::Bytes& bytes = entero->Guardado();
  const auto sano = LeerTodo(bytes);
  for (std::size_t largo = 0; largo < bytes.size(); largo += entero->Tamano() / 2 + 100) {
    const auto cortado = LeerTodo({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(largo)});
    EXPECT_TRUE(cortado.errores > 0 || cortado.filas == sano.filas) << largo;
  }
}

std::vector<std::string> Files() {
  std::vector<std::string> paths;
  for (const char* name :
       {"empty.mdb", "types97.mdb", "types.mdb", "types.accdb", "texts_3082.mdb", "long.mdb", "moved97.mdb",
        "moved.mdb", "compound.mdb", "relations97.mdb", "relations.mdb", "queries.mdb", "names.mdb"})
    paths.push_back(mdb_test::SamplePath(name));
  for (const std::string& path : mdb_test::ArchivosDeCorpus()) paths.push_back(path);
  return paths;
}

INSTANTIATE_TEST_SUITE_P(Archivos, Danados, testing::ValuesIn(Files()),
                         [](const auto& c) { return mdb_test::CaseName(c.param); });

}  // namespace
