// A new Access file in a folder of its own, and the connection to it.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "base/file.h"
#include "engine_mdb/mdb_connection.h"
#include "mdb/pages/disk_pages.h"
#include "mdb/schema/database.h"
#include "mdb/verify/verify.h"
#include "render.h"
#include "support/source_dir.h"
#include "support/temp_folder.h"

namespace test {

class MdbTestBench : public testing::Test {
 protected:
  MdbTestBench() : path_(folder_.Path("Personal ñandú.mdb")) {}

  void NewDatabase() { base_ = engine_mdb::Create(path_, Options()); }
  void OpenConnection(bool read_only = false) {
    base_.reset();
    engine_mdb::Options o = Options();
    o.read_only = read_only;
    base_ = engine_mdb::Open(path_, o);
  }
  engine_mdb::Options Options() const {
    engine_mdb::Options o;
    o.clock = &clock_;
    return o;
  }

  void RunSql(const std::string& sql) { base_->Execute(sql); }
  std::string RowsOf(const std::string& sql) { return support::Rows(base_->Execute(sql)); }
  template <typename Step>
  static std::string FailureOfStep(Step&& step) {
    try {
      step();
    } catch (const db::Error& e) {
      return support::ErrorText(e);
    }
    return "no error";
  }
  std::string FailureOfSql(const std::string& sql) {
    return FailureOfStep([&] { base_->Execute(sql); });
  }

  // What the file holds, and when it was last written.
  struct State {
    std::string bytes;
    std::filesystem::file_time_type date;
    bool operator==(const State&) const = default;
  };
  State File() const {
    return {*base::ReadWholeFile(path_), std::filesystem::last_write_time(std::filesystem::u8path(path_))};
  }

  // Closes the connection and checks the whole file, by our own check and by the independent one where it is
  // here.
  void Check() {
    base_.reset();
    const auto pages = mdb::DiskPages::Open(path_, true);
    for (const auto& h : mdb::Verify(*pages).findings)
      EXPECT_NE(h.severity, mdb::Finding::Severity::Error) << h.text;
    const std::string other = support::SharedDir() + "/tools/mdbcheck/jetcheck.py";
    if (support::SharedDir().empty() || !base::FileExists(other)) return;
    EXPECT_EQ(std::system(("python3 '" + other + "' --strict '" + path_ + "' >/dev/null").c_str()), 0);
  }

  support::TempFolder folder_;
  std::string path_;
  ports::FixedClock clock_{base::MakeDate(2026, 10, 20)};
  std::unique_ptr<db::Connection> base_;
};

}  // namespace test
