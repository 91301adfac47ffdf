#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "base/text.h"
#include "relations/code_relations.h"

namespace {

using relations::CodeRelations;

// The plain rule, word by word: the first relation whose list holds "," + code + ",".
int PorRecorrido(const CodeRelations& relaciones, const std::string& codigo) {
  const std::string aguja = base::Join({"", codigo, ""}, ",");
  for (std::size_t i = 0; i < relaciones.Cantidad(); ++i)
    if (relaciones.Campo(relations::kExternos, i).find(aguja) != std::string::npos)
      return static_cast<int>(i);
  return -1;
}

TEST(PosEnVecConc, AgreesWithTheSearchInEveryList) {
  CodeRelations relaciones;
  relaciones.Reemplazar(
      "A*0*,07,HC,*1*a*0\r\nB*0*,7,17,,70,*2*b*0\r\nC*0*suelto*3*c*0\r\nD*0*sin,extremos,aqui*4*d*0\r\n"
      "E*0*,*5*e*0\r\nF*0*,,*6*f*0\r\nG*0*,hc,HC,ñandú,O'Brien,-1,*7*g*0");
  for (const std::string codigo :
       {"07",       "HC",    "7",    "17",  "70",  "",       "suelto", "sin",
        "extremos", "aqui",  ",",    ",,",  "hc",  "Hc",     "ñandú",  "O'Brien",
        "-1",       "07,HC", "7,17", "17,", ",70", "17,,70", "HC,07",  "extremos,aqui",
        " 7",       "*"})
    for (int vez = 0; vez < 2; ++vez)  // the second answer is a remembered one
      EXPECT_EQ(relaciones.PosEnVecConc(codigo), PorRecorrido(relaciones, codigo)) << codigo;
}

TEST(PosEnVecConc, ForgetsWhenTheTableChanges) {
  CodeRelations relaciones;
  EXPECT_EQ(relaciones.PosEnVecConc("HC"), -1);
  EXPECT_EQ(relaciones.PosEnVecConc("1,2"), -1);
  relaciones.Agregar("A*0*,X,*1*a*0");
  relaciones.Agregar("B*0*,HC,1,2,*2*b*0");
  EXPECT_EQ(relaciones.PosEnVecConc("HC"), 1);
  EXPECT_EQ(relaciones.PosEnVecConc("1,2"), 1);
  relaciones.Quitar(0);
  EXPECT_EQ(relaciones.PosEnVecConc("HC"), 0);
  EXPECT_EQ(relaciones.PosEnVecConc("1,2"), 0);
  EXPECT_EQ(relaciones.PosEnVecConc("X"), -1);
  relaciones.Reemplazar("");
  EXPECT_EQ(relaciones.PosEnVecConc("HC"), -1);
  EXPECT_EQ(relaciones.PosEnVecConc("1,2"), -1);
}

// A line's look-up must not walk the relations: 400,000 look-ups over 3,000 of them.
TEST(PosEnVecConc, FindsInConstantTime) {
  std::string texto;
  for (int i = 0; i < 3000; ++i) {
    const std::string n = std::to_string(i);
    texto.append(n).append("*0*,c").append(n).append(",d").append(n).append(",*1*x*0\r\n");
  }
  CodeRelations relaciones;
  relaciones.Reemplazar(texto);
  const auto antes = std::chrono::steady_clock::now();
  for (int i = 0; i < 400000; ++i) {
    const int n = i % 4000;
    ASSERT_EQ(relaciones.PosEnVecConc(std::string("d").append(std::to_string(n))), n < 3000 ? n : -1);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - antes, std::chrono::seconds(10));
}

TEST(CodeRelations, RemovingWhatIsNotThereDoesNothing) {
  CodeRelations relaciones;
  relaciones.Quitar(0);
  relaciones.Agregar("A*0*,X,*1*a*0");
  relaciones.Quitar(1);
  EXPECT_EQ(relaciones.Cantidad(), 1u);
  EXPECT_EQ(relaciones.Grid().size(), 1u);
}

}  // namespace
