#include "render.h"

#include <algorithm>
#include <vector>

#include "support/escapes.h"

namespace support {
namespace {

const char* TypeName(base::Type type) {
  switch (type) {
    case base::Type::Null:
      return "?";
    case base::Type::Boolean:
      return "bool";
    case base::Type::Integer:
      return "int";
    case base::Type::Single:
      return "single";
    case base::Type::Number:
      return "number";
    case base::Type::Currency:
      return "currency";
    case base::Type::Date:
      return "date";
    case base::Type::Text:
      return "text";
  }
  return "";
}

std::string Join(const std::vector<std::string>& lines) {
  std::string output;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i > 0) output += '\n';
    output += lines[i];
  }
  return output;
}

}  // namespace

std::string Cell(const base::Value& value) {
  if (value.IsNull()) return "NULL";
  const std::string text = value.CsvText();
  return text.empty() ? "(empty)" : Escaped(text);
}

std::string Rows(const db::Recordset& rows, bool sorted) {
  std::vector<std::string> lines;
  const std::size_t width = rows.Fields().size();
  for (std::size_t f = 0; f < rows.Count(); ++f) {
    std::string line;
    for (std::size_t c = 0; c < width; ++c) {
      if (c > 0) line += '|';
      line += Cell(rows.At(c, f));
    }
    lines.push_back(line);
  }
  if (sorted) std::sort(lines.begin(), lines.end());
  return Join(lines);
}

std::string Header(const db::Recordset& rows) {
  std::string output;
  for (const db::Column& c : rows.Fields()) {
    if (!output.empty()) output += '|';
    output += c.name;
    output += ':';
    output += TypeName(c.type);
  }
  return output;
}

std::string ErrorText(const base::Error& error) {
  if (error.Number() == 0) return error.Description();
  std::string output = "[";
  output += std::to_string(error.Number());
  output += "] ";
  output += error.Description();
  return output;
}

}  // namespace support
