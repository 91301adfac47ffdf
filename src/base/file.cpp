#include "base/file.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include "base/encoding.h"

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <io.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace base {
namespace {

namespace fs = std::filesystem;

constexpr const char* kProgramName = "ImportDeMarcas";

#ifdef _WIN32

fs::path ToPath(std::string_view path) {
  const std::u16string width = ToUtf16(path);
  return fs::path(std::wstring(width.begin(), width.end()));
}

std::string FromPath(const fs::path& path) {
  const std::wstring width = path.wstring();
  return FromUtf16(std::u16string(width.begin(), width.end()));
}

std::FILE* Open(const fs::path& path, const wchar_t* mode) { return _wfopen(path.c_str(), mode); }
#define IDM_MODE(text) L##text

bool FlushToDisk(std::FILE* file) { return std::fflush(file) == 0 && _commit(_fileno(file)) == 0; }

bool Rename(const fs::path& new_path, const fs::path& old_path) {
  // ReplaceFile keeps the attributes of the file that is there; it fails when there is none.
  if (ReplaceFileW(old_path.c_str(), new_path.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                   nullptr) != 0)
    return true;
  return MoveFileExW(new_path.c_str(), old_path.c_str(),
                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

bool Substitute(const fs::path& new_path, const fs::path& old_path) { return Rename(new_path, old_path); }

bool CreateNew(const fs::path& path) {
  const HANDLE file =
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  return file != INVALID_HANDLE_VALUE && CloseHandle(file) != 0;
}

unsigned long ProcessId() { return GetCurrentProcessId(); }

// Who may read a file is said by its folder here.
std::FILE* OpenForOwner(const fs::path& path) { return Open(path, IDM_MODE("wb")); }
bool GrantAs(const fs::path&, const fs::path&, const fs::path&) { return true; }

#else

fs::path ToPath(std::string_view path) { return fs::path(std::string(path)); }
std::string FromPath(const fs::path& path) { return path.string(); }

std::FILE* Open(const fs::path& path, const char* mode) { return std::fopen(path.c_str(), mode); }
#define IDM_MODE(text) text

bool FlushToDisk(std::FILE* file) { return std::fflush(file) == 0 && fsync(fileno(file)) == 0; }

bool Rename(const fs::path& new_path, const fs::path& old_path) {
  if (std::rename(new_path.c_str(), old_path.c_str()) != 0) return false;
  // The name is safe only once its folder is; a folder that cannot be flushed is no failure of the write.
  const fs::path folder = old_path.parent_path();
  const int fd = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd >= 0) {
    fsync(fd);
    close(fd);
  }
  return true;
}

bool Substitute(const fs::path& new_path, const fs::path& old_path) {
  std::error_code error;
  const fs::file_status status = fs::status(old_path, error);
  if (!error && fs::exists(status)) fs::permissions(new_path, status.permissions(), error);
  return Rename(new_path, old_path);
}

bool CreateNew(const fs::path& path) {
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  return fd >= 0 && close(fd) == 0;
}

unsigned long ProcessId() { return static_cast<unsigned long>(getpid()); }

std::FILE* OpenForOwner(const fs::path& path) {
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) return nullptr;
  std::FILE* file = fchmod(fd, 0600) == 0 ? fdopen(fd, "wb") : nullptr;
  if (file == nullptr) close(fd);
  return file;
}

// The rights of `like`, less what `old_path` does not grant. Those of a group are for that group alone.
bool GrantAs(const fs::path& path, const fs::path& like, const fs::path& old_path) {
  struct stat model {
  }, old{}, own{};
  if (stat(path.c_str(), &own) != 0) return false;
  mode_t mode = 0600;
  if (stat(like.c_str(), &model) == 0) {
    mode |= model.st_mode & 0066;
    const bool same_group =
        own.st_gid == model.st_gid || chown(path.c_str(), static_cast<uid_t>(-1), model.st_gid) == 0;
    if (!same_group) mode &= ~static_cast<mode_t>(0060);
  }
  if (stat(old_path.c_str(), &old) == 0) mode &= old.st_mode | 0600;
  return chmod(path.c_str(), mode) == 0;
}

#endif

struct Closer {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, Closer>;

bool WriteAll(File file, std::string_view bytes) {
  if (file == nullptr) return false;
  if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) return false;
  if (!FlushToDisk(file.get())) return false;
  return std::fclose(file.release()) == 0;
}

// The file that a link stands for, so that writing replaces it and not the link.
fs::path Target(const fs::path& path) {
  std::error_code error;
  if (!fs::is_symlink(path, error)) return path;
  const fs::path real = fs::canonical(path, error);
  return error ? path : real;
}

fs::path TemporaryPath(const fs::path& path) {
  fs::path temporary = path;
  temporary += ".";
  temporary += std::to_string(ProcessId());
  temporary += ".tmp";
  return temporary;
}

}  // namespace

bool FileExists(std::string_view path) {
  std::error_code error;
  const fs::file_status status = fs::status(ToPath(path), error);
  return !error && fs::exists(status) && !fs::is_directory(status);
}

std::optional<FileStamp> StampOf(std::string_view path) {
  if (!FileExists(path)) return std::nullopt;
  std::error_code no_size, no_time;
  FileStamp stamp;
  stamp.size = fs::file_size(ToPath(path), no_size);
  stamp.modified = fs::last_write_time(ToPath(path), no_time).time_since_epoch().count();
  if (no_size || no_time) return std::nullopt;
  return stamp;
}

std::optional<std::string> ReadWholeFile(std::string_view path) {
  if (!FileExists(path)) return std::nullopt;  // a folder opens on some systems
  File file(Open(ToPath(path), IDM_MODE("rb")));
  if (file == nullptr) return std::nullopt;
  std::error_code error;
  const auto length = fs::file_size(ToPath(path), error);
  std::string bytes;
  if (!error) bytes.reserve(static_cast<std::size_t>(length));
  std::string chunk(std::size_t{1} << 16, '\0');
  while (const std::size_t read_count = std::fread(chunk.data(), 1, chunk.size(), file.get()))
    bytes.append(chunk, 0, read_count);
  if (std::ferror(file.get()) != 0) return std::nullopt;
  return bytes;
}

std::optional<std::string> ReadBeginning(std::string_view path, std::size_t count) {
  if (!FileExists(path)) return std::nullopt;
  File file(Open(ToPath(path), IDM_MODE("rb")));
  if (file == nullptr) return std::nullopt;
  std::string bytes(count, '\0');
  bytes.resize(std::fread(bytes.data(), 1, count, file.get()));
  if (std::ferror(file.get()) != 0) return std::nullopt;
  return bytes;
}

bool WriteWholeFile(std::string_view path, std::string_view bytes) {
  const fs::path target = Target(ToPath(path));
  const fs::path temporary = TemporaryPath(target);
  if (WriteAll(File(Open(temporary, IDM_MODE("wb"))), bytes) && Substitute(temporary, target)) return true;
  std::error_code error;
  fs::remove(temporary, error);
  return false;
}

bool WritePrivateFile(std::string_view path, std::string_view bytes, std::string_view like) {
  const fs::path target = Target(ToPath(path));
  const fs::path temporary = TemporaryPath(target);
  if (WriteAll(File(OpenForOwner(temporary)), bytes) && GrantAs(temporary, ToPath(like), target) &&
      Rename(temporary, target))
    return true;
  std::error_code error;
  fs::remove(temporary, error);
  return false;
}

bool SameFile(std::string_view a, std::string_view b) {
  std::error_code error;
  const fs::path one = Target(ToPath(a)), other = Target(ToPath(b));
  if (fs::equivalent(one, other, error)) return true;
  const fs::path where = fs::weakly_canonical(fs::absolute(one, error), error);
  return !error && where == fs::weakly_canonical(fs::absolute(other, error), error);
}

bool CreateIfMissing(std::string_view path) {
  if (FileExists(path)) return true;
  // Another program may create it meanwhile: that one is kept.
  return CreateNew(ToPath(path)) || FileExists(path);
}

bool CreateFolder(std::string_view path) {
  std::error_code error;
  const fs::path folder = ToPath(path);
  fs::create_directories(folder, error);
  return fs::is_directory(folder, error);
}

bool IsWritableFolder(std::string_view path) {
  std::error_code error;
  const fs::path folder = ToPath(path);
  if (!fs::is_directory(folder, error)) return false;
  // Asking the system for rights misses read-only media and server policies: try.
  const fs::path probe = TemporaryPath(folder / (std::string(kProgramName) + ".prueba"));
  const bool ok = File(Open(probe, IDM_MODE("wb"))) != nullptr;
  if (ok) fs::remove(probe, error);
  return ok;
}

std::string JoinPath(std::string_view folder, std::string_view name) {
  return folder.empty() ? std::string(name) : FromPath(ToPath(folder) / ToPath(name));
}

std::string FolderOf(std::string_view path) { return FromPath(ToPath(path).parent_path()); }
std::string NameOf(std::string_view path) { return FromPath(ToPath(path).filename()); }

std::string ProgramFolder() {
#ifdef _WIN32
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD n = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (n == 0) return {};
    if (n < path.size()) {
      path.resize(n);
      return FromPath(fs::path(path).parent_path());
    }
    path.resize(path.size() * 2);
  }
#else
  std::error_code error;
  const fs::path path = fs::read_symlink("/proc/self/exe", error);
  return error ? std::string() : FromPath(path.parent_path());
#endif
}

std::string UserConfigFolder() {
#ifdef _WIN32
  const std::string folder = EnvironmentValue("APPDATA");
#else
  std::string folder = EnvironmentValue("XDG_CONFIG_HOME");
  if (folder.empty()) {
    const std::string home = EnvironmentValue("HOME");
    if (!home.empty()) folder = JoinPath(home, ".config");
  }
#endif
  return folder.empty() ? std::string() : JoinPath(folder, kProgramName);
}

std::string TemporaryFolder() {
  std::error_code error;
  const fs::path folder = fs::temp_directory_path(error);
  return error ? std::string() : FromPath(folder);
}

std::string EnvironmentValue(const char* name) {
#ifdef _WIN32
  const std::u16string width = ToUtf16(name);
  const wchar_t* value = _wgetenv(std::wstring(width.begin(), width.end()).c_str());
  if (value == nullptr) return {};
  const std::wstring text = value;
  return FromUtf16(std::u16string(text.begin(), text.end()));
#else
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
#endif
}

}  // namespace base
