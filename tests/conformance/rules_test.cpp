// How rows are read, written as expressions, compared and passed over.
#include <gtest/gtest.h>

#include "conformance/compare.h"
#include "conformance/expression.h"
#include "conformance/run.h"
#include "support/temp_folder.h"

namespace {

using base::Value;
using conformance::AreEqual;
using conformance::ReadJson;
using Outcome = conformance::Result::Outcome;

conformance::Row Row(const std::string& function, const std::string& args, const std::string& expected,
                     const std::string& locale = "es") {
  return {"x.001", function, ReadJson(args).list, locale, ReadJson(expected)};
}

Outcome RunRow(const conformance::Row& row) {
  const auto engine = conformance::EngineByName("sqlite");
  return conformance::Runner(*engine).Run(row).outcome;
}

TEST(Compare, NumbersWithinTheirPrecision) {
  EXPECT_TRUE(AreEqual(ReadJson("0.1"), Value(0.1 + 1e-16)));
  EXPECT_FALSE(AreEqual(ReadJson("0.1"), Value(0.1 + 1e-13)));
  EXPECT_TRUE(AreEqual(ReadJson("{\"$single\":0.1}"), Value(0.10000001)));
  EXPECT_FALSE(AreEqual(ReadJson("{\"$single\":0.1}"), Value(0.1001)));
  // Twelve digits are written, and in them it is the same.
  EXPECT_TRUE(AreEqual(ReadJson("0.999988425926"), Value(86399.0 / 86400)));
  EXPECT_FALSE(AreEqual(ReadJson("0.999988425936"), Value(86399.0 / 86400)));
}

TEST(Compare, KindsAreNotTakenForEachOther) {
  EXPECT_FALSE(AreEqual(ReadJson("5"), Value("5")));
  EXPECT_FALSE(AreEqual(ReadJson("\"5\""), Value(5)));
  EXPECT_FALSE(AreEqual(ReadJson("2"), Value(base::Date{2})));
  EXPECT_FALSE(AreEqual(ReadJson("{\"$date\":\"1900-01-01 00:00:00\"}"), Value(2.0)));
  EXPECT_TRUE(AreEqual(ReadJson("{\"$date\":\"1900-01-01 00:00:00\"}"), Value(base::Date{2})));
  EXPECT_FALSE(AreEqual(ReadJson("null"), Value("")));
  EXPECT_FALSE(AreEqual(ReadJson("\"\""), Value()));
  EXPECT_TRUE(AreEqual(ReadJson("true"), Value(-1)));
  EXPECT_FALSE(AreEqual(ReadJson("true"), Value(1)));
  EXPECT_FALSE(AreEqual(ReadJson("\"A\""), Value("a")));
  EXPECT_TRUE(AreEqual(ReadJson("\"A\""), Value("a"), true));
}

TEST(Compare, AnyOfTheAnswersWillDo) {
  EXPECT_TRUE(AreEqual(ReadJson("{\"$anyOf\":[1,2]}"), Value(2)));
  EXPECT_FALSE(AreEqual(ReadJson("{\"$anyOf\":[1,2]}"), Value(3)));
  EXPECT_TRUE(conformance::ExpectsError(ReadJson("{\"$anyOf\":[{\"$error\":5},{\"$error\":6}]}"), 6));
  EXPECT_FALSE(conformance::ExpectsError(ReadJson("{\"$error\":5}"), 6));
  EXPECT_FALSE(conformance::ExpectsError(ReadJson("5"), 5));
}

TEST(Run, ARowThatDoesNotHoldFails) {
  EXPECT_EQ(RunRow(Row("Len", "[\"abc\"]", "3")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("Len", "[\"abc\"]", "4")), Outcome::Fail);
  EXPECT_EQ(RunRow(Row("Len", "[\"abc\"]", "{\"$error\":5}")), Outcome::Fail);
  EXPECT_EQ(RunRow(Row("Left", "[\"abc\",-1]", "{\"$error\":5}")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("Left", "[\"abc\",-1]", "\"\"")), Outcome::Fail);
  EXPECT_EQ(RunRow(Row("NoSuchFunction", "[1]", "1")), Outcome::Fail);
}

TEST(Run, ARowOfAnyLocaleMustHoldInAll) {
  EXPECT_EQ(RunRow(Row("CStr", "[1.5]", "\"1,5\"")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("CStr", "[1.5]", "\"1,5\"", "invariant")), Outcome::Fail);
  EXPECT_EQ(RunRow(Row("CStr", "[15]", "\"15\"", "invariant")), Outcome::Pass);
}

TEST(Run, ARowThatCannotBeRunFailsAlone) {
  EXPECT_EQ(RunRow(Row("JetExpr", "[]", "1")), Outcome::Fail);
  EXPECT_EQ(RunRow(Row("CDate", "[{\"$date\":\"no date\"}]", "1")), Outcome::Fail);
  EXPECT_EQ(RunRow(Row("CStr", "[1.5]", "\"1,5\"", "es_AR")), Outcome::Pass);
}

TEST(Run, PrimitivesServeWhatTheDialectDoesNotHave) {
  EXPECT_EQ(RunRow(Row("Split", "[\"a,b,\",\",\"]", "[\"a\",\"b\",\"\"]")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("Split", "[\"a,b,\",\",\",2]", "[\"a\",\"b,\"]")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("Split", "[\"a b\"]", "[\"a\",\"b\"]")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("Split", "[\"aXbxc\",\"x\",-1,1]", "[\"a\",\"b\",\"c\"]")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("Split", "[\"\",\",\"]", "[]")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("Split", "[\"a\",\",\",-2]", "{\"$error\":5}")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("Split", "[null,\",\"]", "{\"$error\":94}")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("LikeText", "[null,\"A\"]", "null")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("LikeBinary", "[\"a\",\"A\"]", "false")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("LikeText", "[\"a\",\"A\"]", "true")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("LikeBinary", "[\"a\",\"[b\"]", "{\"$error\":93}")), Outcome::Pass);
}

// The dialect's own default is by the sort order; that of classic Basic is binary.
TEST(Expression, ComparisonsThatAreLeftOutAreBinary) {
  EXPECT_EQ(conformance::Expression(Row("InStr", "[\"aA\",\"A\"]", "2")), "InStr(1, 'aA', 'A', 0)");
  EXPECT_EQ(conformance::Expression(Row("Replace", "[\"a\",\"b\",\"c\"]", "2")),
            "Replace('a', 'b', 'c', 1, -1, 0)");
  EXPECT_EQ(conformance::Expression(Row("StrComp", "[\"a\",\"b\",1]", "2")), "StrComp('a', 'b', 1)");
  EXPECT_EQ(conformance::Expression(Row("JetExpr", "[\"InStr('aA','A')\"]", "1")), "InStr('aA','A')");
}

TEST(Expression, ValuesKeepTheirKinds) {
  EXPECT_EQ(conformance::Expression(Row("CStr", "[1.0]", "0")), "CStr(1.0)");
  EXPECT_EQ(conformance::Expression(Row("CStr", "[3.3333333333333335]", "0")), "CStr(3.3333333333333335)");
  EXPECT_EQ(conformance::Expression(Row("Concat", "[{\"$date\":\"1899-12-31 12:00:00\"},\"it's\"]", "0")),
            "CDate(1.5) & 'it''s'");
  EXPECT_EQ(conformance::Expression(Row("Compare", "[\"5\",\"<=\",{\"$variant\":\"R4\",\"v\":2}]", "0")),
            "'5' <= CSng(2)");
}

TEST(Expression, AnEmptyIsWhatItsPlaceMakesOfIt) {
  EXPECT_EQ(conformance::Expression(Row("CLng", "[{\"$empty\":1}]", "0")), "CLng(0)");
  EXPECT_EQ(conformance::Expression(Row("Len", "[{\"$empty\":1}]", "0")), "Len('')");
  EXPECT_EQ(conformance::Expression(Row("Left", "[\"a\",{\"$empty\":1}]", "0")), "Left('a', 0)");
  EXPECT_EQ(conformance::Expression(Row("Compare", "[5,\">\",{\"$empty\":1}]", "0")), "5 > 0");
  EXPECT_EQ(conformance::Expression(Row("Compare", "[\"a\",\">\",{\"$empty\":1}]", "0")), "'a' > ''");
}

TEST(Skip, OnlyByTheRulesOfTheDialectPage) {
  EXPECT_EQ(RunRow(Row("CStr", "[null]", "{\"$error\":94}")), Outcome::Skip);
  EXPECT_EQ(RunRow(Row("Int", "[\"1.99\"]", "199")), Outcome::Skip);
  EXPECT_EQ(RunRow(Row("Int", "[\"1.99\"]", "1", "en")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("Int", "[\"1.999,5\"]", "1999")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("Str", "[null]", "null")), Outcome::Pass);
  EXPECT_EQ(RunRow(Row("Val", "[\"1e400\"]", "{\"$error\":6}")), Outcome::Skip);
  EXPECT_EQ(RunRow(Row("Val", "[\"1e40\"]", "1e40")), Outcome::Pass);
}

TEST(Table, IsReadByItsHeadings) {
  const support::TempFolder folder;
  const auto path =
      folder.Write("t.tsv", "locale\tid\tfunction\texpected\targs\r\nes\ta.1\tLen\t1\t[\"x\"]\r\n\r\n");
  const auto t = conformance::ReadTable(path);
  ASSERT_EQ(t.rows.size(), 1U);
  EXPECT_EQ(t.rows[0].id, "a.1");
  EXPECT_EQ(t.rows[0].args.at(0).text, "x");
  EXPECT_FALSE(conformance::IsTable("README.md"));
}

TEST(SplitStatements, RowsColumnsAndEffects) {
  const support::TempFolder folder;
  const auto path = folder.Write("t.jsonl", R"~(
{"id":"1","setup":["CREATE TABLE t (a LONG)","INSERT INTO t VALUES (1)"],"query":"SELECT a FROM t","expected_rows":[[1]],"columns":["a"]}
{"id":"2","setup":["CREATE TABLE t (a LONG)"],"query":"SELECT a FROM t","expected_rows":[],"columns":["b"]}
{"id":"3","setup":["CREATE TABLE t (a LONG)"],"query":"INSERT INTO t VALUES (2)","expected_effect":{"affected":1,"then":"SELECT a FROM t","rows":[[2]]}}
{"id":"4","setup":["CREATE TABLE t (a LONG)"],"query":"INSERT INTO t VALUES (2)","expected_effect":{"error":"no"}}
{"id":"5","setup":[],"query":"SELECT b FROM t","expected_effect":{"error":"no such table"}}
)~");
  const auto engine = conformance::EngineByName("sqlite");
  conformance::Runner runner(*engine);
  const auto t = conformance::ReadTable(path);
  std::string outcomes;
  for (const auto& s : t.statements) outcomes += runner.Run(s).outcome == Outcome::Pass ? 'P' : 'F';
  EXPECT_EQ(outcomes, "PFPFP");
}

TEST(Engine, OneThatIsNotThereSaysSo) {
  EXPECT_THROW(conformance::EngineByName("oracle"), std::invalid_argument);
}

}  // namespace
