#include "base/file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

class Files : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return base::JoinPath(folder_.string(), name); }
  std::size_t CountFiles() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
  }

  support::TempFolder temp_;
  fs::path folder_ = temp_.Folder();
};

TEST_F(Files, BytesComeBackAsTheyWereWritten) {
  std::string bytes("a\r\nb\n\0\xFF\x1A", 8);
  bytes += std::string(200000, 'x');
  ASSERT_TRUE(base::WriteWholeFile(Path("año.ini"), bytes));
  EXPECT_EQ(base::ReadWholeFile(Path("año.ini")), bytes);
  ASSERT_TRUE(base::WriteWholeFile(Path("año.ini"), ""));
  EXPECT_EQ(base::ReadWholeFile(Path("año.ini")), "");
  EXPECT_EQ(CountFiles(), 1U);  // nothing is left beside it
}

TEST_F(Files, WhatIsNotThereIsNotRead) {
  EXPECT_EQ(base::ReadWholeFile(Path("falta")), std::nullopt);
  EXPECT_EQ(base::ReadWholeFile(folder_.string()), std::nullopt);
  EXPECT_EQ(base::ReadWholeFile(""), std::nullopt);
  EXPECT_FALSE(base::FileExists(Path("falta")));
  EXPECT_FALSE(base::FileExists(folder_.string()));
}

TEST_F(Files, AFailedWriteLeavesTheOldFile) {
  EXPECT_FALSE(base::WriteWholeFile(Path("no/existe.ini"), "x"));
  // A folder of that name cannot be replaced.
  fs::create_directories(folder_ / "ocupado" / "dentro");
  EXPECT_FALSE(base::WriteWholeFile(Path("ocupado"), "x"));
  EXPECT_EQ(CountFiles(), 1U);
}

TEST_F(Files, AWriteReplacesTheFileAndNotItsContents) {
  ASSERT_TRUE(base::WriteWholeFile(Path("a.ini"), "viejo"));
  std::ifstream opened(folder_ / "a.ini", std::ios::binary);
  ASSERT_TRUE(base::WriteWholeFile(Path("a.ini"), "nuevo texto"));
  // Who had it open still reads the old one, whole.
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(opened), {}), "viejo");
  EXPECT_EQ(base::ReadWholeFile(Path("a.ini")), "nuevo texto");
}

#ifndef _WIN32
TEST_F(Files, APrivateFileGrantsNoMoreThanItsModel) {
  const auto mode_of = [&](const char* name) { return fs::status(folder_ / name).permissions(); };
  ASSERT_TRUE(base::WriteWholeFile(Path("model"), "x"));
  for (const unsigned mode : {0600U, 0640U, 0644U, 0660U, 0755U, 0400U}) {
    fs::permissions(folder_ / "model", static_cast<fs::perms>(mode));
    ASSERT_TRUE(base::WritePrivateFile(Path("a"), "bytes", Path("model")));
    EXPECT_EQ(mode_of("a"), static_cast<fs::perms>((mode & 0066U) | 0600U)) << mode;
    EXPECT_EQ(base::ReadWholeFile(Path("a")), "bytes");
    fs::remove(folder_ / "a");
  }
  ASSERT_TRUE(base::WritePrivateFile(Path("a"), "x", Path("not there")));
  EXPECT_EQ(mode_of("a"), static_cast<fs::perms>(0600));
  // What is there already is not opened wider, and not left wide.
  fs::permissions(folder_ / "model", static_cast<fs::perms>(0644));
  ASSERT_TRUE(base::WritePrivateFile(Path("a"), "y", Path("model")));
  EXPECT_EQ(mode_of("a"), static_cast<fs::perms>(0600));
  fs::permissions(folder_ / "a", static_cast<fs::perms>(0666));
  ASSERT_TRUE(base::WritePrivateFile(Path("a"), "z", Path("model")));
  EXPECT_EQ(mode_of("a"), static_cast<fs::perms>(0644));
  EXPECT_FALSE(base::WritePrivateFile(Path("no/a"), "z", Path("model")));
  EXPECT_EQ(CountFiles(), 2U);
}
#endif

