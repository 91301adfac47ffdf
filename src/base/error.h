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
  explicit Error(std::string descripcion, int numero = 0, std::string fuente = {},
                 ErrorKind kind = ErrorKind::Statement)
      : descripcion_(std::move(descripcion)), fuente_(std::move(fuente)), numero_(numero), kind_(kind) {}

  const char* what() const noexcept override { return descripcion_.c_str(); }
  const std::string& Descripcion() const { return descripcion_; }
  const std::string& Fuente() const { return fuente_; }
  int Numero() const { return numero_; }
  bool IsStorageFault() const { return kind_ == ErrorKind::Storage; }

 private:
  std::string descripcion_;
  std::string fuente_;
  int numero_;
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
struct ErrorAnotado {
  std::string donde;        // the routine and its step
  std::string descripcion;  // what the error said
};

// Where passed-over failures are noted; tests look at it. A null sink forgets them.
using SumideroErrores = std::vector<ErrorAnotado>;

// Runs one step whose failure is to be skipped. True when the step ended well. Catches base::Error alone: a
// defect of the program is not an error of the data, and travels on. So does a fault of the storage, which is
// noted on its way.
template <typename Paso>
bool ErrorIgnorado(std::string_view donde, SumideroErrores* sumidero, Paso&& paso) {
  try {
    std::forward<Paso>(paso)();
    return true;
  } catch (const Error& e) {
    if (sumidero != nullptr) sumidero->push_back({std::string(donde), e.Descripcion()});
    if (e.IsStorageFault()) throw;
    return false;
  }
}

// The same for a step after which nothing more is read or written for the run: undoing, closing, tidying up.
// Faults of the storage are passed over too.
template <typename Step>
bool AnyErrorNoted(std::string_view where, SumideroErrores* sink, Step&& step) {
  try {
    return ErrorIgnorado(where, sink, std::forward<Step>(step));
  } catch (const Error&) {
    return false;
  }
}

// The texts of the runtime's errors by number, in Spanish; an unknown number gives "Error " + number.
std::string DescripcionDeError(int numero);

}  // namespace base
