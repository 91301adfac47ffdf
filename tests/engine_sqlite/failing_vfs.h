// SQLite's own files, of which any call can be told to fail. While one lives, every base that is opened
// stands on it.
#pragma once

#include <sqlite3.h>

#include <string>

namespace test {

class FailingVfs {
 public:
  FailingVfs();
  ~FailingVfs();
  FailingVfs(const FailingVfs&) = delete;
  FailingVfs& operator=(const FailingVfs&) = delete;

  // The call of that number (from 1), or all from it on, end with an error of the disk.
  void FailAt(int call, bool always = false) {
    fail_at_ = call;
    always_ = always;
    calls_ = 0;
    failed_ = 0;
  }
  void Heal() { fail_at_ = 0; }
  int Calls() const { return calls_; }
  int Failed() const { return failed_; }             // calls that did
  const std::string& What() const { return what_; }  // the last of them

  // Of the files: whether this call fails.
  bool Count(const char* what);
  sqlite3_vfs* Real() { return real_; }

 private:
  sqlite3_vfs* real_;
  sqlite3_vfs own_{};
  int calls_ = 0, fail_at_ = 0, failed_ = 0;
  bool always_ = false;
  std::string what_;
};

}  // namespace test
