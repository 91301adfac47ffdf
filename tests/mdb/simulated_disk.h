// A disk in memory that can be cut, fail or be full at any call, and forgets what was not synced.
//
// Each call that changes something counts. What a file was written since its last sync is kept apart, in
// sectors, as are the names created and removed since the last sync of the folder: after a cut any of it may
// be lost.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "base/disk_file.h"
#include "mdb/pages/bytes.h"

namespace mdb_test {

// The current goes, or the program is killed: no code of the program sees it as an error.
struct Cut {};

class SimulatedDisk : public base::Disk {
 public:
  SimulatedDisk();
  ~SimulatedDisk() override;

  // The call of that number (from 1) ends in a Cut; a write is then half done.
  void CutAt(int call) { cut_at_ = call; }
  // The call of that number, or all from it on, throw a DiskError; a write is then half done.
  void FailAt(int call, bool always = false) {
    fail_at_ = call;
    fail_always_ = always;
  }
  // The same for calls that only look: reading, asking for the length or the date, locking.
  void FailLookAt(int call, bool always = false) {
    fail_look_at_ = call;
    fail_looks_always_ = always;
    looks_ = failed_looks_ = 0;
  }
  int FailedLooks() const { return failed_looks_; }
  void Heal() { fail_at_ = cut_at_ = fail_look_at_ = 0; }
  // No more bytes than these in all files.
  void Fill(std::optional<std::uint64_t> place) { room_ = place; }
  void StopClock() { stopped_ = true; }  // all that happens falls in one tick
  void SetReadOnly(bool on) { read_only_ = on; }
  void RemoveLocks() { without_locks_ = true; }  // a disk that has none
  int Calls() const { return calls_; }
  void RestartCount() { calls_ = 0; }
  const std::vector<std::string>& Log() const { return log_; }  // the calls, for messages

  enum class Loss { Nothing, All, Random };  // of what was not synced
  // The disk as found after a cut; all who had files open are gone.
  std::shared_ptr<SimulatedDisk> After(Loss loss, std::mt19937& random) const;

  void Put(const std::string& path, const mdb::Bytes& bytes);  // there since long ago
  mdb::Bytes Contents(const std::string& path) const;
  std::uint64_t UsedSpace() const;

  std::unique_ptr<base::OpenFile> Open(std::string_view path, base::FileMode mode) override;
  bool Exists(std::string_view path) override;
  void Delete(std::string_view path) override;
  void Move(std::string_view from, std::string_view a) override;
  void SyncFolderOf(std::string_view path) override;
  bool FolderAllowsNewFiles(std::string_view) override { return true; }
  std::string RealPath(std::string_view path) override { return std::string(path); }
  bool LocksAreMandatory() override { return false; }
  std::int64_t Now() override { return stopped_ ? clock_ : ++clock_; }
  std::int64_t Microsecond() override { return 1; }
  void Wait(int) override {}

 private:
  friend class SimulatedFile;
  struct Node;
  using Names = std::map<std::string, std::shared_ptr<Node>>;
  // True when the call must be done by half and then fail.
  bool Count(const std::string& what);
  [[noreturn]] void Break(const std::string& path) const;
  void Look(const std::string& what, const std::string& path);

  Names names_, durable_names_;
  int calls_ = 0, cut_at_ = 0, fail_at_ = 0;
  int looks_ = 0, fail_look_at_ = 0, failed_looks_ = 0;
  bool fail_looks_always_ = false;
  bool fail_always_ = false, read_only_ = false, stopped_ = false, without_locks_ = false;
  std::optional<std::uint64_t> room_;
  std::int64_t clock_ = 1000;
  std::vector<std::string> log_;
};

}  // namespace mdb_test
