#include "engine_odbc/reader_internal.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/number.h"

namespace engine_odbc {
namespace {

constexpr std::string_view kCannotRead = "La base no pudo dar los datos que se le pidieron";
constexpr std::size_t kPiece = 2048;             // units of a first piece
constexpr std::size_t kLargestPiece = 1U << 19;  // of the largest one
constexpr std::size_t kLongestName = 1U << 14;

}  // namespace

Reader::Reader(SQLHANDLE cursor) : cursor_(cursor), piece_(kPiece) {
  SQLSMALLINT width = 0;
  if (!SQL_SUCCEEDED(SQLNumResultCols(cursor_, &width))) Throw();
  auto columns = std::make_shared<db::Columns>();
  for (SQLSMALLINT i = 1; i <= width; ++i) Describe(static_cast<SQLUSMALLINT>(i), *columns);
  columns_ = std::move(columns);
}

// A result of which a part cannot be had is a fault, unless the driver says that a value was to blame.
void Reader::Throw() const {
  throw ErrorOf(Diagnostics(SQL_HANDLE_STMT, cursor_), kCannotRead, base::ErrorKind::Storage);
}

void Reader::Describe(SQLUSMALLINT i, db::Columns& columns) {
  SQLSMALLINT length = 0, type = 0, decimals = 0, nullable = 0;
  SQLULEN size = 0;
  const auto read = [&] {
    return SQLDescribeColW(cursor_, i, piece_.data(), static_cast<SQLSMALLINT>(piece_.size()), &length, &type,
                           &size, &decimals, &nullable);
  };
  if (!SQL_SUCCEEDED(read())) Throw();
  if (static_cast<std::size_t>(length) >= piece_.size() && static_cast<std::size_t>(length) < kLongestName) {
    piece_.resize(static_cast<std::size_t>(length) + 1);
    if (!SQL_SUCCEEDED(read())) Throw();
  }
  const auto end = std::find(piece_.begin(), piece_.end(), SQLWCHAR{0});
  const std::string name = FromWide(piece_.data(), static_cast<std::size_t>(end - piece_.begin()));

  std::string type_name;
  bool fixed_precision = false;
  if (type == SQL_NUMERIC || type == SQL_DECIMAL) {
    // A driver that does not know these says so, and the column is an ordinary number.
    SQLSMALLINT bytes = 0;
    SQLLEN yes = SQL_FALSE;
    piece_[0] = 0;
    if (SQL_SUCCEEDED(SQLColAttributeW(cursor_, i, SQL_DESC_TYPE_NAME, piece_.data(),
                                       static_cast<SQLSMALLINT>(kPiece), &bytes, nullptr))) {
      const auto type_end = std::find(piece_.begin(), piece_.end(), SQLWCHAR{0});
      type_name = FromWide(piece_.data(), static_cast<std::size_t>(type_end - piece_.begin()));
    }
    if (SQL_SUCCEEDED(SQLColAttributeW(cursor_, i, SQL_DESC_FIXED_PREC_SCALE, nullptr, 0, nullptr, &yes)))
      fixed_precision = yes == SQL_TRUE && decimals > 0;
  }
  readings_.push_back(ReadingOf(type, type_name, fixed_precision));
  columns.push_back({name, TypeOf(readings_.back())});
}

std::vector<base::Value> Reader::Rows(StatementLimits* limits) {
  std::vector<base::Value> cells;
  SQLRETURN rc = SQL_SUCCESS;
  while (SQL_SUCCEEDED(rc = SQLFetch(cursor_))) {
    for (std::size_t i = 0; i < readings_.size(); ++i)
      cells.push_back(Cell(static_cast<SQLUSMALLINT>(i + 1)));
    if (limits != nullptr) limits->Row(cells, readings_.size());
  }
  if (rc != SQL_NO_DATA) Throw();
  return cells;
}

base::Value Reader::Cell(SQLUSMALLINT i) {
  switch (readings_[i - 1U]) {
    case Reading::Text:
    case Reading::Guid:
      return TextCell(i);
    case Reading::Binary:
      return BytesCell(i);
    case Reading::Single: {
      SQLREAL v = 0;
      if (!ReadFixed(i, SQL_C_FLOAT, &v, sizeof v)) return {};
      return float{v};
    }
    case Reading::Double:
      return DoubleCell(i);
    case Reading::Integer:
    case Reading::Boolean:
    case Reading::Decimal:
    case Reading::Currency:
      return DigitsCell(i);
    case Reading::Moment:
    case Reading::Date:
    case Reading::Time:
      break;
  }
  return DateCell(i);
}

bool Reader::ReadFixed(SQLUSMALLINT i, SQLSMALLINT c_type, SQLPOINTER target, std::size_t bytes,
                       SQLLEN* given) {
  SQLLEN length = 0;
  if (!SQL_SUCCEEDED(SQLGetData(cursor_, i, c_type, target, static_cast<SQLLEN>(bytes), &length))) Throw();
  if (given != nullptr) *given = length;
  return length != SQL_NULL_DATA;
}

// mdbtools' driver gives the four bytes of a single whatever is asked for.
base::Value Reader::DoubleCell(SQLUSMALLINT i) {
  SQLDOUBLE v = 0;
  SQLLEN given = 0;
  if (!ReadFixed(i, SQL_C_DOUBLE, &v, sizeof v, &given)) return {};
  if (given != static_cast<SQLLEN>(sizeof(float))) return double{v};
  float single = 0;
  std::memcpy(&single, &v, sizeof single);
  return base::DoubleOfSingle(single);
}

base::Value Reader::DateCell(SQLUSMALLINT i) {
  SQL_TIMESTAMP_STRUCT m{};
  const Reading reading = readings_[i - 1U];
  if (reading == Reading::Date) {
    SQL_DATE_STRUCT d{};
    if (!ReadFixed(i, SQL_C_TYPE_DATE, &d, sizeof d)) return {};
    m.year = d.year;
    m.month = d.month;
    m.day = d.day;
  } else if (reading == Reading::Time) {
    SQL_TIME_STRUCT h{};
    if (!ReadFixed(i, SQL_C_TYPE_TIME, &h, sizeof h)) return {};
    m = {1899, 12, 30, h.hour, h.minute, h.second, 0};
  } else if (!ReadFixed(i, SQL_C_TYPE_TIMESTAMP, &m, sizeof m)) {
    return {};
  }
  return DateOfMoment(m, (*columns_)[i - 1U].name);
}

base::Value Reader::DigitsCell(SQLUSMALLINT i) {
  char digits[128] = {};  // more than the digits of any number
  SQLLEN length = 0;
  const SQLRETURN rc = SQLGetData(cursor_, i, SQL_C_CHAR, digits, sizeof digits, &length);
  if (!SQL_SUCCEEDED(rc)) Throw();
  if (length == SQL_NULL_DATA) return {};
  if (length == SQL_NO_TOTAL ? rc == SQL_SUCCESS_WITH_INFO : length >= static_cast<SQLLEN>(sizeof digits))
    throw db::Error("El campo " + (*columns_)[i - 1U].name + " trae un número que no lo es.");
  return ValueOfDigits(digits, readings_[i - 1U]);
}

Reader::Piece Reader::ReadPiece(SQLUSMALLINT i, SQLSMALLINT c_type, std::size_t width) {
  const std::size_t bytes = piece_.size() * sizeof(SQLWCHAR);
  const std::size_t room = c_type == SQL_C_BINARY ? bytes : bytes - width;  // a text ends in a NUL
  SQLLEN length = 0;
  const SQLRETURN rc = SQLGetData(cursor_, i, c_type, piece_.data(), static_cast<SQLLEN>(bytes), &length);
  if (rc == SQL_NO_DATA) return {};
  if (!SQL_SUCCEEDED(rc)) Throw();
  if (length == SQL_NULL_DATA) return {0, true, true};
  if (length == SQL_NO_TOTAL) {
    if (rc == SQL_SUCCESS_WITH_INFO || c_type == SQL_C_BINARY) return {room, false, false};
    const auto end = std::find(piece_.begin(), piece_.end(), SQLWCHAR{0});
    return {static_cast<std::size_t>(end - piece_.begin()) * width, false, true};
  }
  if (length < 0) Throw();
  const auto total = static_cast<std::size_t>(length);
  return {std::min(total, room), false, total <= room};
}

base::Value Reader::TextCell(SQLUSMALLINT i) {
  Piece p = ReadPiece(i, SQL_C_WCHAR, sizeof(SQLWCHAR));
  if (p.null) return {};
  std::string text;
  if (p.last) {
    text = FromWide(piece_.data(), p.bytes / sizeof(SQLWCHAR));
  } else {
    // Joined before it is decoded: a character of two units may be cut between pieces.
    std::vector<SQLWCHAR> all(piece_.begin(), piece_.begin() + static_cast<std::ptrdiff_t>(p.bytes / 2));
    while (!p.last) {
      if (piece_.size() < kLargestPiece) piece_.resize(piece_.size() * 4);
      p = ReadPiece(i, SQL_C_WCHAR, sizeof(SQLWCHAR));
      all.insert(all.end(), piece_.begin(), piece_.begin() + static_cast<std::ptrdiff_t>(p.bytes / 2));
    }
    text = FromWide(all.data(), all.size());
  }
  if (readings_[i - 1U] == Reading::Guid && !text.empty() && text[0] != '{') text = "{" + text + "}";
  return text;
}

base::Value Reader::BytesCell(SQLUSMALLINT i) {
  std::string bytes;
  for (Piece p{0, false, false}; !p.last;) {
    p = ReadPiece(i, SQL_C_BINARY, 1);
    if (p.null) return {};
    bytes.append(reinterpret_cast<const char*>(piece_.data()), p.bytes);
    if (!p.last && piece_.size() < kLargestPiece) piece_.resize(piece_.size() * 4);
  }
  return bytes;
}

}  // namespace engine_odbc
