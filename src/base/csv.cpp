#include "base/csv.h"

#include "base/text.h"

namespace base {

std::string CsvCell(std::string_view text, char separator) {
  if (text.find_first_of("\"\r\n") == std::string_view::npos &&
      text.find(separator) == std::string_view::npos)
    return std::string(text);
  return "\"" + Replace(text, "\"", "\"\"") + "\"";
}

std::string SpreadsheetText(std::string_view text) {
  constexpr std::string_view kBegins = "=+-@\t\r\n";
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos || kBegins.find(text[first]) == std::string_view::npos)
    return std::string(text);
  return "'" + std::string(text);
}

std::vector<CsvRow> ReadCsv(std::string_view text, char separator) {
  std::vector<CsvRow> rows;
  std::size_t i = 0, line = 1;
  while (i < text.size()) {
    CsvRow& row = rows.emplace_back();
    row.line = line;
    bool quoted = false, row_ended = false;
    std::string cell;
    bool cell_begins = true;
    while (!row_ended) {
      const char c = i < text.size() ? text[i] : '\n';
      if (i >= text.size() && quoted) row.closed = quoted = false;
      const bool line_end = c == '\n' || (c == '\r' && !(i + 1 < text.size() && text[i + 1] == '\n'));
      if (line_end && i < text.size()) ++line;
      ++i;
      if (quoted) {
        if (c != '"')
          cell += c;
        else if (i < text.size() && text[i] == '"')
          cell += text[i++];
        else
          quoted = false;
      } else if (c == '"' && cell_begins) {
        quoted = true;
      } else if (c == separator || line_end) {
        row.cells.push_back(std::move(cell));
        cell.clear();
        row_ended = line_end;
        cell_begins = true;
        continue;
      } else if (!(c == '\r' && i < text.size() && text[i] == '\n')) {
        cell += c;
      }
      cell_begins = false;
    }
  }
  return rows;
}

}  // namespace base
