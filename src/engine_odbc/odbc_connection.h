// The ODBC engine: any data source that an installed driver opens, for installations where other programs
// have the payroll base open too. On Windows the Access driver, elsewhere whatever unixODBC knows.
//
// A statement goes to the driver as it stands, so that the driver's own dialect decides what it means; only a
// qualifier that names the base table under a derived table, which drivers refuse, is put right first. Date()
// and Now() are the driver's clock.
//
// A savepoint is the driver's own where it understands SAVEPOINT. The Access driver does not: there going
// back to the mark rolls the whole transaction back and runs again what had succeeded before the mark, which
// takes as long as it took the first time (nothing, when no change succeeded after the mark), and needs
// memory for the texts of the transaction's changes. A statement that then fails, or changes another number
// of rows, is a fault of the storage.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "db/connection.h"

namespace engine_odbc {

struct Options {
  bool read_only = false;  // Execute refuses what Query refuses
  int wait_s = 15;         // how long the driver may take to connect; 0: as long as it likes
};

// Opens a connection string ("Driver={…};DBQ=…", "DSN=…"; UTF-8). Throws db::Error with a readable reason and
// the driver's own text.
//
// Values by the type of their column: bit Boolean, whole numbers Integer, real Simple, float and double
// Number, numeric and decimal Number or, where the driver calls the column a currency, Currency; timestamp,
// date and time Date; everything else Text, binary data as its bytes.
// A connection that is lost is closed: IsOpen() is false and what its transaction wrote is undone.
std::unique_ptr<db::Connection> Open(std::string_view connection_string, const Options& options = {});

// What the key Base of ConfBase.cfg says, as a connection string: one with a "=" stays, another text is the
// name of a data source. The password, when there is one, is added unless the string has its own.
std::string ConnectionStringOf(std::string_view source, std::string_view password = {});

// Whether a Microsoft Access driver is installed (one that fits this program: of 64 bits for 64).
bool HasAccessDriver();
// The connection string for an Access file, with the best Access driver that is installed, or with `driver`
// when it is named (mdbtools' is used in no other way: it cannot write). Throws db::Error when there is none.
std::string ConnectionStringForFile(std::string_view path, std::string_view password = {},
                                    std::string_view driver = {});

}  // namespace engine_odbc
