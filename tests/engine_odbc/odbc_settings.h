// Tests of the ODBC engine: drivers by their path, and a configuration of ODBC that is the test's own.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "engine_odbc/odbc_connection.h"
#include "engine_sqlite/render.h"
#include "support/temp_folder.h"

namespace tests {

// The description of the failure, or "no error".
template <typename Step>
std::string FailureOf(Step&& step) {
  try {
    step();
  } catch (const db::Error& e) {
    return support::ErrorText(e);
  }
  return "no error";
}

// Connections over the driver that the tests tell what to do (see fake_driver.h).
class TestDriver : public testing::Test {
 protected:
  static std::string ConnectionString(const std::string& options = {}) {
    return "Driver=" IDM_ODBC_TEST ";" + options;
  }
  void Open(const std::string& options = {}, const engine_odbc::Options& connection_options = {}) {
    base_ = engine_odbc::Open(ConnectionString(options), connection_options);
  }
  db::Recordset Run(const std::string& sql) { return base_->Execute(sql); }
  std::string Rows(const std::string& sql) { return support::Rows(base_->Execute(sql)); }
  // What the driver was sent.
  std::string Arrives(const std::string& sql) { return base_->Execute(sql).Field("texto").Text(); }
  std::string ErrorOf(const std::string& sql) {
    return FailureOf([&] { base_->Execute(sql); });
  }

  std::unique_ptr<db::Connection> base_;
};

// What ODBC takes for the system's configuration: the texts of odbcinst.ini (drivers) and odbc.ini (data
// sources).
inline void Configure(const std::string& drivers, const std::string& sources = {}) {
  static const support::TempFolder kFolder;
  kFolder.Write("odbcinst.ini", drivers);
  kFolder.Write("odbc.ini", sources);
  setenv("ODBCSYSINI", kFolder.Folder().c_str(), 1);
  setenv("ODBCINI", kFolder.Path("odbc.ini").c_str(), 1);
}
// unixODBC remembers the folder from its first look on: it must be ours from the beginning.
inline const bool kConfigured = (Configure({}), true);

}  // namespace tests
