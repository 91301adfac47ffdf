#include "mdb/pages/header.h"

#include <gtest/gtest.h>

#include "mdb/samples.h"

namespace {

TEST(Header, TellsVersionSortOrderAndPassword) {
  struct Case {
    const char* file;
    mdb::Version version;
    int order;
    const char* password;
    std::uint32_t key;
  };
  const Case cases[] = {{"queries97.mdb", mdb::Version::Jet3, 1033, "", 0},
                        {"queries.mdb", mdb::Version::Jet4, 1033, "", 0},
                        {"queries.accdb", mdb::Version::Ace, 1033, "", 0},
                        {"texts_3082.mdb", mdb::Version::Jet4, 3082, "", 0},
                        {"texts_1034.mdb", mdb::Version::Jet4, 1034, "", 0},
                        {"password.mdb", mdb::Version::Jet4, 1033, "contraseña", 0},
                        {"password97.mdb", mdb::Version::Jet3, 1033, "contraseña", 0},
                        {"encrypted.mdb", mdb::Version::Jet4, 1033, "", 0xA1B2C3D4},
                        {"encrypted97.mdb", mdb::Version::Jet3, 1033, "", 0xA1B2C3D4}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    const auto pages = mdb_test::LoadSample(c.file);
    EXPECT_EQ(pages->Header().version, c.version);
    EXPECT_EQ(pages->Header().order, c.order);
    EXPECT_EQ(pages->Header().password, c.password);
    EXPECT_EQ(pages->Header().key, c.key);
    EXPECT_EQ(pages->Header().objects, 2U);
    EXPECT_EQ(pages->Header().relationships, 5U);
    EXPECT_EQ(pages->Header().code_page, 1252);
  }
}

TEST(Header, RefusesOtherFiles) {
  EXPECT_THROW(mdb::ReadHeader(mdb::Bytes(10)), base::Error);
  mdb::Bytes bytes(4096);
  EXPECT_THROW(mdb::ReadHeader(bytes), base::Error);
  const std::string_view name{"Standard Jet DB\0", 16};
  std::copy(name.begin(), name.end(), bytes.begin() + 4);
  bytes[0x14] = 1;
  EXPECT_NO_THROW(mdb::ReadHeader(bytes));
  bytes[0x14] = 2;  // a .accdb version under the other name
  EXPECT_THROW(mdb::ReadHeader(bytes), base::Error);
  bytes[0x14] = 1;
  bytes.resize(2000);
  EXPECT_THROW(mdb::ReadHeader(bytes), base::Error);
}

TEST(Header, EncryptingTwiceGivesThePageBack) {
  mdb::FileHeader c;
  c.key = 0x12345678;
  mdb::Bytes page(4096, 7), other = page;
  mdb::EncryptPage(c, 3, page);
  EXPECT_NE(page, other);
  mdb::EncryptPage(c, 4, other);
  EXPECT_NE(page, other);
  mdb::EncryptPage(c, 3, page);
  EXPECT_EQ(page, mdb::Bytes(4096, 7));
  mdb::EncryptPage(c, 0, page);
  EXPECT_EQ(page, mdb::Bytes(4096, 7));
}

}  // namespace
