#include "mdb/pages/page_file.h"

#include <gtest/gtest.h>

namespace {

mdb::MemoryPages TwoPages() { return {mdb::FileHeader{}, mdb::Bytes(8192, 1)}; }

TEST(Damage, CarriesItsPageAndItsReason) {
  try {
    TwoPages().Read(2);
    FAIL() << "a page was read that there is not";
  } catch (const mdb::Damage& d) {
    EXPECT_EQ(d.Page(), 2U);
    EXPECT_EQ(d.Reason(), "el archivo tiene 2 páginas");
    EXPECT_EQ(d.Description(), "El archivo está dañado, página 2: el archivo tiene 2 páginas");
  }
}

TEST(Damage, OfNoPageKeepsItsReasonApart) {
  try {
    mdb::U32(mdb::Bytes(3), 0);
    FAIL() << "four bytes were read of three";
  } catch (const mdb::Damage& d) {
    EXPECT_EQ(d.Page(), std::nullopt);
    EXPECT_EQ(d.Reason(), "un largo lleva más allá de sus datos");
    EXPECT_EQ(d.Description(), "El archivo está dañado: un largo lleva más allá de sus datos");
  }
}

TEST(PageFile, ImagesHandedOutDoNotChange) {
  auto p = TwoPages();
  const auto before = p.Read(1);
  p.Modify(1)[0] = 9;
  const auto middle = p.Read(1);
  p.Modify(1)[0] = 10;
  EXPECT_EQ((*before)[0], 1);
  EXPECT_EQ((*middle)[0], 9);
  EXPECT_EQ((*p.Read(1))[0], 10);
}

TEST(PageFile, RollbackAndPointsGiveBackPagesAndLength) {
  auto p = TwoPages();
  p.Modify(0)[5] = 2;
  const auto point = p.Save();
  p.Modify(0)[5] = 3;
  EXPECT_EQ(p.Add(), 2U);
  EXPECT_EQ((*p.Read(2))[4095], 0);
  p.RollbackTo(point);
  EXPECT_EQ(p.Count(), 2U);
  EXPECT_EQ((*p.Read(0))[5], 2);
  p.Rollback();
  EXPECT_EQ((*p.Read(0))[5], 1);
  EXPECT_FALSE(p.HasChanges());
  EXPECT_EQ(p.Stored(), mdb::Bytes(8192, 1));
}

TEST(PageFile, CommitWritesWhatWasChanged) {
  auto p = TwoPages();
  p.Modify(p.Add())[0] = 8;
  p.Commit();
  p.Rollback();
  EXPECT_EQ(p.Count(), 3U);
  EXPECT_EQ((*p.Read(2))[0], 8);
  EXPECT_EQ(p.Stored().size(), 3U * 4096);
}

TEST(PageFile, APageBeyondTheEndIsDamage) {
  auto p = TwoPages();
  EXPECT_THROW(p.Read(2), mdb::Damage);
  EXPECT_THROW(p.Modify(7), mdb::Damage);
}

}  // namespace
