#include "mdb/queries/saved_query.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

#include "base/text.h"
#include "engine_mdb/query_text.h"
#include "jetsql/parser.h"
#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/exported.h"
#include "mdb/outside.h"
#include "mdb/samples.h"

namespace {

// Calls `visita` with each saved query of every file.
template <typename Visita>
std::size_t CadaConsulta(Visita&& visita) {
  std::size_t cuantas = 0;
  for (const auto& ruta : mdb_test::EveryFile()) {
    const auto paginas = mdb_test::Cargar(ruta);
    const mdb::Catalogo catalogo(*paginas);
    for (const auto& o : catalogo.Objetos()) {
      if (o.tipo != mdb::Objeto::Consulta) continue;
      SCOPED_TRACE(ruta + " " + o.nombre);
      visita(ruta, catalogo.ConsultaDe(o.nombre));
      ++cuantas;
    }
  }
  return cuantas;
}

// Those of the further files, one of each kind, put together by hand from their rows. The samples bring their
// own texts.
const std::map<std::string, std::string> kTextos = {
    {"SelectQuery",
     "SELECT DISTINCT Table1.*, Table2.col1, Table2.col2, Table3.col3 FROM (Table1 LEFT JOIN Table3 ON "
     "Table1.col1 = Table3.col1) INNER JOIN Table2 ON (Table3.col1 = Table2.col2) AND (Table3.col1 = "
     "Table2.col1) WHERE (((Table2.col2)=\"foo\" Or (Table2.col2) In (\"buzz\",\"bazz\"))) ORDER BY "
     "Table2.col1"},
    {"UpdateQuery",
     "PARAMETERS [User Name] Text; UPDATE Table1 SET Table1.col1 = \"foo\", Table1.col2 = [Table2].[col3], "
     "[Table2].[col1] = [User Name] WHERE ((([Table2].[col1]) Is Not Null))"},
    {"AppendQuery",
     "INSERT INTO Table3 (col2, col2, col3) SELECT [Table1].[col2], [Table2].[col2], [Table2].[col3] FROM "
     "Table3, Table1 INNER JOIN Table2 ON [Table1].[col1]=[Table2].[col1]"},
    {"DeleteQuery",
     "DELETE Table1.col1, Table1.col2, Table1.col3 FROM Table1 WHERE (((Table1.col1)>\"blah\"))"},
    {"MakeTableQuery",
     "SELECT Max(Table2.col1) AS MaxOfcol1, Table2.col2, Table3.col2 INTO Table4 FROM (Table2 INNER JOIN "
     "Table1 ON Table2.col1 = Table1.col2) RIGHT JOIN Table3 ON Table1.col2 = Table3.col3 GROUP BY "
     "Table2.col2, Table3.col2 HAVING (((Max(Table2.col1))=\"buzz\") AND ((Table2.col2)<>\"blah\"))"},
    {"CrosstabQuery",
     "TRANSFORM Count([Table2].[col2]) AS CountOfcol2 SELECT Table2_1.col1, [Table2].[col3], "
     "Avg(Table2_1.col2) AS AvgOfcol2 FROM (Table1 INNER JOIN Table2 ON [Table1].[col1]=[Table2].[col1]) "
     "INNER JOIN Table2 AS Table2_1 ON [Table2].[col1]=Table2_1.col3 WHERE ((([Table1].[col1])>\"10\") And "
     "((Table2_1.col1) Is Not Null) And ((Avg(Table2_1.col2))>\"10\")) GROUP BY Table2_1.col1, "
     "[Table2].[col3] ORDER BY [Table2].[col3] PIVOT [Table1].[col1]"},
    {"UnionQuery",
     "Select Table1.col1, Table1.col2\r\nwhere Table1.col1 = \"foo\"\r\nUNION\r\nSelect Table2.col1, "
     "Table2.col2 UNION ALL Select Table3.col1, Table3.col2\r\nwhere Table3.col3 > \"blah\""},
    {"PassthroughQuery", "ALTER TABLE Table4 DROP COLUMN col5"},
    {"DataDefinitionQuery", "CREATE TABLE Table5 (col1 CHAR, col2 CHAR)"},
    {"q_stdev",
     "TRANSFORM StDev(t_pivot.[c_val]) AS DevSt_Value SELECT t_pivot.[c_dt], StDev(t_pivot.[c_val]) AS "
     "Total_Value FROM t_pivot GROUP BY t_pivot.[c_dt] PIVOT Format([c_dt],\"yyyy\")"},
    {"q_trim",
     "TRANSFORM Sum(t_pivot.[c_val]) AS Sum_Value SELECT t_pivot.[c_cod], Sum(t_pivot.[c_val]) AS "
     "Total_Value "
     "FROM t_pivot GROUP BY t_pivot.[c_cod] PIVOT \"Trim \" & Format([c_dt],\"q\")"}};

TEST(ConsultaGuardada, EveryQueryHasItsText) {
  auto texts = kTextos;
  std::size_t expected = mdb_test::CarpetaDeCorpus().empty() ? 0 : 38;
  for (const auto& sample : mdb_test::Samples()) {
    texts.insert(sample.query_texts.begin(), sample.query_texts.end());
    expected += sample.query_texts.size();
  }
  const auto found = CadaConsulta([&](const std::string&, const mdb::ConsultaGuardada& q) {
    const auto it = texts.find(q.nombre);
    ASSERT_NE(it, texts.end()) << q.nombre;
    EXPECT_EQ(engine_mdb::QueryText(q), it->second);
  });
  EXPECT_EQ(found, expected);
}

TEST(ConsultaGuardada, WhatGivesRowsParses) {
  std::size_t leidas = 0;
  CadaConsulta([&](const std::string&, const mdb::ConsultaGuardada& q) {
    const auto clase = mdb::ClaseDe(q);
    // A pass-through is another program's language; a deletion that lists columns is not of our dialect.
    if (clase == mdb::ClaseConsulta::Directa || clase == mdb::ClaseConsulta::Eliminar) return;
    EXPECT_NO_THROW(jetsql::Analizar(engine_mdb::QueryText(q), jetsql::Literales::EnTexto));
    ++leidas;
  });
  EXPECT_GT(leidas, 20U);
}

// mdb-queries knows no joins, groups nor kinds: what it prints of the conditions, the order and the columns
// must stand in our text.
TEST(ConsultaGuardada, ConditionsAreThoseOfMdbtools) {
  if (!mdb_test::HayMdbtools()) GTEST_SKIP() << "mdbtools is not installed";
  std::size_t comparadas = 0;
  CadaConsulta([&](const std::string& ruta, const mdb::ConsultaGuardada& q) {
    std::string suyo = mdb_test::Salida("mdb-queries " + mdb_test::Entrecomillado(ruta) + " " +
                                        mdb_test::Entrecomillado(q.nombre) + " 2>/dev/null");
    suyo = base::Reemplazar(suyo, " DESCENDING", " DESC");  // its own word
    const std::string nuestro = engine_mdb::QueryText(q);
    const auto orden = suyo.rfind(" ORDER BY ");
    if (orden != std::string::npos) {
      EXPECT_TRUE(base::Contiene(nuestro, base::Trim(base::Reemplazar(suyo.substr(orden), "\n", ""))));
      ++comparadas;
    }
    const auto donde = suyo.find(" WHERE ");
    if (donde != std::string::npos) {
      const std::string condicion = base::Reemplazar(suyo.substr(donde, orden - donde), "\n", "");
      EXPECT_TRUE(base::Contiene(nuestro, base::Trim(condicion))) << condicion;
      ++comparadas;
    }
  });
  EXPECT_GT(comparadas, 8U);
}

// A tree of joins drawn at random, the text that its author wrote and the rows that Access keeps of it.
class ArbolAlAzar {
 public:
  explicit ArbolAlAzar(unsigned semilla) : azar_(semilla) {
    texto = Texto(Dibujar(0, 2 + static_cast<int>(azar_() % 7), 0), false);
  }
  mdb::ConsultaGuardada consulta{"Q", 0, {}};
  std::string texto;

