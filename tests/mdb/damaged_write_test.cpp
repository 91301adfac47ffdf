// Changes of rows on files with bytes that are wrong: an error, or a change; never a crash or an endless
// loop.
#include <gtest/gtest.h>

#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/random_rows.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"

namespace {

using mdb_test::Azar;

// Mostly where the page says what it is and where its rows are.
void Danar(mdb::Paginas& paginas, Azar& azar) {
  for (unsigned i = 1 + azar.Hasta(12); i > 0; --i) {
    mdb::Bytes& p = paginas.Modificar(1 + azar.Hasta(paginas.Cantidad() - 1));
    const std::size_t donde = azar.Uno(2) ? azar.Hasta(64) : azar.Hasta(4096);
    p[donde] = static_cast<std::uint8_t>(azar.Uno(2) ? azar.Hasta(256) : p[donde] ^ 1U << azar.Hasta(8));
  }
}

void CambiarAlgo(mdb::Paginas& paginas, mdb::Definicion d, Azar& azar) {
  mdb::Cambios cambios;
  mdb::RecorrerFilas(paginas, d, [&](mdb::IdFila id, const mdb::Fila&) {
    if (azar.Uno(3)) {
      cambios.borradas.push_back(id);
    } else if (azar.Uno(2)) {
      const std::size_t c = azar.Hasta(static_cast<unsigned>(d.columnas.size()));
      cambios.cambiadas.push_back({id, {{c, mdb_test::DatoAlAzar(azar, d.columnas[c], true)}}});
    }
    return cambios.borradas.size() < 30;
  });
  for (unsigned i = azar.Hasta(40); i > 0; --i) {
    mdb::Fila fila;
    for (const auto& c : d.columnas) fila.push_back(mdb_test::DatoAlAzar(azar, c, true));
    cambios.nuevas.push_back(std::move(fila));
  }
  mdb::Aplicar(paginas, d, cambios);
}

TEST(EscribirEnDanados, EndsInAnErrorOrAChange) {
  unsigned errores = 0, cambios = 0;
  for (const char* archivo : {"relations.mdb", "long.mdb", "types.mdb", "moved.mdb"}) {
    const auto paginas = mdb_test::LoadSample(archivo);
    std::vector<mdb::NumPagina> tablas;
    const mdb::Catalogo catalogo(*paginas);
    for (const auto& o : catalogo.Objetos())
      if (o.tipo == mdb::Objeto::Tabla && !o.nombre.starts_with("MSys"))
        tablas.push_back(static_cast<mdb::NumPagina>(o.id));
    for (unsigned semilla = 0; semilla < 150; ++semilla) {
      Azar azar(semilla);
      Danar(*paginas, azar);
      for (const auto tabla : tablas) {
        // The damage may lie in the catalog alone, and a batch may be refused for its keys.
        const bool hecho = base::AnyErrorNoted("damaged", nullptr, [&] {
          for (int i = 0; i < 3; ++i) CambiarAlgo(*paginas, mdb::LeerDefinicion(*paginas, tabla), azar);
        });
        ++(hecho ? cambios : errores);
      }
      paginas->Deshacer();
    }
  }
  EXPECT_GT(errores, 100U);
  EXPECT_GT(cambios, 20U);
}

}  // namespace
