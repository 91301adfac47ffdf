// Memo and OLE values as they are written, replaced and freed.
#include <gtest/gtest.h>

#include "mdb/table_at_hand.h"

namespace {

using mdb::Changes;
using mdb::ColumnType;
using mdb::Row;
using mdb::RowId;
using mdb_test::kNull;
using mdb_test::N;
using mdb_test::S;
using mdb_test::Table;
using mdb_test::Text;

// A Long and a memo.
mdb::NewTable WithMemo() {
  mdb::NewTable t{"ConMemo", {}, {}};
  t.columns = {mdb_test::Column("Id", ColumnType::Long), mdb_test::Column("M", ColumnType::Memo),
               mdb_test::Column("O", ColumnType::Ole)};
  return t;
}
std::vector<mdb::PageNumber> LongPages(Table& t, std::size_t column = 1) {
  return mdb::ReadMap(t.P(), t.d.columns[column].lv_owned_pages);
}
mdb::Bytes Field(Table& t, RowId id, std::size_t column = 1) {
  const auto row = mdb::FindRow(t.P(), t.d, id).value();
  const auto raw = mdb::SplitRow(t.P().Header(), t.d, row.bytes)[column].value();
  return {raw.begin(), raw.end()};
}
// OLE values have no text rules: their bytes are as many as one wishes.
mdb::Datum Ole(std::size_t length, std::uint8_t with = 1) { return mdb::Bytes(length, with); }

TEST(LongValues, UpTo64BytesStandInTheRow) {
  Table t(WithMemo());
  const auto id = t.Insert({N(1), kNull, Ole(64)});
  const auto field = Field(t, id, 2);
  EXPECT_EQ(field.size(), 76U);
  EXPECT_EQ(mdb::U32(field, 0), 0x80000000U | 64U);
  EXPECT_EQ(mdb::U64(field, 4), 0U);
  EXPECT_TRUE(LongPages(t, 2).empty());
  EXPECT_EQ(t.Read(id)[2], Ole(64));
  t.Update(id, 2, Ole(0));  // empty is not Null
  EXPECT_EQ(Field(t, id, 2).size(), 12U);
  EXPECT_EQ(t.Read(id)[2], Ole(0));
  EXPECT_EQ(t.Control(), "");
}

TEST(LongValues, UpTo4076BytesAreOneRowOfALongValuePage) {
  Table t(WithMemo());
  const auto id = t.Insert({N(1), kNull, Ole(4076)});
  const auto field = Field(t, id, 2);
  EXPECT_EQ(field.size(), 12U);
  EXPECT_EQ(mdb::U32(field, 0), 0x40000000U | 4076U);
  ASSERT_EQ(LongPages(t, 2), std::vector{mdb::U24(field, 5)});
  EXPECT_EQ(mdb::OwnerOf(*t.P().Read(mdb::U24(field, 5))), mdb::kLongValuesOwner);
  EXPECT_TRUE(LongPages(t, 1).empty());  // the other column's
  EXPECT_EQ(t.Read(id)[2], Ole(4076));
  EXPECT_EQ(t.Control(), "");
}

TEST(LongValues, LongerOnesAreAChainOfWhichOnlyTheLastPieceIsShort) {
  Table t(WithMemo());
  const auto id = t.Insert({N(1), kNull, Ole(4077)});
  const auto field = Field(t, id, 2);
  EXPECT_EQ(mdb::U32(field, 0), 4077U);
  const RowId first{mdb::U24(field, 5), field[4]};
  const auto r = t.SlotOf(first);
  EXPECT_EQ(r.length, 4076U);
  const RowId second{mdb::U24(*t.P().Read(first.page), r.from + 1), (*t.P().Read(first.page))[r.from]};
  EXPECT_EQ(t.SlotOf(second).length, 4U + 5U);
  EXPECT_EQ(mdb::U32(*t.P().Read(second.page), t.SlotOf(second).from), 0U);
  EXPECT_EQ(t.Read(id)[2], Ole(4077));
  t.Update(id, 2, Ole(100000, 7));
  EXPECT_EQ(t.Read(id)[2], Ole(100000, 7));
  EXPECT_EQ(LongPages(t, 2).size(), 25U);  // 24 full pieces, and one of 2272 bytes
  EXPECT_EQ(t.Control(), "");
}

TEST(LongValues, ShortOnesShareAPage) {
  Table t(WithMemo());
  Changes c;
  for (int i = 0; i < 30; ++i) c.inserted.push_back({N(i), kNull, Ole(100)});
  t.Apply(c);
  EXPECT_EQ(LongPages(t, 2).size(), 1U);
  EXPECT_EQ(t.Control(), "");
}

TEST(LongValues, AreFreedWhenReplacedAndWhenTheirRowGoes) {
  Table t(WithMemo());
  const auto id = t.Insert({N(1), Text(S(3000)), Ole(50000)});
  const auto before = t.P().Count();
  t.Update(id, 2, Ole(10));
  EXPECT_TRUE(LongPages(t, 2).empty());
  t.Update(id, 2, Ole(50000));
  EXPECT_EQ(t.P().Count(), before);  // the same pages again
  t.Update(id, 2, kNull);
  EXPECT_TRUE(LongPages(t, 2).empty());
  EXPECT_EQ(LongPages(t, 1).size(), 2U);  // not compressed beyond 1024 characters: 6000 bytes
  t.Delete(id);
  EXPECT_TRUE(LongPages(t, 1).empty());
  EXPECT_EQ(t.Control(), "");
}

TEST(LongValues, OfColumnsThatAreNotNamedKeepTheirBytes) {
  Table t(WithMemo());
  const auto id = t.Insert({N(1), Text(S(3000)), Ole(40)});
  const auto memo = Field(t, id, 1), ole = Field(t, id, 2);
  t.Update(id, 0, N(2));
  EXPECT_EQ(Field(t, id, 1), memo);
  EXPECT_EQ(Field(t, id, 2), ole);
  EXPECT_EQ(t.Read(id), (Row{N(2), S(3000), Ole(40)}));
}

TEST(LongValues, TheLongestLeaveARowThatIsTooLong) {
  mdb::NewTable many{"Muchos", {}, {}};
  for (int i = 0; i < 7; ++i) {
    many.columns.push_back(mdb_test::Column("T" + std::to_string(i), ColumnType::Text));
    many.columns.back().compress = false;
  }
  for (int i = 0; i < 12; ++i)
    many.columns.push_back(mdb_test::Column("O" + std::to_string(i), ColumnType::Ole));
  Table t(many);
  Row row(7, S(226));  // 3164 bytes
  for (int i = 0; i < 12; ++i) row.push_back(Ole(53U + static_cast<unsigned>(i)));
  // 2 + 4 + 2 * 19 + 3 and the texts are 3211; 12 * 12 and 53 + … + 64 are 846 more: 4057. One more is too
  // much.
  auto id = t.Insert(row);
  EXPECT_EQ(t.SlotOf(id).length, 4057U);
  row[0] = S(228);
  id = t.Insert(row);
  EXPECT_EQ(t.SlotOf(id).length, 4061U - 64U);
  EXPECT_EQ(mdb::U32(Field(t, id, 18), 0), 0x40000000U | 64U);
  EXPECT_EQ(mdb::U32(Field(t, id, 17), 0), 0x80000000U | 63U);
  EXPECT_EQ(t.Read(id), row);
  EXPECT_EQ(t.Control(), "");
}

}  // namespace
