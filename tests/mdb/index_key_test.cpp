#include "mdb/indexes/index_key.h"

#include <gtest/gtest.h>

#include <iostream>
#include <map>

#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"

namespace {

using mdb::ColumnType;

mdb::Column Col(ColumnType type, std::uint16_t lcid = 1033) {
  mdb::Column c;
  c.name = "Campo";
  c.type = type;
  c.lcid = lcid;
  return c;
}

std::string Hex(mdb::View v) {
  std::string t;
  for (const auto b : v) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    if (!t.empty()) t += ' ';
    t += kDigits[b >> 4];
    t += kDigits[b & 15];
  }
  return t;
}

std::string Key(const mdb::Column& column, const mdb::Datum& datum, bool descending = false,
                mdb::Version version = mdb::Version::Jet4) {
  mdb::FileHeader header;
  header.version = version;
  mdb::Bytes key;
  mdb::AppendKey(header, column, descending, datum, key);
  return Hex(key);
}

std::int64_t N(std::int64_t n) { return n; }

TEST(IndexKey, NumbersBothWays) {
  struct Case {
    ColumnType type;
    mdb::Datum datum;
    const char *going_up, *going_down;
  };
  const Case cases[] = {
      {ColumnType::Byte, N(0), "7F 00", "80 FF"},
      {ColumnType::Byte, N(255), "7F FF", "80 00"},
      {ColumnType::Integer, N(1), "7F 80 01", "80 7F FE"},
      {ColumnType::Integer, N(-1), "7F 7F FF", "80 80 00"},
      {ColumnType::Long, N(-2147483648LL), "7F 00 00 00 00", "80 FF FF FF FF"},
      {ColumnType::Long, N(258), "7F 80 00 01 02", "80 7F FF FE FD"},
      {ColumnType::BigInteger, N(-2), "7F 7F FF FF FF FF FF FF FE", "80 80 00 00 00 00 00 00 01"},
      {ColumnType::Currency, base::Currency{10000}, "7F 80 00 00 00 00 00 27 10",
       "80 7F FF FF FF FF FF D8 EF"},
      {ColumnType::Single, 1.0F, "7F BF 80 00 00", "80 40 7F FF FF"},
      {ColumnType::Single, -1.0F, "7F 40 7F FF FF", "80 BF 80 00 00"},
      {ColumnType::Double, 2.0, "7F C0 00 00 00 00 00 00 00", "80 3F FF FF FF FF FF FF FF"},
      {ColumnType::Double, -2.0, "7F 3F FF FF FF FF FF FF FF", "80 C0 00 00 00 00 00 00 00"},
      {ColumnType::Date, base::Date{1.0}, "7F BF F0 00 00 00 00 00 00", "80 40 0F FF FF FF FF FF FF"},
      {ColumnType::Long, base::Null{}, "00", "FF"},
      {ColumnType::Text, base::Null{}, "00", "FF"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.going_up);
    EXPECT_EQ(Key(Col(c.type), c.datum), c.going_up);
    EXPECT_EQ(Key(Col(c.type), c.datum, true), c.going_down);
  }
}

TEST(IndexKey, ABooleanIsNeverNull) {
  EXPECT_EQ(Key(Col(ColumnType::Boolean), true), "7F 00");
  EXPECT_EQ(Key(Col(ColumnType::Boolean), false), "7F FF");
  EXPECT_EQ(Key(Col(ColumnType::Boolean), base::Null{}), "7F FF");
  EXPECT_EQ(Key(Col(ColumnType::Boolean), true, true), "80 FF");
  EXPECT_EQ(Key(Col(ColumnType::Boolean), false, true), "80 00");
}

TEST(IndexKey, TextWithAccentsHyphensAndSpanishLetters) {
  const auto text = [](const char* t, std::uint16_t lcid, bool going_down = false) {
    return Key(Col(ColumnType::Text, lcid), std::string(t), going_down);
  };
  EXPECT_EQ(text("Muñoz", 1033), "7F 60 6F 62 64 78 01 02 02 19 00");
  EXPECT_EQ(text("MUÑOZ  ", 1033), "7F 60 6F 62 64 78 01 02 02 19 00");
  EXPECT_EQ(text("O'Neil", 1033), "7F 64 62 51 59 5E 01 01 01 01 80 0B 06 80 00");
  EXPECT_EQ(text("", 1033), "7F 01 00");
  EXPECT_EQ(text("   ", 3082), "7F 01 00");
  // The letter ñ is one of its own in both Spanish orders, ch only in the traditional one.
  EXPECT_EQ(text("Muñoz", 3082), "7F 60 6F 63 04 64 78 01 00");
  EXPECT_EQ(text("muñoz", 1034), "7F 60 6F 63 04 64 78 01 00");
  EXPECT_EQ(text("Ch", 1034), "7F 4E 04 01 00");
  EXPECT_EQ(text("Llo", 1034), "7F 5F 04 64 01 00");
  EXPECT_NE(text("Ch", 3082), text("Ch", 1034));
  // Descending: the whole and its closing 00 turned round, then a plain 00.
  EXPECT_EQ(text("O", 1033, true), "80 9B FE FF 00");
  EXPECT_EQ(text("", 1033, true), "80 FE FF 00");
}

