// Values and rows as the bytes that stand in the file, worked out by hand.
#include <gtest/gtest.h>

#include "mdb/pages/text.h"
#include "mdb/rows/row_encode_internal.h"
#include "mdb/rows/table.h"

namespace {

using mdb::Bytes;
using mdb::Column;
using mdb::ColumnType;
using mdb::Datum;

Column ColumnOf(ColumnType type, std::uint16_t length = 0, bool compress = false) {
  Column c;
  c.name = "C";
  c.type = type;
  c.length = length;
  c.extended_flags = compress ? Column::kCompressed : 0;
  return c;
}
Column Decimal(std::uint8_t precision, std::uint8_t scale) {
  Column c = ColumnOf(ColumnType::Decimal, 17);
  c.precision = precision;
  c.scale = scale;
  return c;
}
mdb::Definition Table() {
  mdb::Definition d;
  d.name = "T";
  return d;
}
Bytes Encode(const Column& c, const Datum& datum) {
  Bytes b;
  mdb::internal::EncodeValue(Table(), c, datum, b);
  return b;
}
std::string FailureOf(const Column& c, const Datum& datum) {
  try {
    Encode(c, datum);
    return "(nothing)";
  } catch (const base::Error& e) {
    return std::to_string(e.Number()) + " " + e.Description();
  }
}

TEST(EncodeValue, WritesNumbersDatesAndBytes) {
  using B = Bytes;
  EXPECT_EQ(Encode(ColumnOf(ColumnType::Boolean), true), B{1});
  EXPECT_EQ(Encode(ColumnOf(ColumnType::Byte), std::int64_t{255}), B{255});
  EXPECT_EQ(Encode(ColumnOf(ColumnType::Integer), std::int64_t{-2}), (B{0xFE, 0xFF}));
  EXPECT_EQ(Encode(ColumnOf(ColumnType::Long), std::int64_t{0x01020304}), (B{4, 3, 2, 1}));
  EXPECT_EQ(Encode(ColumnOf(ColumnType::Currency), base::Currency{15000}), (B{0x98, 0x3A, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(Encode(ColumnOf(ColumnType::Single), 1.0F), (B{0, 0, 0x80, 0x3F}));
  EXPECT_EQ(Encode(ColumnOf(ColumnType::Double), 1.0), (B{0, 0, 0, 0, 0, 0, 0xF0, 0x3F}));
  // Six in the morning of 29 December 1899: the serial as it is.
  EXPECT_EQ(Encode(ColumnOf(ColumnType::Date), base::Date{-1.25}), (B{0, 0, 0, 0, 0, 0, 0xF4, 0xBF}));
  EXPECT_EQ(Encode(ColumnOf(ColumnType::Binary, 4), B{3, 0, 1}), (B{3, 0, 1}));
  EXPECT_EQ(Encode(ColumnOf(ColumnType::Guid), mdb::GuidFromText("{00112233-4455-6677-8899-AABBCCDDEEFF}")),
            (B{0x33, 0x22, 0x11, 0, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}));
}

TEST(EncodeValue, WritesDecimalsMostSignificantWordFirst) {
  EXPECT_EQ(Encode(Decimal(6, 2), mdb::DecimalFromText("-12.50", 2)),
            (Bytes{0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xE2, 0x04, 0, 0}));
  // 2 to the 32nd: the third word is 1.
  EXPECT_EQ(Encode(Decimal(28, 0), mdb::DecimalFromText("4294967296", 0)),
            (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0}));
  mdb::Decimal minus_zero;
  minus_zero.negative = true;
  EXPECT_EQ(Encode(Decimal(5, 0), minus_zero), Bytes(17, 0));
}

TEST(EncodeValue, WritesTextInOneByteACharacterWhereItMay) {
  const Column compress = ColumnOf(ColumnType::Text, 510, true), plain = ColumnOf(ColumnType::Text, 510);
  EXPECT_EQ(Encode(compress, std::string("Ana")), (Bytes{0xFF, 0xFE, 'A', 'n', 'a'}));
  EXPECT_EQ(Encode(compress, std::string("Añ")), (Bytes{'A', 0, 0xF1, 0}));  // two are not worth it
  EXPECT_EQ(Encode(compress, std::string("Añÿ")), (Bytes{0xFF, 0xFE, 'A', 0xF1, 0xFF}));
  EXPECT_EQ(Encode(compress, std::string("An€")), (Bytes{'A', 0, 'n', 0, 0xAC, 0x20}));
  EXPECT_EQ(Encode(compress, std::string("a\0b", 3)), (Bytes{'a', 0, 0, 0, 'b', 0}));
  EXPECT_EQ(Encode(compress, std::string()), Bytes());
  EXPECT_EQ(Encode(plain, std::string("Ana")), (Bytes{'A', 0, 'n', 0, 'a', 0}));
  EXPECT_EQ(Encode(plain, std::string("😀")), (Bytes{0x3D, 0xD8, 0x00, 0xDE}));
}

TEST(EncodeValue, CompressesNoMoreThan1024Characters) {
  const Column memo = ColumnOf(ColumnType::Memo, 0, true);
  EXPECT_EQ(Encode(memo, std::string(1024, 'a')).size(), 1026U);
  EXPECT_EQ(Encode(memo, std::string(1025, 'a')).size(), 2050U);
}

// Its first two bytes are those that mark a compressed text.
TEST(EncodeValue, ATextThatStartsWithAByteOrderMarkReadsBack) {
  const Column c = ColumnOf(ColumnType::Text, 510);
  const std::string text = "\uFEFFab€";
  const Bytes bytes = Encode(c, text);
  EXPECT_EQ(bytes, (Bytes{0xFF, 0xFE, 0, 0xFF, 0xFE, 0, 'a', 'b', 0, 0xAC, 0x20}));
  EXPECT_EQ(mdb::DecodeText(mdb::FileHeader{}, bytes), text);
  EXPECT_EQ(
      FailureOf(c, std::string("\uFEFF\u0100")),
      "0 Un texto que empieza con la marca U+FEFF no se puede guardar con los demás caracteres que tiene");
}

TEST(EncodeValue, RefusesWhatTheColumnDoesNotHold) {
  struct Case {
    Column column;
    Datum datum;
    const char* failure;
  };
  const double infinity = std::numeric_limits<double>::infinity();
  const Case cases[] = {
      {ColumnOf(ColumnType::Byte), std::int64_t{256},
       "6 El valor 256 no cabe en la columna 'C' de la tabla 'T', que va de 0 a 255"},
      {ColumnOf(ColumnType::Byte), std::int64_t{-1},
       "6 El valor -1 no cabe en la columna 'C' de la tabla 'T', que va de 0 a 255"},
      {ColumnOf(ColumnType::Integer), std::int64_t{32768},
       "6 El valor 32768 no cabe en la columna 'C' de la tabla 'T', que va de -32768 a 32767"},
      {ColumnOf(ColumnType::Long), std::int64_t{-2147483649LL},
       "6 El valor -2147483649 no cabe en la columna 'C' de la tabla 'T', que va de -2147483648 a "
       "2147483647"},
      {ColumnOf(ColumnType::Double), infinity,
       "6 El valor para la columna 'C' de la tabla 'T' no es un número"},
      {ColumnOf(ColumnType::Single), std::numeric_limits<float>::quiet_NaN(),
       "6 El valor para la columna 'C' de la tabla 'T' no es un número"},
      {ColumnOf(ColumnType::Date), base::Date{2958466},
       "6 La fecha para la columna 'C' de la tabla 'T' está fuera de los años 100 a 9999"},
      {ColumnOf(ColumnType::Date), base::Date{-657435},
       "6 La fecha para la columna 'C' de la tabla 'T' está fuera de los años 100 a 9999"},
      {ColumnOf(ColumnType::Date), base::Date{infinity},
       "6 La fecha para la columna 'C' de la tabla 'T' está fuera de los años 100 a 9999"},
      {ColumnOf(ColumnType::Text, 6), std::string("ñandú"),
       "3163 El valor para la columna 'C' de la tabla 'T' tiene 5 caracteres y caben 3"},
      {ColumnOf(ColumnType::Binary, 3), Bytes{1, 2, 3, 4},
       "3163 El valor para la columna 'C' de la tabla 'T' tiene 4 bytes y caben 3"},
      {Decimal(4, 2), mdb::DecimalFromText("123.45", 2),
       "6 El número 123.45 no cabe en la columna 'C' de la tabla 'T', que tiene 4 cifras, 2 de ellas "
       "decimales"},
      {Decimal(4, 2), mdb::DecimalFromText("1", 3),  // not of the column's scale
       "6 El número 1.000 no cabe en la columna 'C' de la tabla 'T', que tiene 4 cifras, 2 de ellas "
       "decimales"},
      {ColumnOf(ColumnType::Long), std::string("1"),
       "3421 La columna 'C' de la tabla 'T' no admite un valor de ese tipo"},
      {ColumnOf(ColumnType::Date), 1.0, "3421 La columna 'C' de la tabla 'T' no admite un valor de ese tipo"},
      {ColumnOf(ColumnType::Complex), std::int64_t{1},
       "0 La columna 'C' de la tabla 'T' es de un tipo que no se escribe"},
  };
  for (const auto& c : cases) EXPECT_EQ(FailureOf(c.column, c.datum), c.failure);
}

TEST(EncodeValue, TakesTheLastOfEachRange) {
  EXPECT_EQ(FailureOf(ColumnOf(ColumnType::Date), base::Date{2958465.99}), "(nothing)");
  EXPECT_EQ(FailureOf(ColumnOf(ColumnType::Date), base::Date{-657434.99}),
            "(nothing)");  // 1 January 100, 23:45
  EXPECT_EQ(FailureOf(ColumnOf(ColumnType::Text, 6), std::string("ñan")), "(nothing)");
  EXPECT_EQ(FailureOf(Decimal(4, 2), mdb::DecimalFromText("-99.99", 2)), "(nothing)");
  EXPECT_EQ(FailureOf(ColumnOf(ColumnType::Long), std::int64_t{-2147483648LL}), "(nothing)");
}

// A Long, a text, a Boolean, a text that was deleted, another text.
mdb::Definition MixedTable() {
  mdb::Definition d = Table();
  Column id = ColumnOf(ColumnType::Long, 4), name = ColumnOf(ColumnType::Text, 100, true),
         active = ColumnOf(ColumnType::Boolean, 1), note = ColumnOf(ColumnType::Text, 100, true);
  id.flags = active.flags = Column::kFixed | Column::kUpdatable;
  active.offset = 999;  // rubbish, as in real files
  name.number = 1;
  active.number = 2;
  note.number = 4;
  note.variable = 2;
  d.columns = {id, name, active, note};
  d.max_columns = 5;
  d.variables = 3;
  d.pages = {7};
  return d;
}

Bytes Build(const mdb::Definition& d, const mdb::Row& values) {
  std::vector<Bytes> bytes(values.size());
  std::vector<mdb::Raw> raw_values(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (mdb::IsNull(values[i])) continue;
    mdb::internal::EncodeValue(d, d.columns[i], values[i], bytes[i]);
    raw_values[i] = bytes[i];
  }
  const mdb::internal::RowBuilder builder(d);
  Bytes row;
  builder.Build(raw_values, row);
  EXPECT_EQ(builder.Length(raw_values), row.size());
  return row;
}

TEST(BuildRow, LaysOutFixedThenVariableThenTheirPlaces) {
  const auto d = MixedTable();
  EXPECT_EQ(Build(d, {std::int64_t{7}, std::string("Ana"), true, base::Null{}}),
            (Bytes{5, 0, 7, 0, 0, 0, 0xFF, 0xFE, 'A', 'n', 'a', 11, 0, 11, 0, 11, 0, 6, 0, 3, 0, 0x07}));
  // A Null Long keeps its room; an empty text is there, with no bytes.
  EXPECT_EQ(Build(d, {base::Null{}, std::string(), false, std::string("B")}),
            (Bytes{5, 0, 0, 0, 0, 0, 'B', 0, 8, 0, 6, 0, 6, 0, 6, 0, 3, 0, 0x12}));
}

TEST(BuildRow, ReadsBack) {
  const auto d = MixedTable();
  const Bytes row = Build(d, {base::Null{}, std::string(), true, std::string("nota")});
  const auto raw_values = mdb::SplitRow(mdb::FileHeader{}, d, row);
  EXPECT_FALSE(raw_values[0].has_value());
  EXPECT_EQ(raw_values[1]->size(), 0U);
  EXPECT_EQ((*raw_values[2])[0], 1);
  EXPECT_EQ(mdb::DecodeText(mdb::FileHeader{}, *raw_values[3]), "nota");
}

TEST(BuildRow, WithoutVariableColumnsOnlyTheMaskFollows) {
  mdb::Definition d = MixedTable();
  d.columns.resize(1);
  d.max_columns = 9;  // a mask of two bytes
  d.variables = 0;
  EXPECT_EQ(Build(d, {std::int64_t{1}}), (Bytes{9, 0, 1, 0, 0, 0, 1, 0}));
}

TEST(BuildRow, ADefinitionThatContradictsItselfIsDamage) {
  mdb::Definition d = MixedTable();
  d.columns[3].variable = 0;  // the place of another column
  EXPECT_THROW(mdb::internal::RowBuilder{d}, mdb::Damage);
  d = MixedTable();
  d.columns[3].variable = 3;
  EXPECT_THROW(mdb::internal::RowBuilder{d}, mdb::Damage);
  d = MixedTable();
  d.columns[0].number = 5;
  EXPECT_THROW(mdb::internal::RowBuilder{d}, mdb::Damage);
}

}  // namespace
