// Texts that are long, deep or broken end in a translation or in an error, never in anything else.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "base/text.h"
#include "jetsql/parser.h"
#include "jetsql/translate.h"

namespace {

class UnaTabla : public jetsql::Catalogo {
 public:
  const jetsql::TablaInfo* Tabla(std::string_view nombre) const override {
    return base::IgualSinCaso(nombre, "t") ? &tabla_ : nullptr;
  }
  const std::string* Consulta(std::string_view) const override { return nullptr; }

 private:
  jetsql::TablaInfo tabla_{"t",
                           {{"a", base::Tipo::Entero}, {"f", base::Tipo::Fecha}, {"x", base::Tipo::Texto}}};
};

std::string Repetido(std::string_view texto, int veces) {
  std::string s;
  for (int i = 0; i < veces; ++i) s += texto;
  return s;
}

std::string Traducido(const std::string& sql) { return jetsql::Traducir(sql, UnaTabla()).pasos.at(0); }

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
      jetsql::Traducir(trozo, UnaTabla());
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
