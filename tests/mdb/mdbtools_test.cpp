// Whole files, read by us and by mdbtools.
#include <gtest/gtest.h>

#include <algorithm>

#include "base/text.h"
#include "mdb/corpus.h"
#include "mdb/exported.h"
#include "mdb/outside.h"
#include "mdb/samples.h"

namespace {

#define SALTAR_SIN_MDBTOOLS() \
  if (!mdb_test::HayMdbtools()) GTEST_SKIP() << "mdbtools is not installed"

// It knows neither the types of new_types.accdb nor an order of display that is not that of the numbers.
std::vector<std::string> FilesOfMdbtools() {
  auto paths = mdb_test::EveryFile();
  std::erase_if(paths, [](const std::string& path) { return path.ends_with("new_types.accdb"); });
  return paths;
}

// Once a column of fixed length has been deleted, it looks for a Boolean that is newer than the row behind
// the row's end, where the next row stands. samples_test.cpp says what those are.
std::vector<std::size_t> UnknownToMdbtools(const mdb::Definicion& d) {
  std::vector<std::size_t> cells;
  const auto order = d.EnOrden();
  for (std::size_t i = 0; i < order.size(); ++i)
    if (d.columnas[order[i]].tipo == mdb::TipoColumna::Booleano && d.max_columnas > d.columnas.size())
      cells.push_back(i);
  return cells;
}

TEST(Mdbtools, EveryTableOfEveryFileIsReadAlike) {
  SALTAR_SIN_MDBTOOLS();
  std::size_t tablas = 0, filas = 0, celdas = 0;
  for (const auto& ruta : FilesOfMdbtools()) {
    const auto paginas = mdb_test::Cargar(ruta);
    const mdb::Catalogo catalogo(*paginas);
    for (const auto& o : catalogo.Objetos()) {
      if (o.tipo != mdb::Objeto::Tabla) continue;
      SCOPED_TRACE(ruta + " " + o.nombre);
      auto suya = mdb_test::Exportar(ruta, o.nombre);
      ASSERT_TRUE(suya.hay);
      auto nuestra = mdb_test::Leida(*paginas, *catalogo.Tabla(o.nombre));
      EXPECT_EQ(nuestra.columnas, suya.columnas);
      for (const std::size_t cell : UnknownToMdbtools(*catalogo.Tabla(o.nombre)))
        for (auto* rows : {&nuestra.filas, &suya.filas})
          for (auto& row : *rows) row.at(cell).clear();
      // A row that has moved comes out where it stands now.
      std::sort(nuestra.filas.begin(), nuestra.filas.end());
      std::sort(suya.filas.begin(), suya.filas.end());
      ASSERT_EQ(nuestra.filas.size(), suya.filas.size());
      for (std::size_t i = 0; i < nuestra.filas.size(); ++i) EXPECT_EQ(nuestra.filas[i], suya.filas[i]);
      ++tablas;
      filas += nuestra.filas.size();
      celdas += nuestra.filas.size() * nuestra.columnas.size();
    }
  }
  std::cout << tablas << " tables, " << filas << " rows, " << celdas << " cells compared\n";
  EXPECT_GT(filas, 1000U);
}

// The type of a column as mdb-schema writes it for Access.
std::string TextoDeTipo(const mdb::Columna& c) {
  switch (c.tipo) {
    case mdb::TipoColumna::Booleano:
      return "Boolean";
    case mdb::TipoColumna::Byte:
      return "Byte";
    case mdb::TipoColumna::Entero:
      return "Integer";
    case mdb::TipoColumna::Largo:
      return "Long Integer";
    case mdb::TipoColumna::Moneda:
      return "Currency";
    case mdb::TipoColumna::Simple:
      return "Single";
    case mdb::TipoColumna::Doble:
      return "Double";
    case mdb::TipoColumna::Fecha:
      return "DateTime";
    case mdb::TipoColumna::Binario:
      return "Binary";
    case mdb::TipoColumna::Guid:
      return "Replication ID";
    case mdb::TipoColumna::Memo:
      return "Memo/Hyperlink (255)";
    case mdb::TipoColumna::Ole:
      return "OLE (255)";
    case mdb::TipoColumna::Decimal:
      return "Numeric (" + std::to_string(c.precision) + ", " + std::to_string(c.escala) + ")";
    default: {
      char b[32];
      std::snprintf(b, sizeof b, "Unknown_%04x", static_cast<unsigned>(c.tipo));
      return b;
    }
  }
}

std::string EsquemaNuestro(const mdb::Catalogo& catalogo, const mdb::Definicion& d, bool jet3) {
  std::string texto;
  for (const auto i : d.EnOrden()) {
    const auto& c = d.columnas[i];
    texto += c.nombre + ": ";
    if (c.tipo == mdb::TipoColumna::Texto) {
      texto += "Text (" + std::to_string(jet3 ? c.largo : c.largo / 2) + ")";
    } else {
      texto += TextoDeTipo(c);
    }
    const auto* requerida = mdb::Buscar(catalogo.PropiedadesDe(d.nombre), c.nombre, "Required");
    const bool exige = requerida != nullptr && *requerida == mdb::Dato(true);
    texto += exige || c.tipo == mdb::TipoColumna::Booleano ? " NOT NULL\n" : "\n";
  }
  return texto;
}

// "nombre: tipo" of the lines that mdb-schema prints for a table.
std::string EsquemaSuyo(const std::string& ruta, const std::string& tabla) {
  std::string texto;
  for (std::string linea :
       base::Split(mdb_test::Salida("mdb-schema --no-default-values -T " + mdb_test::Entrecomillado(tabla) +
                                    " " + mdb_test::Entrecomillado(ruta) + " access 2>/dev/null"),
                   "\n")) {
    const auto fin = linea.find("]\t");
    if (linea.compare(0, 2, "\t[") != 0 || fin == std::string::npos) continue;
    std::string tipo = linea.substr(linea.find_first_not_of('\t', fin + 1));
    while (!tipo.empty() && (tipo.back() == ' ' || tipo.back() == ',')) tipo.pop_back();
    texto += linea.substr(2, fin - 2) + ": " + tipo + "\n";
  }
  return texto;
}

// Calls `ver(path, catalog, table, header)` for each table of every file, with a trace.
template <typename Ver>
void PorCadaTabla(Ver&& ver) {
  for (const auto& ruta : FilesOfMdbtools()) {
    const auto paginas = mdb_test::Cargar(ruta);
    const mdb::Catalogo catalogo(*paginas);
    for (const auto& o : catalogo.Objetos()) {
      if (o.tipo != mdb::Objeto::Tabla) continue;
      SCOPED_TRACE(ruta + " " + o.nombre);
      ver(ruta, catalogo, o.nombre, paginas->Cab());
    }
  }
}

TEST(Mdbtools, ColumnsAndTypesAreReadAlike) {
  SALTAR_SIN_MDBTOOLS();
  std::size_t tablas = 0;
  PorCadaTabla([&](const std::string& ruta, const mdb::Catalogo& catalogo, const std::string& tabla,
                   const mdb::Cabecera& cabecera) {
    EXPECT_EQ(EsquemaNuestro(catalogo, *catalogo.Tabla(tabla), cabecera.Jet3()), EsquemaSuyo(ruta, tabla));
    ++tablas;
  });
  EXPECT_GT(tablas, 100U);
}

// mdb-schema prints at most one relationship of a table, so that each of its own must be among ours.
TEST(Mdbtools, RelationshipsAreReadAlike) {
  SALTAR_SIN_MDBTOOLS();
  std::size_t relaciones = 0;
  PorCadaTabla([&](const std::string& ruta, const mdb::Catalogo& catalogo, const std::string& tabla,
                   const mdb::Cabecera&) {
    const std::string suyo =
        mdb_test::Salida("mdb-schema --no-indexes --relations -T " + mdb_test::Entrecomillado(tabla) + " " +
                         mdb_test::Entrecomillado(ruta) + " mysql 2>/dev/null");
    const auto desde = suyo.find(" FOREIGN KEY ");
    if (desde == std::string::npos) return;
    const std::string texto = suyo.substr(desde + 1, suyo.find('\n', desde) - desde - 1);
    bool hay = false;
    for (const auto& r : catalogo.Relaciones()) {
      std::string nuestro = "FOREIGN KEY (`" + base::Join(r.columnas, "`, `") + "`) REFERENCES `" +
                            r.tabla_referida + "`(`" + base::Join(r.columnas_referidas, "`, `") + "`)";
      if ((r.banderas & mdb::RelacionDeTablas::kActualizaEnCascada) != 0) nuestro += " ON UPDATE CASCADE";
      if ((r.banderas & mdb::RelacionDeTablas::kBorraEnCascada) != 0) nuestro += " ON DELETE CASCADE";
      hay = hay || (r.tabla == tabla && nuestro + ";" == texto);
    }
    EXPECT_TRUE(hay) << texto;
    ++relaciones;
  });
  EXPECT_GE(relaciones, mdb_test::CarpetaDeCorpus().empty() ? 2U : 6U);
}

TEST(Mdbtools, TablesShownToUsersAreTheSame) {
  SALTAR_SIN_MDBTOOLS();
  for (const auto& ruta : FilesOfMdbtools()) {
    SCOPED_TRACE(ruta);
    const auto paginas = mdb_test::Cargar(ruta);
    const mdb::Catalogo catalogo(*paginas);
    const auto listar = [&](mdb::Objeto::Tipo tipo) {
      std::vector<std::string> nombres;
      for (const auto& o : catalogo.Objetos())
        if (o.tipo == tipo && !o.DeSistema()) nombres.push_back(o.nombre);
      std::sort(nombres.begin(), nombres.end());
      return nombres;
    };
    const auto suyos = [&](const std::string& orden) {
      auto nombres =
          base::Split(mdb_test::Salida(orden + mdb_test::Entrecomillado(ruta) + " 2>/dev/null"), "\n");
      // It does not know those that Access keeps for itself.
      std::erase_if(nombres, [](const auto& n) { return n.starts_with("~sq_"); });
      std::sort(nombres.begin(), nombres.end());
      nombres.erase(nombres.begin(),
                    std::find_if(nombres.begin(), nombres.end(), [](const auto& n) { return !n.empty(); }));
      return nombres;
    };
    EXPECT_EQ(listar(mdb::Objeto::Tabla), suyos("mdb-tables -1 "));
    EXPECT_EQ(listar(mdb::Objeto::Consulta), suyos("mdb-queries -L -1 "));
  }
}

}  // namespace
