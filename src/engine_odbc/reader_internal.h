// The rows of a result, typed by the columns that the driver describes.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "db/recordset.h"
#include "engine_odbc/odbc_internal.h"
#include "engine_odbc/statement_limits_internal.h"

namespace engine_odbc {

// How the cells of a column are asked for, and what becomes of them. Whole numbers and decimals travel as
// text, which every driver gives and which loses nothing; the binary forms of 64 bits are unknown to some.
enum class Reading : std::uint8_t {
  Text,
  Guid,
  Binary,
  Integer,
  Boolean,
  Single,
  Double,
  Decimal,
  Currency,
  Moment,  // date and time
  Date,
  Time
};

// By the SQL type; `type_name` is the driver's own name for it, `fixed_precision` its word that the
// column is money.
Reading ReadingOf(SQLSMALLINT sql_type, std::string_view type_name, bool fixed_precision);
base::Type TypeOf(Reading reading);

// The value that the text of a number, a boolean or a currency stands for; a text that is none stays a text.
base::Value ValueOfDigits(std::string_view text, Reading reading);
// Throws db::Error for what is no date of the calendar.
base::Date DateOfMoment(const SQL_TIMESTAMP_STRUCT& moment, std::string_view column);

class Reader {
 public:
  // `cursor` has a result open; it must outlive the reader. Throws db::Error.
  explicit Reader(SQLHANDLE cursor);

  const std::shared_ptr<const db::Columns>& Columns() const { return columns_; }
  // All rows that are left, cell by cell. Throws db::Error.
  std::vector<base::Value> Rows(StatementLimits* limits = nullptr);

 private:
  void Describe(SQLUSMALLINT i, db::Columns& columns);
  base::Value Cell(SQLUSMALLINT i);
  base::Value TextCell(SQLUSMALLINT i);
  base::Value BytesCell(SQLUSMALLINT i);
  base::Value DigitsCell(SQLUSMALLINT i);
  base::Value DateCell(SQLUSMALLINT i);
  base::Value DoubleCell(SQLUSMALLINT i);
  // One value of a fixed size; false when it is Null. `given`: the bytes that the driver says it gave.
  bool ReadFixed(SQLUSMALLINT i, SQLSMALLINT c_type, SQLPOINTER target, std::size_t bytes,
                 SQLLEN* given = nullptr);
  // One call for a piece into piece_, `width` bytes a unit; the bytes that came. False after the last piece.
  struct Piece {
    std::size_t bytes = 0;
    bool null = false, last = true;
  };
  Piece ReadPiece(SQLUSMALLINT i, SQLSMALLINT c_type, std::size_t width);
  [[noreturn]] void Throw() const;

  SQLHANDLE cursor_;
  std::vector<Reading> readings_;
  std::shared_ptr<const db::Columns> columns_;
  std::vector<SQLWCHAR> piece_;
};

}  // namespace engine_odbc
