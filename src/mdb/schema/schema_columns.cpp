#include <algorithm>

#include "mdb/pages/page_map.h"
#include "mdb/rows/row_internal.h"
#include "mdb/schema/schema_internal.h"

namespace mdb::internal {
namespace {

// The longest row that is written.
constexpr std::size_t kRowWidth = 4060;
constexpr std::uint16_t kTextLetters = 255, kBinaryBytes = 510;
constexpr std::uint8_t kDecimalDigits = 28;

std::uint16_t LengthOf(const NewColumn& fresh) {
  const auto error = [&](const char* reason) -> std::uint16_t {
    throw base::Error("La columna '" + fresh.name + "' " + reason);
  };
  switch (fresh.type) {
    case ColumnType::Boolean:
      return 1;
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Single:
    case ColumnType::Currency:
    case ColumnType::Double:
    case ColumnType::Date:
    case ColumnType::Guid:
      return TypeWidth(fresh.type);
    case ColumnType::Decimal:
      if (fresh.precision < 1 || fresh.precision > kDecimalDigits || fresh.scale > fresh.precision)
        return error("no puede tener esa cantidad de cifras");
      return TypeWidth(fresh.type);
    case ColumnType::Text:
      if (fresh.length > kTextLetters) return error("no puede tener más de 255 letras");
      return static_cast<std::uint16_t>(2 * (fresh.length == 0 ? kTextLetters : fresh.length));
    case ColumnType::Binary:
      if (fresh.length > kBinaryBytes) return error("no puede tener más de 510 bytes");
      return fresh.length == 0 ? std::uint16_t{255} : fresh.length;
    case ColumnType::Memo:
    case ColumnType::Ole:
      return 0;
    default:
      return error("es de un tipo que una base de Access 2000 a 2003 no tiene");
  }
}

// What a fixed column takes whatever its descriptor says: Access itself writes smaller numbers for Numeric.
std::size_t StoredLength(ColumnType type) { return type == ColumnType::Decimal ? 17 : 0; }

std::size_t FixedEnd(const Definition& d) {
  std::size_t end = 0;
  for (const auto& c : d.columns)
    if (c.IsFixed() && c.type != ColumnType::Boolean)
      end = std::max<std::size_t>(end, c.offset + std::max<std::size_t>(c.length, StoredLength(c.type)));
  return end;
}

// What a row takes that has nothing in its variable columns.
std::size_t MinimumWidth(const Definition& d) {
  const std::size_t variable_table = d.variables == 0 ? 0 : 4 + 2U * d.variables;
  return 2 + FixedEnd(d) + variable_table + (d.max_columns + 7U) / 8;
}

void CheckAutoNumber(const Definition& d, const NewColumn& fresh) {
  if (fresh.type == ColumnType::Guid) return;
  if (fresh.type != ColumnType::Long)
    throw base::Error("La columna '" + fresh.name + "' no puede ser autonumérica: no es un entero largo");
  if (fresh.increment == 0)
    throw base::Error("La columna autonumérica '" + fresh.name + "' no puede crecer de a 0");
  for (const auto& c : d.columns)
    if (c.IsAutoNumber())
      throw base::Error("La tabla '" + d.name + "' ya tiene una columna autonumérica, '" + c.name + "'");
}

std::uint8_t FlagsOf(const NewColumn& fresh) {
  std::uint8_t b = Column::kUpdatable;
  if (!IsVariableLength(fresh.type)) b |= Column::kFixed;
  if (fresh.auto_number) b |= fresh.type == ColumnType::Guid ? Column::kAutoGuid : Column::kAutoNumber;
  return b;
}

}  // namespace

void AddColumn(PageFile& pages, Definition& d, const NewColumn& fresh) {
  CheckName(fresh.name, "una columna");
  if (d.ByName(fresh.name))
    throw base::Error("La tabla '" + d.name + "' ya tiene una columna '" + fresh.name + "'");
  if (d.max_columns >= Definition::kColumns)
    throw base::Error("La tabla '" + d.name +
                      "' llegó a las 255 columnas que puede tener, contando las que tuvo antes");
  if (fresh.auto_number) CheckAutoNumber(d, fresh);
  Column c;
  c.name = fresh.name;
  c.type = fresh.type;
  c.length = LengthOf(fresh);
  c.flags = FlagsOf(fresh);
  if (c.type == ColumnType::Text && fresh.compress) c.extended_flags = Column::kCompressed;
  c.number = d.max_columns;
  c.variable = d.variables;
  for (const auto& other : d.columns)
    c.position = std::max(c.position, static_cast<std::uint16_t>(other.position + 1));
  c.lcid = pages.Header().order;
  c.order_version = c.IsText() ? pages.Header().order_version : std::uint8_t{0};
  if (c.type == ColumnType::Decimal) {
    c.precision = fresh.precision;
    c.scale = fresh.scale;
  }
  if (c.IsFixed() && c.type != ColumnType::Boolean) c.offset = static_cast<std::uint16_t>(FixedEnd(d));
  if (fresh.auto_number && fresh.type == ColumnType::Long) {
    d.last_auto_number = static_cast<std::int32_t>(static_cast<std::uint32_t>(fresh.seed) -
                                                   static_cast<std::uint32_t>(fresh.increment));
    d.increment = fresh.increment;
  }
  ++d.max_columns;
  if (!c.IsFixed()) ++d.variables;
  d.columns.push_back(c);
  if (MinimumWidth(d) > kRowWidth)
    throw base::Error("Las columnas de la tabla '" + d.name + "' no caben en una fila");
  if (c.IsLong()) {
    d.columns.back().lv_owned_pages = CreateMap(pages);
    d.columns.back().lv_free_pages = CreateMap(pages);
  }
}

void AddProperties(Properties& properties, const NewColumn& column) {
  std::vector<Property> its;
  const auto add = [&](const char* name, ColumnType type, Datum value) {
    its.push_back({name, static_cast<std::uint8_t>(type), true, std::move(value)});
  };
  if (column.required) add("Required", ColumnType::Boolean, true);
  if (column.type == ColumnType::Text || column.type == ColumnType::Memo)
    add("AllowZeroLength", ColumnType::Boolean, column.allows_empty);
  if (column.type == ColumnType::Text) add("UnicodeCompression", ColumnType::Boolean, column.compress);
  if (column.auto_number && column.type == ColumnType::Guid)
    add("DefaultValue", ColumnType::Text, std::string("GenGUID()"));
  else if (!column.default_value.empty())
    add("DefaultValue", ColumnType::Memo, column.default_value);
  if (!its.empty()) properties[column.name] = std::move(its);
}

}  // namespace mdb::internal
