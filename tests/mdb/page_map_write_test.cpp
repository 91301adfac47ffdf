// Page maps as they are written: windows, promotion, the global map, pages taken and given back.
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "mdb/corpus.h"
#include "mdb/pages/page_map.h"
#include "mdb/pages/page_rows.h"
#include "mdb/samples.h"

namespace {

using mdb::PageNumber;
using PageSet = std::set<PageNumber>;
constexpr mdb::Pointer kGlobal{1, 0};
constexpr std::uint32_t kPerPage = 32736;

// A file of the pages 0 and 1, with the global map of a new file.
std::unique_ptr<mdb::MemoryPages> NewPages(std::size_t map_length = 69) {
  mdb::Bytes bytes(3 * 4096, 0);
  const auto one = std::span(bytes).subspan(4096, 4096);
  mdb::InitializeRowPage(one, 1);
  mdb::Bytes row(map_length, 0xFF);
  for (std::size_t i = 0; i < 5; ++i) row[i] = 0;
  row[5] = 0xF8;  // pages 0 to 2 are used
  mdb::AddRow(1, one, row);
  mdb::AddRow(1, one, mdb::Bytes(69, 0));
  return std::make_unique<mdb::MemoryPages>(mdb::FileHeader{}, std::move(bytes));
}

PageSet Read(mdb::PageFile& p, mdb::Pointer map) {
  const auto v = mdb::ReadMap(p, map);
  return {v.begin(), v.end()};
}
std::uint8_t Kind(mdb::PageFile& p, mdb::Pointer map) {
  const auto image = p.Read(map.page);
  return (*image)[mdb::ReadSlot(map.page, *image, map.row).from];
}
std::uint32_t Start(mdb::PageFile& p, mdb::Pointer map) {
  const auto image = p.Read(map.page);
  return mdb::U32(*image, mdb::ReadSlot(map.page, *image, map.row).from + 1);
}
std::size_t Length(mdb::PageFile& p, mdb::Pointer map) {
  return mdb::ReadSlot(map.page, *p.Read(map.page), map.row).length;
}
// Pages are only numbers to a map that is not the global one.
void Grow(mdb::PageFile& p, PageNumber to) {
  while (p.Count() < to) p.Add();
}

TEST(PageMaps, ANewMapIsAnEmptyBitmapOf512PagesOnAPageOfMaps) {
  auto p = NewPages();
  const auto a = mdb::CreateMap(*p), b = mdb::CreateMap(*p);
  EXPECT_EQ(a, (mdb::Pointer{3, 0}));
  EXPECT_EQ(b, (mdb::Pointer{3, 1}));
  EXPECT_EQ(Length(*p, a), 69U);
  EXPECT_TRUE(Read(*p, a).empty());
  EXPECT_EQ(mdb::OwnerOf(*p->Read(3)), 0U);
  EXPECT_FALSE(mdb::IsInMap(*p, kGlobal, 3));
}

TEST(PageMaps, AFullPageOfMapsIsFollowedByAnother) {
  auto p = NewPages();
  PageSet pages;
  for (int i = 0; i < 120; ++i) pages.insert(mdb::CreateMap(*p).page);
  EXPECT_EQ(pages, (PageSet{3, 4, 5, 6}));  // 36 of 69 + 2 bytes, and 1500 for them to grow
}

TEST(PageMaps, PagesOfTheWindowAreBits) {
  auto p = NewPages();
  const auto m = mdb::CreateMap(*p);
  Grow(*p, 600);
  for (const PageNumber n : {0U, 7U, 8U, 511U}) mdb::AddToMap(*p, m, n);
  EXPECT_EQ(Read(*p, m), (PageSet{0, 7, 8, 511}));
  EXPECT_EQ(Kind(*p, m), 0);
  mdb::RemoveFromMap(*p, m, 7);
  mdb::RemoveFromMap(*p, m, 7);
  mdb::RemoveFromMap(*p, m, 599);  // beyond it: was not there
  EXPECT_EQ(Read(*p, m), (PageSet{0, 8, 511}));
}

TEST(PageMaps, TheWindowMovesToAMultipleOfEight) {
  auto p = NewPages();
  const auto m = mdb::CreateMap(*p);
  Grow(*p, 2000);
  mdb::AddToMap(*p, m, 1003);
  EXPECT_EQ(Start(*p, m), 1000U);
  mdb::AddToMap(*p, m, 1511);  // the last of the window
  EXPECT_EQ(Start(*p, m), 1000U);
  mdb::RemoveFromMap(*p, m, 1003);
  mdb::AddToMap(*p, m, 1512);  // only 1511 is left to keep
  EXPECT_EQ(Start(*p, m), 1504U);
  mdb::RemoveFromMap(*p, m, 1512);
  mdb::AddToMap(*p, m, 1000);  // and back
  EXPECT_EQ(Start(*p, m), 1000U);
  EXPECT_EQ(Length(*p, m), 69U);
  EXPECT_EQ(Read(*p, m), (PageSet{1000, 1511}));
}

TEST(PageMaps, ABitmapGetsLongerWhereItsPageHasRoom) {
  auto p = NewPages();
  const auto m = mdb::CreateMap(*p), neighbour = mdb::CreateMap(*p);
  mdb::AddToMap(*p, neighbour, 2);
  Grow(*p, 5000);
  mdb::AddToMap(*p, m, 1003);
  mdb::AddToMap(*p, m, 1512);
  EXPECT_EQ(Kind(*p, m), 0);
  EXPECT_EQ(Length(*p, m), 73U);  // by four bytes
  EXPECT_EQ(Start(*p, m), 1000U);
  mdb::AddToMap(*p, m, 1000 + 4095);
  EXPECT_EQ(Length(*p, m), 517U);
  mdb::AddToMap(*p, m, 1001);
  EXPECT_EQ(Read(*p, m), (PageSet{1001, 1003, 1512}));  // 5095 is beyond the end of the file
  Grow(*p, 5096);
  EXPECT_EQ(Read(*p, m), (PageSet{1001, 1003, 1512, 5095}));
  EXPECT_EQ(Read(*p, neighbour), PageSet{2});
  mdb::AddToMap(*p, m, 999);  // beyond the longest
  EXPECT_EQ(Kind(*p, m), 1);
  EXPECT_EQ(Read(*p, m), (PageSet{999, 1001, 1003, 1512, 5095}));
}

TEST(PageMaps, BecomesAListOfBitmapPagesInItsPlace) {
  auto p = NewPages();
  const auto m = mdb::CreateMap(*p), neighbour = mdb::CreateMap(*p);
  mdb::AddToMap(*p, neighbour, 2);
  Grow(*p, kPerPage + 10);
  mdb::AddToMap(*p, m, 5);
  mdb::AddToMap(*p, m, 5000);
  EXPECT_EQ(Kind(*p, m), 1);
  EXPECT_EQ(Length(*p, m), 69U);
  const auto of_map = mdb::PagesOfMap(*p, m);
  ASSERT_EQ(of_map.size(), 1U);
  EXPECT_EQ(mdb::U32(*p->Read(of_map[0]), 0), 0x00000105U);
  EXPECT_FALSE(mdb::IsInMap(*p, kGlobal, of_map[0]));
  mdb::AddToMap(*p, m, kPerPage + 3);  // the second range
  EXPECT_EQ(mdb::PagesOfMap(*p, m).size(), 2U);
  EXPECT_EQ(Read(*p, m), (PageSet{5, 5000, kPerPage + 3}));
  mdb::RemoveFromMap(*p, m, 3 * kPerPage);  // a range without a page: nothing to do
  EXPECT_EQ(mdb::PagesOfMap(*p, m).size(), 2U);
  EXPECT_EQ(Read(*p, neighbour), PageSet{2});
}

// The maps of its page fill it: each takes what room there is, then turns into a list.
TEST(PageMaps, BecomesAListWhenItsPageIsFull) {
  auto p = NewPages();
  std::vector<mdb::Pointer> maps;
  for (int i = 0; i < 36; ++i) maps.push_back(mdb::CreateMap(*p));
  ASSERT_EQ(maps.back().page, maps.front().page);
  Grow(*p, 4100);
  PageSet model;
  int lists = 0;
  for (const PageNumber n : {10U, 700U, 1500U}) {
    model.insert(n);
    for (const auto& m : maps) mdb::AddToMap(*p, m, n);
  }
  for (const auto& m : maps) {
    EXPECT_EQ(Read(*p, m), model);
    lists += Kind(*p, m);
  }
  EXPECT_GT(lists, 20);
  EXPECT_LT(lists, 36);
}

TEST(PageMaps, ANegativePointerIsNoPage) {
  auto p = NewPages();
  const auto m = mdb::CreateMap(*p);
  Grow(*p, 6000);
  mdb::AddToMap(*p, m, 5);
  mdb::AddToMap(*p, m, 5900);
  const auto place = mdb::ReadSlot(m.page, *p->Read(m.page), m.row).from;
  mdb::Put32(p->Modify(m.page), place + 1, 0xFFFFFFFEU);
  EXPECT_TRUE(Read(*p, m).empty());
  mdb::AddToMap(*p, m, 7);
  EXPECT_EQ(Read(*p, m), PageSet{7});
}

TEST(PageMaps, DeletingAMapGivesItsPagesBack) {
  auto p = NewPages();
  const auto a = mdb::CreateMap(*p), b = mdb::CreateMap(*p);
  Grow(*p, 6000);
  mdb::AddToMap(*p, a, 5);
  mdb::AddToMap(*p, a, 5900);
  const auto bits = mdb::PagesOfMap(*p, a).at(0);
  mdb::DeleteMap(*p, a);
  EXPECT_TRUE(mdb::IsInMap(*p, kGlobal, bits));
  EXPECT_FALSE(mdb::IsInMap(*p, kGlobal, a.page));
  EXPECT_TRUE(Read(*p, b).empty());
  mdb::DeleteMap(*p, b);  // the last of its page
  EXPECT_TRUE(mdb::IsInMap(*p, kGlobal, a.page));
  mdb::DeleteMap(*p, {});  // no map: nothing
}

TEST(PageMaps, RandomChangesAgreeWithASet) {
  auto p = NewPages();
  Grow(*p, 9000);
  std::mt19937 generator(20010101);
  const auto random = [&] { return static_cast<unsigned>(generator()); };
  for (int round = 0; round < 30; ++round) {
    const auto m = mdb::CreateMap(*p);
    PageSet model;
    const PageNumber base = random() % 3000, width = 1 + random() % (round % 3 == 0 ? 6000 : 900);
    for (int step = 0; step < 300; ++step) {
      const PageNumber n = base + random() % width;
      if (random() % 3 != 0) {
        mdb::AddToMap(*p, m, n);
        model.insert(n);
      } else {
        mdb::RemoveFromMap(*p, m, n);
        model.erase(n);
      }
      if (step % 10 == 0) {
        ASSERT_EQ(Read(*p, m), model);
        ASSERT_EQ(Start(*p, m) % 8 * (1U - Kind(*p, m)), 0U);
      }
    }
    ASSERT_EQ(Read(*p, m), model);
  }
}

TEST(GlobalMap, TakesTheLowestFreePageElseAppends) {
  auto p = NewPages();
  EXPECT_EQ(mdb::ReservePage(*p), 3U);
  EXPECT_EQ(mdb::ReservePage(*p), 4U);
  EXPECT_EQ(mdb::ReservePage(*p), 5U);
  p->Modify(4)[100] = 9;
  mdb::FreePage(*p, 4);
  mdb::FreePage(*p, 3);
  EXPECT_EQ(mdb::U32(*p->Read(4), 0), 0U);
  EXPECT_EQ(Read(*p, kGlobal), (PageSet{3, 4}));
  EXPECT_EQ(mdb::ReservePage(*p), 3U);
  EXPECT_EQ(mdb::ReservePage(*p), 4U);
  EXPECT_EQ((*p->Read(4))[100], 0);  // zeroed
  EXPECT_EQ(mdb::ReservePage(*p), 6U);
}

TEST(GlobalMap, PagesOfTheHeaderAreNeverFreeWhateverItSays) {
  auto p = NewPages();
  const auto image = p->Read(1);
  mdb::Put8(p->Modify(1), mdb::ReadSlot(1, *image, 0).from + 5, 0xFF);
  EXPECT_EQ(mdb::ReservePage(*p), 3U);
}

TEST(GlobalMap, ItsRowGrowsOnPageOneWithTheFile) {
  auto p = NewPages();
  while (p->Count() < 5000) mdb::ReservePage(*p);
  EXPECT_EQ(Kind(*p, kGlobal), 0);
  EXPECT_GE(Length(*p, kGlobal), 5U + 5000 / 8);
  EXPECT_EQ(Length(*p, {1, 1}), 69U);  // the second map of page 1 only moved
  EXPECT_TRUE(Read(*p, kGlobal).empty());
  // Pages that the file does not have yet are free.
  const auto image = p->Read(1);
  const auto r = mdb::ReadSlot(1, *image, 0);
  EXPECT_EQ((*image)[r.from + r.length - 1], 0xFF);
  mdb::FreePage(*p, 4321);
  EXPECT_EQ(mdb::ReservePage(*p), 4321U);
}

TEST(GlobalMap, BecomesAListOfBitmapPagesWhenPageOneIsFull) {
  auto p = NewPages();
  for (PageNumber i = 0; i < 31200; ++i) mdb::ReservePage(*p);
  ASSERT_EQ(Kind(*p, kGlobal), 0);
  mdb::FreePage(*p, 777);
  mdb::FreePage(*p, 778);
  EXPECT_EQ(mdb::ReservePage(*p), 777U);
  PageSet given;
  // Two bitmap pages: the second is needed with the first page of its range.
  for (PageNumber i = 0; i < 3000; ++i) EXPECT_TRUE(given.insert(mdb::ReservePage(*p)).second);
  EXPECT_TRUE(given.contains(778));
  ASSERT_EQ(Kind(*p, kGlobal), 1);
  const auto of_map = mdb::PagesOfMap(*p, kGlobal);
  ASSERT_EQ(of_map.size(), 2U);
  for (const auto n : of_map) {
    EXPECT_FALSE(given.contains(n));
    EXPECT_FALSE(mdb::IsInMap(*p, kGlobal, n));
  }
  EXPECT_EQ((*p->Read(of_map[1]))[4095], 0xFF);  // its last pages are beyond the end of the file
  EXPECT_TRUE(Read(*p, kGlobal).empty());
  mdb::FreePage(*p, 40);
  mdb::FreePage(*p, kPerPage + 40);
  EXPECT_EQ(Read(*p, kGlobal), (PageSet{40, kPerPage + 40}));
  EXPECT_EQ(mdb::ReservePage(*p), 40U);
  EXPECT_EQ(mdb::ReservePage(*p), kPerPage + 40);
}

TEST(GlobalMap, WhatAWindowThatWasMovedLeavesOutCountsAsUsed) {
  auto p = NewPages();
  Grow(*p, 700);
  const auto place = mdb::ReadSlot(1, *p->Read(1), 0).from;
  mdb::Bytes& one = p->Modify(1);
  mdb::Put32(one, place + 1, 640);  // as another program does when its file outgrows the map
  for (std::size_t i = 0; i < 64; ++i) mdb::Put8(one, place + 5 + i, i < 8 ? 0x00 : 0xFF);
  for (PageNumber n = 700; n < 1200; ++n) ASSERT_EQ(mdb::ReservePage(*p), n);
  EXPECT_EQ(Kind(*p, kGlobal), 0);
  EXPECT_TRUE(Read(*p, kGlobal).empty());
  mdb::FreePage(*p, 20);  // before the window: now all pages must be named
  EXPECT_EQ(Kind(*p, kGlobal), 1);
  EXPECT_EQ(Read(*p, kGlobal), PageSet{20});
}

TEST(GlobalMap, OfAnotherWritersFileGivesItsFreePages) {
  const auto p = mdb_test::LoadSample("long.mdb");
  const PageSet free_pages = Read(*p, kGlobal);
  ASSERT_EQ(free_pages.size(), 22U);
  const PageNumber before = p->Count();
  PageSet given;
  for (int i = 0; i < 22; ++i) given.insert(mdb::ReservePage(*p));
  EXPECT_EQ(given, free_pages);
  EXPECT_EQ(mdb::ReservePage(*p), before);
}

}  // namespace
