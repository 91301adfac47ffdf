#include "mdb/rows/row_internal.h"

#include <algorithm>

namespace mdb {
namespace internal {
namespace {

constexpr std::uint8_t kFalse[1] = {0}, kTrue[1] = {1};

// A row that is older than each of the table's variable columns: it may have been written when there was
// none, without their offsets, and nothing of it stands there in any case.
bool PredatesVariables(const Definition& definition, unsigned columns) {
  if (columns >= definition.max_columns) return false;
  return std::none_of(definition.columns.begin(), definition.columns.end(),
                      [=](const Column& c) { return !c.IsFixed() && c.number < columns; });
}

}  // namespace

std::uint16_t TypeWidth(ColumnType type) {
  switch (type) {
    case ColumnType::Byte:
      return 1;
    case ColumnType::Integer:
      return 2;
    case ColumnType::Long:
    case ColumnType::Single:
    case ColumnType::Complex:
      return 4;
    case ColumnType::Currency:
    case ColumnType::Double:
    case ColumnType::Date:
    case ColumnType::BigInteger:
      return 8;
    case ColumnType::Guid:
      return 16;
    case ColumnType::Decimal:
      return 17;
    case ColumnType::ExtendedDate:
      return 42;
    default:
      return 0;
  }
}

bool IsVariableLength(ColumnType type) {
  return type == ColumnType::Text || type == ColumnType::Binary || type == ColumnType::Memo ||
         type == ColumnType::Ole;
}

std::size_t FixedWidth(const Column& column) {
  const std::uint16_t width = TypeWidth(column.type);
  return width != 0 || column.type == ColumnType::Boolean ? width : column.length;
}

OpenRow::OpenRow(const FileHeader& header, const Definition& definition, View bytes)
    : bytes_(bytes),
      jet3_(header.Jet3()),
      columns_(jet3_ ? U8(bytes, 0) : U16(bytes, 0)),
      end_(bytes.size()) {
  const std::size_t mask = (columns_ + 7U) / 8U;
  if (mask + (jet3_ ? 1U : 2U) > bytes.size()) ThrowTooShort();
  end_ -= mask;
  mask_ = bytes.subspan(end_);
  if (definition.variables == 0 || PredatesVariables(definition, columns_)) return;
  if (jet3_) {
    OpenJet3(mask);
  } else {
    OpenJet4(mask);
  }
}

void OpenRow::OpenJet4(std::size_t mask) {
  variables_ = U16(bytes_, bytes_.size() - mask - 2);
  const std::size_t footer = mask + 2 + 2U * (variables_ + 1U);
  if (footer + 2 > bytes_.size()) ThrowTooShort();
  table_ = bytes_.size() - mask - 4;
  end_ = bytes_.size() - footer;
}

// Offsets have one byte; the jump table in front of them names the entries at which 256 more is added. Its
// last byte is a dummy when the row's data end before that many times 256.
void OpenRow::OpenJet3(std::size_t mask) {
  const std::size_t count = bytes_.size() - 1 - mask;
  variables_ = U8(bytes_, count);
  std::size_t jumps = (bytes_.size() - 1) / 256;
  if (jumps + variables_ + 1U > count) ThrowTooShort();
  const std::size_t first = count - jumps - 1;
  if ((first - variables_) / 256 < jumps) --jumps;
  std::size_t jump = 0;
  for (unsigned i = 0; i <= variables_; ++i) {
    while (jump < jumps && bytes_[count - jump - 1] == i) ++jump;
    starts_[i] = static_cast<std::uint16_t>(bytes_[first - i] + 256U * jump);
  }
  end_ = first - variables_;
}

View OpenRow::Variable(unsigned i) const {
  const std::size_t from = jet3_ ? starts_[i] : U16(bytes_, table_ - 2U * i);
  const std::size_t to = jet3_ ? starts_[i + 1] : U16(bytes_, table_ - 2U * (i + 1));
  if (from > to || to > end_) ThrowTooShort();
  return bytes_.subspan(from, to - from);
}

Raw OpenRow::Of(const Column& column) const {
  const unsigned n = column.number;
  // A row that is older than the column does not have its bit.
  const bool present = n < columns_ && (mask_[n / 8] >> (n % 8) & 1) != 0;
  if (column.type == ColumnType::Boolean && !column.IsCalculated()) return View(present ? kTrue : kFalse);
  if (!present) return {};
  if (!column.IsFixed()) {
    if (column.variable >= variables_) return {};
    return Variable(column.variable);
  }
  const std::size_t from = (jet3_ ? 1U : 2U) + column.offset, width = FixedWidth(column);
  if (from + width > end_) ThrowTooShort();
  return bytes_.subspan(from, width);
}

}  // namespace internal

std::vector<Raw> SplitRow(const FileHeader& header, const Definition& definition, View bytes) {
  const internal::OpenRow row(header, definition, bytes);
  std::vector<Raw> raw_values;
  raw_values.reserve(definition.columns.size());
  for (const auto& c : definition.columns) raw_values.push_back(row.Of(c));
  return raw_values;
}

}  // namespace mdb
