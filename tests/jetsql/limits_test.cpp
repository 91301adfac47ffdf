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

class UnaTabla : public jetsql::Catalogo {
 public:
  const jetsql::TablaInfo* Tabla(std::string_view nombre) override {
    return base::IgualSinCaso(nombre, "t") ? &tabla_ : nullptr;
  }
  const std::string* Consulta(std::string_view) override { return nullptr; }

 private:
  jetsql::TablaInfo tabla_{"t",
                           {{"a", base::Tipo::Entero}, {"f", base::Tipo::Fecha}, {"x", base::Tipo::Texto}}};
};

std::string Repetido(std::string_view texto, int veces) {
  std::string s;
  for (int i = 0; i < veces; ++i) s += texto;
  return s;
}

std::string Traducido(const std::string& sql) {
  UnaTabla catalog;
  return jetsql::Traducir(sql, catalog).pasos.at(0);
}

int HonduraDeParentesis(const std::string& sql) {
  int ahora = 0, mayor = 0;
  for (const char c : sql) {
    if (c == '(') mayor = std::max(mayor, ++ahora);
    if (c == ')') --ahora;
  }
  return mayor;
}

TEST(Limits, BracketsMayNestButNotWithoutEnd) {
  EXPECT_EQ(Traducido("select " + Repetido("(", 90) + "a" + Repetido(")", 90) + " from t"),
            "SELECT \"t\".\"a\" FROM \"t\"");
  EXPECT_THROW(Traducido("select " + Repetido("(", 100000) + "a" + Repetido(")", 100000) + " from t"),
               jetsql::ErrorSintaxis);
}

TEST(Limits, NestingOfEveryKindEnds) {
  for (const std::string pieza : {"not ", "- ", "+", "iif(a,1,", "(select ", "a in (", "a + (", "x & ("})
    EXPECT_THROW(Traducido("select " + Repetido(pieza, 50000) + "a from t"), jetsql::ErrorSintaxis) << pieza;
  EXPECT_THROW(Traducido("select * from " + Repetido("(", 50000) + "t"), jetsql::ErrorSintaxis);
  EXPECT_THROW(Traducido("select * from " + Repetido("(select * from ", 50000) + "t"), jetsql::ErrorSintaxis);
  EXPECT_THROW(Traducido(Repetido("(", 50000) + "select a from t"), jetsql::ErrorSintaxis);
}

// The calendar's condition grows with the calendar: one alternative a type, one date a month.
TEST(Limits, ALongChainIsABalancedTree) {
  const std::string sql =
      Traducido("select a from t where a=0" + Repetido(" or (a=1 and f in (#01/01/2020#))", 4000));
  EXPECT_LT(HonduraDeParentesis(sql), 20);
  EXPECT_EQ(std::count(sql.begin(), sql.end(), '?'), 8001);
}

TEST(Limits, ALongConcatenationIsCutIntoCalls) {
  const std::string sql = Traducido("select x" + Repetido(" & x", 499) + " from t");
  std::size_t llamadas = 0, letras = 0;
  for (std::size_t i = sql.find("jet_concat('"); i != std::string::npos;
       i = sql.find("jet_concat('", i + 1)) {
    const std::size_t fin = sql.find('\'', i + 12);
    EXPECT_LE(fin - i - 12, 100u);  // SQLite's functions take 127 arguments
    letras += fin - i - 12;
    ++llamadas;
  }
  EXPECT_EQ(letras, 500 + llamadas - 1);  // every piece, and every inner call once
}

std::string Refusal(const std::string& sql) {
  try {
    Traducido(sql);
  } catch (const base::Error& e) {
    return e.Descripcion().substr(0, e.Descripcion().find(" (línea"));
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
    EXPECT_NE(Refusal(l.start + Repetido(l.piece, l.most - 1) + l.end), refusal) << l.start;
    EXPECT_EQ(Refusal(l.start + Repetido(l.piece, l.most) + l.end), refusal) << l.start;
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
      const std::string sql = l.start + Repetido(l.piece, times) + l.end;
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
  EXPECT_NO_THROW(Traducido("select a" + Repetido("+a", 300) + " from t"));
  EXPECT_THROW(Traducido("select a" + Repetido("+a", 30000) + " from t"), jetsql::ErrorSintaxis);
}

// Each alias doubles the one before.
TEST(Limits, AliasesThatGrowEndInAnError) {
  std::string sql = "select a & a as a0";
  for (int i = 1; i < 60; ++i)
    sql += ", a" + std::to_string(i - 1) + " & a" + std::to_string(i - 1) + " as a" + std::to_string(i);
  EXPECT_THROW(Traducido(sql + " from t"), base::Error);
}

TEST(Limits, EveryPrefixOfAStatementIsReadOrRefused) {
  const std::string sql =
      "Select top 5 t.*, iif(a=1,'x''y',\"z\") as [n n], #01/01/2020# From ((t inner join (select a from t) "
      "as d "
      "on t.a=d.a)) Where a between 1 and 2.5 and x like '%' & x and not exists (select * from t as u) group "
      "by a "
      "having count(*)>1 union all select * from [select x from t]. as q order by 1 desc, n;";
  int leidas = 0, rechazadas = 0;
  for (std::size_t n = 0; n <= sql.size(); ++n) {
    const std::string trozo = sql.substr(0, n);
    jetsql::Forma forma;
    jetsql::SepararLiterales(trozo, forma);
    try {
      Traducido(trozo);
      ++leidas;
    } catch (const base::Error& e) {
      EXPECT_NE(e.Descripcion(), "");
      ++rechazadas;
    }
  }
  EXPECT_EQ(leidas + rechazadas, static_cast<int>(sql.size()) + 1);
  EXPECT_GT(rechazadas, 100);
}

// The literals of the shape are the literals of the tree, in the same order.
TEST(Limits, TheShapeAndTheParserAgreeOnLiterals) {
  const std::string sql =
      "select 'uno', 2 & 'x', [a 3], a4, .5, #01/01/2020#, -6 from t where a in (7,8) and x='9'";
  jetsql::Forma forma;
  ASSERT_TRUE(jetsql::SepararLiterales(sql, forma));
  const jetsql::Sentencia s = jetsql::Analizar(sql);
  std::vector<const jetsql::Expr*> literales;
  const auto recorre = [&](const auto& yo, const jetsql::Expr& e) -> void {
    if (e.nodo == jetsql::Nodo::Literal) literales.push_back(&e);
    for (const auto& h : e.hijos) yo(yo, *h);
  };
  const auto& parte = std::get<jetsql::ConsultaPtr>(s)->partes[0];
  for (const auto& item : parte.lista) recorre(recorre, *item.expr);
  recorre(recorre, *parte.donde);
  ASSERT_EQ(literales.size(), forma.literales.size());
  for (std::size_t i = 0; i < literales.size(); ++i) {
    EXPECT_EQ(literales[i]->indice, static_cast<int>(i));
    EXPECT_EQ(literales[i]->literal, forma.literales[i]);
  }
}

}  // namespace
