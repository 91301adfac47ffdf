// Access files put together byte by byte, from a description of what they hold.
//
// Nothing here is shared with src/mdb but the words for values and types, so that a file made here is a
// foreign one to it: whatever a test puts in is what reading must give.
#pragma once

#include <string>
#include <vector>

#include "mdb/definitions/definition.h"
#include "mdb/queries/saved_query.h"
#include "mdb/rows/value.h"

namespace assembler {

using mdb::Bytes;
using mdb::ColumnType;
using mdb::Datum;
using mdb::Row;

enum class Format { Jet3, Jet4, Ace };  // Access 97; 2000 to 2003; .accdb

struct Column {
  std::string name;
  ColumnType type = ColumnType::Long;
  unsigned length = 0;    // characters of a Text, bytes of a Binary
  bool variable = false;  // a number or a date among the columns of variable length
  bool autonumber = false;
  bool compresses = false;  // Jet 4: text in one byte a character
  std::uint8_t precision = 0, scale = 0;
  bool gone = false;        // deleted: only its number and its place remain
  bool calculated = false;  // .accdb
};

struct RowSpec {
  enum State {
    Here,
    Moved,    // its slot leads to another page
    Deleted,  // marked, its bytes still there
    Emptied   // marked, without its bytes
  };
  Row values;  // one a column, those that are gone too
  State state = Here;
  unsigned columns = 0;  // of the table when the row was written; 0: all
};

struct Index {
  std::string name;
  std::vector<std::string> columns;  // "-x" is descending
  bool unique = false, ignores_nulls = false, required = false, primary = false;
};

struct Property {
  std::string owner;  // a column; empty: the table
  std::string name;
  Datum value;  // Boolean, Long or text
};

struct Table {
  std::string name;
  std::vector<Column> columns;
  std::vector<Index> indexes;
  std::vector<RowSpec> rows;
  std::vector<Property> properties;
  unsigned rows_a_page = 0;        // 0: as many as there is room for
  unsigned entries_a_leaf = 0;     // of its indexes; 0: as many as there is room for
  bool prefixes = false;           // leaves leave out the common start of their keys
  bool chains = false;             // every long value that leaves its row is a chain
  bool bitmap_pages = false;       // the map of its pages is a list of pages of bits
  std::vector<std::size_t> shown;  // positions of the columns as they are shown; empty: as they stand
};

struct Relation {
  std::string name;
  std::string table;  // the "many" side, which has an index over these columns when it is enforced
  std::vector<std::string> columns;
  std::string parent;  // which has a unique index over these
  std::vector<std::string> parent_columns;
  std::uint32_t flags = 0;  // as stored
};

struct Query {
  std::string name;
  std::uint32_t flags = 0;          // of its object
  std::vector<mdb::QueryRow> rows;  // without the start and the end
};

struct Link {
  std::string name;
  std::int16_t type = 6;  // 4: over ODBC
  std::string database, table, connection;
};

struct File {
  Format format = Format::Jet4;
  std::uint8_t version = 2;  // of an .accdb
  std::uint16_t lcid = 1033;
  std::uint8_t order_version = 0;
  std::uint16_t code_page = 1252;
  std::string password;
  std::uint32_t key = 0;           // the pages are encrypted with it
  unsigned free_pages = 0;         // between the others
  bool queries_on_page_5 = false;  // and the relationships on 4, as some files of Access 97 have them
  std::vector<Table> tables;
  std::vector<Relation> relations;
  std::vector<Query> queries;
  std::vector<Link> links;
};

Bytes Assemble(const File& file);

// The text of an index key, in the weights of tests/data/mdb; throws std::runtime_error for a character
// without one.
Bytes TextKey(Format format, std::uint16_t lcid, const std::string& text, bool descending);

}  // namespace assembler
