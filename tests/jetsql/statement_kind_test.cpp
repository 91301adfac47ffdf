#include "jetsql/statement_kind.h"

#include <gtest/gtest.h>

#include "jetsql/parser.h"

namespace {

using jetsql::Kind;

struct Example {
  const char* sql;
  Kind kind;
};

constexpr Example kExamples[] = {
    {"select a from t", Kind::Query},
    {" \r\n((SELECT a FROM t) UNION SELECT b FROM u)", Kind::Query},
    {"(select a from t) union select b from u", Kind::Query},
    {"TABLE t", Kind::Query},
    {"PARAMETERS [into] Text(20), x Long; SELECT a FROM t WHERE a = x", Kind::Query},
    {"TRANSFORM Sum(h) SELECT a FROM t GROUP BY a PIVOT b", Kind::Query},
    {"SELECT 'x into y' AS a, [into], t.into, b AS into FROM t", Kind::Query},
    {"insert into t (a) values (1)", Kind::Insert},
    {"Insert Into t Select 1 as a", Kind::Insert},
    {"update t set a = 'into'", Kind::Update},
    {"DELETE * FROM t WHERE a = 1", Kind::Delete},
    {"SELECT a INTO u FROM t", Kind::Definition},
    {"PARAMETERS x Long; select a into u from t", Kind::Definition},
    {"create table t (a long)", Kind::Definition},
    {"CREATE UNIQUE INDEX i ON t (a)", Kind::Definition},
    {"CREATE VIEW v AS SELECT a FROM t", Kind::Definition},
    {"DROP TABLE t", Kind::Definition},
    {"ALTER TABLE t ADD COLUMN b TEXT(5)", Kind::Definition},
};

TEST(StatementKind, TheWordsSayWhatTheTreeSays) {
  for (const Example& e : kExamples) {
    EXPECT_EQ(jetsql::KindOf(jetsql::Parse(e.sql)), e.kind) << e.sql;
    EXPECT_EQ(jetsql::KindOfText(e.sql), e.kind) << e.sql;
  }
}

TEST(StatementKind, WhatNoStatementBeginsWithIsNone) {
  for (const char* sql : {"", "  ", "'select'", "selecta", "GRANT x TO y", "[select] a", "{call p}"})
    EXPECT_EQ(jetsql::KindOfText(sql), std::nullopt) << sql;
}

TEST(StatementKind, AQueryBeginsWithItsWord) {
  for (const char* sql : {"SELECT a FROM t", "(select a from t)", "table t", "parameters x long; select 1",
                          "transform sum(a) select b from t group by b pivot c"})
    EXPECT_TRUE(jetsql::BeginsQuery(sql)) << sql;
  for (const char* sql : {"", "Selected", "[SELECT] x", "C:\\select.mdb", "insert into t values (1)"})
    EXPECT_FALSE(jetsql::BeginsQuery(sql)) << sql;
}

TEST(StatementKind, LiteralsOfADefinitionAreInItsText) {
  const jetsql::Statement s = jetsql::Parse("CREATE TABLE t (a LONG DEFAULT 5)");
  const auto& column = std::get<jetsql::CreateTable>(s).columns.at(0);
  ASSERT_NE(column.default_value, nullptr);
  EXPECT_EQ(column.default_value->index, -1);
}

}  // namespace
