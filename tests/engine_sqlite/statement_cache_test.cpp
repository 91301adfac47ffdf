// One translation for all the texts of a shape.
#include <gtest/gtest.h>

#include <string>

#include "engine_sqlite/sqlite_connection.h"
#include "render.h"

namespace {

class Cache : public testing::Test {
 protected:
  void SetUp() override {
    base_ = engine_sqlite::Open(":memory:");
    base_->Execute("CREATE TABLE t (k LONG, v TEXT(50), d DATETIME, n DOUBLE)");
  }
  const engine_sqlite::Counters& Counts() { return *engine_sqlite::CountersOf(*base_); }
  std::string Rows(const std::string& sql) { return support::Rows(base_->Execute(sql)); }

  std::unique_ptr<db::Connection> base_;
};

TEST_F(Cache, TenThousandStatementsOfOneShapeAreTranslatedOnce) {
  const auto before = Counts();
  base_->BeginTrans();
  for (int i = 0; i < 10000; ++i) {
    const std::string n = std::to_string(i);
    base_->Execute("insert into t (k,v,d,n) Values(" + n + ",'texto " + n + "',#03/01/2024#," + n + ".5)");
  }
  base_->CommitTrans();
  EXPECT_EQ(Counts().executions - before.executions, 10000);
  EXPECT_EQ(Counts().translations - before.translations, 1);
  EXPECT_EQ(Counts().preparations - before.preparations, 1);
  EXPECT_EQ(Rows("SELECT Count(*), Sum(k), Max(n), v FROM t WHERE k IN (77, 78) GROUP BY v ORDER BY v"),
            "1|77|77.5|texto 77\n1|78|78.5|texto 78");
}

TEST_F(Cache, TheSameTextIsNotEvenRead) {
  for (int i = 0; i < 10; ++i) Rows("SELECT Count(*) FROM t");
  EXPECT_EQ(Counts().equal_texts, 9);
  EXPECT_EQ(Counts().known_shapes, 0);
}

TEST_F(Cache, TheLiteralsOfAKeptTextAreItsOwn) {
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(Rows("SELECT 'uno', 1"), "uno|1");
    EXPECT_EQ(Rows("SELECT 'dos', 2"), "dos|2");
    EXPECT_EQ(Rows("SELECT 'dos', 2"), "dos|2");
  }
  EXPECT_EQ(Counts().equal_texts, 6);
}

TEST_F(Cache, BlanksAndCaseMakeNoOtherShape) {
  const auto before = Counts().translations;
  Rows("SELECT k FROM t WHERE v = 'a'");
  Rows("select  k\r\nfrom t where V  = 'B c'");
  EXPECT_EQ(Counts().translations - before, 1);
}

// A column's position in ORDER BY is no value: each one is translated apart and found again.
TEST_F(Cache, ALiteralThatDecidesTheTranslationMakesVariants) {
  base_->Execute("INSERT INTO t (k, n) VALUES (1, 20)");
  base_->Execute("INSERT INTO t (k, n) VALUES (2, 10)");
  const auto before = Counts().translations;
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(Rows("SELECT k, n FROM t WHERE k < 5 ORDER BY 1"), "1|20\n2|10");
    EXPECT_EQ(Rows("SELECT k, n FROM t WHERE k < 6 ORDER BY 2"), "2|10\n1|20");
  }
  EXPECT_EQ(Counts().translations - before, 2);
}

TEST_F(Cache, TheNumberOfTopChangesWithTheText) {
  for (int i = 1; i <= 5; ++i) base_->Execute("INSERT INTO t (k) VALUES (" + std::to_string(i) + ")");
  for (int round = 0; round < 2; ++round)
    for (std::size_t n = 1; n < 60; ++n)
      EXPECT_EQ(base_->Execute("SELECT TOP " + std::to_string(n) + " k FROM t ORDER BY k").Count(),
                n < 5 ? n : 5);
}

TEST_F(Cache, ADefinitionMakesItTranslateAgain) {
  base_->Execute("INSERT INTO t (k) VALUES (1)");
  EXPECT_EQ(support::Header(base_->Execute("SELECT * FROM t")), "k:int|v:text|d:date|n:number");
  EXPECT_EQ(support::Header(base_->Execute("SELECT * FROM t")), "k:int|v:text|d:date|n:number");
  base_->Execute("ALTER TABLE t ADD COLUMN x YESNO");
  EXPECT_EQ(support::Header(base_->Execute("SELECT * FROM t")), "k:int|v:text|d:date|n:number|x:bool");
  base_->Execute("CREATE VIEW q AS SELECT k FROM t");
  EXPECT_EQ(Rows("SELECT * FROM q"), "1");
  base_->Execute("DROP VIEW q");
  base_->Execute("CREATE VIEW q AS SELECT k + 10 AS kk FROM t");
  EXPECT_EQ(Rows("SELECT * FROM q"), "11");
}

TEST_F(Cache, MoreShapesThanAreKeptStillHold) {
  base_->Execute("INSERT INTO t (k) VALUES (1)");
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 700; ++i) {
      std::string alias = "c";
      alias += std::to_string(i);
      EXPECT_EQ(support::Header(base_->Execute("SELECT k AS " + alias + " FROM t")), alias + ":int");
    }
  }
}

TEST_F(Cache, AShapeThatLacksSomethingFailsEachTime) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_THROW(base_->Execute("SELECT nada FROM t"), db::Error);
    EXPECT_THROW(base_->Execute("SELECT k FROM t WHERE v = 'sin cerrar"), db::Error);
  }
}

// The exact text "Null" of a literal's place is another shape, not an old value bound again.
TEST_F(Cache, TheValuesOfARunDoNotStayForTheNext) {
  base_->Execute("INSERT INTO t (k, v) VALUES (1, 'a')");
  base_->Execute("INSERT INTO t (k, v) VALUES (2, Null)");
  base_->Execute("INSERT INTO t (k, v) VALUES (3, 'c')");
  EXPECT_EQ(Rows("SELECT k, v FROM t ORDER BY k"), "1|a\n2|NULL\n3|c");
}

TEST_F(Cache, TheCountersAreThisEngines) { EXPECT_NE(engine_sqlite::CountersOf(*base_), nullptr); }

}  // namespace
