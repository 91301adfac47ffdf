// Keys of index entries: bytes whose order is that of the index.
#pragma once

#include "mdb/definitions/definition.h"
#include "mdb/rows/value.h"

namespace mdb {

// Flag byte and value bytes of one column, at the end of `key`. Throws base::Error for a type or a sort
// order without known keys.
void AppendKey(const FileHeader& header, const Column& column, bool descending, const Datum& datum,
               Bytes& key);
// The whole key of a row, in `key` (emptied first).
void MakeRowKey(const FileHeader& header, const Definition& definition, const RealIndex& index,
                const Row& row, Bytes& key);
// Whether all, or any, of the index's columns are Null in the row (a Boolean never is).
bool AllNull(const Definition& definition, const RealIndex& index, const Row& row);
bool AnyNull(const Definition& definition, const RealIndex& index, const Row& row);
// Why keys of this index cannot be made; empty when they can.
std::string NoKeysReason(const FileHeader& header, const Definition& definition, const RealIndex& index);

}  // namespace mdb
