// How rows are read, written as expressions, compared and passed over.
#include <gtest/gtest.h>

#include "conformance/comparar.h"
#include "conformance/correr.h"
#include "conformance/expresion.h"
#include "support/temp_folder.h"

namespace {

using base::Valor;
using conformance::Igual;
using conformance::LeerJson;
using Que = conformance::Resultado::Que;

conformance::Fila Fila(const std::string& funcion, const std::string& args, const std::string& espera,
                       const std::string& locale = "es") {
  return {"x.001", funcion, LeerJson(args).lista, locale, LeerJson(espera)};
}

Que Corre(const conformance::Fila& fila) {
  const auto motor = conformance::MotorPorNombre("sqlite");
  return conformance::Corredor(*motor).Correr(fila).que;
}

TEST(Comparar, NumbersWithinTheirPrecision) {
  EXPECT_TRUE(Igual(LeerJson("0.1"), Valor(0.1 + 1e-16)));
  EXPECT_FALSE(Igual(LeerJson("0.1"), Valor(0.1 + 1e-13)));
  EXPECT_TRUE(Igual(LeerJson("{\"$single\":0.1}"), Valor(0.10000001)));
  EXPECT_FALSE(Igual(LeerJson("{\"$single\":0.1}"), Valor(0.1001)));
  // Twelve digits are written, and in them it is the same.
  EXPECT_TRUE(Igual(LeerJson("0.999988425926"), Valor(86399.0 / 86400)));
  EXPECT_FALSE(Igual(LeerJson("0.999988425936"), Valor(86399.0 / 86400)));
}

TEST(Comparar, KindsAreNotTakenForEachOther) {
  EXPECT_FALSE(Igual(LeerJson("5"), Valor("5")));
  EXPECT_FALSE(Igual(LeerJson("\"5\""), Valor(5)));
  EXPECT_FALSE(Igual(LeerJson("2"), Valor(base::Fecha{2})));
  EXPECT_FALSE(Igual(LeerJson("{\"$date\":\"1900-01-01 00:00:00\"}"), Valor(2.0)));
  EXPECT_TRUE(Igual(LeerJson("{\"$date\":\"1900-01-01 00:00:00\"}"), Valor(base::Fecha{2})));
  EXPECT_FALSE(Igual(LeerJson("null"), Valor("")));
  EXPECT_FALSE(Igual(LeerJson("\"\""), Valor()));
  EXPECT_TRUE(Igual(LeerJson("true"), Valor(-1)));
  EXPECT_FALSE(Igual(LeerJson("true"), Valor(1)));
  EXPECT_FALSE(Igual(LeerJson("\"A\""), Valor("a")));
  EXPECT_TRUE(Igual(LeerJson("\"A\""), Valor("a"), true));
}

TEST(Comparar, AnyOfTheAnswersWillDo) {
  EXPECT_TRUE(Igual(LeerJson("{\"$anyOf\":[1,2]}"), Valor(2)));
  EXPECT_FALSE(Igual(LeerJson("{\"$anyOf\":[1,2]}"), Valor(3)));
  EXPECT_TRUE(conformance::EsperaError(LeerJson("{\"$anyOf\":[{\"$error\":5},{\"$error\":6}]}"), 6));
  EXPECT_FALSE(conformance::EsperaError(LeerJson("{\"$error\":5}"), 6));
  EXPECT_FALSE(conformance::EsperaError(LeerJson("5"), 5));
}

TEST(Correr, ARowThatDoesNotHoldFails) {
  EXPECT_EQ(Corre(Fila("Len", "[\"abc\"]", "3")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("Len", "[\"abc\"]", "4")), Que::Falla);
  EXPECT_EQ(Corre(Fila("Len", "[\"abc\"]", "{\"$error\":5}")), Que::Falla);
  EXPECT_EQ(Corre(Fila("Left", "[\"abc\",-1]", "{\"$error\":5}")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("Left", "[\"abc\",-1]", "\"\"")), Que::Falla);
  EXPECT_EQ(Corre(Fila("NoSuchFunction", "[1]", "1")), Que::Falla);
}

TEST(Correr, ARowOfAnyLocaleMustHoldInAll) {
  EXPECT_EQ(Corre(Fila("CStr", "[1.5]", "\"1,5\"")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("CStr", "[1.5]", "\"1,5\"", "invariant")), Que::Falla);
  EXPECT_EQ(Corre(Fila("CStr", "[15]", "\"15\"", "invariant")), Que::Pasa);
}

TEST(Correr, ARowThatCannotBeRunFailsAlone) {
  EXPECT_EQ(Corre(Fila("JetExpr", "[]", "1")), Que::Falla);
  EXPECT_EQ(Corre(Fila("CDate", "[{\"$date\":\"no date\"}]", "1")), Que::Falla);
  EXPECT_EQ(Corre(Fila("CStr", "[1.5]", "\"1,5\"", "es_AR")), Que::Pasa);
}

TEST(Correr, PrimitivesServeWhatTheDialectDoesNotHave) {
  EXPECT_EQ(Corre(Fila("Split", "[\"a,b,\",\",\"]", "[\"a\",\"b\",\"\"]")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("Split", "[\"a,b,\",\",\",2]", "[\"a\",\"b,\"]")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("Split", "[\"a b\"]", "[\"a\",\"b\"]")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("Split", "[\"aXbxc\",\"x\",-1,1]", "[\"a\",\"b\",\"c\"]")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("Split", "[\"\",\",\"]", "[]")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("Split", "[\"a\",\",\",-2]", "{\"$error\":5}")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("Split", "[null,\",\"]", "{\"$error\":94}")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("LikeText", "[null,\"A\"]", "null")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("LikeBinary", "[\"a\",\"A\"]", "false")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("LikeText", "[\"a\",\"A\"]", "true")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("LikeBinary", "[\"a\",\"[b\"]", "{\"$error\":93}")), Que::Pasa);
}

// The dialect's own default is by the sort order; that of classic Basic is binary.
TEST(Expresion, ComparisonsThatAreLeftOutAreBinary) {
  EXPECT_EQ(conformance::Expresion(Fila("InStr", "[\"aA\",\"A\"]", "2")), "InStr(1, 'aA', 'A', 0)");
  EXPECT_EQ(conformance::Expresion(Fila("Replace", "[\"a\",\"b\",\"c\"]", "2")),
            "Replace('a', 'b', 'c', 1, -1, 0)");
  EXPECT_EQ(conformance::Expresion(Fila("StrComp", "[\"a\",\"b\",1]", "2")), "StrComp('a', 'b', 1)");
  EXPECT_EQ(conformance::Expresion(Fila("JetExpr", "[\"InStr('aA','A')\"]", "1")), "InStr('aA','A')");
}

TEST(Expresion, ValuesKeepTheirKinds) {
  EXPECT_EQ(conformance::Expresion(Fila("CStr", "[1.0]", "0")), "CStr(1.0)");
  EXPECT_EQ(conformance::Expresion(Fila("CStr", "[3.3333333333333335]", "0")), "CStr(3.3333333333333335)");
  EXPECT_EQ(conformance::Expresion(Fila("Concat", "[{\"$date\":\"1899-12-31 12:00:00\"},\"it's\"]", "0")),
            "CDate(1.5) & 'it''s'");
  EXPECT_EQ(conformance::Expresion(Fila("Compare", "[\"5\",\"<=\",{\"$variant\":\"R4\",\"v\":2}]", "0")),
            "'5' <= CSng(2)");
}

TEST(Expresion, AnEmptyIsWhatItsPlaceMakesOfIt) {
  EXPECT_EQ(conformance::Expresion(Fila("CLng", "[{\"$empty\":1}]", "0")), "CLng(0)");
  EXPECT_EQ(conformance::Expresion(Fila("Len", "[{\"$empty\":1}]", "0")), "Len('')");
  EXPECT_EQ(conformance::Expresion(Fila("Left", "[\"a\",{\"$empty\":1}]", "0")), "Left('a', 0)");
  EXPECT_EQ(conformance::Expresion(Fila("Compare", "[5,\">\",{\"$empty\":1}]", "0")), "5 > 0");
  EXPECT_EQ(conformance::Expresion(Fila("Compare", "[\"a\",\">\",{\"$empty\":1}]", "0")), "'a' > ''");
}

TEST(Saltar, OnlyByTheRulesOfTheDialectPage) {
  EXPECT_EQ(Corre(Fila("CStr", "[null]", "{\"$error\":94}")), Que::Salta);
  EXPECT_EQ(Corre(Fila("Int", "[\"1.99\"]", "199")), Que::Salta);
  EXPECT_EQ(Corre(Fila("Int", "[\"1.99\"]", "1", "en")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("Int", "[\"1.999,5\"]", "1999")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("Str", "[null]", "null")), Que::Pasa);
  EXPECT_EQ(Corre(Fila("Val", "[\"1e400\"]", "{\"$error\":6}")), Que::Salta);
  EXPECT_EQ(Corre(Fila("Val", "[\"1e40\"]", "1e40")), Que::Pasa);
}

TEST(Tabla, IsReadByItsHeadings) {
  const support::CarpetaTemporal carpeta;
  const auto ruta =
      carpeta.Escribir("t.tsv", "locale\tid\tfunction\texpected\targs\r\nes\ta.1\tLen\t1\t[\"x\"]\r\n\r\n");
  const auto t = conformance::LeerTabla(ruta);
  ASSERT_EQ(t.filas.size(), 1U);
  EXPECT_EQ(t.filas[0].id, "a.1");
  EXPECT_EQ(t.filas[0].args.at(0).texto, "x");
  EXPECT_FALSE(conformance::EsTabla("README.md"));
}

TEST(Sentencias, RowsColumnsAndEffects) {
  const support::CarpetaTemporal carpeta;
  const auto ruta = carpeta.Escribir("t.jsonl", R"~(
{"id":"1","setup":["CREATE TABLE t (a LONG)","INSERT INTO t VALUES (1)"],"query":"SELECT a FROM t","expected_rows":[[1]],"columns":["a"]}
{"id":"2","setup":["CREATE TABLE t (a LONG)"],"query":"SELECT a FROM t","expected_rows":[],"columns":["b"]}
{"id":"3","setup":["CREATE TABLE t (a LONG)"],"query":"INSERT INTO t VALUES (2)","expected_effect":{"affected":1,"then":"SELECT a FROM t","rows":[[2]]}}
{"id":"4","setup":["CREATE TABLE t (a LONG)"],"query":"INSERT INTO t VALUES (2)","expected_effect":{"error":"no"}}
{"id":"5","setup":[],"query":"SELECT b FROM t","expected_effect":{"error":"no such table"}}
)~");
  const auto motor = conformance::MotorPorNombre("sqlite");
  conformance::Corredor corredor(*motor);
  const auto t = conformance::LeerTabla(ruta);
  std::string salio;
  for (const auto& s : t.sentencias) salio += corredor.Correr(s).que == Que::Pasa ? 'P' : 'F';
  EXPECT_EQ(salio, "PFPFP");
}

TEST(Motor, OneThatIsNotThereSaysSo) {
  EXPECT_THROW(conformance::MotorPorNombre("oracle"), std::invalid_argument);
}

}  // namespace
