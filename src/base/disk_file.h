// One file on disk, read and written in place: what a database file needs and whole-file calls do not give.
//
// Interfaces, so that tests can put a disk that fails or loses what was not synced below the code that must
// survive it; SystemDisk is the real one. Positions and lengths are bytes, 64 bits wide; paths are
// UTF-8. Every failure is a DiskError whose text names the file and the system's reason in Spanish.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/error.h"

namespace base {

enum class DiskFault {
  NotFound,
  AlreadyExists,
  NoPermission,
  ReadOnly,  // read-only media
  InUse,     // another program keeps it from us
  DiskFull,
  NotSupported,  // the file system does not do this
  Other
};

class DiskError : public StorageFault {
 public:
  // `action` is what could not be done: "No se puede abrir".
  DiskError(std::string_view action, std::string_view path, DiskFault fault, std::string_view reason);
  DiskFault Fault() const { return fault_; }

 private:
  DiskFault fault_;
};

enum class FileMode {
  Read,
  Write,  // an existing file; on Windows it denies writing to others
  New     // created for reading and writing; fails when there is one
};

class OpenFile {
 public:
  virtual ~OpenFile() = default;
  // Fewer bytes than asked for only at the end of the file.
  virtual std::size_t Read(std::uint64_t pos, std::span<std::uint8_t> target) = 0;
  virtual void Write(std::uint64_t pos, std::span<const std::uint8_t> bytes) = 0;
  virtual std::uint64_t Length() = 0;
  virtual void Resize(std::uint64_t length) = 0;  // what is added is zeros
  // Returns when everything written is on the disk.
  virtual void Sync() = 0;

  // The date of the last change, in a unit of the system's own (nanoseconds or better on most); it only
  // serves to be compared and set again.
  virtual std::int64_t Date() = 0;
  virtual void SetDate(std::int64_t date) = 0;
  // Whether the path still leads to this file, not to one that was put in its place.
  virtual bool IsStillInPlace() = 0;

  // Locks of bytes, which need not be inside the file. They belong to this opening of the file and end with
  // it, also when the process is killed. False when another one holds them; never waits. Throws NotSupported
  // where the file system has no locks.
  virtual bool Lock(std::uint64_t from, std::uint64_t count, bool exclusive) = 0;
  virtual void Unlock(std::uint64_t from, std::uint64_t count) = 0;
  // The first byte of the range that somebody else has locked.
  virtual std::optional<std::uint64_t> FirstLocked(std::uint64_t from, std::uint64_t count) = 0;
};

class Disk {
 public:
  virtual ~Disk() = default;
  virtual std::unique_ptr<OpenFile> Open(std::string_view path, FileMode mode) = 0;
  virtual bool Exists(std::string_view path) = 0;
  virtual void Delete(std::string_view path) = 0;
  // Never over a file that is there: AlreadyExists.
  virtual void Move(std::string_view from, std::string_view a) = 0;
  // Makes what was created, removed or moved in the file's folder safe. Where the system does that by itself,
  // or cannot, it does nothing.
  virtual void SyncFolderOf(std::string_view path) = 0;
  // Whether files may be created beside this one, as far as can be told without trying.
  virtual bool FolderAllowsNewFiles(std::string_view path) = 0;
  // The path with its links followed, so that all who open a file find what lies beside it.
  virtual std::string RealPath(std::string_view path) = 0;
  // Whether bytes that one has locked cannot be read by another; else locks bind only those who ask for them.
  virtual bool LocksAreMandatory() = 0;
  // The present moment in the unit of OpenFile::Date, and how much of it a microsecond is.
  virtual std::int64_t Now() = 0;
  virtual std::int64_t Microsecond() = 0;
  // The wait between two tries for a lock.
  virtual void Wait(int milliseconds) = 0;
};

class SystemDisk final : public Disk {
 public:
  std::unique_ptr<OpenFile> Open(std::string_view path, FileMode mode) override;
  bool Exists(std::string_view path) override;
  void Delete(std::string_view path) override;
  void Move(std::string_view from, std::string_view a) override;
  void SyncFolderOf(std::string_view path) override;
  bool FolderAllowsNewFiles(std::string_view path) override;
  std::string RealPath(std::string_view path) override;
  bool LocksAreMandatory() override;
  std::int64_t Now() override;
  std::int64_t Microsecond() override;
  void Wait(int milliseconds) override;
};

}  // namespace base
