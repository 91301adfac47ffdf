// A connection that only answers: what a test says to Execute is all that it does.
#pragma once

#include <string_view>

#include "db/connection.h"

namespace support {

class QuietConnection : public db::Connection {
 public:
  bool IsOpen() const override { return true; }
  void Close() override {}
  db::Recordset Query(std::string_view sql) override { return Execute(sql); }
  std::int64_t AffectedRows() const override { return 0; }
  void BeginTrans() override {}
  void CommitTrans() override {}
  void RollbackTrans() override {}
  bool InTransaction() const override { return false; }
  void SetSavepoint() override {}
  void RollbackToSavepoint() override {}
  void ReleaseSavepoint() override {}
};

}  // namespace support
