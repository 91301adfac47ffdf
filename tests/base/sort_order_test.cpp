// The sort order: index keys byte for byte, and comparison that agrees with them.
#include "base/sort_order.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/text.h"
#include "support/source_dir.h"

namespace {

using base::CompareText;
using base::IndexKey;
using base::SortKey;
using base::SortOrder;

constexpr SortOrder kOrders[] = {SortOrder::General, SortOrder::ModernSpanish, SortOrder::TraditionalSpanish};

std::string Hex(const std::string& bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string output;
  for (const char c : bytes) {
    if (!output.empty()) output += ' ';
    output += kDigits[static_cast<unsigned char>(c) >> 4];
    output += kDigits[static_cast<unsigned char>(c) & 15];
  }
  return output;
}

struct KeyCase {
  const char* text;
  SortOrder order;
  const char* key;
};

// Keys without the start flag 7F.
const KeyCase kKeys[] = {
    {"", SortOrder::General, "01 00"},
    {"Muñoz", SortOrder::General, "60 6F 62 64 78 01 02 02 19 00"},
    {"O'Neil", SortOrder::General, "64 62 51 59 5E 01 01 01 01 80 0B 06 80 00"},
    // Every plain place before the last accent is written, none after it; the apostrophe stands at place 8.
    {"Forêts d'érables", SortOrder::General,
     "53 64 69 51 6D 6B 07 4F 51 69 4A 4C 5E 51 6B 01 02 02 02 12 02 02 02 02 0E 01 01 01 80 27 06 80 00"},
    {"abc", SortOrder::ModernSpanish, "4A 4C 4D 01 00"},
    {"ABC   ", SortOrder::ModernSpanish, "4A 4C 4D 01 00"},
    {"a b", SortOrder::ModernSpanish, "4A 07 4C 01 00"},
    // In the Spanish orders ñ is a letter of its own and takes one plain place.
    {"ñ", SortOrder::ModernSpanish, "63 04 01 00"},
    {"Ñá", SortOrder::ModernSpanish, "63 04 4A 01 02 0E 00"},
    {"ñ", SortOrder::General, "62 01 19 00"},
    // ch and ll are letters of the traditional order alone, whatever their case.
    {"chico", SortOrder::ModernSpanish, "4D 57 59 4D 64 01 00"},
    {"chico", SortOrder::TraditionalSpanish, "4E 04 59 4D 64 01 00"},
    {"CHICO", SortOrder::TraditionalSpanish, "4E 04 59 4D 64 01 00"},
    {"calle", SortOrder::TraditionalSpanish, "4D 4A 5F 04 51 01 00"},
    {"cHá", SortOrder::TraditionalSpanish, "4E 04 4A 01 02 0E 00"},
    {"lll", SortOrder::TraditionalSpanish, "5F 04 5E 01 00"},
    // ß is two letters and two places.
    {"ßá", SortOrder::General, "6B 6B 4A 01 02 02 0E 00"},
    {"1º", SortOrder::General, "38 64 01 02 03 00"},
    {"-", SortOrder::General, "01 01 01 01 80 07 06 82 00"},
    {"a-b-", SortOrder::General, "4A 4C 01 01 01 01 80 0B 06 82 80 0F 06 82 00"},
};

TEST(SortKey, AreTheBytesOfTheIndex) {
  for (const KeyCase& c : kKeys) EXPECT_EQ(Hex(SortKey(c.text, c.order)), c.key) << c.text;
}

// The table of the file format: columns code point, character, class, inline bytes, accent byte, special
// byte.
TEST(SortKey, TheWeightsAreThoseOfTheTable) {
  const std::filesystem::path path =
      std::filesystem::path(support::SourceDir()) / "tests/data/mdb" / "sort_general_legacy.tsv";
  std::ifstream file(path, std::ios::binary);
  int rows = 0;
  for (std::string line; std::getline(file, line);) {
    const auto fields = base::Split(line, "\t");
    if (fields.size() < 6 || fields[0].rfind("U+", 0) != 0) continue;
    ++rows;
    const auto point = static_cast<char32_t>(std::stoul(fields[0].substr(2), nullptr, 16));
    // An "a" behind keeps a blank from being cut.
    const std::string text = base::FromPoints(std::u32string(1, point) + U"a");
    std::string expected = fields[3] + "4A01";
    if (fields[2] == "accent") expected += fields[4];
    if (fields[2] == "special") expected += "0101018007" + std::string("06") + fields[5];
    EXPECT_EQ(base::Replace(Hex(SortKey(text, SortOrder::General)), " ", ""), expected + "00") << fields[0];
    EXPECT_TRUE(base::HasWeights(text));
  }
  EXPECT_EQ(rows, 251);
}

TEST(SortKey, WhatHasNoWeightComesBehindByItsUpperCase) {
  // Д (U+0414) and its small letter have one key, after every letter of the code page.
  EXPECT_EQ(SortKey("д", SortOrder::General), SortKey("Д", SortOrder::General));
  EXPECT_EQ(Hex(SortKey("Д", SortOrder::General)), "F0 80 90 94 01 00");
  EXPECT_EQ(CompareText("z", "Д", SortOrder::General), -1);
  EXPECT_EQ(CompareText("™", "Д", SortOrder::General), -1);
  // A stray byte of a text that is no UTF-8 is a character too.
  EXPECT_NE(SortKey("a\xFF", SortOrder::General), SortKey("a\xFE", SortOrder::General));
  EXPECT_FALSE(base::HasWeights("Дон"));
  EXPECT_FALSE(base::HasWeights("a\xFF"));
  EXPECT_TRUE(base::HasWeights("Ñandú – 5 €\r\n"));
}

TEST(IndexKey, TakesTheFirst255Units) {
  const std::string length(255, 'a');
  EXPECT_EQ(IndexKey(length + "b", SortOrder::General), IndexKey(length + "c", SortOrder::General));
  EXPECT_NE(SortKey(length + "b", SortOrder::General), SortKey(length + "c", SortOrder::General));
  // The blanks that then stand at the end are cut like any others.
  EXPECT_EQ(IndexKey("a" + std::string(254, ' ') + "b", SortOrder::General),
            SortKey("a", SortOrder::General));
  // A character beyond U+FFFF counts twice and is not halved.
  const std::string almost(254, 'a');
  EXPECT_EQ(IndexKey(almost + "😀", SortOrder::General), SortKey(almost, SortOrder::General));
}

TEST(SortKey, DistantSignsStayDistinct) {
  const std::string a(9000, 'x'), b(100, 'x');
  EXPECT_NE(SortKey(a + "-" + b, SortOrder::General), SortKey(a + b + "-", SortOrder::General));
  EXPECT_NE(SortKey(a + "x-" + b, SortOrder::General), SortKey(a + "-x" + b, SortOrder::General));
}

struct OrderCase {
  const char* a;
  const char* b;
  int general, modern, traditional;
};

const OrderCase kComparisons[] = {
    {"a", "A", 0, 0, 0},
    {"José", "Jose", 1, 1, 1},
    {"José", "JOSÉ", 0, 0, 0},
    {"Pena", "Peña", -1, -1, -1},
    {"Peña", "Penz", -1, 1, 1},  // ñ after every n in Spanish, beside n in the general order
    {"Peñb", "Pera", -1, -1, -1},
    {"chico", "cuna", -1, -1, 1},
    {"chico", "dado", -1, -1, -1},
    {"cz", "cha", 1, 1, -1},
    {"llave", "luz", -1, -1, 1},
    {"ll", "l", 1, 1, 1},
    {"co-op", "coop", 1, 1, 1},
    {"co-op", "coos", -1, -1, -1},
    {"a-b", "ab", 1, 1, 1},
    {"a b", "ab", -1, -1, -1},
    {"10", "9", -1, -1, -1},
    {"9", "a", -1, -1, -1},
    {"$", "0", -1, -1, -1},
    {"casa  ", "casa", 0, 0, 0},
    {"casa", "casas", -1, -1, -1},
    {"", "a", -1, -1, -1},
    {"", "  ", 0, 0, 0},
    {"", "-", -1, -1, -1},
    {"groß", "gross", 0, 0, 0},
    {"m²", "m2", 0, 0, 0},  // superior digits have the weight of the digit
    {"Álava", "Albania", -1, -1, -1},
    {"à", "á", 1, 1, 1},
};

TEST(CompareText, OrdersAsTheFormatDoes) {
  for (const OrderCase& c : kComparisons) {
    EXPECT_EQ(CompareText(c.a, c.b, SortOrder::General), c.general) << c.a << " " << c.b;
    EXPECT_EQ(CompareText(c.a, c.b, SortOrder::ModernSpanish), c.modern) << c.a << " " << c.b;
    EXPECT_EQ(CompareText(c.a, c.b, SortOrder::TraditionalSpanish), c.traditional) << c.a << " " << c.b;
  }
}

// All texts of up to four pieces out of a set that mixes plain letters, digraphs, accents and signs.
std::vector<std::string> TestTexts() {
  const std::vector<std::string> pieces = {"a", "B", "c", "h", "L", "ñ", "é",
                                           "-", "'", " ", "ß", "1", "Д", "\x80"};
  std::vector<std::string> texts = {""};
  std::size_t from = 0;
  for (int length = 0; length < 3; ++length) {
    const std::size_t to = texts.size();
    for (; from < to; ++from)
      for (const std::string& p : pieces) texts.push_back(texts[from] + p);
  }
  return texts;
}

TEST(CompareText, IsTheComparisonOfTheKeys) {
  const std::vector<std::string> texts = TestTexts();
  ASSERT_EQ(texts.size(), 1U + 14 + 14 * 14 + 14 * 14 * 14);
  for (const SortOrder order : kOrders) {
    std::vector<std::string> keys;
    for (const std::string& t : texts) keys.push_back(SortKey(t, order));
    std::size_t different = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
      for (std::size_t j = i % 7; j < texts.size(); j += 7) {
        const int by_key = keys[i].compare(keys[j]);
        const int expected = by_key < 0 ? -1 : (by_key > 0 ? 1 : 0);
        if (CompareText(texts[i], texts[j], order) != expected) {
          ++different;
          ADD_FAILURE() << "[" << texts[i] << "] [" << texts[j] << "] orden " << static_cast<int>(order);
        }
        ASSERT_LT(different, 5U);
      }
    }
  }
}

