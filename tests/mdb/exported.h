// Tables as mdb-export prints them, from our side and from its own.
#pragma once

#include <string>
#include <vector>

#include "mdb/catalog/catalog.h"

namespace mdb_test {

struct ExportedTable {
  bool found = false;  // mdb-export knows the table
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> rows;
};

// What mdb-export says of a table of the file at `path`: binary as hexadecimal, dates as ISO with their time,
// Null as the text kExportedNull.
ExportedTable Export(const std::string& path, const std::string& table);
inline const std::string kExportedNull = "<~null~>";

// The same from our reading, columns in the order of display.
ExportedTable TableAsRead(mdb::PageFile& pages, const mdb::Definition& definition);
// One value as mdb-export prints it.
std::string ExportedText(const mdb::Column& column, const mdb::Datum& datum);

// Runs a command and gives its standard output.
std::string Output(const std::string& order);
// For the shell.
std::string Quoted(const std::string& text);

}  // namespace mdb_test
