// From values to the bytes of a row (Jet 4).
#pragma once

#include <string>
#include <vector>

#include "mdb/rows/table.h"

namespace mdb::internal {

constexpr std::size_t kLongestRow = 4060;

// "columna 'X' de la tabla 'T'", for messages.
std::string FullName(const Definition& definition, const Column& column);

// The stored bytes of a value that is not Null, at the end of `target`; for a Memo or OLE the long value
// itself, for a Boolean one byte. Throws base::Error for a value of another kind or one that the column does
// not hold.
void EncodeValue(const Definition& definition, const Column& column, const Datum& datum, Bytes& target);
// Text as Jet 4 stores it: UTF-16, or a byte a character when the column compresses and the text allows it.
// Throws base::Error for a text that no reader would give back.
void EncodeText(std::string_view text, bool compress, Bytes& target);

// Lays out rows of one definition.
class RowBuilder {
 public:
  // Throws Damage when the definition's numbers do not fit together.
  explicit RowBuilder(const Definition& definition);
  std::size_t Length(const std::vector<Raw>& raw_values) const;
  // One view for each column of the definition, absent for Null; `row` is emptied first.
  void Build(const std::vector<Raw>& raw_values, Bytes& row) const;

 private:
  const Definition& definition_;
  std::size_t fixed_end_ = 2;          // where the variable columns begin
  std::vector<std::size_t> variable_;  // by place among the variable ones: position of the column, or none
};

}  // namespace mdb::internal
