#include <algorithm>
#include <iterator>

#include "base/text.h"
#include "engine_mdb/query_text_internal.h"

namespace engine_mdb::internal {
namespace {

// Words that a statement would read as its own. Sorted.
constexpr std::string_view kReserved[] = {
    "ALL",     "ALTER",    "AND",         "AS",     "ASC",    "BETWEEN", "BY",    "CREATE",    "DELETE",
    "DESC",    "DISTINCT", "DISTINCTROW", "DROP",   "EQV",    "EXISTS",  "FALSE", "FROM",      "GROUP",
    "HAVING",  "IMP",      "IN",          "INNER",  "INSERT", "INTO",    "IS",    "JOIN",      "LEFT",
    "LIKE",    "MOD",      "NOT",         "NULL",   "ON",     "OR",      "ORDER", "OUTER",     "PARAMETERS",
    "PERCENT", "PIVOT",    "RIGHT",       "SELECT", "SET",    "TABLE",   "TOP",   "TRANSFORM", "TRUE",
    "UNION",   "UPDATE",   "VALUES",      "WHERE",  "WITH",   "XOR"};

bool IsWord(std::string_view name) {
  const auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
  const auto digit = [](char c) { return c >= '0' && c <= '9'; };
  if (name.empty() || digit(name.front())) return false;
  if (!std::all_of(name.begin(), name.end(), [&](char c) { return letter(c) || digit(c); })) return false;
  return !std::binary_search(std::begin(kReserved), std::end(kReserved), base::UpperCase(name));
}

}  // namespace

std::string Quote(std::string_view name) {
  const bool quoted = !name.empty() && (name.front() == '[' || name.front() == '`');
  if (quoted || IsWord(name)) return std::string(name);
  return "[" + std::string(name) + "]";
}

std::string QuoteCompound(std::string_view name) {
  std::string output;
  std::size_t from = 0;
  bool inside = false;
  for (std::size_t i = 0; i <= name.size(); ++i) {
    const bool end = i == name.size();
    if (!end && name[i] == '[') inside = true;
    if (!end && name[i] == ']') inside = false;
    if (!end && (name[i] != '.' || inside)) continue;
    output += Quote(name.substr(from, i - from));
    if (!end) output += '.';
    from = i + 1;
  }
  return output;
}

std::string_view WithoutTail(std::string_view text) {
  constexpr std::string_view kTail{" ;\t\r\n\0", 6};
  const auto end = text.find_last_not_of(kTail);
  return end == std::string_view::npos ? std::string_view() : text.substr(0, end + 1);
}

}  // namespace engine_mdb::internal
