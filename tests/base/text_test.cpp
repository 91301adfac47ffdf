#include "base/text.h"

#include <gtest/gtest.h>

#include "base/encoding.h"
#include "base/error.h"

namespace {

using base::Compare;

std::string AllBytes() {
  std::string bytes;
  for (int b = 0; b < 256; ++b) bytes += static_cast<char>(b);
  return bytes;
}

TEST(Text, MalformedBytesCountOneEachAndComeBack) {
  // An overlong form, a surrogate, a cut character, bytes that never occur, a point above the last one.
  const std::string bad = "\xC0\xAF\xED\xA0\x80\xE2\x82\xFF\xF4\x90\x80\x80z";
  EXPECT_EQ(base::Length(bad), bad.size());
  EXPECT_EQ(base::ToPoints(bad).size(), bad.size());
  EXPECT_EQ(base::ToPoints(bad)[0], U'\xDCC0');
  EXPECT_EQ(base::FromPoints(base::ToPoints(bad)), bad);
  EXPECT_EQ(base::UpperCase(bad), bad.substr(0, bad.size() - 1) + "Z");
  EXPECT_EQ(base::Mid(bad, 2, 1), "\xAF");
  const std::string all = AllBytes() + AllBytes();
  EXPECT_EQ(base::FromPoints(base::ToPoints(all)), all);
}

TEST(Text, PointsOfEveryLengthComeBack) {
  const std::u32string points = {0, 0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFFFF, 0x10000, 0x10FFFF};
  const std::string text = base::FromPoints(points);
  EXPECT_TRUE(base::IsValidUtf8(text));
  EXPECT_EQ(base::ToPoints(text), points);
  EXPECT_EQ(base::Length(text), points.size());
}

TEST(Text, EveryLetterWithAPartnerGoesThereAndBack) {
  int pairs = 0;
  for (char32_t p = 1; p < 0x600; ++p) {
    const std::string letter = base::FromPoints({&p, 1});
    const std::string upper_case = base::UpperCase(letter), lower_case = base::LowerCase(letter);
    ASSERT_EQ(upper_case.size(), letter.size());
    ASSERT_EQ(lower_case.size(), letter.size());
    ASSERT_TRUE(upper_case == letter || lower_case == letter) << static_cast<unsigned>(p);
    if (upper_case == lower_case) continue;
    ++pairs;
    ASSERT_EQ(base::UpperCase(lower_case), upper_case) << static_cast<unsigned>(p);
    ASSERT_EQ(base::LowerCase(upper_case), lower_case) << static_cast<unsigned>(p);
    ASSERT_TRUE(base::EqualIgnoringCase(upper_case, lower_case));
  }
  EXPECT_GT(pairs, 500);
}

TEST(Text, EqualityWithoutCaseLooksAtWholeCharacters) {
  // Same length and same second byte: only the character tells them apart.
  EXPECT_FALSE(base::EqualIgnoringCase("\xC3\xA1", "\xC4\xA1"));
  EXPECT_TRUE(base::EqualIgnoringCase("x\xC5\xB8y", "X\xC3\xBFY"));
  EXPECT_FALSE(base::EqualIgnoringCase("\xC3\x97", "\xC3\xB7"));  // the signs × and ÷ are no letters
}

TEST(Text, SearchFindsOverlappingBeginnings) {
  EXPECT_EQ(base::Find("aaab", "aab"), 1U);
  EXPECT_EQ(base::Find("AAAB", "aab", 0, Compare::IgnoringCase), 1U);
  EXPECT_EQ(base::Find("abc", "", 4, Compare::IgnoringCase), std::string::npos);
  EXPECT_EQ(base::Find("abc", "", 4), std::string::npos);
}

TEST(Text, ViewsReplaceWhatTheListHeld) {
  std::vector<std::string_view> pieces = {"old", "pieces", "more"};
  const std::string text = "a;b";
  base::SplitViews(text, ";", pieces);
  EXPECT_EQ(pieces, (std::vector<std::string_view>{"a", "b"}));
  EXPECT_EQ(pieces[1].data(), text.data() + 2);
  EXPECT_EQ(base::Join({}, ";"), "");
  EXPECT_EQ(base::Join({"a"}, ";"), "a");
}

TEST(Encoding, EveryByteOfThePageComesBack) {
  const std::string bytes = AllBytes();
  const std::string utf8 = base::FromCp1252(bytes);
  EXPECT_TRUE(base::IsValidUtf8(utf8));
  EXPECT_EQ(base::Length(utf8), 256U);
  std::size_t lost = 99;
  EXPECT_EQ(base::ToCp1252(utf8, &lost), bytes);
  EXPECT_EQ(lost, 0U);
}

TEST(Encoding, StrayBytesAreLostOneByOne) {
  std::size_t lost = 0;
  EXPECT_EQ(base::ToCp1252("a\xFF\xC3z", &lost), "a??z");
  EXPECT_EQ(lost, 2U);
  EXPECT_EQ(base::ToCp1252("a\xFFz"), "a?z");
}

TEST(Encoding, Utf16ThereAndBack) {
  const std::string text = "Año € 😀";
  EXPECT_EQ(base::ToUtf16("😀"), (std::u16string{0xD83D, 0xDE00}));
  EXPECT_EQ(base::FromUtf16(base::ToUtf16(text)), text);
  EXPECT_EQ(base::FromUtf16(std::u16string{0xDC00, u'a'}),
            "\xEF\xBF\xBD"
            "a");
  EXPECT_EQ(base::ToUtf16("\xFF"), (std::u16string{0xFFFD}));
}

TEST(Encoding, AFileMayHoldZeros) {
  EXPECT_EQ(base::DecodeFile(std::string_view("a\0b", 3)), std::string("a\0b", 3));
}

TEST(Error, StepsThatFailAreNotedAndPassedOver) {
  base::ErrorSink sink;
  EXPECT_TRUE(base::PassOverError("uno", &sink, [] {}));
  EXPECT_FALSE(base::PassOverError("dos", &sink, [] { throw base::Error("falló", 6); }));
  EXPECT_FALSE(base::PassOverError("tres", nullptr, [] { throw base::Error("falló"); }));
  ASSERT_EQ(sink.size(), 1U);
  EXPECT_EQ(sink[0].where, "dos");
  EXPECT_EQ(sink[0].description, "falló");
  // A defect of the program is none of the data's.
  EXPECT_THROW(base::PassOverError("x", &sink, [] { throw std::logic_error("defect"); }), std::logic_error);
}

TEST(Error, DescriptionsByNumber) {
  EXPECT_EQ(base::ErrorDescription(5), "Argumento o llamada a procedimiento no válidos");
  EXPECT_EQ(base::ErrorDescription(6), "Desbordamiento");
  EXPECT_EQ(base::ErrorDescription(11), "División por cero");
  EXPECT_EQ(base::ErrorDescription(13), "No coinciden los tipos");
  EXPECT_EQ(base::ErrorDescription(94), "Uso no válido de Null");
  EXPECT_EQ(base::ErrorDescription(12345), "Error 12345");
}

}  // namespace
