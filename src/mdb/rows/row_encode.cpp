#include "mdb/rows/row_encode_internal.h"

#include <algorithm>

#include "mdb/rows/row_internal.h"

namespace mdb::internal {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// A Boolean has only its bit, whatever its flags say.
bool TakesRoom(const Column& c) { return c.type != ColumnType::Boolean; }

std::size_t MaskLength(const Definition& d) { return (d.max_columns + 7U) / 8U; }

}  // namespace

std::string FullName(const Definition& definition, const Column& column) {
  return "columna '" + column.name + "' de la tabla '" + definition.name + "'";
}

RowBuilder::RowBuilder(const Definition& definition)
    : definition_(definition), variable_(definition.variables, kNone) {
  const auto throw_damage = [&] {
    ThrowPageDamage(definition.Page(), "las columnas no concuerdan entre sí");
  };
  for (std::size_t i = 0; i < definition.columns.size(); ++i) {
    const Column& c = definition.columns[i];
    if (c.number >= definition.max_columns) throw_damage();
    if (!TakesRoom(c)) continue;
    if (c.IsFixed()) {
      fixed_end_ = std::max(fixed_end_, 2 + std::size_t{c.offset} + FixedWidth(c));
    } else {
      if (c.variable >= definition.variables || variable_[c.variable] != kNone) throw_damage();
      variable_[c.variable] = i;
    }
  }
}

std::size_t RowBuilder::Length(const std::vector<Raw>& raw_values) const {
  std::size_t length = fixed_end_ + MaskLength(definition_);
  if (!variable_.empty()) length += 4 + 2 * variable_.size();
  for (const std::size_t i : variable_)
    if (i != kNone && raw_values[i]) length += raw_values[i]->size();
  return length;
}

void RowBuilder::Build(const std::vector<Raw>& raw_values, Bytes& row) const {
  row.assign(fixed_end_, 0);
  Put16(row, 0, definition_.max_columns);
  Bytes mask(MaskLength(definition_), 0);
  for (std::size_t i = 0; i < raw_values.size(); ++i) {
    const Column& c = definition_.columns[i];
    const Raw& raw = raw_values[i];
    if (!raw || (c.type == ColumnType::Boolean && U8(*raw, 0) == 0)) continue;
    mask[c.number / 8U] = static_cast<std::uint8_t>(mask[c.number / 8U] | 1U << (c.number % 8U));
    if (TakesRoom(c) && c.IsFixed()) PutBytes(row, 2 + std::size_t{c.offset}, *raw);
  }
  if (!variable_.empty()) {
    std::vector<std::uint16_t> start;
    for (const std::size_t i : variable_) {
      start.push_back(static_cast<std::uint16_t>(row.size()));
      if (i != kNone && raw_values[i]) AppendBytes(row, *raw_values[i]);
    }
    Append16(row, static_cast<std::uint16_t>(row.size()));
    for (auto it = start.rbegin(); it != start.rend(); ++it) Append16(row, *it);
    Append16(row, static_cast<std::uint16_t>(start.size()));
  }
  AppendBytes(row, mask);
}

}  // namespace mdb::internal
