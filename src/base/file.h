// Whole files, with paths in UTF-8 on every system. The one place of the core that touches the file system.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace base {

bool FileExists(std::string_view path);  // a file of that path (not a folder)
// Tells one state of a file from another without reading it.
struct FileStamp {
  std::uintmax_t size = 0;    // bytes
  std::int64_t modified = 0;  // in the ticks of the system's file clock
  bool operator==(const FileStamp&) const = default;
};
std::optional<FileStamp> StampOf(std::string_view path);  // none when there is no such file
// The bytes, or none when it cannot be read.
std::optional<std::string> ReadWholeFile(std::string_view path);
// The same for at most the first `count` bytes.
std::optional<std::string> ReadBeginning(std::string_view path, std::size_t count);
// Replaces the file atomically: written beside it, flushed, renamed over it. False when any step failed; the
// old file is then as it was.
bool WriteWholeFile(std::string_view path, std::string_view bytes);
// The same for a file that may be read by nobody who may not read the file `like`, at no moment; by its owner
// alone when there is no such file. A file that is replaced grants no more than it did.
bool WritePrivateFile(std::string_view path, std::string_view bytes, std::string_view like);
// Both paths lead to one file, or would when it is made.
bool SameFile(std::string_view a, std::string_view b);
// Creates an empty file when there is none; never touches one that exists.
bool CreateIfMissing(std::string_view path);
bool CreateFolder(std::string_view path);
bool IsWritableFolder(std::string_view path);

std::string JoinPath(std::string_view folder, std::string_view name);
std::string FolderOf(std::string_view path);
std::string NameOf(std::string_view path);
std::string ProgramFolder();     // where the executable is
std::string UserConfigFolder();  // the user's configuration folder for this program
std::string TemporaryFolder();   // the system's; "" when it cannot be told
std::string EnvironmentValue(const char* name);

}  // namespace base
