// A query that is saved, taken apart into the rows that Access keeps, is put together again: the same rows.
#include "engine_mdb/save_query.h"

#include "jetsql/parser.h"
#include "test_bench.h"

namespace {

class SavedQueries : public test::MdbTestBench {
 protected:
  void SetUp() override {
    NewDatabase();
    RunSql("CREATE TABLE a (k LONG, x TEXT(10), f DATETIME)");
    RunSql("CREATE TABLE b (k LONG, y TEXT(10), [con blanco] LONG)");
    RunSql("CREATE TABLE c (k LONG, j LONG, z DOUBLE)");
    for (int i = 0; i < 8; ++i) {
      const std::string n = std::to_string(i);
      RunSql("INSERT INTO a VALUES (" + n + ", 'x" + std::to_string(i % 3) + "', #02/0" +
             std::to_string(i % 5 + 1) + "/2024#)");
      if (i != 3) RunSql("INSERT INTO b VALUES (" + n + ", 'Y" + n + "', " + std::to_string(i * i) + ")");
      if (i % 2 == 0) RunSql("INSERT INTO c VALUES (" + n + ", " + std::to_string(8 - i) + ", " + n + ".5)");
    }
  }
};

constexpr const char* kQueries[] = {
    "SELECT * FROM a",
    "SELECT *, k * 2 AS doble FROM a ORDER BY k DESC",
    "SELECT a.*, b.y FROM a INNER JOIN b ON a.k = b.k ORDER BY a.k",
    "SELECT a.k, y, c.z FROM (a LEFT JOIN b ON a.k = b.k) LEFT JOIN c ON b.k = c.k ORDER BY a.k",
    "SELECT a.k, b.y FROM b RIGHT JOIN a ON b.k = a.k WHERE b.y Is Null OR a.k > 5",
    "SELECT a.k, c.z FROM a INNER JOIN (b INNER JOIN c ON b.k = c.k) ON a.k = c.j ORDER BY 1",
    "SELECT a.k FROM a INNER JOIN c ON a.k = c.k AND a.k < c.j ORDER BY a.k",
    "SELECT a.k, x, z FROM a INNER JOIN c ON a.k = j ORDER BY a.k",
    "SELECT P.k, Q.k AS otro FROM a AS P, a AS Q WHERE P.k = Q.k + 1 ORDER BY P.k",
    "SELECT DISTINCT x FROM a ORDER BY x",
    "SELECT TOP 3 k, x & '''s' AS y FROM a ORDER BY k DESC",
    "SELECT TOP 50 PERCENT k FROM a ORDER BY k",
    "SELECT x, Count(*) AS n, Sum(k) AS s FROM a GROUP BY x HAVING Count(*) > 2 ORDER BY x",
    "SELECT x, Year(f) AS anio, Max([con blanco]) AS m FROM a, b WHERE a.k = b.k GROUP BY x, Year(f)",
    "SELECT k FROM a WHERE f BETWEEN #02/02/2024# AND #02/04/2024# AND x LIKE 'x%' AND k IN (1, 2, 3)",
    "SELECT k FROM a WHERE k IN (SELECT k FROM c WHERE z > 2) ORDER BY k",
    "SELECT T.s FROM (SELECT Sum(k) AS s FROM a) AS T",
    "SELECT s FROM (SELECT Sum(k) AS s FROM a)",
    "SELECT k, 'a' AS de FROM a UNION SELECT k, 'a' FROM c ORDER BY k",
    "SELECT k FROM a UNION ALL SELECT k FROM c",
    "SELECT k FROM a UNION ALL SELECT k FROM c UNION SELECT j FROM c ORDER BY k",
    "SELECT k, IIf(x = 'x1', -1.5, Null) AS v FROM a WHERE Not (k = 2) ORDER BY k",
    "SELECT DISTINCTROW a.x FROM a INNER JOIN b ON a.k = b.k ORDER BY a.x",
    "SELECT 1 AS uno, Date() AS hoy",
};

TEST_F(SavedQueries, GiveTheSameRows) {
  int n = 0;
  for (const char* sql : kQueries) RunSql("CREATE VIEW v" + std::to_string(n++) + " AS " + sql);
  OpenConnection();
  n = 0;
  for (const char* sql : kQueries) {
    const std::string view = "v" + std::to_string(n++);
    const db::Recordset direct = base_->Execute(sql), saved = base_->Execute("SELECT * FROM " + view);
    EXPECT_EQ(support::Rows(saved), support::Rows(direct)) << sql;
    EXPECT_EQ(support::Header(saved), support::Header(direct)) << sql;
    EXPECT_FALSE(direct.IsEmpty()) << sql;
  }
  RunSql("CREATE VIEW sobre AS SELECT v0.k FROM v0 INNER JOIN v9 ON v0.x = v9.x");
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM sobre"), "8");
  EXPECT_EQ(FailureOfSql("CREATE VIEW V0 AS SELECT 1"), "[3010] La tabla o consulta 'V0' ya existe");
  RunSql("DROP VIEW v0");
  EXPECT_EQ(FailureOfSql("SELECT * FROM sobre"), "No se encuentra la tabla o consulta 'v0'");
  Check();
}

// The rows themselves, by the words of the format.
TEST_F(SavedQueries, TheRowsThatAccessSaves) {
  class EmptyCatalog final : public jetsql::Catalog {
    const jetsql::TableInfo* Table(std::string_view) override { return nullptr; }
    const std::string* Query(std::string_view) override { return nullptr; }
  };
  const auto s = jetsql::Parse(
      "SELECT DISTINCT TOP 5 P.k AS uno, P.* FROM a AS P LEFT JOIN b ON P.k = b.k AND P.x = b.y WHERE P.k > "
      "1 ORDER BY "
      "P.k DESC",
      jetsql::Literals::InText);
  EmptyCatalog nothing;
  const auto c = engine_mdb::DecomposeQuery("q", *std::get<jetsql::QueryPtr>(s), nothing);
  std::string text;
  for (const auto& f : c.rows)
    text += std::to_string(f.attribute) + "." + std::to_string(f.order) + " " + f.name1.value_or("-") + " " +
            f.name2.value_or("-") + " [" + f.expression.value_or("-") + "] " +
            (f.flag ? std::to_string(*f.flag) : "-") + "\n";
  EXPECT_EQ(text,
            "0.1 - - [-] 0\n"
            "1.1 - - [-] 1\n"
            "3.1 5 - [-] 18\n"
            "5.1 a P [-] -\n"
            "5.2 b - [-] -\n"
            "6.1 uno - [P.k] 0\n"
            "6.2 - - [P.*] 0\n"
            "7.1 P b [P.x = b.y] 2\n"
            "7.2 P b [P.k = b.k] 2\n"
            "8.1 - - [P.k > 1] -\n"
            "11.1 D - [P.k] -\n"
            "255.1 - - [-] -\n");
}

}  // namespace
