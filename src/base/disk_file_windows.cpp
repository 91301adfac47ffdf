#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <algorithm>
#include <filesystem>

#include "base/disk_file.h"
#include "base/encoding.h"
#include "base/standard_streams.h"

namespace base {
namespace {

std::wstring WideString(std::string_view text) {
  const std::u16string u = ToUtf16(text);
  return {u.begin(), u.end()};
}

constexpr DWORD kQuotaError = 1295;  // ERROR_DISK_QUOTA_EXCEEDED, which not all headers have

DiskFault Kind(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_NAME:
      return DiskFault::NotFound;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return DiskFault::AlreadyExists;
    case ERROR_ACCESS_DENIED:
    case ERROR_PRIVILEGE_NOT_HELD:
    case ERROR_NETWORK_ACCESS_DENIED:
      return DiskFault::NoPermission;
    case ERROR_WRITE_PROTECT:
      return DiskFault::ReadOnly;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_DELETE_PENDING:
      return DiskFault::InUse;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case kQuotaError:
    case ERROR_FILE_TOO_LARGE:
      return DiskFault::DiskFull;
    case ERROR_NOT_SUPPORTED:
    case ERROR_INVALID_FUNCTION:
      return DiskFault::NotSupported;
    default:
      return DiskFault::Other;
  }
}

[[noreturn]] void Throw(std::string_view action, std::string_view path, DWORD error) {
  throw DiskError(action, path, Kind(error), "error " + std::to_string(error) + " de Windows");
}

OVERLAPPED Place(std::uint64_t pos) {
  OVERLAPPED o{};
  o.Offset = static_cast<DWORD>(pos & 0xFFFFFFFFU);
  o.OffsetHigh = static_cast<DWORD>(pos >> 32);
  return o;
}

std::int64_t HundredNanoseconds(const FILETIME& t) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(t.dwHighDateTime) << 32 | t.dwLowDateTime);
}

constexpr std::size_t kRun = std::size_t{1} << 26;  // of one call, whose count is 32 bits wide

class WindowsFile final : public OpenFile {
 public:
  WindowsFile(HANDLE h, std::string_view path) : h_(h), path_(path) {}
  ~WindowsFile() override { CloseHandle(h_); }
  WindowsFile(const WindowsFile&) = delete;
  WindowsFile& operator=(const WindowsFile&) = delete;

  std::size_t Read(std::uint64_t pos, std::span<std::uint8_t> target) override {
    std::size_t done = 0;
    while (done < target.size()) {
      OVERLAPPED o = Place(pos + done);
      DWORD n = 0;
      const auto requested = static_cast<DWORD>(std::min(kRun, target.size() - done));
      if (ReadFile(h_, target.data() + done, requested, &n, &o) == 0) {
        if (GetLastError() == ERROR_HANDLE_EOF) break;
        Throw("No se puede leer", path_, GetLastError());
      }
      if (n == 0) break;
      done += n;
    }
    return done;
  }

  void Write(std::uint64_t pos, std::span<const std::uint8_t> bytes) override {
    std::size_t done = 0;
    while (done < bytes.size()) {
      OVERLAPPED o = Place(pos + done);
      DWORD n = 0;
      const auto requested = static_cast<DWORD>(std::min(kRun, bytes.size() - done));
      if (WriteFile(h_, bytes.data() + done, requested, &n, &o) == 0)
        Throw("No se puede escribir", path_, GetLastError());
      if (n == 0) Throw("No se puede escribir", path_, ERROR_DISK_FULL);
      done += n;
    }
  }

  std::uint64_t Length() override {
    LARGE_INTEGER length{};
    if (GetFileSizeEx(h_, &length) == 0) Throw("No se puede consultar", path_, GetLastError());
    return static_cast<std::uint64_t>(length.QuadPart);
  }

  void Resize(std::uint64_t length) override {
    LARGE_INTEGER where{};
    where.QuadPart = static_cast<LONGLONG>(length);
    if (SetFilePointerEx(h_, where, nullptr, FILE_BEGIN) == 0 || SetEndOfFile(h_) == 0)
      Throw("No se puede cambiar el largo de", path_, GetLastError());
  }

  void Sync() override {
    if (FlushFileBuffers(h_) == 0) Throw("No se puede llevar al disco", path_, GetLastError());
  }

  std::int64_t Date() override {
    FILETIME t{};
    if (GetFileTime(h_, nullptr, nullptr, &t) == 0) Throw("No se puede consultar", path_, GetLastError());
    return HundredNanoseconds(t);
  }

