// The rows of a table, for reading.
#pragma once

#include <functional>
#include <optional>

#include "mdb/definitions/definition.h"
#include "mdb/rows/value.h"

namespace mdb {

// Calls `visit` for each live row, in the order of the pages; false ends the walk. The row is reused between
// calls. `columns`: when not empty, only those positions of the definition are decoded (the others stay
// Null). Throws Damage with the page of a row that cannot be read.
using Visitor = std::function<bool(RowId, const Row&)>;
void WalkRows(PageFile& pages, const Definition& definition, const Visitor& visit,
              const std::vector<std::size_t>& columns = {});
// One live row by its identity (a moved row is followed), or none.
std::optional<Row> ReadRow(PageFile& pages, const Definition& definition, RowId id);

// The stored bytes of a column of a row, absent when Null. For a Boolean, one byte.
using Raw = std::optional<View>;
// All columns of a row, in the order of `columns`; the views lie in `bytes`.
std::vector<Raw> SplitRow(const FileHeader& header, const Definition& definition, View bytes);
// The bytes of the row (a moved one is followed), or none when it is deleted or not a row of its own. Keep
// the image while the view is used.
struct RowBytes {
  Image image;
  View bytes;
  RowId place;  // where the bytes stand: elsewhere than the identity when the row has moved
};
std::optional<RowBytes> FindRow(PageFile& pages, const Definition& definition, RowId id);

// From stored bytes to a value; long values are followed to their pages. Throws Damage.
Datum Decode(PageFile& pages, const Column& column, View bytes);

}  // namespace mdb
