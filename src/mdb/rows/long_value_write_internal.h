// Memo and OLE values: where their bytes go, and how they are let go.
#pragma once

#include <string>

#include "mdb/definitions/definition.h"
#include "mdb/rows/row_store_internal.h"

namespace mdb::internal {

constexpr std::size_t kLongField = 12;      // bytes in the row, before inline data
constexpr std::size_t kInlineLength = 64;   // the longest value that stands in the row
constexpr std::size_t kPieceLength = 4076;  // the longest row of a page of long values
constexpr std::uint32_t kInline = 0x80000000, kInOneRow = 0x40000000, kMaxLength = 0x3FFFFFFF;

// The long values of one column, for one batch of changes.
class LongValues {
 public:
  LongValues(PageFile& pages, const Definition& definition, const Column& column);
  // What stands in the row for the value: 12 bytes, and the value itself when it is short and
  // `can_be_inline`. Throws base::Error for a value that is too long for the format or without maps.
  Bytes Store(View value, bool can_be_inline = true);
  // Deletes the pieces that the bytes of a row lead to. Pieces on pages that are not the column's own stay
  // where they are: other programs leave such things.
  void Release(View field);

 private:
  PageFile& pages_;
  std::string where_;
  Pointer owned_pages_;
  RowStore store_;
};

inline bool IsInline(View field) { return field.size() > kLongField && (U32(field, 0) & kInline) != 0; }
Bytes Pointer4(RowId row);  // the 4 bytes of a data pointer

}  // namespace mdb::internal
