// Access files behind the dialect, on any system and without a driver.
//
// A table is mirrored into an SQLite base in memory the first time that a statement names it; what statements
// change there is written back into the file's pages at each commit, all or nothing. A transaction that
// changes nothing, and one that is rolled back, leave the file as it was, its date too.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/locale.h"
#include "db/connection.h"
#include "ports/clock.h"

namespace engine_mdb {

struct Options {
  bool read_only = false;
  // Statements may change everything, and nothing of it ever reaches the file, which is opened for reading
  // alone: a commit throws. When another program changes the file meanwhile every statement throws.
  bool private_copy = false;
  std::string password;
  bool dao_wildcards = false;            // LIKE with * ? # as saved queries of the DAO kind have
  const ports::Clock* clock = nullptr;   // what Date() and Now() ask; the system's clock when null
  const base::Locale* locale = nullptr;  // of the texts that the dialect makes and reads; spanish() when null
};

// Opens a file (path in UTF-8). Throws db::Error with a readable reason. A file that cannot be written opens
// all the same; statements that would change it, and BeginTrans, then throw the reason. Each of them first
// tries again, since the program that had the file may have closed it.
std::unique_ptr<db::Connection> Open(std::string_view path, const Options& options = {});

// Makes a new, empty file (Access 2000 to 2003) of a sort order (an LCID: 3082 Modern Spanish, 1034
// Traditional Spanish, 1033 General) and opens it. Throws db::Error, also when there is a file of that name.
std::unique_ptr<db::Connection> Create(std::string_view path, const Options& options = {},
                                       std::uint16_t order = 3082);

// Why the file behind a connection cannot be written for now, in Spanish; "" when it can, and for a
// connection of another engine.
std::string ReadOnlyReason(const db::Connection& connection);

// What a connection has done, for tests and benchmarks.
struct Counters {
  std::int64_t mirrors = 0;       // tables mirrored
  std::int64_t rows_read = 0;     // into mirrors
  std::int64_t rows_written = 0;  // inserted, changed and deleted in the file
  std::int64_t commits = 0;       // commits that wrote
};
// Null for a connection of another engine.
const Counters* CountersOf(const db::Connection& connection);

}  // namespace engine_mdb
