#include "base/csv.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using base::CsvCell;
using base::ReadCsv;
using base::SpreadsheetText;

TEST(Csv, ACellIsQuotedWhereItMustBe) {
  EXPECT_EQ(CsvCell("a b", ';'), "a b");
  EXPECT_EQ(CsvCell("a;b", ';'), "\"a;b\"");
  EXPECT_EQ(CsvCell("a,b", ';'), "a,b");
  EXPECT_EQ(CsvCell("a\"b", ';'), "\"a\"\"b\"");
  EXPECT_EQ(CsvCell("a\rb", ';'), "\"a\rb\"");
  EXPECT_EQ(CsvCell("", ';'), "");
}

// What a spreadsheet would run instead of showing.
TEST(Csv, ATextThatBeginsLikeAFormulaIsNone) {
  for (const char* text : {"=1+1", "+1", "-1", "@SUM(A1)", "\t=1", "\r=1", "\n=1", " =1", "   -x",
                           "=HYPERLINK(\"http://x\";\"y\")", "=cmd|' /C calc'!A0", "-"})
    EXPECT_EQ(SpreadsheetText(text), std::string("'") + text);
  for (const char* text : {"", " ", "1", "8,5", "Ana", "a=1", "'=1", "x-1", ",07,", "\xC3\xB1=1", "(=1)"})
    EXPECT_EQ(SpreadsheetText(text), text);
}

TEST(Csv, RowsAreReadAsTheyWereWritten) {
  const auto rows = ReadCsv("a;b\r\n\"x;1\";\"say \"\"hi\"\"\"\n\"two\r\nlines\";\rlast", ';');
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_EQ(rows[0].cells, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(rows[1].cells, (std::vector<std::string>{"x;1", "say \"hi\""}));
  EXPECT_EQ(rows[2].cells, (std::vector<std::string>{"two\r\nlines", ""}));
  EXPECT_EQ(rows[3].cells, (std::vector<std::string>{"last"}));
  EXPECT_EQ(rows[1].line, 2U);
  EXPECT_EQ(rows[2].line, 3U);
  EXPECT_EQ(rows[3].line, 5U);
  EXPECT_TRUE(ReadCsv("", ';').empty());
  EXPECT_EQ(ReadCsv("\n", ';').front().cells, std::vector<std::string>{""});
}

TEST(Csv, AQuoteThatIsNeverClosedIsTold) {
  const auto rows = ReadCsv("a;\"b\nc", ';');
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_FALSE(rows[0].closed);
  EXPECT_EQ(rows[0].cells, (std::vector<std::string>{"a", "b\nc"}));
  EXPECT_EQ(ReadCsv("a;b\"c\"", ';').front().cells, (std::vector<std::string>{"a", "b\"c\""}));
  EXPECT_TRUE(ReadCsv("\"a\"", ';').front().closed);
}

TEST(Csv, AnyCellsComeBack) {
  std::mt19937 random(5);
  for (std::size_t round = 0; round < 2000; ++round) {
    std::vector<std::vector<std::string>> table(1 + random() % 4);
    std::string text;
    for (auto& row : table) {
      for (std::size_t i = 0; i < 1 + round % 4; ++i) {
        std::string cell;
        for (std::size_t n = random() % 5; n > 0; --n) cell += "a;\"\r\n' ="[random() % 8];
        text += (i > 0 ? ";" : "") + CsvCell(cell, ';');
        row.push_back(cell);
      }
      text += "\r\n";
    }
    const auto rows = ReadCsv(text, ';');
    ASSERT_EQ(rows.size(), table.size()) << text;
    for (std::size_t i = 0; i < rows.size(); ++i) ASSERT_EQ(rows[i].cells, table[i]) << text;
  }
}

}  // namespace
