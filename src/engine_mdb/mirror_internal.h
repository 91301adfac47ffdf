// One table of an Access file as it stands in the memory of SQLite.
//
// The rows of the mirror are known by their hidden number: those that were read have 1 to n in the order of
// the file's pages, new ones what SQLite gives them, and `rows` tells which row of the file each of them is.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine_sqlite/mirror.h"
#include "jetsql/catalog.h"
#include "mdb/schema/database.h"

namespace engine_mdb {

struct MirrorTable {
  // Fixed while the mirror lives.
  int number = 0;                 // names the table to the functions that SQLite calls
  mdb::Database* base = nullptr;  // the file that holds its rows: ours, or that of a link
  std::string name_in_base;       // its name there
  mdb::Definition definition;
  std::vector<std::size_t> columns;       // positions in the definition, in the order shown
  jetsql::TableInfo info;                 // its name and columns for the dialect
  std::string reason;                     // why its rows cannot be written; empty when they can
  bool base_refuses = false;              // and that is so of every table of the base
  std::shared_ptr<mdb::Database> linked;  // keeps `base` open when it is not ours
  int autonumber = -1;                    // in `columns`, the autonumber; -1: none

  // What a rollback takes back, since SQLite takes back the tables, indexes and triggers that it speaks of.
  struct State {
    bool loaded = false;
    bool indexes = false;
    bool ready_to_insert = false, ready_for_all = false;  // the relationships are watched
    std::int64_t last_auto_number = 0;
    std::shared_ptr<std::vector<mdb::RowId>> rows;  // by number of the row; page 0: none of the file
  };
  State state, saved, at_mark;

  std::vector<sqlite3_int64> touched;  // rows written since the last write-back; may repeat
  std::size_t touched_at_mark = 0;     // the first so many of them, until the next write-back
  engine_sqlite::Statement by_row;     // reads a row by its number
};

// The statement that makes the table, without its unique indexes.
std::string CreateTableText(const MirrorTable& table, const mdb::Properties& properties);
// Fills the empty table; returns the number of rows. Throws base::Error.
std::int64_t Fill(sqlite3* mirror, MirrorTable& table);
// Makes what CREATE INDEX would. A unique index that the rows do not obey makes the table one that can only
// be read.
void CreateIndexes(sqlite3* mirror, MirrorTable& table);
// Reads a row by its number, as the columns of the mirror.
sqlite3_stmt* RowReader(sqlite3* mirror, MirrorTable& table);

// Which of SQLite's names for the number of a row no column has taken. Throws base::Error when none is left.
std::string RowIdName(const MirrorTable& table);

// "name" with its quotes doubled; 'text' likewise.
std::string Quoted(std::string_view name);
std::string InQuotes(std::string_view text);
// "a", "b" …
std::string QuotedList(const std::vector<std::string>& names);

}  // namespace engine_mdb
