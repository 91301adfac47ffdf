// Owning handles over the SQLite library, and its errors as db::Error.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/value.h"
#include "db/connection.h"
#include "engine_sqlite/mirror.h"

namespace engine_sqlite {

struct CloseSqlite {
  void operator()(sqlite3* base) const { sqlite3_close_v2(base); }
};
using BaseHandle = std::unique_ptr<sqlite3, CloseSqlite>;

// What a failure of SQLite means for the operator, in Spanish, with the table and the columns when they are
// known.
//   code    extended result code
//   message   SQLite's own text
std::string DescriptionOf(int code, std::string_view message);

// Whether a failure of SQLite is one of the file, its locks or the memory, or only of the statement.
//   in_transaction   a transaction is open: then a base that turns out to be read-only is a fault
base::ErrorKind KindOf(int extended_code, bool in_transaction);

// Binds one literal (text is not copied: it must outlive the run). Parameters that the statement does not
// have are passed over.
void Bind(sqlite3_stmt* statement, int index, const base::Value& value);

// The cell as SQLite holds it, or as a text; Null is empty. Throws db::Error when there was no memory for it.
std::string_view TextOf(sqlite3_stmt* row, int column);

}  // namespace engine_sqlite
