// Tables as texts of cells, as a spreadsheet writes and reads them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace base {

// Quoted when it holds the separator, a quote or a line end.
std::string CsvCell(std::string_view text, char separator);
// A cell of text from outside: one that a spreadsheet would run as a formula (it begins with "=", "+", "-",
// "@", a tab or a CR, blanks before them or not) gets a "'" in front. Numbers are not to go through it.
std::string SpreadsheetText(std::string_view text);

struct CsvRow {
  std::size_t line = 0;  // where it begins, from 1
  std::vector<std::string> cells;
  bool closed = true;  // false: a quote was opened and the text ended
};
// Quoted cells may hold line ends, and two quotes for one. CR LF, LF and CR end a row; nothing follows the
// last one.
std::vector<CsvRow> ReadCsv(std::string_view text, char separator);

}  // namespace base
