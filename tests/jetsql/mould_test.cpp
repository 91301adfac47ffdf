// What a mould recognises, and that it never takes a text for what SepararLiterales would not.
#include "jetsql/mould.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

using jetsql::Forma;
using jetsql::Molde;
using Hallazgo = jetsql::Molde::Hallazgo;

Molde MoldeDe(const std::string& sql) {
  Forma forma;
  EXPECT_TRUE(jetsql::SepararLiterales(sql, forma)) << sql;
  Molde molde;
  molde.Tomar(sql, forma);
  return molde;
}

std::vector<base::Valor> LiteralesDe(const std::string& sql) {
  Forma forma;
  EXPECT_TRUE(jetsql::SepararLiterales(sql, forma)) << sql;
  return forma.literales;
}

TEST(Molde, VacioNoReconoceNada) {
  Molde molde;
  EXPECT_TRUE(molde.Vacio());
  EXPECT_EQ(molde.Reconocer(""), Hallazgo::Otra);
  EXPECT_EQ(molde.Reconocer("SELECT 1"), Hallazgo::Otra);
}

TEST(Molde, ReconoceOtrosValoresYQuedaConEllos) {
  Molde molde = MoldeDe("insert into t (k,v,d) Values(1,'a',#03/01/2024#)");
  for (const std::string sql : {"insert into t (k,v,d) Values(1,'a',#03/01/2024#)",
                                "insert into t (k,v,d) Values(12345,'',#12/31/1999#)",
                                "insert into t (k,v,d) Values(7,'O''Brien (x), ''y''',#2024-02-29#)",
                                "insert into t (k,v,d) Values(7,\"otra\",#02/28/2024#)"}) {
    const Hallazgo h = molde.Reconocer(sql);
    EXPECT_NE(h, Hallazgo::Otra) << sql;
    EXPECT_EQ(molde.Literales(), LiteralesDe(sql)) << sql;
    EXPECT_EQ(molde.Reconocer(sql), Hallazgo::Igual);
  }
}

TEST(Molde, LoQueNoReconoceLoDejaComoEstaba) {
  const std::string propio = "Select a From t Where k=1 and v='x' and n=2.5 order by a";
  Molde molde = MoldeDe(propio);
  for (const std::string sql :
       {"Select a From t Where k=-1 and v='x' and n=2.5 order by a",
        "Select a From t Where k=1.5 and v='x' and n=2.5 order by a",
        "Select a From t Where k=1 and v=Null and n=2.5 order by a",
        "Select a From t Where k=1 and v='sin cerrar and n=2.5 order by a",
        "Select a From t Where k=9 and v='y' and n=2.5 order by b",
        "Select a From t Where k=9 and v='y' and n=2.5 order by a desc",
        "Select a From t Where k=9 and v='y' and n=", "Select a From t Where k=", "Select a From t", ""}) {
    EXPECT_EQ(molde.Reconocer(sql), Hallazgo::Otra) << sql;
    EXPECT_EQ(molde.Literales(), LiteralesDe(propio)) << sql;
    EXPECT_EQ(molde.Reconocer(propio), Hallazgo::Igual);
  }
}

// The character after a literal may belong to a longer one: "1" before "e+5" is no 1, "'a'" before "'" has no
// end there.
TEST(Molde, UnLiteralSigueHastaDondeLlega) {
  Molde molde = MoldeDe("Select 1 e+5, 'a' ,k");
  EXPECT_EQ(molde.Reconocer("Select 1e+5, 'a' ,k"), Hallazgo::Otra);
  EXPECT_EQ(molde.Reconocer("Select 1 e+5, 'a'' ,k"), Hallazgo::Otra);
  EXPECT_EQ(molde.Reconocer("Select 12 e+5, 'a''b' ,k"), Hallazgo::MismaForma);
  Molde pegado = MoldeDe("Select 2x");
  EXPECT_EQ(pegado.Reconocer("Select 2e5x"), Hallazgo::Otra);
}

TEST(Molde, UnaFechaQueNoSeLeeNoEsDeLaForma) {
  Molde molde = MoldeDe("Select #06/01/2024#");
  EXPECT_EQ(molde.Reconocer("Select #06/31/xx#"), Hallazgo::Otra);
  EXPECT_EQ(molde.Reconocer("Select #07/15/2024#"), Hallazgo::MismaForma);
}

// Texts made of pieces put together at random, with and without blanks: whatever a mould takes for a text of
// its shape must be one for SepararLiterales too, with the same literals.
class TextoAlAzar {
 public:
  explicit TextoAlAzar(unsigned semilla) : azar_(semilla) {}
  std::vector<std::string> Piezas() {
    std::vector<std::string> piezas;
    const std::size_t n = 1 + Hasta(12);
    for (std::size_t i = 0; i < n; ++i) piezas.push_back(Pieza());
    return piezas;
  }
  std::string Pieza() {
    static const std::vector<std::string> kPiezas = {"1",          "12",
                                                     "007",        "1.",
                                                     "1.5",        ".5",
                                                     "1e5",        "1e+5",
                                                     "2E",         "12345678901234567890",
                                                     "'a'",        "''",
                                                     "'a''b'",     "\"q\"",
                                                     "'x y'",      "#06/01/2024#",
                                                     "#1/2/2023#", "a",
                                                     "b1",         "e",
                                                     "e5",         "Null",
                                                     "[n m]",      ".",
                                                     ",",          "(",
                                                     ")",          "+",
                                                     "-",          "<",
                                                     "=",          ">",
                                                     "<>",         "'",
                                                     "#",          " ",
                                                     "  ",         "\r\n",
                                                     ";",          "&",
                                                     "&HF",        "&h1f&",
                                                     "&O7",        "&H",
                                                     "SELECT",     "and"};
    return kPiezas[Hasta(kPiezas.size())];
  }
  std::size_t Hasta(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(azar_); }

 private:
  std::mt19937 azar_;
};

std::string Unir(const std::vector<std::string>& piezas) {
  std::string texto;
  for (const std::string& p : piezas) texto += p;
  return texto;
}

TEST(Molde, NuncaTomaPorSuyaOtraForma) {
  TextoAlAzar azar(20240601);
  int reconocidos = 0;
  for (int vuelta = 0; vuelta < 200000; ++vuelta) {
    std::vector<std::string> piezas = azar.Piezas();
    const std::string propio = Unir(piezas);
    Forma suya;
    if (!jetsql::SepararLiterales(propio, suya)) continue;
    Molde molde;
    molde.Tomar(propio, suya);
    piezas[azar.Hasta(piezas.size())] = azar.Pieza();
    if (azar.Hasta(3) == 0) piezas[azar.Hasta(piezas.size())] = azar.Pieza();
    const std::string otro = Unir(piezas);
    if (molde.Reconocer(otro) == Hallazgo::Otra) continue;
    ++reconocidos;
    Forma forma;
    ASSERT_TRUE(jetsql::SepararLiterales(otro, forma)) << propio << "\n" << otro;
    ASSERT_EQ(forma.clave, suya.clave) << propio << "\n" << otro;
    ASSERT_EQ(forma.literales, molde.Literales()) << propio << "\n" << otro;
  }
  EXPECT_GT(reconocidos, 5000);
}

}  // namespace
