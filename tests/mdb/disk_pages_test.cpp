#include "mdb/pages/disk_pages.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "base/file.h"
#include "mdb/bare_file.h"
#include "mdb/corpus.h"
#include "mdb/samples.h"
#include "mdb/schema/database.h"
#include "mdb/schema/new_file.h"
#include "support/temp_folder.h"

namespace {

using mdb::DiskPages;
using mdb_test::AsText;
using mdb_test::SampleDatabase;
using support::TempFolder;

TEST(DiskPages, ReadsEveryPageOfTheFile) {
  for (const auto& path : mdb_test::EveryFile()) {
    SCOPED_TRACE(path);
    const auto in_memory = mdb_test::Load(path);
    const auto on_disk = DiskPages::Open(path, true);
    ASSERT_EQ(on_disk->Count(), in_memory->Count());
    for (mdb::PageNumber n = 0; n < on_disk->Count(); ++n)
      ASSERT_EQ(*on_disk->Read(n), *in_memory->Read(n)) << "page " << n;
  }
}

TEST(DiskPages, ACommitIsInTheFileAndTheJournalGone) {
  const TempFolder c;
  const mdb::Bytes before = SampleDatabase(5);
  const std::string path = c.Write("a.mdb", AsText(before));
  {
    const auto p = DiskPages::Open(path);
    ASSERT_EQ(p->ReadOnlyReason(), "");
    p->Modify(3)[10] = 99;
    p->Modify(p->Add())[4095] = 5;
    p->Commit();
    EXPECT_EQ((*p->Read(3))[10], 99);
    EXPECT_EQ(p->Count(), 6U);
  }
  mdb::Bytes expected = before;
  expected[3 * 4096 + 10] = 99;
  expected.resize(6 * 4096);
  expected.back() = 5;
  EXPECT_EQ(c.Read("a.mdb"), AsText(expected));
  EXPECT_FALSE(std::filesystem::exists(path + "-diario"));
}

TEST(DiskPages, NothingWrittenLeavesBytesAndDate) {
  const TempFolder c;
  const mdb::Bytes before = SampleDatabase(5);
  const std::string path = c.Write("a.mdb", AsText(before));
  const auto yesterday = std::filesystem::last_write_time(path) - std::chrono::hours(24);
  std::filesystem::last_write_time(path, yesterday);
  {
    const auto p = DiskPages::Open(path);
    p->Commit();
    p->Modify(2)[0] ^= 1;
    p->Add();
    p->Rollback();
    p->Commit();
    // Changed and changed back.
    p->Modify(2)[0] ^= 1;
    p->Modify(2)[0] ^= 1;
    p->Commit();
  }
  EXPECT_EQ(std::filesystem::last_write_time(path), yesterday);
  EXPECT_EQ(c.Read("a.mdb"), AsText(before));
}

std::string OpenError(const std::string& path, const mdb::DatabaseOptions& options = {}) {
  try {
    mdb::Database::Open(path, options);
  } catch (const base::Error& e) {
    return e.Description();
  }
  return {};
}

std::string OfSample(const std::string& name) { return std::string(AsText(mdb_test::SampleBytes(name))); }

// The header's mask is a XOR with a constant stream, and the key of these files is 0.
std::string Encrypted(std::string bytes, std::uint32_t key) {
  mdb::Bytes b(bytes.begin(), bytes.end());
  const mdb::FileHeader before = mdb::ReadHeader(b);
  mdb::Put32(b, 0x3E, mdb::U32(b, 0x3E) ^ key);
  const mdb::FileHeader c = mdb::ReadHeader(b);
  EXPECT_EQ(before.key, 0U);
  EXPECT_EQ(c.key, key);
  for (std::size_t n = 1; n * c.page_size < b.size(); ++n)
    mdb::EncryptPage(c, static_cast<mdb::PageNumber>(n), std::span(b).subspan(n * c.page_size, c.page_size));
  return std::string(AsText(b));
}

TEST(DiskPages, EncryptedFilesHaveTheSamePages) {
  const TempFolder c;
  for (const char* name : {"types.mdb", "queries97.mdb"}) {
    SCOPED_TRACE(name);
    const std::string original = OfSample(name);
    const std::string path = c.Write(name, Encrypted(original, 0x31415926));
    EXPECT_NE(c.Read(name), original);
    const auto encrypted = DiskPages::Open(path);
    const auto plain = mdb_test::LoadSample(name);
    ASSERT_EQ(encrypted->Count(), plain->Count());
    for (mdb::PageNumber n = 1; n < plain->Count(); ++n) ASSERT_EQ(*encrypted->Read(n), *plain->Read(n));
  }
}

TEST(DiskPages, WhatIsWrittenIntoAnEncryptedFileIsEncrypted) {
  const TempFolder c;
  const std::string path = c.Write("a.mdb", AsText(SampleDatabase(5, 0x31415926)));
  {
    const auto p = DiskPages::Open(path);
    p->Modify(2)[0] = 0xAB;
    p->Add();
    p->Commit();
  }
  const auto p = DiskPages::Open(path, true);
  EXPECT_EQ((*p->Read(2))[0], 0xAB);
  EXPECT_EQ(*p->Read(5), mdb::Bytes(4096));
  EXPECT_NE(c.Read("a.mdb").substr(5 * 4096), std::string(4096, '\0'));
  // And nothing of it in the clear in what is written but not changed.
  EXPECT_EQ(c.Read("a.mdb").substr(3 * 4096, 8192),
            std::string(AsText(SampleDatabase(5, 0x31415926))).substr(3 * 4096, 8192));
}

TEST(DiskPages, OldAndNewFormatsAreOnlyRead) {
  const TempFolder c;
  const auto reason = [&](const char* name) {
    const auto p = DiskPages::Open(c.Write(name, OfSample(name)));
    EXPECT_THROW(p->Modify(1), base::Error);
    EXPECT_EQ((*p->Read(1))[0], 1);
    EXPECT_EQ(p->WhyReadOnly(), mdb::ReadOnlyCause::Format);
    return p->ReadOnlyReason();
  };
  EXPECT_EQ(reason("queries97.mdb"), "Las bases de Access 97 solo se leen");
  EXPECT_EQ(reason("queries.accdb"), "Las bases .accdb (Access 2007 y posteriores) solo se leen");
}

TEST(DiskPages, AFileThatLostItsEndIsOnlyRead) {
  const TempFolder c;
  const std::string bytes(AsText(SampleDatabase(4)));
  const auto p = DiskPages::Open(c.Write("a.mdb", bytes.substr(0, 3 * 4096 + 100)));
  EXPECT_EQ(p->ReadOnlyReason(), "El archivo termina a mitad de una página: le falta una parte");
  EXPECT_EQ(p->WhyReadOnly(), mdb::ReadOnlyCause::Incomplete);
  EXPECT_EQ(p->Count(), 3U);
  EXPECT_EQ((*p->Read(2))[0], 14);
  EXPECT_THROW(p->Read(3), mdb::Damage);
}

TEST(Base, RefusesWhatIsNoBase) {
  const TempFolder c;
  EXPECT_EQ(OpenError(c.Path("falta.mdb")), "No se puede abrir falta.mdb: no existe");
  EXPECT_NE(OpenError(c.Folder()), "");
  EXPECT_EQ(OpenError(c.Write("vacia.mdb", "")), "El archivo está vacío: no es una base de Access");
  EXPECT_EQ(OpenError(c.Write("cien.mdb", std::string(100, 'x'))), "El archivo no es una base de Access");
  const std::string bytes(AsText(SampleDatabase(4)));
  for (const std::size_t length : {1U, 20U, 100U, 2047U, 2048U, 4095U})
    EXPECT_EQ(OpenError(c.Write("corta.mdb", bytes.substr(0, length))),
              "El archivo es demasiado corto para ser una base de Access")
        << length;
  EXPECT_EQ(OpenError(c.Write("una.mdb", bytes.substr(0, 4096))), "");
  // Nothing is left beside them.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(c.Folder()), {}), 4);
}

TEST(Base, AFileGreaterThanItsFormatIsRefused) {
  const TempFolder c;
  const std::string path = c.Write("a.mdb", AsText(SampleDatabase(4)));
  std::filesystem::resize_file(path, (std::uintmax_t{1} << 31) + 4096);  // a hole: it takes no room
  EXPECT_EQ(OpenError(path), "El archivo es más grande de lo que admite su formato");
  std::filesystem::resize_file(path, std::uintmax_t{1} << 31);
  const auto p = DiskPages::Open(path);
  EXPECT_EQ(p->Count(), 524288U);
  EXPECT_EQ(*p->Read(524287), mdb::Bytes(4096));
  EXPECT_THROW(p->Add(), base::Error);
  EXPECT_THROW(p->Read(0xFFFFFFFF), mdb::Damage);
}

TEST(Base, APasswordIsAskedFor) {
  const TempFolder c;
  const std::string path = c.Write("a.mdb", OfSample("password.mdb"));
  EXPECT_EQ(OpenError(path), "La base tiene contraseña y no se dio ninguna");
  mdb::DatabaseOptions options;
  options.password = "Contraseña";  // another case is another password
  EXPECT_EQ(OpenError(path, options), "La contraseña de la base no es la que se dio");
  options.password = "contraseña";
  EXPECT_EQ(OpenError(path, options), "");
  // One that is given for a file without any does no harm.
  EXPECT_EQ(OpenError(c.Write("b.mdb", OfSample("empty.mdb")), options), "");
}

TEST(Base, AnEncryptedAccdbIsRefused) {
  const TempFolder c;
  std::string bytes = OfSample("queries.accdb");
  bytes[0x3E] = static_cast<char>(bytes[0x3E] ^ 0x55);
  EXPECT_EQ(OpenError(c.Write("a.accdb", bytes)),
            "La base está cifrada con una contraseña de Access 2007 o posterior: no se puede leer");
}

TEST(Base, CreatesAFileOnlyWhereThereIsNone) {
  const TempFolder c;
  const std::string path = c.Path("nueva.mdb");
  const base::Date now{46347.5};
  {
    const auto fresh = mdb::Database::Create(path, 3082, now);
    EXPECT_EQ(fresh->ReadOnlyReason(), "");
    EXPECT_EQ(fresh->Header().order, 3082);
    EXPECT_NE(fresh->Catalog().Find("MSysObjects"), nullptr);
  }
  const std::string bytes = c.Read("nueva.mdb");
  EXPECT_EQ(bytes, AsText(mdb::MakeDatabase(3082, now)));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(c.Folder()), {}), 1);
  EXPECT_THROW(mdb::Database::Create(path, 1033, now), base::Error);
  EXPECT_EQ(c.Read("nueva.mdb"), bytes);
  EXPECT_THROW(mdb::Database::Create(c.Path("no/hay.mdb"), 3082, now), base::Error);
  // The journal of a base that is gone would be taken for the new one's.
  c.Write("otra.mdb-diario", "x");
  EXPECT_THROW(mdb::Database::Create(c.Path("otra.mdb"), 3082, now), base::Error);
  EXPECT_FALSE(std::filesystem::exists(c.Path("otra.mdb")));
}