TEST(Fold, JoinsCaseAndKeepsAccents) {
  EXPECT_EQ(base::Fold(U'a'), U'A');
  EXPECT_EQ(base::Fold(U'ñ'), base::Fold(U'Ñ'));
  EXPECT_EQ(base::Fold(U'š'), base::Fold(U'Š'));
  EXPECT_EQ(base::Fold(U'ÿ'), base::Fold(U'Ÿ'));
  EXPECT_EQ(base::Fold(U'д'), base::Fold(U'Д'));
  EXPECT_NE(base::Fold(U'é'), base::Fold(U'e'));
  EXPECT_NE(base::Fold(U'-'), base::Fold(U'\''));
  EXPECT_NE(base::Fold(U'_'), base::Fold(U'^'));
}

TEST(NextPoint, ReadsUtf8AndLetsStrayBytesPass) {
  const auto all = [](std::string_view s) {
    std::u32string points;
    for (std::size_t i = 0; i < s.size();) points += base::NextPoint(s, i);
    return points;
  };
  EXPECT_EQ(all("añ€😀"), U"añ€😀");
  const auto stray = [](int b) { return static_cast<char32_t>(0xDC00 + b); };
  EXPECT_EQ(all("\xC3"), std::u32string(1, stray(0xC3)));
  EXPECT_EQ(all("\xC3z"), std::u32string({stray(0xC3), U'z'}));
  EXPECT_EQ(all("\xC0\x80"), std::u32string({stray(0xC0), stray(0x80)}));                   // overlong
  EXPECT_EQ(all("\xED\xA0\x80"), std::u32string({stray(0xED), stray(0xA0), stray(0x80)}));  // surrogate
}

TEST(SortOrder, AnOrderIsNamedByItsLanguage) {
  EXPECT_EQ(base::LanguageOf(SortOrder::General), 1033);
  EXPECT_EQ(base::LanguageOf(SortOrder::ModernSpanish), 3082);
  EXPECT_EQ(base::LanguageOf(SortOrder::TraditionalSpanish), 1034);
  for (const SortOrder order : {SortOrder::General, SortOrder::ModernSpanish, SortOrder::TraditionalSpanish})
    EXPECT_EQ(base::OrderOfLanguage(base::LanguageOf(order)), order);
  EXPECT_EQ(base::OrderOfLanguage(0), std::nullopt);
  EXPECT_EQ(base::OrderOfLanguage(1031), std::nullopt);
}

}  // namespace
