// The ODBC library: owning handles, its texts, and its errors as db::Error.
#pragma once

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "db/connection.h"

namespace engine_odbc {

static_assert(sizeof(SQLWCHAR) == 2, "the texts of the driver manager are UTF-16");

// A handle of the driver manager; null until it is made.
template <SQLSMALLINT What>
class Handle {
 public:
  Handle() = default;
  explicit Handle(SQLHANDLE raw) : raw_(raw) {}
  Handle(Handle&& other) noexcept : raw_(std::exchange(other.raw_, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(raw_, other.raw_);
    return *this;
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() { Release(); }

  SQLHANDLE Raw() const { return raw_; }
  explicit operator bool() const { return raw_ != nullptr; }
  void Release() {
    if (raw_ != nullptr) SQLFreeHandle(What, std::exchange(raw_, nullptr));
  }

 private:
  SQLHANDLE raw_ = nullptr;
};
using Environment = Handle<SQL_HANDLE_ENV>;
using Link = Handle<SQL_HANDLE_DBC>;
using Cursor = Handle<SQL_HANDLE_STMT>;

Environment MakeEnvironment();
// Both throw what `parent` says when it fails.
Link MakeLink(const Environment& parent);
Cursor MakeCursor(const Link& parent);

// Leaves the cursor ready for the next statement, whatever happened in this one.
class CloseCursor {
 public:
  explicit CloseCursor(const Cursor& cursor) : cursor_(cursor) {}
  CloseCursor(const CloseCursor&) = delete;
  CloseCursor& operator=(const CloseCursor&) = delete;
  ~CloseCursor() {
    if (cursor_) SQLFreeStmt(cursor_.Raw(), SQL_CLOSE);  // gone when the connection was lost
  }

 private:
  const Cursor& cursor_;
};

// UTF-16 as the driver manager takes it, with a NUL after its end.
class WideText {
 public:
  explicit WideText(std::string_view utf8);
  SQLWCHAR* Data() { return units_.data(); }
  SQLINTEGER Length() const { return static_cast<SQLINTEGER>(units_.size() - 1); }
  SQLSMALLINT ShortLength() const { return static_cast<SQLSMALLINT>(units_.size() - 1); }

 private:
  std::vector<SQLWCHAR> units_;
};
std::string FromWide(const SQLWCHAR* units, std::size_t count);

// While it lives, unixODBC takes the texts of drivers without UTF-16 functions for UTF-8. It looks once,
// while connecting, and would else take the program's "C" locale at its word and spoil every accent.
class Utf8Texts {
 public:
  Utf8Texts();
  Utf8Texts(const Utf8Texts&) = delete;
  Utf8Texts& operator=(const Utf8Texts&) = delete;
  ~Utf8Texts();

 private:
  void* previous_ = nullptr;
  void* own_ = nullptr;
};
// Whether the driver manager must turn our texts into bytes for the driver of this open connection, losing
// the characters beyond U+FFFF.
bool LosesCharacters(SQLHANDLE link);

// One record of what a driver says of its last call.
struct Diagnostic {
  std::string state;  // five characters
  std::string text;
  std::int32_t native = 0;  // the driver's own number
};
std::vector<Diagnostic> Diagnostics(SQLSMALLINT what, SQLHANDLE handle);

class OdbcError : public db::Error {
 public:
  enum class Cause { Other, Lost, TimedOut };
  OdbcError(std::string text, int number, std::string source, base::ErrorKind kind, Cause cause)
      : db::Error(std::move(text), number, std::move(source), kind), cause_(cause) {}
  bool Lost() const { return cause_ == Cause::Lost; }          // the other side is gone
  bool TimedOut() const { return cause_ == Cause::TimedOut; }  // the driver ended a statement that took long
  Cause Why() const { return cause_; }

 private:
  Cause cause_;
};

// What a failure means for the operator, in Spanish, with all that the driver said after it.
//   if_nothing     the phrase for a state that says nothing in particular
//   if_unclear  its kind then, when the driver's own number does not tell it either
OdbcError ErrorOf(const std::vector<Diagnostic>& diagnostics, std::string_view if_nothing,
                  base::ErrorKind if_unclear = base::ErrorKind::Statement);
// The same for a step after which the run cannot go on, whatever the state says.
OdbcError FaultOf(const std::vector<Diagnostic>& diagnostics, std::string_view if_nothing);

}  // namespace engine_odbc