TEST_F(Files, TwoNamesOfOneFileAreTold) {
  ASSERT_TRUE(base::WriteWholeFile(Path("a"), "x"));
  EXPECT_TRUE(base::SameFile(Path("a"), Path("a")));
  EXPECT_TRUE(base::SameFile(Path("a"), Path("./a")));
  EXPECT_TRUE(base::SameFile(Path("not there"), Path("./x/../not there")));
  EXPECT_FALSE(base::SameFile(Path("a"), Path("b")));
  fs::create_symlink(folder_ / "a", folder_ / "link");
  EXPECT_TRUE(base::SameFile(Path("link"), Path("a")));
  fs::create_hard_link(folder_ / "a", folder_ / "hard");
  EXPECT_TRUE(base::SameFile(Path("hard"), Path("a")));
}

TEST_F(Files, RightsAndLinksAreKept) {
  ASSERT_TRUE(base::WriteWholeFile(Path("real.ini"), "viejo"));
  const auto rights = fs::perms::owner_read | fs::perms::owner_write;
  fs::permissions(folder_ / "real.ini", rights);
  fs::create_symlink("real.ini", folder_ / "enlace.ini");
  ASSERT_TRUE(base::WriteWholeFile(Path("enlace.ini"), "nuevo"));
  EXPECT_TRUE(fs::is_symlink(folder_ / "enlace.ini"));
  EXPECT_EQ(base::ReadWholeFile(Path("real.ini")), "nuevo");
  EXPECT_EQ(fs::status(folder_ / "real.ini").permissions(), rights);
}

TEST_F(Files, CreatingNeverTouchesWhatExists) {
  EXPECT_TRUE(base::CreateIfMissing(Path("a.ini")));
  EXPECT_EQ(base::ReadWholeFile(Path("a.ini")), "");
  ASSERT_TRUE(base::WriteWholeFile(Path("a.ini"), "x"));
  EXPECT_TRUE(base::CreateIfMissing(Path("a.ini")));
  EXPECT_EQ(base::ReadWholeFile(Path("a.ini")), "x");
  EXPECT_FALSE(base::CreateIfMissing(Path("no/existe.ini")));
  EXPECT_FALSE(base::CreateIfMissing(folder_.string()));
}

TEST_F(Files, Folders) {
  EXPECT_TRUE(base::CreateFolder(Path("una/dos")));
  EXPECT_TRUE(base::CreateFolder(Path("una/dos")));
  EXPECT_TRUE(base::IsWritableFolder(Path("una/dos")));
  EXPECT_TRUE(fs::is_empty(folder_ / "una" / "dos"));  // the trial leaves nothing
  EXPECT_FALSE(base::IsWritableFolder(Path("tres")));
  ASSERT_TRUE(base::WriteWholeFile(Path("archivo"), ""));
  EXPECT_FALSE(base::CreateFolder(Path("archivo")));
  EXPECT_FALSE(base::IsWritableFolder(Path("archivo")));
}

TEST(Paths, Parts) {
  EXPECT_EQ(base::NameOf("/una/carpeta/año.mdb"), "año.mdb");
  EXPECT_EQ(base::FolderOf("/una/carpeta/año.mdb"), "/una/carpeta");
  EXPECT_EQ(base::FolderOf("solo.txt"), "");
  EXPECT_EQ(base::JoinPath("", "solo.txt"), "solo.txt");
  EXPECT_EQ(base::NameOf(base::JoinPath("/una", "dos")), "dos");
}

TEST(Paths, TheProgramsOwnFolderHoldsIt) {
  const std::string folder = base::ProgramFolder();
  ASSERT_FALSE(folder.empty());
  EXPECT_TRUE(fs::is_directory(folder));
}

TEST(Paths, Environment) {
  EXPECT_EQ(base::EnvironmentValue("IDM_NO_SUCH_VARIABLE_AT_ALL"), "");
  EXPECT_FALSE(base::EnvironmentValue("PATH").empty());
}

}  // namespace
