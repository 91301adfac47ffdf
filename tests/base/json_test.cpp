#include "conformance/json.h"

#include <gtest/gtest.h>

namespace {

TEST(Json, ReadsAndWritesBack) {
  const std::string text = R"([null,true,false,-1.5e3,"a\"b\\",[],{},{"a":[1,2],"b":{"c":"ñ"}}])";
  EXPECT_EQ(conformance::ReadJson(text).Written(), text);
  EXPECT_EQ(conformance::ReadJson(" [ 1 , { \"a\" : 2 } ] ").Written(), R"([1,{"a":2}])");
}

TEST(Json, TellsWholeNumbersFromOthers) {
  EXPECT_TRUE(conformance::ReadJson("12").integer);
  EXPECT_FALSE(conformance::ReadJson("12.0").integer);
  EXPECT_FALSE(conformance::ReadJson("1e3").integer);
  EXPECT_EQ(conformance::ReadJson("1e3").number, 1000);
}

TEST(Json, ReadsEscapes) {
  EXPECT_EQ(conformance::ReadJson(R"("\t\n\r\b\f\/\u00f1\ud83d\ude00")").text, "\t\n\r\b\f/ñ😀");
}

TEST(Json, FindsMembersByTheirName) {
  const auto j = conformance::ReadJson(R"({"a":1,"b":2})");
  ASSERT_NE(j.Member("b"), nullptr);
  EXPECT_EQ(j.Member("b")->number, 2);
  EXPECT_EQ(j.Member("c"), nullptr);
}

TEST(Json, RefusesWhatIsNoJson) {
  for (const char* bad : {"", "[1", "{\"a\"}", "[1,]", "\"a", "1 2", "tru", "1.2.3", "\"\\x\"", "{1:2}"})
    EXPECT_THROW(conformance::ReadJson(bad), std::runtime_error) << bad;
}

}  // namespace
