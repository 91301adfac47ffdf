#include "db/recordset.h"

#include <utility>

#include "base/text.h"
#include "db/connection.h"

namespace db {

Recordset::Recordset(std::shared_ptr<const Columns> columns, std::vector<base::Value> cells,
                     std::string source)
    : columns_(std::move(columns)), cells_(std::move(cells)), source_(std::move(source)) {
  width_ = columns_ == nullptr ? 0 : columns_->size();
  if (width_ == 0 ? !cells_.empty() : cells_.size() % width_ != 0)
    throw Error("La base respondió con filas incompletas: " + std::to_string(cells_.size()) +
                " valores para " + std::to_string(width_) + " campos");
  rows_ = width_ == 0 ? 0 : cells_.size() / width_;
}

void Recordset::ThrowOutside(std::size_t field, std::size_t row) const {
  if (row >= rows_)
    throw Error("No existe la fila " + std::to_string(row) + " en el resultado, que tiene " +
                std::to_string(rows_));
  // -1: a name that was looked for and not found.
  const std::string which = field == static_cast<std::size_t>(-1) ? "pedido" : std::to_string(field);
  throw Error("No existe el campo " + which + " en el resultado, que tiene " + std::to_string(width_));
}

const Columns& Recordset::Fields() const {
  static const Columns kNone;
  return columns_ == nullptr ? kNone : *columns_;
}

int Recordset::PositionOf(std::string_view name) const {
  for (std::size_t i = 0; i < width_; ++i)
    if (base::EqualIgnoringCase((*columns_)[i].name, name)) return static_cast<int>(i);
  return -1;
}

const base::Value& Recordset::Field(std::size_t field) const {
  if (IsEmpty()) throw Error("No hay ningún registro activo");
  return At(field, 0);
}

const base::Value& Recordset::Field(std::string_view name) const {
  const int position = PositionOf(name);
  if (position < 0) throw Error("No existe el campo '" + std::string(name) + "' en el resultado");
  return Field(static_cast<std::size_t>(position));
}

}  // namespace db
