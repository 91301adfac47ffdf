// A connection that notes what the statements sent to another one cost.
#pragma once

#include <chrono>
#include <cstddef>
#include <ctime>
#include <map>
#include <memory>
#include <string>

#include "db/connection.h"

namespace bench {

// Processor time, which other programs on the machine do not change.
class CpuTimer {
 public:
  double Seconds() const { return static_cast<double>(std::clock() - start_) / CLOCKS_PER_SEC; }

 private:
  std::clock_t start_ = std::clock();
};

// Time of day; cheap enough for every statement.
class WallTimer {
 public:
  double Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

struct Cost {
  std::size_t times = 0;
  double seconds = 0;      // of day
  double cpu_seconds = 0;  // of the processor; only of what runs once
};

class MeasuredConnection final : public db::Connection {
 public:
  explicit MeasuredConnection(std::unique_ptr<db::Connection> other) : other_(std::move(other)) {}

  bool IsOpen() const override { return other_->IsOpen(); }
  void Close() override { other_->Close(); }
  db::Recordset Execute(std::string_view sql) override;
  db::Recordset Query(std::string_view sql) override;
  std::int64_t AffectedRows() const override { return other_->AffectedRows(); }
  void BeginTrans() override { other_->BeginTrans(); }
  void CommitTrans() override;
  void RollbackTrans() override { other_->RollbackTrans(); }
  bool InTransaction() const override { return other_->InTransaction(); }
  void SetSavepoint() override { other_->SetSavepoint(); }
  void RollbackToSavepoint() override { other_->RollbackToSavepoint(); }
  void ReleaseSavepoint() override { other_->ReleaseSavepoint(); }

  // By what the statement does; "commit" is one of them.
  const std::map<std::string, Cost, std::less<>>& Costs() const { return costs_; }
  void Forget() { costs_.clear(); }

 private:
  template <typename Step>
  auto Measure(std::string_view sql, Step&& step);

  std::unique_ptr<db::Connection> other_;
  std::map<std::string, Cost, std::less<>> costs_;
};

// Whether the statement of that name is one of the bulk updates that end an import.
bool IsFinalUpdate(std::string_view name);

}  // namespace bench
