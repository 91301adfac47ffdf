// Rows as typed values, whatever the driver's way of giving them.
#include "odbc_settings.h"

namespace {

using base::Type;
using base::Value;

class Rows : public tests::TestDriver {
 protected:
  void SetUp() override { Open(); }
  // The one cell of a result of one column.
  Value Cell(const std::string& type, const std::string& value) {
    const db::Recordset rows = Run("FILAS x:" + type + "\n" + value);
    EXPECT_EQ(rows.Count(), 1U) << value;
    return rows.At(0, 0);
  }
  double Serial(const std::string& type, const std::string& value) {
    const Value v = Cell(type, value);
    return v.GetIf<base::Date>() == nullptr ? -1e9 : v.GetIf<base::Date>()->serial;
  }
};

TEST_F(Rows, EachSqlTypeHasItsOwn) {
  const db::Recordset rows = Run(
      "FILAS b:bit t:tinyint s:smallint i:integer g:bigint r:real f:float d:double n:numeric e:decimal "
      "c:numeric:CURRENCY m:decimal:money p:numeric:FIJO da:date ti:time mo:moment tx:text me:memo bi:binary "
      "gu:guid z:geometry\n"
      "1|255|-32768|2147483647|9007199254740993|0.1|0.25|0.1|12.5|-3|1234.5678|-0.5|7|2024-03-05|06:00:00|"
      "2024-03-05 06:00:00|ñ|long|raw|12345678-9ABC|?");
  EXPECT_EQ(
      support::Header(rows),
      "b:bool|t:int|s:int|i:int|g:int|r:single|f:number|d:number|n:number|e:number|c:currency|m:currency|"
      "p:currency|da:date|ti:date|mo:date|tx:text|me:text|bi:text|gu:text|z:text");
  const double day = base::MakeDate(2024, 3, 5).serial;
  const Value expected[] = {true,
                            255,
                            -32768,
                            2147483647,
                            std::int64_t{9007199254740993},  // a double has no such number
                            0.1F,
                            0.25,
                            0.1,
                            12.5,
                            -3.0,
                            base::Currency{12345678},
                            base::Currency{-5000},
                            base::Currency{70000},
                            base::Date{day},
                            base::Date{0.25},
                            base::Date{day + 0.25},
                            "ñ",
                            "long",
                            "raw",
                            "{12345678-9ABC}",
                            "?"};
  ASSERT_EQ(rows.Fields().size(), std::size(expected));
  for (std::size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(rows.At(i, 0), expected[i]) << i;
}

TEST_F(Rows, NullInEachType) {
  const db::Recordset rows = Run(
      "FILAS b:bit i:integer r:real d:double n:numeric c:numeric:CURRENCY da:date ti:time mo:moment tx:text "
      "bi:binary gu:guid\nNULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL");
  for (std::size_t i = 0; i < rows.Fields().size(); ++i) EXPECT_TRUE(rows.At(i, 0).IsNull()) << i;
}

TEST_F(Rows, AnEmptyTextIsNoNull) {
  EXPECT_EQ(Cell("text", ""), Value(""));
  EXPECT_EQ(Cell("memo", ""), Value(""));
  EXPECT_EQ(Cell("binary", ""), Value(""));
}

TEST_F(Rows, WithoutRowsTheColumnsStay) {
  const db::Recordset rows = Run("FILAS a:integer b:text");
  EXPECT_TRUE(rows.IsEmpty());
  EXPECT_EQ(support::Header(rows), "a:int|b:text");
  EXPECT_EQ(base_->AffectedRows(), 0);
}

TEST_F(Rows, CurrencyHasFourExactDecimals) {
  EXPECT_EQ(Cell("numeric:CURRENCY", "922337203685477.5807"), Value(base::Currency{9223372036854775807}));
  EXPECT_EQ(Cell("numeric:CURRENCY", "-922337203685477.5807"), Value(base::Currency{-9223372036854775807}));
  EXPECT_EQ(Cell("numeric:CURRENCY", "-922337203685477.5808"),
            Value(base::Currency{-9223372036854775807 - 1}));
  EXPECT_EQ(Cell("numeric:CURRENCY", "922337203685477.5808"), Value(922337203685477.5808));
  EXPECT_EQ(Cell("numeric:CURRENCY", "922337203685477.58075"), Value(922337203685477.58075));
  EXPECT_EQ(Cell("numeric:CURRENCY", "0.1"), Value(base::Currency{1000}));
  EXPECT_EQ(Cell("numeric:CURRENCY", ".5"), Value(base::Currency{5000}));
  EXPECT_EQ(Cell("numeric:CURRENCY", "1234,5"),
            Value(base::Currency{12345000}));                                // by the machine's settings
  EXPECT_EQ(Cell("numeric:CURRENCY", "0.00005"), Value(base::Currency{0}));  // half to even
  EXPECT_EQ(Cell("numeric:CURRENCY", "0.00015"), Value(base::Currency{2}));
  EXPECT_EQ(Cell("numeric:CURRENCY", "0.000051"), Value(base::Currency{1}));
  EXPECT_EQ(Cell("numeric:CURRENCY", "-0.00015"), Value(base::Currency{-2}));
  EXPECT_EQ(Cell("numeric:CURRENCY", "1e20"), Value(1e20));  // none that a currency can hold
  EXPECT_EQ(Cell("numeric:CURRENCY", "9999999999999999.5"), Value(9999999999999999.5));
}

TEST_F(Rows, NumbersAreReadFromTheirText) {
  EXPECT_EQ(Cell("integer", "-7"), Value(-7));
  EXPECT_EQ(Cell("integer", "+7"), Value(7));
  EXPECT_EQ(Cell("integer", " 7 "), Value(7));
  EXPECT_EQ(Cell("integer", "7.0"), Value(7.0));
  EXPECT_EQ(Cell("integer", "99999999999999999999"), Value(1e20));
  EXPECT_EQ(Cell("decimal", "1,25"), Value(1.25));
  EXPECT_EQ(Cell("decimal", "1e3"), Value(1000.0));
  EXPECT_EQ(Cell("integer", "siete"), Value("siete"));  // nothing is lost of what is no number
  EXPECT_EQ(Cell("decimal", ""), Value(""));
  EXPECT_EQ(ErrorOf("FILAS x:integer\n~200"), "El campo x trae un número que no lo es.");
}

TEST_F(Rows, BooleansAreReadFromTheirText) {
  for (const char* yes : {"1", "-1", "2", "true", "T", "Yes"})
    EXPECT_EQ(Cell("bit", yes), Value(true)) << yes;
  for (const char* no : {"0", "false", "F", "n"}) EXPECT_EQ(Cell("bit", no), Value(false)) << no;
  EXPECT_EQ(Cell("bit", "maybe"), Value("maybe"));
}

TEST_F(Rows, DatesAreSerials) {
  EXPECT_EQ(Serial("moment", "1899-12-30 00:00:00"), 0.0);
  EXPECT_EQ(Serial("moment", "1899-12-30 18:00:00"), 0.75);
  EXPECT_EQ(Serial("moment", "1899-12-31 12:00:00"), 1.5);
  EXPECT_EQ(Serial("moment", "1899-12-29 06:00:00"), -1.25);  // the hour counts away from zero
  EXPECT_EQ(Serial("moment", "0100-01-01 00:00:00"), -657434.0);
  EXPECT_EQ(Serial("moment", "9999-12-31 00:00:00"), 2958465.0);
  EXPECT_NEAR(Serial("moment", "2024-03-05 00:00:00.5"), 45356.0 + 0.5 / 86400, 1e-9);
  EXPECT_EQ(Serial("date", "2024-03-05"), 45356.0);
  EXPECT_EQ(Serial("time", "12:00:00"), 0.5);
}

TEST_F(Rows, ADateThatDoesNotExistIsAnError) {
  const char* bad = "El campo x trae una fecha que no existe.";
  EXPECT_EQ(ErrorOf("FILAS x:moment\n1900-01-00 00:00:00"), bad);
  EXPECT_EQ(ErrorOf("FILAS x:moment\n0000-00-00 00:00:00"), bad);
  EXPECT_EQ(ErrorOf("FILAS x:moment\n0099-01-01 00:00:00"), bad);
  EXPECT_EQ(ErrorOf("FILAS x:moment\n2024-13-01 00:00:00"), bad);
  EXPECT_EQ(ErrorOf("FILAS x:date\n2024-01-32"), bad);
  EXPECT_EQ(ErrorOf("FILAS x:time\n24:00:00"), bad);
}

// A text comes in pieces when it is longer than what the driver was given room for, and a character of two
// units may be cut by one.
TEST_F(Rows, ALongTextComesWhole) {
  for (const char* total : {"si", "no"}) {
    Open("Total=" + std::string(total));
    for (const std::size_t length : {2046U, 2047U, 2048U, 2049U, 10239U, 10240U, 1000003U}) {
      std::string expected(length, '0');
      for (std::size_t i = 0; i < length; ++i) expected[i] = static_cast<char>('0' + i % 10);
      for (const char* type : {"text", "memo", "binary"})
        EXPECT_EQ(Cell(type, "~" + std::to_string(length)), Value(expected)) << type << length << total;
      expected += "😀ñ";
      EXPECT_EQ(Cell("memo", "~" + std::to_string(length) + "😀ñ"), Value(expected)) << length << total;
    }
  }
}

TEST_F(Rows, ANullInsideATextStays) {
  EXPECT_EQ(Cell("text", "a\\0b"), Value(std::string("a\0b", 3)));
  EXPECT_EQ(Cell("binary", "\\0\\0"), Value(std::string("\0\0", 2)));
}

TEST_F(Rows, AWideAndLongResult) {
  std::string sql = "FILAS", expected;
  for (int i = 0; i < 300; ++i) {
    sql += " c" + std::to_string(i) + ":integer";
    expected += (i > 0 ? "|" : "") + std::to_string(i);
  }
  for (int f = 0; f < 50; ++f) sql += "\n" + expected;
  const db::Recordset rows = Run(sql);
  ASSERT_EQ(rows.Fields().size(), 300U);
  ASSERT_EQ(rows.Count(), 50U);
  EXPECT_EQ(rows.At(299, 49), Value(299));
  EXPECT_EQ(rows.Fields()[299].name, "c299");
  EXPECT_EQ(rows.Source(), sql);
}

TEST_F(Rows, ALongColumnNameComesWhole) {
  const std::string name(3000, 'n');
  EXPECT_EQ(Run("FILAS " + name + ":text\nx").Fields()[0].name, name);
}

TEST_F(Rows, AWarningIsNoError) {
  EXPECT_EQ(support::Rows(Run("AVISA FILAS a:integer\n1\n2")), "1\n2");
  Run("AVISA CAMBIA 3");
  EXPECT_EQ(base_->AffectedRows(), 3);
}

TEST_F(Rows, TheAffectedRows) {
  Run("CAMBIA 12");
  EXPECT_EQ(base_->AffectedRows(), 12);
  Run("NADA");
  EXPECT_EQ(base_->AffectedRows(), 0);
  Run("CAMBIA 12");
  Run("FILAS a:integer\n1");
  EXPECT_EQ(base_->AffectedRows(), 0);
  Run("CAMBIA -1");  // a driver that does not know
  EXPECT_EQ(base_->AffectedRows(), 0);
  Run("CAMBIA 12");
  EXPECT_NE(ErrorOf("FALLA HY000 x"), "no error");
  EXPECT_EQ(base_->AffectedRows(), 0);
}

}  // namespace
