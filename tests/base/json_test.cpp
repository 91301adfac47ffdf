#include "conformance/json.h"

#include <gtest/gtest.h>

namespace {

TEST(Json, ReadsAndWritesBack) {
  const std::string texto = R"([null,true,false,-1.5e3,"a\"b\\",[],{},{"a":[1,2],"b":{"c":"ñ"}}])";
  EXPECT_EQ(conformance::LeerJson(texto).Escrito(), texto);
  EXPECT_EQ(conformance::LeerJson(" [ 1 , { \"a\" : 2 } ] ").Escrito(), R"([1,{"a":2}])");
}

TEST(Json, TellsWholeNumbersFromOthers) {
  EXPECT_TRUE(conformance::LeerJson("12").entero);
  EXPECT_FALSE(conformance::LeerJson("12.0").entero);
  EXPECT_FALSE(conformance::LeerJson("1e3").entero);
  EXPECT_EQ(conformance::LeerJson("1e3").numero, 1000);
}

TEST(Json, Escapes) {
  EXPECT_EQ(conformance::LeerJson(R"("\t\n\r\b\f\/\u00f1\ud83d\ude00")").texto, "\t\n\r\b\f/ñ😀");
}

TEST(Json, Members) {
  const auto j = conformance::LeerJson(R"({"a":1,"b":2})");
  ASSERT_NE(j.Miembro("b"), nullptr);
  EXPECT_EQ(j.Miembro("b")->numero, 2);
  EXPECT_EQ(j.Miembro("c"), nullptr);
}

TEST(Json, RefusesWhatIsNoJson) {
  for (const char* malo : {"", "[1", "{\"a\"}", "[1,]", "\"a", "1 2", "tru", "1.2.3", "\"\\x\"", "{1:2}"})
    EXPECT_THROW(conformance::LeerJson(malo), std::runtime_error) << malo;
}

}  // namespace
