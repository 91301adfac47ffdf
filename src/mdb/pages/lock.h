// Who else has a base open: our own programs and those that keep a lock file (.ldb, .laccdb) beside it.
//
// Our programs lock bytes of the base itself, far behind the greatest size of the format:
//
//   kWriterByte   held by the one who has the base open for writing, from opening to closing. Where locks
//   do
//                   not hinder reading, all bytes before it too, so that programs that ask for any lock see
//                   it.
//   kByteCommit     held alone while a commit or a rollback changes bytes, and shared while a reader reads
//                   some pages. So nobody reads in the middle of a commit, and nobody waits longer than for
//                   one.
//
// Other programs lock one byte of their lock file while they are open, and write who they are at the slot of
// that byte. What a slot says stays when its program is killed; only the lock tells that it lives.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/disk_file.h"

namespace mdb {

inline constexpr std::uint64_t kWriterByte = 0x90000000, kByteCommit = 0x90000001;

// Takes the writer's lock; false when another program of ours has it.
bool LockWriter(base::Disk& disk, base::OpenFile& file);

// The commit lock, given back at the end. Waits for whoever has it; throws base::Error after ten seconds.
// `has_locks` false: does nothing, on a disk without locks, where nobody writes.
class CommitLock {
 public:
  CommitLock(base::Disk& disk, base::OpenFile& file, bool exclusive, bool has_locks = true);
  ~CommitLock();
  CommitLock(const CommitLock&) = delete;
  CommitLock& operator=(const CommitLock&) = delete;

 private:
  base::OpenFile* file_ = nullptr;
};

// Whether another program has the base open through a lock file: in Spanish, with the computer and the user
// when the slot tells them; empty when nobody has. A lock file that cannot be looked at counts as held.
std::string WhoHasItOpen(base::Disk& disk, std::string_view database_path);

}  // namespace mdb
