#include "failing_reads.h"

#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace {

prueba::FailingReads* active = nullptr;  // the system's call has no other way to find it

using Read = ssize_t (*)(int, void*, size_t, off_t);

ssize_t ReadOrFail(const char* name, int fd, void* to, size_t n, off_t pos) {
  if (active != nullptr && active->Fails(fd)) {
    errno = EIO;
    return -1;
  }
  return reinterpret_cast<Read>(dlsym(RTLD_NEXT, name))(fd, to, n, pos);
}

}  // namespace

// Offsets have 64 bits in both.
static_assert(sizeof(off_t) == 8);
extern "C" {
ssize_t pread(int fd, void* to, size_t n, off_t pos) { return ReadOrFail("pread", fd, to, n, pos); }
ssize_t pread64(int fd, void* to, size_t n, off_t pos) { return ReadOrFail("pread64", fd, to, n, pos); }
}

namespace prueba {

FailingReads::FailingReads(std::string prefix) : prefix_(std::move(prefix)) { active = this; }
FailingReads::~FailingReads() { active = nullptr; }

bool FailingReads::Fails(int fd) {
  std::array<char, 4096> path{};
  const std::string link = "/proc/self/fd/" + std::to_string(fd);
  const ssize_t n = readlink(link.c_str(), path.data(), path.size());
  if (n <= 0 || std::string(path.data(), static_cast<std::size_t>(n)).rfind(prefix_, 0) != 0) return false;
  ++reads_;
  if (fail_at_ == 0 || (always_ ? reads_ < fail_at_ : reads_ != fail_at_)) return false;
  failed_ = true;
  return true;
}

}  // namespace prueba
