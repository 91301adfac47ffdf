// An engine in memory over tables that live elsewhere: the face through which another engine mirrors them.
//
// The connection asks the source for every name that a statement uses; it has no tables of its own. The
// source makes and fills the tables in SQLite, and takes what changed in them back to where they live.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>

#include "engine_sqlite/sqlite_connection.h"
#include "jetsql/translate.h"

namespace engine_sqlite {

// A condition, or RAISE, whose name or text starts so says the rest of it to the operator as it stands.
inline constexpr std::string_view kOwnText = "jet_text.";

// The catalog that the translator asks. Table and Query may throw base::Error for a name that there is but
// that cannot be used.
class TableSource : public jetsql::Catalog {
 public:
  // Called before each statement runs, when it is translated but not yet prepared: the tables that the
  // catalog was asked for must be there from now on, and those that the statement writes ready for it. What
  // it throws is the statement's failure.
  virtual void BeforeRun(const jetsql::Translation& statement) = 0;
};

struct Mirror {
  std::unique_ptr<db::Connection> connection;
  sqlite3* base = nullptr;  // of the connection
};

// `source` must outlive the connection. Of the options, the order, the clock, the locale and the wildcards
// count.
Mirror OpenMirror(TableSource& source, const Options& options);

// Forgets every translation, after the source has changed or dropped tables.
void ForgetTranslations(db::Connection& mirror);

// Runs a change or definition that the source's owner has translated, as Execute would its text. It speaks
// of no literals (see jetsql/parser.h). Throws db::Error.
void RunTranslation(db::Connection& mirror, jetsql::Translation translation);

// One statement of our own, prepared to be run many times; finalised with the pointer. Throws db::Error.
struct FinaliseStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, FinaliseStatement>;
Statement Prepare(sqlite3* base, std::string_view sql);
// Runs a text of our own without rows. Throws db::Error.
void ExecuteOwn(sqlite3* base, const char* sql);
// Throws db::Error for the last failure of `base`; `number` is the dialect's number when a function raised
// it.
[[noreturn]] void ThrowError(sqlite3* base, int number = 0);

}  // namespace engine_sqlite
