#include "mdb/exported.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "base/date.h"
#include "base/text.h"
#include "mdb/rows/table.h"

namespace mdb_test {
namespace {

// Marks that no text of the files holds.
const std::string kCellEnd = "<~cell~>", kRowEnd = "<~row~>";

std::string Formatted(const char* format, double n) {
  char b[64];
  std::snprintf(b, sizeof b, format, n);
  return b;
}

std::string Hexadecimal(const mdb::Bytes& bytes) {
  std::string text;
  for (const auto b : bytes) {
    text += "0123456789ABCDEF"[b >> 4];
    text += "0123456789ABCDEF"[b & 15];
  }
  return text;
}

std::string CurrencyText(base::Currency m) {
  const bool negative = m.ten_thousandths < 0;
  const auto n = negative ? 0 - static_cast<std::uint64_t>(m.ten_thousandths)
                          : static_cast<std::uint64_t>(m.ten_thousandths);
  std::string decimals = std::to_string(n % 10000);
  decimals.insert(0, 4 - decimals.size(), '0');
  return (negative ? "-" : "") + std::to_string(n / 10000) + "." + decimals;
}

std::string DateWithTime(base::Date f) {
  const auto p = base::PartsOf(f);
  char b[64];
  std::snprintf(b, sizeof b, "%04d-%02d-%02d %02d:%02d:%02d", p.year, p.month, p.day, p.hour, p.minute,
                p.second);
  return b;
}

}  // namespace

std::string Quoted(const std::string& text) { return "'" + base::Replace(text, "'", "'\\''") + "'"; }

std::string Output(const std::string& order) {
  FILE* stream = popen(order.c_str(), "r");
  if (stream == nullptr) throw std::runtime_error("cannot run " + order);
  std::string output;
  char slice[4096];
  while (const std::size_t n = std::fread(slice, 1, sizeof slice, stream)) output.append(slice, n);
  pclose(stream);
  return output;
}

ExportedTable Export(const std::string& path, const std::string& table) {
  const std::string all =
      Output("mdb-export -Q -b hex -T '%Y-%m-%d %H:%M:%S' -D '%Y-%m-%d %H:%M:%S' -d '" + kCellEnd + "' -R '" +
             kRowEnd + "' -0 '" + kExportedNull + "' " + Quoted(path) + " " + Quoted(table) + " 2>/dev/null");
  ExportedTable t;
  auto rows = base::Split(all, kRowEnd);
  if (rows.size() < 2) return t;
  rows.pop_back();
  t.found = true;
  t.columns = base::Split(rows.front(), kCellEnd);
  for (std::size_t i = 1; i < rows.size(); ++i) t.rows.push_back(base::Split(rows[i], kCellEnd));
  return t;
}

// Where mdb-export says less than the file does, our value is cut down to what it prints:
//   a text or binary value ends at its first zero (they are C strings to it); an empty one prints as Null;
//   a GUID counts as binary: its printed form, without the last dash, comes out in hexadecimal;
//   fixed binary columns (of system tables) are not known to it: Null;
//   a day before 30 December 1899, or a million days later, prints as day 0 of 1900.
std::string ExportedText(const mdb::Column& column, const mdb::Datum& datum) {
  struct Visitor {
    const mdb::Column& column;
    std::string operator()(base::Null) const { return kExportedNull; }
    std::string operator()(bool v) const { return v ? "1" : "0"; }
    std::string operator()(std::int64_t v) const { return std::to_string(v); }
    std::string operator()(float v) const { return Formatted("%.8g", static_cast<double>(v)); }
    std::string operator()(double v) const { return Formatted("%.16g", v); }
    std::string operator()(base::Currency v) const { return CurrencyText(v); }
    std::string operator()(base::Date v) const {
      return v.serial < 0 || v.serial > 1e6 ? "1900-01-00 00:00:00" : DateWithTime(v);
    }
    std::string operator()(const std::string& v) const {
      const std::string cut = v.substr(0, v.find('\0'));
      return cut.empty() ? kExportedNull : cut;
    }
    std::string operator()(const mdb::Bytes& v) const {
      if (column.type == mdb::ColumnType::FixedBinary) return kExportedNull;
      const bool is_long = column.IsLong();
      const auto end = is_long ? v.end() : std::find(v.begin(), v.end(), 0);
      return end == v.begin() ? kExportedNull : Hexadecimal(mdb::Bytes(v.begin(), end));
    }
    std::string operator()(const mdb::Guid& v) const {
      std::string text = v.Text();
      text.erase(text.rfind('-'), 1);
      return Hexadecimal(mdb::Bytes(text.begin(), text.end()));
    }
    std::string operator()(const mdb::Decimal& v) const { return v.Text(); }
  };
  return std::visit(Visitor{column}, datum);
}

ExportedTable TableAsRead(mdb::PageFile& pages, const mdb::Definition& definition) {
  ExportedTable t;
  t.found = true;
  const auto order = definition.InOrder();
  for (const auto i : order) t.columns.push_back(definition.columns[i].name);
  mdb::WalkRows(pages, definition, [&](mdb::RowId, const mdb::Row& row) {
    std::vector<std::string> cells;
    for (const auto i : order) cells.push_back(ExportedText(definition.columns[i], row[i]));
    t.rows.push_back(std::move(cells));
    return true;
  });
  return t;
}

}  // namespace mdb_test
