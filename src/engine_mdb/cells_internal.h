// Values of Access columns as the mirror holds them, and back (storage: see jetsql/runtime.h).
#pragma once

#include <sqlite3.h>

#include <string>
#include <string_view>

#include "base/value.h"
#include "mdb/definitions/definition.h"
#include "mdb/rows/value.h"

namespace engine_mdb {

// The type that the dialect sees.
base::Type TypeOf(mdb::ColumnType type);
// A text in a column of bytes, as Access keeps it.
mdb::Bytes AsUtf16(std::string_view text);
// Binds the value; texts and bytes are not copied and must outlive the step.
void Bind(sqlite3_stmt* statement, int index, const mdb::Datum& datum);
// Whether the mirror's cell is what the file's value was mirrored as: then the file keeps its exact bytes.
bool SameValue(const mdb::Datum& datum, sqlite3_stmt* row, int column);
// The cell as a value of the column. Throws base::Error when the column cannot hold it.
mdb::Datum CellDatum(const mdb::Column& column, sqlite3_stmt* row, int index);

}  // namespace engine_mdb
