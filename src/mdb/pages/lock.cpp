#include "mdb/pages/lock.h"

#include <array>

#include "base/encoding.h"
#include "base/file.h"
#include "mdb/pages/bytes.h"

namespace mdb {
namespace {

constexpr std::uint64_t kUsers = 0x10000000, kMaxUsers = 255;
constexpr std::size_t kSlot = 64, kName = 32;
// Milliseconds between two tries, short at first because most commits are, and in all.
constexpr int kShort = 1, kLong = 10, kShortUntil = 10, kTotalWait = 10'000;

// "Personal.mdb" -> "Personal" with the lock file's endings; the name's case matters on some systems.
std::array<std::string, 2> LockFiles(std::string_view path) {
  std::string stem(path);
  std::string end;
  if (const auto point = stem.rfind('.');
      point != std::string::npos && stem.find_first_of("/\\", point) == std::string::npos) {
    end = stem.substr(point);
    stem.resize(point);
  }
  const bool modern = end == ".accdb" || end == ".ACCDB";
  return {stem + (modern ? ".laccdb" : ".ldb"), stem + (modern ? ".LACCDB" : ".LDB")};
}

// A name of a slot: ended by a zero byte, padded with blanks.
std::string Name(View bytes) {
  std::string text;
  for (const auto b : bytes) {
    if (b == 0) break;
    text.push_back(b < 0x20 ? ' ' : static_cast<char>(b));
  }
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return base::FromCp1252(text);
}

std::string Who(base::OpenFile& file, std::uint64_t slot) {
  std::array<std::uint8_t, kSlot> bytes{};
  std::string machine, user;
  base::AnyErrorNoted("QuienLaTieneAbierta", nullptr, [&] {
    if (file.Read(slot * kSlot, bytes) < bytes.size()) return;
    machine = Name(View(bytes).first(kName));
    user = Name(View(bytes).subspan(kName));
  });
  if (machine.empty()) return "otro programa la tiene abierta";
  return "está abierta en el equipo " + machine + (user.empty() ? "" : " (usuario " + user + ")");
}

}  // namespace

bool LockWriter(base::Disk& disk, base::OpenFile& file) {
  if (disk.LocksAreMandatory()) return file.Lock(kWriterByte, 1, true);
  return file.Lock(0, kWriterByte + 1, true);
}

CommitLock::CommitLock(base::Disk& disk, base::OpenFile& file, bool exclusive, bool has_locks) {
  if (!has_locks) return;
  for (int waited = 0; !file.Lock(kByteCommit, 1, exclusive);) {
    if (waited >= kTotalWait)
      throw base::StorageFault("La base está ocupada: otro programa no termina de usarla");
    const int wait = waited < kShortUntil ? kShort : kLong;
    disk.Wait(wait);
    waited += wait;
  }
  file_ = &file;
}

CommitLock::~CommitLock() {
  if (file_ == nullptr) return;
  // What cannot be unlocked ends with the file.
  base::AnyErrorNoted("BloqueoDeCommit", nullptr, [&] { file_->Unlock(kByteCommit, 1); });
}

std::string WhoHasItOpen(base::Disk& disk, std::string_view database_path) {
  for (const auto& path : LockFiles(database_path)) {
    if (!disk.Exists(path)) continue;
    try {
      const auto file = disk.Open(path, base::FileMode::Read);
      if (const auto byte = file->FirstLocked(kUsers + 1, kMaxUsers)) return Who(*file, *byte - kUsers - 1);
    } catch (const base::DiskError& e) {
      if (e.Fault() == base::DiskFault::InUse) return "otro programa la tiene abierta";
      // Gone meanwhile, or on a disk without locks: nobody can be told to have it.
      if (e.Fault() == base::DiskFault::NotFound || e.Fault() == base::DiskFault::NotSupported) continue;
      return "no se puede saber si otro programa la tiene abierta. " + e.Description();
    }
  }
  return {};
}

}  // namespace mdb