TEST(IndexKey, OnlyThe255FirstUnitsOfATextCount) {
  const auto key = [](const std::string& t) { return Key(Col(ColumnType::Memo), t); };
  const std::string length(255, 'o');
  EXPECT_EQ(key(length), key(length + "x"));
  EXPECT_NE(key(length), key(length.substr(1)));
  EXPECT_NO_THROW(key(length + "\xE2\x82\xAC\xCE\xB1"));  // no weight, but not looked at
  EXPECT_THROW(key(std::string(254, 'o') + "\xCE\xB1"), base::Error);
  // A character of two units that stands half inside.
  EXPECT_THROW(key(std::string(254, 'o') + "\xF0\x9F\x98\x80"), base::Error);
}

TEST(IndexKey, ATextWithoutKnownPlaceIsRefusedWithItsCharacter) {
  try {
    Key(Col(ColumnType::Text), std::string("caf\xCE\xB1"));
    FAIL();
  } catch (const base::Error& e) {
    EXPECT_EQ(
        e.Description(),
        "El texto 'cafα' de la columna 'Campo', que está en un índice, tiene el carácter 'α', cuyo lugar "
        "en el orden de Access no se conoce");
  }
}

TEST(IndexKey, BinaryGoesInPiecesOfEight) {
  const auto key = [](std::size_t n, bool going_down) {
    return Key(Col(ColumnType::Binary), mdb::Bytes(n, 0x11), going_down);
  };
  EXPECT_EQ(key(0, false), "7F");
  EXPECT_EQ(key(3, false), "7F 11 11 11 00 00 00 00 00 03");
  EXPECT_EQ(key(3, true), "80 EE EE EE FF FF FF FF FF FC");
  EXPECT_EQ(key(8, false), "7F 11 11 11 11 11 11 11 11 08");
  EXPECT_EQ(key(9, false), "7F 11 11 11 11 11 11 11 11 09 11 00 00 00 00 00 00 00 01");
  EXPECT_EQ(key(9, true), "80 EE EE EE EE EE EE EE EE 09 EE FF FF FF FF FF FF FF FE");
  mdb::Guid guid = mdb::GuidFromText("{00112233-4455-6677-8899-AABBCCDDEEFF}");
  EXPECT_EQ(Key(Col(ColumnType::Guid), guid), "7F 00 11 22 33 44 55 66 77 09 88 99 AA BB CC DD EE FF 08");
  EXPECT_EQ(Key(Col(ColumnType::Guid), guid, true),
            "80 FF EE DD CC BB AA 99 88 09 77 66 55 44 33 22 11 00 F7");
}

TEST(IndexKey, NumericKeepsTheOldSignByte) {
  auto column = Col(ColumnType::Decimal);
  column.scale = 2;
  mdb::Decimal one;
  one.magnitude = {0, 0, 0, 100};
  one.scale = 2;
  mdb::Decimal minus = one;
  minus.negative = true;
  const std::string zeros = " 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00",
                    all_ff = " FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF";
  EXPECT_EQ(Key(column, one), "7F FF" + zeros + " 64");
  EXPECT_EQ(Key(column, minus), "7F 00" + all_ff + " 9B");
  EXPECT_EQ(Key(column, one, true), "80 FF" + all_ff + " 9B");
  EXPECT_EQ(Key(column, minus, true), "80 00" + zeros + " 64");
  EXPECT_EQ(Key(column, one, false, mdb::Version::Ace), "7F FF" + zeros + " 64");
  EXPECT_EQ(Key(column, one, true, mdb::Version::Ace), "80 00" + all_ff + " 9B");
  EXPECT_EQ(Key(column, minus, false, mdb::Version::Ace), "7F 00" + all_ff + " 9B");
  EXPECT_EQ(Key(column, minus, true, mdb::Version::Ace), "80 FF" + zeros + " 64");
  one.scale = 1;
  EXPECT_THROW(Key(column, one), base::Error);
}

TEST(IndexKey, ValuesOfAnotherTypeOrSizeAreRefused) {
  EXPECT_THROW(Key(Col(ColumnType::Long), std::string("1")), base::Error);
  EXPECT_THROW(Key(Col(ColumnType::Integer), N(32768)), base::Error);
  EXPECT_THROW(Key(Col(ColumnType::Integer), N(-32769)), base::Error);
  EXPECT_THROW(Key(Col(ColumnType::Long), N(2147483648LL)), base::Error);
  EXPECT_THROW(Key(Col(ColumnType::Byte), N(256)), base::Error);
  EXPECT_THROW(Key(Col(ColumnType::Ole), mdb::Bytes{1}), base::Error);
  EXPECT_THROW(Key(Col(ColumnType::Text, 1036), std::string("a")), base::Error);
}

