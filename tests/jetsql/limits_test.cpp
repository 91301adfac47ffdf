// Texts that are long, deep or broken end in a translation or in an error, never in anything else.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

#include "base/text.h"
#include "jetsql/parser.h"
#include "jetsql/translate.h"

namespace {

class OneTable : public jetsql::Catalog {
 public:
  const jetsql::TableInfo* Table(std::string_view name) override {
    return base::EqualIgnoringCase(name, "t") ? &table_ : nullptr;
  }
  const std::string* Query(std::string_view) override { return nullptr; }

 private:
  jetsql::TableInfo table_{"t",
                           {{"a", base::Type::Integer}, {"f", base::Type::Date}, {"x", base::Type::Text}}};
};

std::string Repeated(std::string_view text, int times) {
  std::string s;
  for (int i = 0; i < times; ++i) s += text;
  return s;
}

std::string Translated(const std::string& sql) {
  OneTable catalog;
  return jetsql::Translate(sql, catalog).steps.at(0);
}

int BracketDepth(const std::string& sql) {
  int now = 0, largest = 0;
  for (const char c : sql) {
    if (c == '(') largest = std::max(largest, ++now);
    if (c == ')') --now;
  }
  return largest;
}

TEST(Limits, BracketsMayNestButNotWithoutEnd) {
  EXPECT_EQ(Translated("select " + Repeated("(", 90) + "a" + Repeated(")", 90) + " from t"),
            "SELECT \"t\".\"a\" FROM \"t\"");
  EXPECT_THROW(Translated("select " + Repeated("(", 100000) + "a" + Repeated(")", 100000) + " from t"),
               jetsql::SyntaxError);
}

TEST(Limits, NestingOfEveryKindEnds) {
  for (const std::string piece : {"not ", "- ", "+", "iif(a,1,", "(select ", "a in (", "a + (", "x & ("})
    EXPECT_THROW(Translated("select " + Repeated(piece, 50000) + "a from t"), jetsql::SyntaxError) << piece;
  EXPECT_THROW(Translated("select * from " + Repeated("(", 50000) + "t"), jetsql::SyntaxError);
  EXPECT_THROW(Translated("select * from " + Repeated("(select * from ", 50000) + "t"), jetsql::SyntaxError);
  EXPECT_THROW(Translated(Repeated("(", 50000) + "select a from t"), jetsql::SyntaxError);
}

// The calendar's condition grows with the calendar: one alternative a type, one date a month.
TEST(Limits, ALongChainIsABalancedTree) {
  const std::string sql =
      Translated("select a from t where a=0" + Repeated(" or (a=1 and f in (#01/01/2020#))", 4000));
  EXPECT_LT(BracketDepth(sql), 20);
  EXPECT_EQ(std::count(sql.begin(), sql.end(), '?'), 8001);
}

TEST(Limits, ALongConcatenationIsCutIntoCalls) {
  const std::string sql = Translated("select x" + Repeated(" & x", 499) + " from t");
  std::size_t calls = 0, letters = 0;
  for (std::size_t i = sql.find("jet_concat('"); i != std::string::npos;
       i = sql.find("jet_concat('", i + 1)) {
    const std::size_t end = sql.find('\'', i + 12);
    EXPECT_LE(end - i - 12, 100u);  // SQLite's functions take 127 arguments
    letters += end - i - 12;
    ++calls;
  }
  EXPECT_EQ(letters, 500 + calls - 1);  // every piece, and every inner call once
}

std::string Refusal(const std::string& sql) {
  try {
    Translated(sql);
  } catch (const base::Error& e) {
    return e.Description().substr(0, e.Description().find(" (línea"));
  }
  return "no error";
}

struct List {
  const char *start, *piece, *end;
  const char* what;
  int most;
};

// Each list is read with as many members as it may have, and refused with one more.
TEST(Limits, ListsHaveAnEnd) {
  for (const List& l :
       {List{"select a", ",a", " from t", "La lista de una consulta", 255},
        List{"select 1 from t group by a", ",a", "", "GROUP BY", 255},
        List{"select a from t order by a", ",a", "", "ORDER BY", 255},
        List{"select switch(a=1", ",1", ") from t", "Una función", 255},
        List{"select a from t where a in (1", ",1", ")", "La lista de IN", 20000},
        List{"select a from t where f in (#01/01/2020#", ",#02/01/2020#", ")", "La lista de IN", 20000},
        List{"select a from t where a=1", " or a=2", "", "Una cadena de AND, OR o &", 10000},
        List{"select a from t where a=1", " and a=2", "", "Una cadena de AND, OR o &", 10000},
        List{"insert into t values (1", ",1", ")", "VALUES", 255},
        List{"insert into t (a", ",a", ") values (1)", "Una lista de columnas", 255},
        List{"update t set a=1", ",a=1", "", "SET", 255},
        List{"create table z (c LONG", ",c LONG", ")", "Una tabla", 255},
        List{"create index z on t (a", ",a", ")", "Un índice", 255},
        List{"PARAMETERS [p] long", ",[p] long", "; select a from t", "PARAMETERS", 255},
        List{"select 1 from t", ",t", "", "FROM", 64}}) {
    const std::string refusal = std::string(l.what) + " no puede tener más de " + std::to_string(l.most);
    EXPECT_NE(Refusal(l.start + Repeated(l.piece, l.most - 1) + l.end), refusal) << l.start;
    EXPECT_EQ(Refusal(l.start + Repeated(l.piece, l.most) + l.end), refusal) << l.start;
  }
}

// A megabyte of anything is read or refused at once; the processor's time, since others may be at work too.
TEST(Limits, AMegabyteIsReadOrRefusedInAMoment) {
  const std::vector<List> texts = {{"select a", ",a", " from t", "", 0},
                                   {"select a from t where a in (1", ",1", ")", "", 0},
                                   {"select a from t where a=1", " and a=1", "", "", 0},
                                   {"select a from t where a=1", " and a in (1,2,3,4,5,6,7,8,9)", "", "", 0},
                                   {"select 1", " union select 1", "", "", 0},
                                   {"select ", "(", "", "", 0},
                                   {"select * from ", "(", "", "", 0},
                                   {"", "(", "select 1", "", 0},
                                   {"select '", "x", "'", "", 0},
                                   {"select '", "''", "'", "", 0},
                                   {"select [", "x", "]", "", 0},
                                   {"select ", "1", "", "", 0},
                                   {"select", " ", "1", "", 0},
                                   {"select 1", "\n", "!", "", 0},
                                   {"select 1", ";", "", "", 0},
                                   {"select dlookup('a','t','a=1", " or a=1", "')", "", 0},
                                   {"PARAMETERS [p] ", "text(1)", "; select a from t", "", 0}};
  for (const std::size_t size : {std::size_t{90'000}, std::size_t{1'000'000}})
    for (const List& l : texts) {
      const std::size_t fixed = std::string(l.start).size() + std::string(l.end).size();
      const auto times = static_cast<int>((size - fixed) / std::string(l.piece).size());
      const std::string sql = l.start + Repeated(l.piece, times) + l.end;
      const std::clock_t before = std::clock();
      Refusal(sql);
      EXPECT_LT(static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC, 1) << l.start << l.piece;
    }
}

TEST(Limits, OnlyTheFirstQueryOfAStatementMakesATable) {
  const std::string refusal = "INTO solo se admite en la primera consulta de la sentencia";
  EXPECT_NE(Refusal("select a into z from t"), refusal);
  EXPECT_NE(Refusal("(select a into z from t)"), refusal);
  EXPECT_NE(Refusal("select a into z from t union select a from t"), refusal);
  for (const char* sql :
       {"select a from t union select a into z from t", "select a from t union all (select a into z from t)",
        "select a into y from t union select a into z from t",
        "select a from t where a in (select a into z from t)", "select (select a into z from t) from t",
        "select * from (select a into z from t) as d", "select * from [select a into z from t]. as d",
        "select a from t where exists (select a into z from t)", "create view v as select a into z from t",
        "insert into t select a into z from t"})
    EXPECT_EQ(Refusal(sql), refusal) << sql;
}

TEST(Limits, ALongSumEndsInAnError) {
  EXPECT_NO_THROW(Translated("select a" + Repeated("+a", 300) + " from t"));
  EXPECT_THROW(Translated("select a" + Repeated("+a", 30000) + " from t"), jetsql::SyntaxError);
}

// Each alias doubles the one before.
TEST(Limits, AliasesThatGrowEndInAnError) {
  std::string sql = "select a & a as a0";
  for (int i = 1; i < 60; ++i)
    sql += ", a" + std::to_string(i - 1) + " & a" + std::to_string(i - 1) + " as a" + std::to_string(i);
  EXPECT_THROW(Translated(sql + " from t"), base::Error);
}

TEST(Limits, EveryPrefixOfAStatementIsReadOrRefused) {
  const std::string sql =
      "Select top 5 t.*, iif(a=1,'x''y',\"z\") as [n n], #01/01/2020# From ((t inner join (select a from t) "
      "as d "
      "on t.a=d.a)) Where a between 1 and 2.5 and x like '%' & x and not exists (select * from t as u) group "
      "by a "
      "having count(*)>1 union all select * from [select x from t]. as q order by 1 desc, n;";
  int parsed = 0, rejected = 0;
  for (std::size_t n = 0; n <= sql.size(); ++n) {
    const std::string slice = sql.substr(0, n);
    jetsql::Shape shape;
    jetsql::SeparateLiterals(slice, shape);
    try {
      Translated(slice);
      ++parsed;
    } catch (const base::Error& e) {
      EXPECT_NE(e.Description(), "");
      ++rejected;
    }
  }
  EXPECT_EQ(parsed + rejected, static_cast<int>(sql.size()) + 1);
  EXPECT_GT(rejected, 100);
}

// The literals of the shape are the literals of the tree, in the same order.
TEST(Limits, TheShapeAndTheParserAgreeOnLiterals) {
  const std::string sql =
      "select 'uno', 2 & 'x', [a 3], a4, .5, #01/01/2020#, -6 from t where a in (7,8) and x='9'";
  jetsql::Shape shape;
  ASSERT_TRUE(jetsql::SeparateLiterals(sql, shape));
  const jetsql::Statement s = jetsql::Parse(sql);
  std::vector<const jetsql::Expr*> literals;
  const auto walk = [&](const auto& self, const jetsql::Expr& e) -> void {
    if (e.node == jetsql::Node::Literal) literals.push_back(&e);
    for (const auto& h : e.children) self(self, *h);
  };
  const auto& part = std::get<jetsql::QueryPtr>(s)->parts[0];
  for (const auto& item : part.list) walk(walk, *item.expr);
  walk(walk, *part.where);
  ASSERT_EQ(literals.size(), shape.literals.size());
  for (std::size_t i = 0; i < literals.size(); ++i) {
    EXPECT_EQ(literals[i]->index, static_cast<int>(i));
    EXPECT_EQ(literals[i]->literal, shape.literals[i]);
  }
}

}  // namespace
