// Cutting the bytes of a row into those of its columns.
#pragma once

#include <array>

#include "mdb/rows/table.h"

namespace mdb::internal {

// Bytes of a value of a type that has but one width; 0 for the others, and for a Boolean, which stands in the
// null mask.
std::uint16_t TypeWidth(ColumnType type);
// Whether a new column of the type stands among the variable ones (that of a file is told by its flag).
bool IsVariableLength(ColumnType type);
// Bytes of a fixed column, by its type.
std::size_t FixedWidth(const Column& column);
// A row as cut for reading: what does not depend on the column is worked out once.
class OpenRow {
 public:
  // Throws Damage when the row's own lengths do not fit in it.
  OpenRow(const FileHeader& header, const Definition& definition, View bytes);
  Raw Of(const Column& column) const;

 private:
  void OpenJet3(std::size_t mask);
  void OpenJet4(std::size_t mask);
  View Variable(unsigned i) const;

  View bytes_, mask_;
  bool jet3_;
  unsigned columns_;
  unsigned variables_ = 0;                 // that the row has
  std::size_t end_;                        // where the columns' bytes may reach
  std::size_t table_ = 0;                  // Jet 4: of the first variable's offset; the next ones before it
  std::array<std::uint16_t, 257> starts_;  // Jet 3: of each variable column, and the end of the last
};

// As Decode, into a value whose memory is reused when it is of the right kind.
void DecodeInto(PageFile& pages, const Column& column, View bytes, Datum& target);

}  // namespace mdb::internal
