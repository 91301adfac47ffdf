// What the samples are put together from.
#pragma once

#include "mdb/samples.h"

namespace mdb_test::internal {

using assembler::Column;
using assembler::File;
using assembler::Format;
using assembler::Index;
using assembler::RowSpec;
using assembler::Table;
using mdb::ColumnType;
using mdb::Datum;

inline Datum N(std::int64_t n) { return n; }
inline Datum T(std::string text) { return text; }

Column Col(std::string name, ColumnType type, unsigned length = 0);
Index Over(std::string name, std::vector<std::string> columns);
Index Unique(std::string name, std::vector<std::string> columns);
Index Primary(std::vector<std::string> columns);

Table Types(Format format);                // a column of each type, indexes over them both ways
Table Texts(Format format, bool spanish);  // texts under indexes both ways
Table LongDefinition();                    // a definition of several pages
Table Moved();                             // rows and long values that stand elsewhere
Table Changed();                           // columns that are gone, rows older than others
Table Compound();                          // many rows, trees of several levels
std::vector<Table> Related();              // three tables for two relationships
std::vector<assembler::Relation> Relations();
Sample Queries(const std::string& name, Format format);
Sample OddNames();

}  // namespace mdb_test::internal