  void SetDate(std::int64_t date) override {
    FILETIME t{};
    t.dwLowDateTime = static_cast<DWORD>(static_cast<std::uint64_t>(date) & 0xFFFFFFFFU);
    t.dwHighDateTime = static_cast<DWORD>(static_cast<std::uint64_t>(date) >> 32);
    if (SetFileTime(h_, nullptr, nullptr, &t) == 0) Throw("No se puede fechar", path_, GetLastError());
  }

  bool IsStillInPlace() override { return true; }  // an open file is not replaced: we do not share that

  bool Lock(std::uint64_t from, std::uint64_t count, bool exclusive) override {
    OVERLAPPED o = Place(from);
    const DWORD kind = LOCKFILE_FAIL_IMMEDIATELY | (exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0);
    if (LockFileEx(h_, kind, 0, static_cast<DWORD>(count & 0xFFFFFFFFU), static_cast<DWORD>(count >> 32),
                   &o) != 0)
      return true;
    const DWORD error = GetLastError();
    if (error == ERROR_LOCK_VIOLATION || error == ERROR_IO_PENDING) return false;
    Throw("No se puede bloquear", path_, error);
  }

  void Unlock(std::uint64_t from, std::uint64_t count) override {
    OVERLAPPED o = Place(from);
    if (UnlockFileEx(h_, 0, static_cast<DWORD>(count & 0xFFFFFFFFU), static_cast<DWORD>(count >> 32), &o) ==
        0)
      Throw("No se puede desbloquear", path_, GetLastError());
  }

  // There is no question about a lock but trying to take it.
  std::optional<std::uint64_t> FirstLocked(std::uint64_t from, std::uint64_t count) override {
    for (std::uint64_t i = 0; i < count; ++i) {
      if (!Lock(from + i, 1, true)) return from + i;
      Unlock(from + i, 1);
    }
    return std::nullopt;
  }

 private:
  HANDLE h_;
  std::string path_;
};

}  // namespace

std::unique_ptr<OpenFile> SystemDisk::Open(std::string_view path, FileMode mode) {
  const DWORD access = GENERIC_READ | (mode == FileMode::Read ? 0 : GENERIC_WRITE);
  // A reader lets others do all; who writes a base lets others only read it; our own new files may be removed
  // while somebody reads them.
  DWORD share = FILE_SHARE_READ;
  if (mode == FileMode::Read) share |= FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  if (mode == FileMode::New) share |= FILE_SHARE_DELETE;
  const HANDLE h =
      CreateFileW(WideString(path).c_str(), access, share, nullptr,
                  mode == FileMode::New ? CREATE_NEW : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (h == INVALID_HANDLE_VALUE)
    Throw(mode == FileMode::New ? "No se puede crear" : "No se puede abrir", path, GetLastError());
  return std::make_unique<WindowsFile>(h, path);
}

void SystemDisk::Delete(std::string_view path) {
  if (DeleteFileW(WideString(path).c_str()) == 0) Throw("No se puede borrar", path, GetLastError());
}

void SystemDisk::Move(std::string_view from, std::string_view a) {
  if (MoveFileExW(WideString(from).c_str(), WideString(a).c_str(), MOVEFILE_WRITE_THROUGH) == 0)
    Throw("No se puede crear", a, GetLastError());
}

void SystemDisk::SyncFolderOf(std::string_view) {}  // the file system keeps a log of names

bool SystemDisk::FolderAllowsNewFiles(std::string_view) { return true; }

std::string SystemDisk::RealPath(std::string_view path) {
  std::error_code error;
  const std::filesystem::path real =
      std::filesystem::canonical(std::filesystem::path(WideString(path)), error);
  if (error) return std::string(path);
  const std::wstring wide = real.wstring();
  return FromUtf16(std::u16string(wide.begin(), wide.end()));
}

bool SystemDisk::LocksAreMandatory() { return true; }

std::int64_t SystemDisk::Now() {
  FILETIME t{};
  GetSystemTimeAsFileTime(&t);
  return HundredNanoseconds(t);
}

std::int64_t SystemDisk::Microsecond() { return 10; }

// The runtime keeps its three descriptors to itself even when they are closed. The handles are only numbers
// that the parent wrote down: one that was not inherited could become that of the next file opened.
void OpenStandardStreams() {
  for (const DWORD stream : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
    const HANDLE handle = GetStdHandle(stream);
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE) continue;
    DWORD flags = 0;
    if (GetHandleInformation(handle, &flags) == 0) SetStdHandle(stream, nullptr);
  }
}

}  // namespace base

#endif
