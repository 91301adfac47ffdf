// Changes of rows, with every index, map and counter kept.
#pragma once

#include <utility>
#include <vector>

#include "mdb/definitions/definition.h"
#include "mdb/rows/value.h"

namespace mdb {

struct RowChange {
  RowId row;
  // Position in `columns` and new value. Columns that are not named keep their stored bytes, long values
  // too.
  std::vector<std::pair<std::size_t, Datum>> values;
};

// What is done to one table at once: rows may exchange the values of a unique index.
struct Changes {
  std::vector<RowId> deleted;
  std::vector<RowChange> changed;
  std::vector<Row> inserted;  // complete: autonumbers and defaults are the caller's matter
};

// A row that a unique index already has, or a Null in a required one. `number` 3022 or 3058.
class KeyError : public base::Error {
 public:
  KeyError(std::string description, int number, std::string which)
      : base::Error(std::move(description), number), index(std::move(which)) {}
  std::string index;
};

// Why the table's rows cannot be written (an index over text of a sort order that is not known, a column type
// that is not written, a format that is only read); empty when they can.
std::string NotWritableReason(const FileHeader& header, const Definition& definition);

// Does all of it in the pages (not yet on disk) and brings `definition` up to date; returns the identities of
// the new rows in their order. Throws KeyError, base::Error (a value that does not fit its column, a row
// too long), Damage; after an error the pages are in between: go back with PageFile::RollbackTo.
std::vector<RowId> Apply(PageFile& pages, Definition& definition, const Changes& changes);

}  // namespace mdb
