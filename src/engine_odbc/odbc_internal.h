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
template <SQLSMALLINT Que>
class Manejador {
 public:
  Manejador() = default;
  explicit Manejador(SQLHANDLE cruda) : cruda_(cruda) {}
  Manejador(Manejador&& otro) noexcept : cruda_(std::exchange(otro.cruda_, nullptr)) {}
  Manejador& operator=(Manejador&& otro) noexcept {
    std::swap(cruda_, otro.cruda_);
    return *this;
  }
  Manejador(const Manejador&) = delete;
  Manejador& operator=(const Manejador&) = delete;
  ~Manejador() { Soltar(); }

  SQLHANDLE Crudo() const { return cruda_; }
  explicit operator bool() const { return cruda_ != nullptr; }
  void Soltar() {
    if (cruda_ != nullptr) SQLFreeHandle(Que, std::exchange(cruda_, nullptr));
  }

 private:
  SQLHANDLE cruda_ = nullptr;
};
using Ambiente = Manejador<SQL_HANDLE_ENV>;
using Enlace = Manejador<SQL_HANDLE_DBC>;
using Cursor = Manejador<SQL_HANDLE_STMT>;

Ambiente CrearAmbiente();
// Both throw what `padre` says when it fails.
Enlace CrearEnlace(const Ambiente& padre);
Cursor CrearCursor(const Enlace& padre);

// Leaves the cursor ready for the next statement, whatever happened in this one.
class CloseCursor {
 public:
  explicit CloseCursor(const Cursor& cursor) : cursor_(cursor) {}
  CloseCursor(const CloseCursor&) = delete;
  CloseCursor& operator=(const CloseCursor&) = delete;
  ~CloseCursor() {
    if (cursor_) SQLFreeStmt(cursor_.Crudo(), SQL_CLOSE);  // gone when the connection was lost
  }

 private:
  const Cursor& cursor_;
};

// UTF-16 as the driver manager takes it, with a NUL after its end.
class TextoAncho {
 public:
  explicit TextoAncho(std::string_view utf8);
  SQLWCHAR* Datos() { return unidades_.data(); }
  SQLINTEGER Largo() const { return static_cast<SQLINTEGER>(unidades_.size() - 1); }
  SQLSMALLINT LargoCorto() const { return static_cast<SQLSMALLINT>(unidades_.size() - 1); }

 private:
  std::vector<SQLWCHAR> unidades_;
};
std::string DeAncho(const SQLWCHAR* unidades, std::size_t cuantas);

// While it lives, unixODBC takes the texts of drivers without UTF-16 functions for UTF-8. It looks once,
// while connecting, and would else take the program's "C" locale at its word and spoil every accent.
class TextosUtf8 {
 public:
  TextosUtf8();
  TextosUtf8(const TextosUtf8&) = delete;
  TextosUtf8& operator=(const TextosUtf8&) = delete;
  ~TextosUtf8();

 private:
  void* anterior_ = nullptr;
  void* propia_ = nullptr;
};
// Whether the driver manager must turn our texts into bytes for the driver of this open connection, losing
// the characters beyond U+FFFF.
bool PierdeCaracteres(SQLHANDLE enlace);

// One record of what a driver says of its last call.
struct Diagnostico {
  std::string estado;  // five characters
  std::string texto;
  std::int32_t native = 0;  // the driver's own number
};
std::vector<Diagnostico> Diagnosticos(SQLSMALLINT que, SQLHANDLE manejador);

class OdbcError : public db::Error {
 public:
  enum class Cause { Other, Lost, TimedOut };
  OdbcError(std::string texto, int numero, std::string fuente, base::ErrorKind kind, Cause cause)
      : db::Error(std::move(texto), numero, std::move(fuente), kind), cause_(cause) {}
  bool Lost() const { return cause_ == Cause::Lost; }          // the other side is gone
  bool TimedOut() const { return cause_ == Cause::TimedOut; }  // the driver ended a statement that took long
  Cause Why() const { return cause_; }

 private:
  Cause cause_;
};

// What a failure means for the operator, in Spanish, with all that the driver said after it.
//   si_nada     the phrase for a state that says nothing in particular
//   if_unclear  its kind then, when the driver's own number does not tell it either
OdbcError ErrorDe(const std::vector<Diagnostico>& diagnosticos, std::string_view si_nada,
                  base::ErrorKind if_unclear = base::ErrorKind::Statement);
// The same for a step after which the run cannot go on, whatever the state says.
OdbcError FaultOf(const std::vector<Diagnostico>& diagnosticos, std::string_view si_nada);

}  // namespace engine_odbc