TEST(IndexKey, TellsWhichIndexesHaveNoKeys) {
  mdb::Definition d;
  d.columns = {Col(ColumnType::Text, 3082)};
  mdb::RealIndex index;
  index.parts = {{0, false}};
  EXPECT_EQ(mdb::NoKeysReason({}, d, index), "");
  d.columns[0].lcid = 1036;
  EXPECT_EQ(mdb::NoKeysReason({}, d, index),
            "la columna 'Campo' está en un índice con el orden de texto 1036 versión 0, que no se conoce");
  d.columns[0].lcid = 1033;
  d.columns[0].order_version = 1;
  EXPECT_NE(mdb::NoKeysReason({}, d, index), "");
  d.columns[0].type = ColumnType::Ole;
  EXPECT_NE(mdb::NoKeysReason({}, d, index), "");
  d.columns[0].type = ColumnType::Long;
  EXPECT_EQ(mdb::NoKeysReason({}, d, index), "");
  index.parts[0].column = 7;
  EXPECT_NE(mdb::NoKeysReason({}, d, index), "");
}

TEST(IndexKey, NullsOfACompositeIndex) {
  mdb::Definition d;
  d.columns = {Col(ColumnType::Long), Col(ColumnType::Boolean), Col(ColumnType::Integer)};
  for (std::uint16_t i = 0; i < 3; ++i) d.columns[i].number = i;
  mdb::RealIndex two, three;
  two.parts = {{0, false}, {2, true}};
  three.parts = {{0, false}, {1, false}, {2, false}};
  const mdb::Row nulls(3), middle = {N(1), false, base::Null{}};
  EXPECT_TRUE(mdb::AllNull(d, two, nulls));
  EXPECT_FALSE(mdb::AllNull(d, three, nulls));  // the Boolean is there
  EXPECT_TRUE(mdb::AnyNull(d, three, nulls));
  EXPECT_FALSE(mdb::AllNull(d, two, middle));
  EXPECT_TRUE(mdb::AnyNull(d, two, middle));
  mdb::Bytes key = {1, 2, 3};
  mdb::MakeRowKey({}, d, two, middle, key);
  EXPECT_EQ(Hex(key), "7F 80 00 00 01 FF");
}

// Every entry of every index of every file against the key of its row. Those of the samples are worked out
// apart from ours, by the tables of weights.
struct Tally {
  std::size_t keys = 0, with_text = 0, without_keys = 0, without_weight = 0;
};

void CheckTable(mdb::PageFile& pages, const mdb::Definition& d, Tally& tally) {
  std::map<mdb::RowId, mdb::Row> rows;
  mdb::WalkRows(pages, d, [&](mdb::RowId id, const mdb::Row& row) {
    rows[id] = row;
    return true;
  });
  for (const mdb::RealIndex& index : d.reals) {
    const bool without_keys = !mdb::NoKeysReason(pages.Header(), d, index).empty();
    bool with_text = false;
    for (const auto& part : index.parts)
      with_text = with_text || d.columns[d.ByNumber(part.column).value()].IsText();
    mdb::Bytes key;
    mdb::IndexTree(pages, d.Page(), index).Walk([&](const mdb::Entry& e) {
      const auto row = rows.find(e.row);
      EXPECT_NE(row, rows.end()) << d.name;
      if (row == rows.end()) return false;
      if (without_keys) {
        ++tally.without_keys;
        return true;
      }
      try {
        mdb::MakeRowKey(pages.Header(), d, index, row->second, key);
      } catch (const base::Error&) {
        ++tally.without_weight;
        return true;
      }
      EXPECT_EQ(Hex(key), Hex(e.key)) << d.name << " " << e.row.page << ":" << int(e.row.row);
      ++tally.keys;
      tally.with_text += with_text;
      return true;
    });
  }
}

TEST(IndexKey, EncodesEveryEntryAsStored) {
  Tally total;
  for (const std::string& path : mdb_test::EveryFile()) {
    SCOPED_TRACE(path);
    const auto pages = mdb_test::Load(path);
    const mdb::SystemCatalog catalog(*pages);
    Tally tally;
    for (const mdb::Object& o : catalog.Objects())
      if (o.type == mdb::Object::Table) {
        mdb::Definition d = mdb::ReadDefinition(*pages, static_cast<mdb::PageNumber>(o.id));
        d.name = o.name;
        CheckTable(*pages, d, tally);
      }
    // Some .accdb files have another order (1033 of version 1).
    EXPECT_EQ(tally.without_keys != 0, pages->Header().order_version == 1);
    EXPECT_EQ(tally.without_weight, 0U);
    total.keys += tally.keys;
    total.with_text += tally.with_text;
    total.without_keys += tally.without_keys;
  }
  std::cout << total.keys << " keys, " << total.with_text << " of indexes with text, " << total.without_keys
            << " not computed for their sort order\n";
  EXPECT_GE(total.keys, 6000U);
  EXPECT_GE(total.with_text, 2500U);
}

}  // namespace
