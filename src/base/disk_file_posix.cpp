#ifndef _WIN32

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>

#include "base/disk_file.h"
#include "base/file.h"
#include "base/standard_streams.h"

namespace base {
namespace {

// Locks that belong to the opening of a file, not to the process: closing another opening of the same file
// leaves them alone. Where there are none, the process's own.
#ifdef F_OFD_SETLK
constexpr int kSetLock = F_OFD_SETLK, kGetLock = F_OFD_GETLK;
#else
constexpr int kSetLock = F_SETLK, kGetLock = F_GETLK;
#endif

constexpr std::int64_t kSecond = 1'000'000'000;

DiskFault FaultOf(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return DiskFault::NotFound;
    case EEXIST:
      return DiskFault::AlreadyExists;
    case EACCES:
    case EPERM:
      return DiskFault::NoPermission;
    case EROFS:
      return DiskFault::ReadOnly;
    case EBUSY:
    case ETXTBSY:
      return DiskFault::InUse;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return DiskFault::DiskFull;
    case ENOLCK:
    case ENOSYS:
    case EOPNOTSUPP:
      return DiskFault::NotSupported;
    default:
      return DiskFault::Other;
  }
}

[[noreturn]] void Throw(std::string_view action, std::string_view path, int error) {
  throw DiskError(action, path, FaultOf(error), std::strerror(error));
}

std::int64_t Nanoseconds(const timespec& t) {
  return static_cast<std::int64_t>(t.tv_sec) * kSecond + t.tv_nsec;
}

#ifdef __APPLE__
const timespec& ModifiedTime(const struct stat& s) { return s.st_mtimespec; }
#else
const timespec& ModifiedTime(const struct stat& s) { return s.st_mtim; }
#endif

class PosixFile final : public OpenFile {
 public:
  PosixFile(int fd, std::string_view path) : fd_(fd), path_(path) {}
  ~PosixFile() override { close(fd_); }
  PosixFile(const PosixFile&) = delete;
  PosixFile& operator=(const PosixFile&) = delete;

  std::size_t Read(std::uint64_t pos, std::span<std::uint8_t> target) override {
    std::size_t done = 0;
    while (done < target.size()) {
      const ssize_t n =
          pread(fd_, target.data() + done, target.size() - done, static_cast<off_t>(pos + done));
      if (n == 0) break;
      if (n < 0 && errno != EINTR) Throw("No se puede leer", path_, errno);
      if (n > 0) done += static_cast<std::size_t>(n);
    }
    return done;
  }

  void Write(std::uint64_t pos, std::span<const std::uint8_t> bytes) override {
    std::size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t n = pwrite(fd_, bytes.data() + done, bytes.size() - done, static_cast<off_t>(pos + done));
      if (n == 0) Throw("No se puede escribir", path_, ENOSPC);
      if (n < 0 && errno != EINTR) Throw("No se puede escribir", path_, errno);
      if (n > 0) done += static_cast<std::size_t>(n);
    }
  }

  std::uint64_t Length() override { return static_cast<std::uint64_t>(Status().st_size); }

  void Resize(std::uint64_t length) override {
    int r = 0;
    do {
      r = ftruncate(fd_, static_cast<off_t>(length));
    } while (r != 0 && errno == EINTR);
    if (r != 0) Throw("No se puede cambiar el largo de", path_, errno);
  }

  void Sync() override {
    int r = 0;
    do {
      r = fsync(fd_);
    } while (r != 0 && errno == EINTR);
    if (r != 0) Throw("No se puede llevar al disco", path_, errno);
  }

  std::int64_t Date() override { return Nanoseconds(ModifiedTime(Status())); }

  void SetDate(std::int64_t date) override {
    std::int64_t seconds = date / kSecond;
    if (date % kSecond < 0) --seconds;  // before 1970
    const timespec times[2] = {{0, UTIME_OMIT},
                               {static_cast<time_t>(seconds), static_cast<long>(date - seconds * kSecond)}};
    if (futimens(fd_, times) != 0) Throw("No se puede fechar", path_, errno);
  }

  bool IsStillInPlace() override {
    struct stat there {};
    if (stat(path_.c_str(), &there) != 0) return false;
    const struct stat here = Status();
    return there.st_dev == here.st_dev && there.st_ino == here.st_ino;
  }

  bool Lock(std::uint64_t from, std::uint64_t count, bool exclusive) override {
    struct flock f = Range(from, count, exclusive ? F_WRLCK : F_RDLCK);
    if (Control(kSetLock, &f)) return true;
    if (errno == EACCES || errno == EAGAIN) return false;
    if (errno == EINVAL) errno = ENOSYS;  // what some file systems say instead
    Throw("No se puede bloquear", path_, errno);
  }

  void Unlock(std::uint64_t from, std::uint64_t count) override {
    struct flock f = Range(from, count, F_UNLCK);
    if (!Control(kSetLock, &f)) Throw("No se puede desbloquear", path_, errno);
  }

