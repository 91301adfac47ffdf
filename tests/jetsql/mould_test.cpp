// What a mould recognises, and that it never takes a text for what SeparateLiterals would not.
#include "jetsql/mould.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

using jetsql::Mould;
using jetsql::Shape;
using Match = jetsql::Mould::Match;

Mould MouldOf(const std::string& sql) {
  Shape shape;
  EXPECT_TRUE(jetsql::SeparateLiterals(sql, shape)) << sql;
  Mould mould;
  mould.Take(sql, shape);
  return mould;
}

std::vector<base::Value> LiteralsOf(const std::string& sql) {
  Shape shape;
  EXPECT_TRUE(jetsql::SeparateLiterals(sql, shape)) << sql;
  return shape.literals;
}

TEST(Mould, EmptyRecognisesNothing) {
  Mould mould;
  EXPECT_TRUE(mould.IsEmpty());
  EXPECT_EQ(mould.Recognise(""), Match::Other);
  EXPECT_EQ(mould.Recognise("SELECT 1"), Match::Other);
}

TEST(Mould, RecognisesOtherValuesAndKeepsThem) {
  Mould mould = MouldOf("insert into t (k,v,d) Values(1,'a',#03/01/2024#)");
  for (const std::string sql : {"insert into t (k,v,d) Values(1,'a',#03/01/2024#)",
                                "insert into t (k,v,d) Values(12345,'',#12/31/1999#)",
                                "insert into t (k,v,d) Values(7,'O''Brien (x), ''y''',#2024-02-29#)",
                                "insert into t (k,v,d) Values(7,\"otra\",#02/28/2024#)"}) {
    const Match h = mould.Recognise(sql);
    EXPECT_NE(h, Match::Other) << sql;
    EXPECT_EQ(mould.Literals(), LiteralsOf(sql)) << sql;
    EXPECT_EQ(mould.Recognise(sql), Match::Equal);
  }
}

TEST(Mould, LeavesWhatItDoesNotRecogniseAsItWas) {
  const std::string own = "Select a From t Where k=1 and v='x' and n=2.5 order by a";
  Mould mould = MouldOf(own);
  for (const std::string sql :
       {"Select a From t Where k=-1 and v='x' and n=2.5 order by a",
        "Select a From t Where k=1.5 and v='x' and n=2.5 order by a",
        "Select a From t Where k=1 and v=Null and n=2.5 order by a",
        "Select a From t Where k=1 and v='sin cerrar and n=2.5 order by a",
        "Select a From t Where k=9 and v='y' and n=2.5 order by b",
        "Select a From t Where k=9 and v='y' and n=2.5 order by a desc",
        "Select a From t Where k=9 and v='y' and n=", "Select a From t Where k=", "Select a From t", ""}) {
    EXPECT_EQ(mould.Recognise(sql), Match::Other) << sql;
    EXPECT_EQ(mould.Literals(), LiteralsOf(own)) << sql;
    EXPECT_EQ(mould.Recognise(own), Match::Equal);
  }
}

// The character after a literal may belong to a longer one: "1" before "e+5" is no 1, "'a'" before "'" has no
// end there.
TEST(Mould, ALiteralGoesAsFarAsItReaches) {
  Mould mould = MouldOf("Select 1 e+5, 'a' ,k");
  EXPECT_EQ(mould.Recognise("Select 1e+5, 'a' ,k"), Match::Other);
  EXPECT_EQ(mould.Recognise("Select 1 e+5, 'a'' ,k"), Match::Other);
  EXPECT_EQ(mould.Recognise("Select 12 e+5, 'a''b' ,k"), Match::SameShape);
  Mould adjacent = MouldOf("Select 2x");
  EXPECT_EQ(adjacent.Recognise("Select 2e5x"), Match::Other);
}

TEST(Mould, ADateThatDoesNotReadIsNotOfTheShape) {
  Mould mould = MouldOf("Select #06/01/2024#");
  EXPECT_EQ(mould.Recognise("Select #06/31/xx#"), Match::Other);
  EXPECT_EQ(mould.Recognise("Select #07/15/2024#"), Match::SameShape);
}

// Texts made of pieces put together at random, with and without blanks: whatever a mould takes for a text of
// its shape must be one for SeparateLiterals too, with the same literals.
class RandomText {
 public:
  explicit RandomText(unsigned seed) : random_(seed) {}
  std::vector<std::string> Pieces() {
    std::vector<std::string> pieces;
    const std::size_t n = 1 + Below(12);
    for (std::size_t i = 0; i < n; ++i) pieces.push_back(Piece());
    return pieces;
  }
  std::string Piece() {
    static const std::vector<std::string> kPieces = {"1",          "12",
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
    return kPieces[Below(kPieces.size())];
  }
  std::size_t Below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random_); }

 private:
  std::mt19937 random_;
};

std::string Join(const std::vector<std::string>& pieces) {
  std::string text;
  for (const std::string& p : pieces) text += p;
  return text;
}

TEST(Mould, NeverTakesAnotherShapeForItsOwn) {
  RandomText random(20240601);
  int recognised = 0;
  for (int round = 0; round < 200000; ++round) {
    std::vector<std::string> pieces = random.Pieces();
    const std::string own = Join(pieces);
    Shape own_shape;
    if (!jetsql::SeparateLiterals(own, own_shape)) continue;
    Mould mould;
    mould.Take(own, own_shape);
    pieces[random.Below(pieces.size())] = random.Piece();
    if (random.Below(3) == 0) pieces[random.Below(pieces.size())] = random.Piece();
    const std::string other = Join(pieces);
    if (mould.Recognise(other) == Match::Other) continue;
    ++recognised;
    Shape shape;
    ASSERT_TRUE(jetsql::SeparateLiterals(other, shape)) << own << "\n" << other;
    ASSERT_EQ(shape.key, own_shape.key) << own << "\n" << other;
    ASSERT_EQ(shape.literals, mould.Literals()) << own << "\n" << other;
  }
  EXPECT_GT(recognised, 5000);
}

}  // namespace
