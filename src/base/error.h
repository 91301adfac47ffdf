// Errors that travel between layers, and the one way to pass over them.
#pragma once

#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace base {

// What a failure says of the run that meets it. Statement: what was asked cannot be done, and passing over it
// leaves everything else as it was. Storage: reading, writing, locking or memory failed, or a page is
// damaged: whatever goes on after it would work on half of the data. Nobody tells the two apart by their
// texts.
enum class ErrorKind { Statement, Storage };

// A failure with a number of the dialect's runtime (5 bad call, 6 overflow, 11 division by zero, 13 type
// mismatch, 94 bad use of Null; the evaluator's own 1, 3 and 5; 0 when there is none), where it arose and a
// description in Spanish that an operator can read. All texts UTF-8.
class Error : public std::exception {
 public:
  explicit Error(std::string description, int number = 0, std::string source = {},
                 ErrorKind kind = ErrorKind::Statement)
      : description_(std::move(description)), source_(std::move(source)), number_(number), kind_(kind) {}

  const char* what() const noexcept override { return description_.c_str(); }
  const std::string& Description() const { return description_; }
  const std::string& Source() const { return source_; }
  int Number() const { return number_; }
  bool IsStorageFault() const { return kind_ == ErrorKind::Storage; }

 private:
  std::string description_;
  std::string source_;
  int number_;
  ErrorKind kind_;
};

// A failure of what lies under the statements, whoever meets it.
class StorageFault : public Error {
 public:
  explicit StorageFault(std::string description, int number = 0, std::string source = {})
      : Error(std::move(description), number, std::move(source), ErrorKind::Storage) {}
};

inline constexpr const char* kOutOfMemory = "No hay memoria suficiente.";

// Runs a step; memory that it did not get is a fault of the storage.
template <typename Step>
decltype(auto) MemoryAsFault(Step&& step) {
  try {
    return std::forward<Step>(step)();
  } catch (const std::bad_alloc&) {
    throw StorageFault(kOutOfMemory);
  }
}

// A failure that a routine passed over on purpose.
struct NotedError {
  std::string where;        // the routine and its step
  std::string description;  // what the error said
};

// Where passed-over failures are noted; tests look at it. A null sink forgets them.
using ErrorSink = std::vector<NotedError>;

// Runs one step whose failure is to be skipped. True when the step ended well. Catches base::Error alone: a
// defect of the program is not an error of the data, and travels on. So does a fault of the storage, which is
// noted on its way.
template <typename Step>
bool PassOverError(std::string_view where, ErrorSink* sink, Step&& step) {
  try {
    std::forward<Step>(step)();
    return true;
  } catch (const Error& e) {
    if (sink != nullptr) sink->push_back({std::string(where), e.Description()});
    if (e.IsStorageFault()) throw;
    return false;
  }
}

// The same for a step after which nothing more is read or written for the run: undoing, closing, tidying up.
// Faults of the storage are passed over too.
template <typename Step>
bool AnyErrorNoted(std::string_view where, ErrorSink* sink, Step&& step) {
  try {
    return PassOverError(where, sink, std::forward<Step>(step));
  } catch (const Error&) {
    return false;
  }
}

// The texts of the runtime's errors by number, in Spanish; an unknown number gives "Error " + number.
std::string ErrorDescription(int number);

}  // namespace base