  std::optional<std::uint64_t> FirstLocked(std::uint64_t from, std::uint64_t count) override {
    // The system tells one lock, not always the first: look again before it.
    std::optional<std::uint64_t> first;
    while (count > 0) {
      struct flock f = Range(from, count, F_WRLCK);
      if (!Control(kGetLock, &f)) {
        if (errno == EINVAL) errno = ENOSYS;
        Throw("No se pueden ver los bloqueos de", path_, errno);
      }
      if (f.l_type == F_UNLCK) break;
      const auto where = std::max(from, static_cast<std::uint64_t>(f.l_start));
      first = where;
      count = where - from;
    }
    return first;
  }

 private:
  struct stat Status() const {
    struct stat s {};
    if (fstat(fd_, &s) != 0) Throw("No se puede consultar", path_, errno);
    return s;
  }
  static struct flock Range(std::uint64_t from, std::uint64_t count, short kind) {
    struct flock f {};
    f.l_type = kind;
    f.l_whence = SEEK_SET;
    f.l_start = static_cast<off_t>(from);
    f.l_len = static_cast<off_t>(count);
    f.l_pid = 0;
    return f;
  }
  bool Control(int command, struct flock* f) const {
    int r = 0;
    do {
      r = fcntl(fd_, command, f);
    } while (r != 0 && errno == EINTR);
    return r == 0;
  }

  int fd_;
  std::string path_;
};

std::string Folder(std::string_view path) {
  const std::string folder = FolderOf(path);
  return folder.empty() ? "." : folder;
}

}  // namespace

std::unique_ptr<OpenFile> SystemDisk::Open(std::string_view path, FileMode mode) {
  const std::string name(path);
  int flags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;  // a named pipe must not keep us waiting
  if (mode == FileMode::Read) flags |= O_RDONLY;
  if (mode == FileMode::Write) flags |= O_RDWR;
  if (mode == FileMode::New) flags |= O_RDWR | O_CREAT | O_EXCL;
  const char* action = mode == FileMode::New ? "No se puede crear" : "No se puede abrir";
  int fd = -1;
  do {
    fd = open(name.c_str(), flags, 0666);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0 && errno != EISDIR) Throw(action, path, errno);
  struct stat s {};
  if (fd < 0 || fstat(fd, &s) != 0 || !S_ISREG(s.st_mode)) {
    if (fd >= 0) close(fd);
    throw DiskError(action, path, DiskFault::Other, "no es un archivo");
  }
  return std::make_unique<PosixFile>(fd, path);
}

void SystemDisk::Delete(std::string_view path) {
  if (unlink(std::string(path).c_str()) != 0) Throw("No se puede borrar", path, errno);
}

void SystemDisk::Move(std::string_view from, std::string_view a) {
  const std::string old_path(from), new_path(a);
  // A second name fails when there is one already, which a rename does not.
  if (link(old_path.c_str(), new_path.c_str()) == 0) {
    if (unlink(old_path.c_str()) != 0) Throw("No se puede borrar", from, errno);
    return;
  }
  if (errno == EEXIST) Throw("No se puede crear", a, errno);
  // A file system without second names.
  struct stat s {};
  if (lstat(new_path.c_str(), &s) == 0) Throw("No se puede crear", a, EEXIST);
  if (std::rename(old_path.c_str(), new_path.c_str()) != 0) Throw("No se puede crear", a, errno);
}

void SystemDisk::SyncFolderOf(std::string_view path) {
  const std::string folder = Folder(path);
  const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) {
    if (errno == EACCES || errno == EPERM) return;  // a folder that may be written in but not listed
    Throw("No se puede abrir", folder, errno);
  }
  const int r = fsync(fd);
  const int error = errno;
  close(fd);
  if (r != 0 && error != EINVAL && FaultOf(error) != DiskFault::NotSupported)
    Throw("No se puede llevar al disco", folder, error);
}

bool SystemDisk::FolderAllowsNewFiles(std::string_view path) {
  return access(Folder(path).c_str(), W_OK | X_OK) == 0;
}

std::string SystemDisk::RealPath(std::string_view path) {
  std::error_code error;
  const std::filesystem::path real =
      std::filesystem::canonical(std::filesystem::path(std::string(path)), error);
  return error ? std::string(path) : real.string();
}

bool SystemDisk::LocksAreMandatory() { return false; }

std::int64_t SystemDisk::Now() {
  timespec t{};
  clock_gettime(CLOCK_REALTIME, &t);
  return Nanoseconds(t);
}

std::int64_t SystemDisk::Microsecond() { return 1000; }

// In their order, so that the lowest free number, which is what is handed out, is always the one in question.
void OpenStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0 || errno != EBADF) continue;
    int fd = open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    // Where there is no such device (a bare jail), a folder can neither be read nor written as a file.
    if (fd < 0) fd = open("/", O_RDONLY | O_DIRECTORY);
    if (fd != stream) throw Error("No se pueden abrir las salidas del programa");
  }
}

}  // namespace base

#endif
