// The tables of facts: rows of functions (*.tsv) and of whole statements (*.jsonl).
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/date.h"
#include "conformance/json.h"

namespace conformance {

// One row of a *.tsv: a function, its arguments and what it gives.
struct Row {
  std::string id;
  std::string function;
  std::vector<Json> args;
  std::string locale;  // "es", "en", or "invariant": any
  Json expected;
};

// One line of a *.jsonl: statements that make a base, one that is tried, and what comes of it.
struct Statement {
  std::string id;
  std::vector<std::string> before;
  std::string sql;
  std::string locale = "es";
  bool dao_wildcards = false;  // LIKE with * ? #
  bool ignore_case = false;    // texts of the result are compared without case
  bool sorted = true;
  std::vector<std::string> columns;  // names of the result's columns; none: not asked
  Json rows;                         // of a query; null otherwise
  Json effect;                       // of a change: affected, then, rows; or error
};

struct Table {
  std::string name;
  std::vector<Row> rows;
  std::vector<Statement> statements;
};

// Whether a file is a table by its name (.tsv, .jsonl).
bool IsTable(const std::filesystem::path& path);
// Columns are found by their headings, members by their names. Throws std::runtime_error with the place of
// what cannot be read.
Table ReadTable(const std::filesystem::path& path);

// "today" of every row: what {YEAR} and a date without its year mean.
base::Date Today();
// The serial of "Y-M-D h:m:s". Throws std::runtime_error.
double SerialOf(std::string text);

}  // namespace conformance