 private:
  struct Nodo {
    int primera, ultima;  // sources
    std::string hoja;
    std::string union_, condicion;
    std::vector<Nodo> lados;
  };
  Nodo Dibujar(int primera, int cuantas, int nivel) {
    if (cuantas == 1) {
      const std::string nombre = "T" + std::to_string(primera);
      const bool alias = azar_() % 3 == 0;
      consulta.filas.push_back({5,
                                static_cast<std::uint32_t>(primera + 1),
                                alias ? "Tabla base" : nombre,
                                alias ? std::optional(nombre) : std::nullopt,
                                {},
                                {},
                                {}});
      return {primera, primera, alias ? "[Tabla base] AS " + nombre : nombre, {}, {}, {}};
    }
    const int izquierda = 1 + static_cast<int>(azar_() % static_cast<unsigned>(cuantas - 1));
    Nodo n{primera, primera + cuantas - 1, {}, {}, {}, {}};
    n.lados.push_back(Dibujar(primera, izquierda, nivel + 1));
    n.lados.push_back(Dibujar(primera + izquierda, cuantas - izquierda, nivel + 1));
    const auto clase = static_cast<std::int16_t>(1 + azar_() % 3);
    n.union_ = clase == 1 ? "INNER" : clase == 2 ? "LEFT" : "RIGHT";
    const auto una = [&](const Nodo& l) {
      return "T" + std::to_string(l.primera + static_cast<int>(
                                                  azar_() % static_cast<unsigned>(l.ultima - l.primera + 1)));
    };
    for (int i = 0, condiciones = 1 + static_cast<int>(azar_() % 3); i < condiciones; ++i) {
      const std::string a = una(n.lados[0]), b = una(n.lados[1]);
      const std::string condicion = a + ".c" + std::to_string(i) + " = " + b + ".c";
      consulta.filas.push_back({7, ++orden_, a, b, condicion, clase, {}});
      if (condiciones == 1) {
        n.condicion = condicion;
      } else {
        n.condicion = "(" + condicion + ")" + (i == 0 ? "" : " AND ") + n.condicion;
      }
    }
    return n;
  }
  static std::string Texto(const Nodo& n, bool dentro) {
    if (n.lados.empty()) return n.hoja;
    const std::string t =
        Texto(n.lados[0], true) + " " + n.union_ + " JOIN " + Texto(n.lados[1], true) + " ON " + n.condicion;
    return dentro ? "(" + t + ")" : t;
  }
  std::mt19937 azar_;
  std::uint32_t orden_ = 0;
};

TEST(ConsultaGuardada, AnyTreeOfJoinsComesBack) {
  for (unsigned semilla = 0; semilla < 500; ++semilla) {
    SCOPED_TRACE(semilla);
    ArbolAlAzar arbol(semilla);
    arbol.consulta.filas.push_back({3, 1, {}, {}, {}, std::int16_t{1}, {}});
    std::shuffle(arbol.consulta.filas.begin(), arbol.consulta.filas.end(), std::mt19937(semilla));
    const std::string texto = engine_mdb::QueryText(arbol.consulta);
    EXPECT_EQ(texto, "SELECT * FROM " + arbol.texto);
    EXPECT_NO_THROW(jetsql::Analizar(texto));
  }
}

TEST(ConsultaGuardada, TooManyJoinsAreRefused) {
  mdb::ConsultaGuardada q{"Q", 0, {}};
  q.filas.push_back({5, 1, "A", {}, {}, {}, {}});
  q.filas.push_back({5, 2, "B", {}, {}, {}, {}});
  q.filas.push_back({6, 1, {}, {}, "1", {}, {}});
  for (std::uint32_t i = 0; i < 2000; ++i) q.filas.push_back({7, i, "A", "B", "A.x = B.x", {}, {}});
  EXPECT_NO_THROW(engine_mdb::QueryText(q));
  q.filas.push_back({7, 2000, "A", "B", "A.x = B.x", {}, {}});
  EXPECT_THROW(engine_mdb::QueryText(q), base::Error);
}

TEST(ConsultaGuardada, TooManySourcesAreRefused) {
  mdb::ConsultaGuardada q{"Q", 0, {}};
  for (std::uint32_t i = 0; i < 256; ++i) q.filas.push_back({5, i, "T" + std::to_string(i), {}, {}, {}, {}});
  q.filas.push_back({6, 1, {}, {}, "1", {}, {}});
  EXPECT_THROW(engine_mdb::QueryText(q), base::Error);
  q.filas.erase(q.filas.begin());
  EXPECT_NO_THROW(engine_mdb::QueryText(q));
}

}  // namespace
