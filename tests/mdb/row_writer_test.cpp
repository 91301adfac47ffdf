// Where rows go in their pages as they come, change, move and go.
#include <gtest/gtest.h>

#include "mdb/table_at_hand.h"

namespace {

using mdb::Changes;
using mdb::ColumnType;
using mdb::Row;
using mdb::RowId;
using mdb::Slot;
using mdb_test::kNull;
using mdb_test::N;
using mdb_test::S;
using mdb_test::Table;
using mdb_test::Text;

// A Long and three wide texts.
mdb::NewTable WideTable() {
  mdb::NewTable t{"Ancha", {}, {}};
  t.columns.push_back(mdb_test::Column("Id", ColumnType::Long));
  for (const char* name : {"A", "B", "C"}) t.columns.push_back(mdb_test::Column(name, ColumnType::Text));
  for (std::size_t i = 1; i < 4; ++i) t.columns[i].compress = false;
  return t;
}

// About 1550 bytes: two of them fill a page but for some 900.
const Row kFull{N(0), S(255), S(255), S(255)};

// A row at the beginning of a page that two others fill behind it.
RowId InsertBeforeFull(Table& t, const Row& first) {
  const RowId id = t.Insert(first);
  t.Insert(kFull);
  t.Insert(kFull);
  return id;
}

TEST(ApplyRows, NewRowsGetTheirPlacesInOrderAndAreCounted) {
  Table t(WideTable());
  const auto ids = t.Apply({{}, {}, {{N(1), S(10), kNull, kNull}, {N(2), kNull, kNull, kNull}}});
  ASSERT_EQ(ids.size(), 2U);
  EXPECT_EQ(ids[0].page, ids[1].page);
  EXPECT_EQ(ids[0].row, 0);
  EXPECT_EQ(ids[1].row, 1);
  EXPECT_EQ(t.Read(ids[0]), (Row{N(1), S(10), kNull, kNull}));
  EXPECT_EQ(t.OwnPages(), std::vector{ids[0].page});
  EXPECT_EQ(t.FreePages(), std::vector{ids[0].page});
  EXPECT_EQ(mdb::ReadDefinition(t.P(), t.d.Page()).rows, 2U);
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyRows, RowsGrowAndShrinkInTheirPage) {
  Table t(WideTable());
  const auto a = t.Insert({N(1), S(10), kNull, kNull}), b = t.Insert({N(2), S(20), kNull, kNull});
  t.Update(a, 1, S(200));
  EXPECT_EQ(t.SlotOf(a).marks, 0);
  EXPECT_EQ(t.Read(a), (Row{N(1), S(200), kNull, kNull}));
  t.Update(a, 1, kNull);
  EXPECT_EQ(t.Read(a), (Row{N(1), kNull, kNull, kNull}));
  EXPECT_EQ(t.Read(b), (Row{N(2), S(20), kNull, kNull}));
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyRows, ARowThatOutgrowsItsPageMovesAndKeepsItsIdentity) {
  Table t(WideTable());
  const auto a = InsertBeforeFull(t, {N(1), S(10), kNull, kNull});
  t.Update(a, 1, S(255));
  ASSERT_EQ(t.Place(a), a);  // still room
  t.Update(a, 2, S(255, 'y'));
  const RowId one = t.Place(a);
  ASSERT_NE(one, a);
  EXPECT_EQ(t.SlotOf(a).marks, Slot::kMoved);
  EXPECT_EQ(t.SlotOf(a).length, 4U);
  EXPECT_EQ(t.SlotOf(one).marks, Slot::kTarget);
  EXPECT_EQ(t.Read(a), (Row{N(1), S(255), S(255, 'y'), kNull}));
  // In its new page it grows without moving.
  t.Update(a, 3, S(100));
  EXPECT_EQ(t.Place(a), one);
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyRows, AMovedRowMovesOnAndTheMiddlePlaceIsFreed) {
  Table t(WideTable());
  const auto a = InsertBeforeFull(t, {N(1), S(10), kNull, kNull});
  t.Update(a, 1, S(255));
  t.Update(a, 2, S(255, 'y'));
  const RowId one = t.Place(a);
  ASSERT_NE(one, a);
  t.Insert(kFull);  // beside it
  t.Insert({N(0), S(255), S(255), S(200)});
  ASSERT_EQ(t.OwnPages().size(), 2U);
  t.Update(a, 3, S(255, 'z'));
  const RowId two = t.Place(a);
  EXPECT_NE(two.page, one.page);
  EXPECT_NE(two.page, a.page);
  EXPECT_TRUE(t.SlotOf(one).IsDeleted());
  EXPECT_EQ(t.SlotOf(one).length, 0U);
  EXPECT_EQ(t.SlotOf(a).marks, Slot::kMoved);
  EXPECT_EQ(t.Read(a), (Row{N(1), S(255), S(255, 'y'), S(255, 'z')}));
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyRows, AMovedRowGoesHomeWhenItFitsThere) {
  Table t(WideTable());
  const auto a = InsertBeforeFull(t, {N(1), S(255), kNull, kNull});
  t.Update(a, 2, S(255));
  const RowId one = t.Place(a);
  ASSERT_NE(one, a);
  t.Update(a, 2, S(3));
  EXPECT_EQ(t.Place(a), a);
  EXPECT_EQ(t.SlotOf(a).marks, 0);
  EXPECT_EQ(t.OwnPages(), std::vector{a.page});  // the page that it leaves empty goes back
  EXPECT_EQ(t.Read(a), (Row{N(1), S(255), S(3), kNull}));
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyRows, DeletingAMovedRowFreesBothPlaces) {
  Table t(WideTable());
  const auto a = InsertBeforeFull(t, {N(1), S(255), kNull, kNull});
  t.Update(a, 2, S(255));
  const RowId one = t.Place(a);
  t.Delete(a);
  EXPECT_TRUE(t.SlotOf(a).IsDeleted());
  EXPECT_EQ(t.SlotOf(a).length, 0U);
  EXPECT_FALSE(mdb::IsInMap(t.P(), t.d.owned_pages, one.page));
  EXPECT_TRUE(mdb::IsInMap(t.P(), {1, 0}, one.page));
  EXPECT_EQ(t.d.rows, 2U);
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyRows, TheRoomOfADeletedRowIsUsedAgainButNotItsNumber) {
  Table t(WideTable());
  const auto a = t.Insert(kFull);
  const auto b = t.Insert(kFull);
  ASSERT_EQ(a.page, b.page);
  const auto c = t.Insert(kFull);
  ASSERT_NE(c.page, a.page);
  t.Delete(a);
  const auto d = t.Insert(kFull), e = t.Insert(kFull);
  EXPECT_EQ(d.page == a.page || e.page == a.page, true);
  EXPECT_NE(d, a);
  EXPECT_NE(e, a);
  EXPECT_EQ(t.OwnPages().size(), 2U);
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyRows, PagesWithHardlyAnyRoomLeaveTheMapOfFreeSpace) {
  Table t(WideTable());
  // 2 + 4 of the fixed part, 4 + 2 * 3 of the places, 1 of the mask: 17 bytes and the text.
  const auto a = t.Insert({N(1), S(255), S(255), S(255)});
  t.Insert({N(2), S(255), S(255), S(255)});
  EXPECT_EQ(t.FreePages(), std::vector{a.page});
  // 4082 - 2 * (17 + 1530 + 2) - (17 + 2) leaves 965: 30 less than that is more than can be used.
  t.Insert({N(3), S(255), S(210), kNull});
  EXPECT_EQ(mdb::U16(*t.P().Read(a.page), 2), 35);
  EXPECT_TRUE(t.FreePages().empty());
  t.Delete(a);
  EXPECT_EQ(t.FreePages(), std::vector{a.page});
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyRows, TheLastRowOfAPageGivesThePageBack) {
  Table t(WideTable());
  const auto a = t.Insert({N(1), kNull, kNull, kNull});
  const auto b = t.Insert({N(2), kNull, kNull, kNull});
  const auto before = t.P().Count();
  t.Apply({{a, b}, {}, {}});
  EXPECT_TRUE(t.OwnPages().empty());
  EXPECT_TRUE(t.FreePages().empty());
  EXPECT_TRUE(mdb::IsInMap(t.P(), {1, 0}, a.page));
  EXPECT_EQ(t.d.rows, 0U);
  EXPECT_EQ(t.Control(), "");
  t.Insert({N(3), kNull, kNull, kNull});
  EXPECT_EQ(t.P().Count(), before);
}

TEST(ApplyRows, APageTakesNoMoreThan255Rows) {
  mdb::NewTable narrow{"Angosta", {mdb_test::Column("B", ColumnType::Byte)}, {}};
  Table t(narrow);
  Changes c;
  for (int i = 0; i < 600; ++i) c.inserted.push_back({N(i % 256)});
  const auto ids = t.Apply(c);
  EXPECT_EQ(t.OwnPages().size(), 3U);
  EXPECT_EQ(ids[254].row, 254);
  EXPECT_EQ(ids[255].row, 0);
  EXPECT_EQ(t.Control(), "");
}

TEST(ApplyRows, ARowIsRefusedBeyond4060Bytes) {
  mdb::NewTable t9{"Nueve", {}, {}};
  for (int i = 0; i < 9; ++i) {
    t9.columns.push_back(mdb_test::Column(std::to_string(i), ColumnType::Text));
    t9.columns.back().compress = false;
  }
  Table t(t9);
  // 2 + 4 + 2 * 9 + 2 of the mask are 26; 8 * 504 + 2 makes 4060.
  Row row(9, S(252));
  row[8] = S(1);
  const auto id = t.Insert(row);
  EXPECT_EQ(t.SlotOf(id).length, 4060U);
  row[8] = S(2);
  try {
    t.Insert(row);
    FAIL();
  } catch (const base::Error& e) {
    EXPECT_EQ(e.Number(), 3047);
    EXPECT_EQ(e.Description(),
              "La fila es demasiado larga para la tabla 'Nueve': ocupa 4062 bytes y caben 4060");
  }
}

}  // namespace
