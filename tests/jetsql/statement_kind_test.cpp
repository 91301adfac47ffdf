#include "jetsql/statement_kind.h"

#include <gtest/gtest.h>

#include "jetsql/parser.h"

namespace {

using jetsql::Clase;

struct Example {
  const char* sql;
  Clase kind;
};

constexpr Example kExamples[] = {
    {"select a from t", Clase::Consulta},
    {" \r\n((SELECT a FROM t) UNION SELECT b FROM u)", Clase::Consulta},
    {"(select a from t) union select b from u", Clase::Consulta},
    {"TABLE t", Clase::Consulta},
    {"PARAMETERS [into] Text(20), x Long; SELECT a FROM t WHERE a = x", Clase::Consulta},
    {"TRANSFORM Sum(h) SELECT a FROM t GROUP BY a PIVOT b", Clase::Consulta},
    {"SELECT 'x into y' AS a, [into], t.into, b AS into FROM t", Clase::Consulta},
    {"insert into t (a) values (1)", Clase::Insercion},
    {"Insert Into t Select 1 as a", Clase::Insercion},
    {"update t set a = 'into'", Clase::Actualizacion},
    {"DELETE * FROM t WHERE a = 1", Clase::Borrado},
    {"SELECT a INTO u FROM t", Clase::Definicion},
    {"PARAMETERS x Long; select a into u from t", Clase::Definicion},
    {"create table t (a long)", Clase::Definicion},
    {"CREATE UNIQUE INDEX i ON t (a)", Clase::Definicion},
    {"CREATE VIEW v AS SELECT a FROM t", Clase::Definicion},
    {"DROP TABLE t", Clase::Definicion},
    {"ALTER TABLE t ADD COLUMN b TEXT(5)", Clase::Definicion},
};

TEST(StatementKindTest, TheWordsSayWhatTheTreeSays) {
  for (const Example& e : kExamples) {
    EXPECT_EQ(jetsql::KindOf(jetsql::Analizar(e.sql)), e.kind) << e.sql;
    EXPECT_EQ(jetsql::KindOfText(e.sql), e.kind) << e.sql;
  }
}

TEST(StatementKindTest, WhatNoStatementBeginsWithIsNone) {
  for (const char* sql : {"", "  ", "'select'", "selecta", "GRANT x TO y", "[select] a", "{call p}"})
    EXPECT_EQ(jetsql::KindOfText(sql), std::nullopt) << sql;
}

TEST(StatementKindTest, AQueryBeginsWithItsWord) {
  for (const char* sql : {"SELECT a FROM t", "(select a from t)", "table t", "parameters x long; select 1",
                          "transform sum(a) select b from t group by b pivot c"})
    EXPECT_TRUE(jetsql::BeginsQuery(sql)) << sql;
  for (const char* sql : {"", "Selected", "[SELECT] x", "C:\\select.mdb", "insert into t values (1)"})
    EXPECT_FALSE(jetsql::BeginsQuery(sql)) << sql;
}

TEST(StatementKindTest, LiteralsOfADefinitionAreInItsText) {
  const jetsql::Sentencia s = jetsql::Analizar("CREATE TABLE t (a LONG DEFAULT 5)");
  const auto& column = std::get<jetsql::CrearTabla>(s).columnas.at(0);
  ASSERT_NE(column.defecto, nullptr);
  EXPECT_EQ(column.defecto->indice, -1);
}

}  // namespace