TEST(DiskPages, AJournalLiesBesideTheFileAndNotBesideALinkToIt) {
  const TempFolder c;
  const std::string path = c.Write("a.mdb", AsText(SampleDatabase(4)));
  std::filesystem::create_directory(c.Path("otra"));
  std::filesystem::create_symlink(path, c.Path("otra/enlace.mdb"));
  c.Write("a.mdb-diario", "empezado");
  EXPECT_EQ(DiskPages::Open(c.Path("otra/enlace.mdb"))->ReadOnlyReason(), "");
  EXPECT_FALSE(std::filesystem::exists(path + "-diario"));
}

// Whatever stands in the header and wherever the file ends: an error or pages, nothing worse.
TEST(Base, NoHeaderLeadsAstray) {
  const TempFolder c;
  std::mt19937 random(1);
  const std::string originals[] = {std::string(AsText(mdb::MakeDatabase(3082, base::Date{46347}))),
                                   OfSample("queries97.mdb")};
  int opened = 0, refused = 0;
  for (int i = 0; i < 600; ++i) {
    std::string bad = originals[i % 2];
    for (std::size_t k = 0, n = 1 + random() % 40; k < n; ++k) {
      // The name is left alone most times, so that what follows it is looked at.
      const std::size_t pos = random() % 8 == 0 ? random() % 0x20 : 0x14 + random() % 0x90;
      bad[pos] = static_cast<char>(random());
    }
    if (random() % 4 == 0) bad.resize(random() % bad.size());
    const std::string path = c.Write("a.mdb", bad);
    try {
      const auto p = DiskPages::Open(path);
      for (int k = 0; k < 20; ++k) {
        const auto n =
            static_cast<mdb::PageNumber>(random() % 4 == 0 ? random() : random() % (p->Count() + 2));
        if (n < p->Count())
          EXPECT_EQ(p->Read(n)->size(), p->PageSize());
        else
          EXPECT_THROW(p->Read(n), mdb::Damage);
      }
      ++opened;
    } catch (const base::Error&) {
      ++refused;
    }
    ASSERT_EQ(c.Read("a.mdb"), bad);
  }
  EXPECT_GT(opened, 100);
  EXPECT_GT(refused, 50);
}

}  // namespace
