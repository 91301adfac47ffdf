// An ODBC driver for tests, which does what a driver may do and real ones seldom show: the connection string
// and the statements say what.
//
// Connection string: Txn=0 (no transactions), Catalogo=T:a,b/U:c (its tables and columns; "roto": fails),
// Savepoints=si (understands SAVEPOINT idm_mark and its kin: answers as to CAMBIA 0), Commit=falla,
// Rollback=falla, Total=no (never tells the length of what is left), Clave=x (PWD must be it), Motor=x
// (statements go to the database that the program's own CreateTestEngine makes of x).
//
// Statements of a connection without Motor, words parted by blanks:
//   FILAS name:type[:driver's name for the type] …   then a line a row, cells parted by "|"; NULL is Null,
//                                             ~n is a text of n characters 0123… before the rest, \0 a NUL
//   CAMBIA n                                  n rows changed
//   NADA                                      a change that found no row (SQL_NO_DATA)
//   AVISA …                                   the statement after it, with a warning
//   FALLA state text; state text …            these records; "HY000/-1022 text" with the driver's own number
//   PIERDE / MUERE                            the connection goes: by its state / by the attribute alone
//   PIERDE_LEYENDO                            a row, and then the connection goes
//   MARCAS                                    the first two letters of each statement about savepoints
//   CUENTAS                                   autocommit, commits and rollbacks so far
//   SELECT 'TARDA'                            never ends: one row all the same, or HYT00 when it is given a
//                                             time
//   anything else                             one row: the text that came
#pragma once

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace fake {

using WideString = std::u16string;

struct Record {
  std::string state;
  WideString text;
  SQLINTEGER native = 0;
};

struct Object {  // what every handle is
  std::vector<Record> records;
};

struct Environment : Object {};

struct Cursor;

// A database behind the driver.
class Engine {
 public:
  virtual ~Engine() = default;
  // Fills columns and rows, or the rows changed; false with a record of what went wrong.
  virtual bool Run(Cursor& c, const WideString& sql) = 0;
  virtual bool Begin() = 0;
  virtual bool End(bool commit) = 0;
};

struct Link : Object {
  bool has_transactions = true, commit_fails = false, rollback_fails = false, tells_total = true;
  bool savepoints = false;
  std::string marks;  // the first letters of each that came
  bool dead = false, autocommit = true, broken_catalog = false;
  int committed = 0, rolled_back = 0;
  std::vector<std::pair<WideString, std::vector<WideString>>> catalog;
  std::unique_ptr<Engine> engine;
  bool in_transaction = false;  // of the database behind
};

struct Column {
  WideString name, type_name;
  SQLSMALLINT type = SQL_WVARCHAR;
};

struct Cell {
  bool null = false;
  WideString text;
};

struct Cursor : Object {
  Link* link = nullptr;
  std::vector<Column> columns;
  std::vector<std::vector<Cell>> rows;
  std::size_t row = 0;  // of the last SQLFetch, from 1
  SQLUSMALLINT reading = 0;
  std::size_t read = 0;  // bytes of the cell that is being read
  SQLLEN changed = -1;
  bool loses_at_end = false;
  SQLULEN timeout = 0;
};

// As the driver manager wants a text back: what fits, a NUL, and the whole length in characters.
void Give(const WideString& text, SQLWCHAR* target, SQLSMALLINT room, SQLSMALLINT* length);
WideString FromAscii(const std::string& text);
// `length` characters, or up to the NUL for SQL_NTS.
WideString Read(const SQLWCHAR* text, SQLINTEGER length);

SQLRETURN Fail(Object* object, const std::string& state, const std::string& text);
SQLRETURN Lose(Cursor& c);

// What the connection string asks for; false when its password is not the right one.
bool Configure(Link& e, const WideString& connection_string);
SQLRETURN Run(Cursor& c, const WideString& text);
void Clear(Cursor& c);
SQLRETURN GiveCell(Cursor& c, const Cell& cell, SQLSMALLINT c_type, SQLPOINTER target, SQLLEN room,
                   SQLLEN* length);

}  // namespace fake

// Of a test program that has a database to offer; linked with its symbols exported.
extern "C" fake::Engine* CreateTestEngine(const char16_t* name);
