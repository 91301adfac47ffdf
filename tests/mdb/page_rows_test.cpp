// Rows of one page: whatever is done, the rows stay without gaps and the free-space field exact.
#include "mdb/pages/page_rows.h"

#include <gtest/gtest.h>

#include <random>

namespace {

mdb::Bytes MakePage(std::uint32_t owner = 7) {
  mdb::Bytes p(4096, 0xEE);
  mdb::InitializeRowPage(p, owner);
  return p;
}
mdb::Bytes Of(std::size_t length, std::uint8_t byte) { return mdb::Bytes(length, byte); }
mdb::Bytes Contents(const mdb::Bytes& p, unsigned row) {
  const auto r = mdb::ReadSlot(9, p, row);
  const auto v = mdb::Slice(p, r.from, r.length);
  return {v.begin(), v.end()};
}

TEST(PageRows, ANewPageHas4082BytesOfRoom) {
  const auto p = MakePage(0x01020304);
  EXPECT_EQ(mdb::U16(p, 0), 0x0101);
  EXPECT_EQ(mdb::U16(p, 2), 4082);
  EXPECT_EQ(mdb::OwnerOf(p), 0x01020304U);
  EXPECT_EQ(mdb::U32(p, 8), 0U);
  EXPECT_EQ(mdb::SlotCount(p), 0U);
  EXPECT_TRUE(mdb::HasNoRows(p));
  EXPECT_TRUE(mdb::RowFits(p, 4080));
  EXPECT_FALSE(mdb::RowFits(p, 4081));
}

TEST(PageRows, TheOwnerOfLongValuesReadsLval) {
  const auto p = MakePage(mdb::kLongValuesOwner);
  EXPECT_EQ(std::string(p.begin() + 4, p.begin() + 8), "LVAL");
}

TEST(PageRows, ARowCostsItsBytesAndTwo) {
  auto p = MakePage();
  EXPECT_EQ(mdb::AddRow(9, p, Of(100, 1)), 0);
  EXPECT_EQ(mdb::AddRow(9, p, Of(10, 2), mdb::Slot::kTarget), 1);
  EXPECT_EQ(mdb::U16(p, 2), 4082 - 112 - 2);
  EXPECT_EQ(mdb::ReadSlot(9, p, 0).from, 3996U);
  EXPECT_EQ(mdb::ReadSlot(9, p, 1).from, 3986U);
  EXPECT_EQ(mdb::ReadSlot(9, p, 1).marks, 0x8000);
  EXPECT_THROW(mdb::ReadSlot(9, p, 2), mdb::Damage);
}

TEST(PageRows, DeletingTakesTheBytesBackAndKeepsTheNumbers) {
  auto p = MakePage();
  for (std::uint8_t i = 0; i < 4; ++i) mdb::AddRow(9, p, Of(50U + i, i));
  mdb::RemoveRow(9, p, 1);
  EXPECT_TRUE(mdb::ReadSlot(9, p, 1).IsDeleted());
  EXPECT_EQ(mdb::ReadSlot(9, p, 1).length, 0U);
  EXPECT_EQ(Contents(p, 0), Of(50, 0));
  EXPECT_EQ(Contents(p, 2), Of(52, 2));
  EXPECT_EQ(Contents(p, 3), Of(53, 3));
  EXPECT_EQ(mdb::U16(p, 2), 4082 - 4 * 2 - 50 - 52 - 53);
  EXPECT_EQ(mdb::AddRow(9, p, Of(5, 9)), 4);
}

TEST(PageRows, ARowThatDoesNotGrowIntoTheRoomStaysAsItWas) {
  auto p = MakePage();
  mdb::AddRow(9, p, Of(2000, 1));
  mdb::AddRow(9, p, Of(2000, 2));
  const auto before = p;
  EXPECT_FALSE(mdb::ChangeRow(9, p, 0, Of(2079, 3)));
  EXPECT_EQ(p, before);
  EXPECT_TRUE(mdb::ChangeRow(9, p, 0, Of(2078, 3)));
  EXPECT_EQ(mdb::U16(p, 2), 0);
  EXPECT_EQ(Contents(p, 0), Of(2078, 3));
  EXPECT_EQ(Contents(p, 1), Of(2000, 2));
}

TEST(PageRows, TakesNoMoreThan255Rows) {
  auto p = MakePage();
  for (int i = 0; i < 255; ++i) EXPECT_EQ(mdb::AddRow(9, p, Of(4, 1)), i);
  EXPECT_GT(mdb::Gap(p), 1000U);
  EXPECT_FALSE(mdb::RowFits(p, 4));
}

TEST(PageRows, SlotsThatLeadOutOfThePageAreDamage) {
  auto p = MakePage();
  mdb::AddRow(9, p, Of(100, 1));
  mdb::AddRow(9, p, Of(100, 2));
  EXPECT_NO_THROW(mdb::CheckRowPage(9, p));
  auto crossed = p;
  mdb::Put16(crossed, 16, 4000);  // row 1 before row 0
  EXPECT_THROW(mdb::CheckRowPage(9, crossed), mdb::Damage);
  EXPECT_THROW(mdb::ChangeRow(9, crossed, 0, Of(1, 1)), mdb::Damage);
  auto overlapping = p;
  mdb::Put16(overlapping, 16, 15);  // over the slots
  EXPECT_THROW(mdb::ReadSlot(9, overlapping, 1), mdb::Damage);
  auto many = p;
  mdb::Put16(many, 12, 0xFFFF);
  EXPECT_THROW(mdb::CheckRowPage(9, many), mdb::Damage);
}

TEST(PageRows, RandomChangesAgreeWithAList) {
  std::mt19937 generator(20030517);
  const auto random = [&] { return static_cast<unsigned>(generator()); };
  for (int round = 0; round < 20; ++round) {
    auto p = MakePage();
    std::vector<mdb::Bytes> model;
    std::vector<bool> live;
    for (int step = 0; step < 400; ++step) {
      const auto bytes = Of(random() % 120, static_cast<std::uint8_t>(step));
      const unsigned what = random() % 4;
      if (what < 2 || model.empty()) {
        if (!mdb::RowFits(p, bytes.size())) continue;
        ASSERT_EQ(mdb::AddRow(9, p, bytes), model.size());
        model.push_back(bytes);
        live.push_back(true);
      } else {
        const unsigned row = random() % static_cast<unsigned>(model.size());
        if (!live[row]) continue;
        if (what == 2) {
          mdb::RemoveRow(9, p, row);
          model[row].clear();
          live[row] = false;
        } else if (mdb::ChangeRow(9, p, row, bytes)) {
          model[row] = bytes;
        }
      }
      ASSERT_NO_THROW(mdb::CheckRowPage(9, p));
      std::size_t used = 14 + 2 * model.size();
      for (unsigned i = 0; i < model.size(); ++i) {
        ASSERT_EQ(Contents(p, i), model[i]);
        ASSERT_EQ(!mdb::ReadSlot(9, p, i).IsDeleted(), live[i]);
        used += model[i].size();
      }
      ASSERT_EQ(mdb::U16(p, 2), 4096 - used);
    }
  }
}

}  // namespace
