// Reads of a base that fail below both engines: the system's own call is replaced in the test program.
#pragma once

#include <string>

namespace prueba {

// While one lives, reads of files whose path starts with `prefix` count, and can be told to fail.
class FailingReads {
 public:
  explicit FailingReads(std::string prefix);
  ~FailingReads();
  FailingReads(const FailingReads&) = delete;
  FailingReads& operator=(const FailingReads&) = delete;

  // The read of that number (from 1), or all from it on, end with EIO.
  void FailAt(int read, bool always) {
    fail_at_ = read;
    always_ = always;
  }
  void Heal() { fail_at_ = 0; }
  int Reads() const { return reads_; }
  bool Reached() const { return failed_; }

  bool Fails(int fd);  // of the call itself

 private:
  std::string prefix_;
  int reads_ = 0, fail_at_ = 0;
  bool always_ = false, failed_ = false;
};

}  // namespace prueba
