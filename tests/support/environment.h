// A variable of the environment, set for a test and put back as it was.
#pragma once

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>

namespace support {

class EnvironmentVariable {
 public:
  // Without a value the variable is not there.
  EnvironmentVariable(std::string name, const std::optional<std::string>& value) : name_(std::move(name)) {
    if (const char* before = std::getenv(name_.c_str())) before_ = before;
    Set(value);
  }
  ~EnvironmentVariable() { Put(before_); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

  void Set(const std::optional<std::string>& value) {
    if (Put(value) != 0) throw std::runtime_error("cannot set " + name_);
  }

 private:
  int Put(const std::optional<std::string>& value) const {
    return value ? setenv(name_.c_str(), value->c_str(), 1) : unsetenv(name_.c_str());
  }
  std::string name_;
  std::optional<std::string> before_;
};

}  // namespace support
