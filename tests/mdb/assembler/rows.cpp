// Rows as bytes: fixed columns, variable ones, where these start, and which are there.
#include <algorithm>
#include <cmath>
#include <map>

#include "mdb/assembler/bytes.h"

namespace assembler {
namespace {

unsigned Width(ColumnType type) {
  using enum ColumnType;
  switch (type) {
    case Boolean:
      return 0;
    case Byte:
      return 1;
    case Integer:
      return 2;
    case Long:
    case Single:
    case Complex:
      return 4;
    case Guid:
      return 16;
    case ColumnType::Decimal:
      return 17;
    case ExtendedDate:
      return 42;
    default:
      return 8;
  }
}

bool IsLong(const Column& c) { return c.type == ColumnType::Memo || c.type == ColumnType::Ole; }

// The value's bytes, without the field that a long value has in its row.
Bytes Plain(Format format, const Column& column, const Datum& value) {
  Bytes b;
  if (const auto* n = std::get_if<std::int64_t>(&value)) {
    Add(b, static_cast<std::uint64_t>(*n), static_cast<int>(Width(column.type)));
  } else if (const auto* f = std::get_if<float>(&value)) {
    Add(b, Bits<std::uint32_t>(*f), 4);
  } else if (const auto* d = std::get_if<double>(&value)) {
    Add(b, Bits<std::uint64_t>(*d), 8);
  } else if (const auto* m = std::get_if<base::Currency>(&value)) {
    Add(b, static_cast<std::uint64_t>(m->ten_thousandths), 8);
  } else if (const auto* day = std::get_if<base::Date>(&value)) {
    Add(b, Bits<std::uint64_t>(day->serial), 8);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    if (column.type == ColumnType::ExtendedDate) return {text->begin(), text->end()};
    b = Text(format, *text, column.compresses);
  } else if (const auto* bytes = std::get_if<Bytes>(&value)) {
    b = *bytes;
  } else if (const auto* guid = std::get_if<mdb::Guid>(&value)) {
    for (const int i : {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15})
      b.push_back(guid->bytes[static_cast<std::size_t>(i)]);
  } else if (const auto* decimal = std::get_if<mdb::Decimal>(&value)) {
    b.push_back(decimal->negative ? 0x80 : 0);
    for (const std::uint32_t word : decimal->magnitude) Add(b, word, 4);
  }
  return b;
}

Bytes LongField(std::uint32_t word, RowId first) {
  Bytes b;
  Add(b, word, 4);
  AddPointer(b, first);
  Add(b, 0, 4);
  return b;
}

// In the row, in a row of a page of long values, or in a chain of them.
Bytes LongValue(Format format, const Bytes& data, LongPages& where) {
  const std::size_t most = format == Format::Jet3 ? 2032 : 4076;
  const auto length = static_cast<std::uint32_t>(data.size());
  if (data.size() <= 64 && !(where.chains && !data.empty())) {
    Bytes b = LongField(0x80000000U | length, {});
    Append(b, data);
    return b;
  }
  if (data.size() <= most && !where.chains) return LongField(0x40000000U | length, where.pages.Place(data));
  RowId next;
  const std::size_t piece = std::min(most - 4, std::max<std::size_t>(1, (data.size() + 1) / 2));
  const std::size_t pieces = (data.size() + piece - 1) / piece;
  for (std::size_t k = pieces; k > 0; --k) {  // the last one first, so that each knows the next
    Bytes row;
    AddPointer(row, next);
    const auto from = data.begin() + static_cast<std::ptrdiff_t>((k - 1) * piece);
    row.insert(row.end(), from, data.begin() + static_cast<std::ptrdiff_t>(std::min(data.size(), k * piece)));
    next = where.pages.Place(row);
  }
  return LongField(length, next);
}

// Behind 16 bytes that are not looked at and the length, as .accdb files have them.
Bytes Calculated(const Bytes& data) {
  Bytes b(16, 0);
  Add(b, data.size(), 4);
  Append(b, data);
  b.insert(b.end(), 4, 0);
  return b;
}

void AddOffsetsOfJet3(Bytes& b, const std::vector<std::size_t>& starts, std::size_t mask) {
  const std::size_t variables = starts.size() - 1, end = b.size();
  const std::size_t fixed = end + (variables + 1) + 1 + mask;
  // Each jump is a byte of the row too.
  std::size_t jumps = 0;
  while ((fixed + jumps - 1) / 256 > jumps) ++jumps;
  for (std::size_t i = variables + 1; i-- > 0;) Add(b, starts[i] % 256, 1);
  for (std::size_t k = jumps; k > 0; --k) {
    std::size_t first = 0;
    while (first <= variables && starts[first] < 256 * k) ++first;
    Add(b, first <= variables ? first : 0xFF, 1);
  }
  Add(b, variables, 1);
}

}  // namespace

bool IsFixed(const Column& c) {
  using enum ColumnType;
  return !c.variable && !c.calculated && c.type != Text && c.type != Binary && !IsLong(c);
}

unsigned StoredLength(Format format, const Column& c) {
  if (c.type == ColumnType::Boolean) return 1;
  if (c.type == ColumnType::Text) return format == Format::Jet3 ? c.length : 2 * c.length;
  if (c.type == ColumnType::Binary) return c.length;
  return IsLong(c) ? 0 : Width(c.type);
}

Layout LayoutOf(const Table& table) {
  Layout layout;
  unsigned offset = 0;
  for (const Column& c : table.columns) {
    layout.variable_index.push_back(layout.variables);
    layout.fixed_offset.push_back(offset);
    if (IsFixed(c)) {
      offset += c.type == ColumnType::Boolean ? 0 : Width(c.type);
    } else {
      ++layout.variables;
    }
  }
  return layout;
}

Bytes EncodeRow(Format format, const Table& table, const RowSpec& row, std::vector<LongPages*>& long_pages) {
  const bool jet3 = format == Format::Jet3;
  const std::size_t known = row.columns == 0 ? table.columns.size() : row.columns;
  Bytes b, mask((known + 7) / 8);
  Add(b, known, jet3 ? 1 : 2);
  std::vector<Bytes> variable;
  for (std::size_t i = 0; i < known; ++i) {
    const Column& c = table.columns[i];
    const Datum& value = c.gone ? Datum{} : row.values.at(i);
    const auto* yes = std::get_if<bool>(&value);
    const bool there =
        c.type == ColumnType::Boolean && !c.calculated ? yes != nullptr && *yes : !mdb::IsNull(value);
    if (there) mask[i / 8] |= static_cast<std::uint8_t>(1U << i % 8);
    if (IsFixed(c)) {
      if (c.type == ColumnType::Boolean) continue;
      Bytes bytes = Plain(format, c, value);
      bytes.resize(Width(c.type));
      Append(b, bytes);
      continue;
    }
    Bytes bytes;
    if (there) bytes = Plain(format, c, value);
    if (there && c.calculated && yes != nullptr) bytes = {static_cast<std::uint8_t>(*yes ? 0xFF : 0)};
    if (there && IsLong(c)) bytes = LongValue(format, bytes, *long_pages.at(i));
    if (there && c.calculated) bytes = Calculated(bytes);
    variable.push_back(bytes);
  }
  if (LayoutOf(table).variables > 0) {
    std::vector<std::size_t> starts;
    for (const Bytes& v : variable) {
      starts.push_back(b.size());
      Append(b, v);
    }
    starts.push_back(b.size());
    if (jet3) {
      AddOffsetsOfJet3(b, starts, mask.size());
    } else {
      for (std::size_t i = starts.size(); i-- > 0;) Add(b, starts[i], 2);
      Add(b, variable.size(), 2);
    }
  }
  Append(b, mask);
  return b;
}

// The list of names, then the properties of each owner.
Bytes Properties(Format format, const std::vector<Property>& properties) {
  Bytes b = Text(Format::Jet3, format == Format::Jet3 ? "KKD" : "MR2");
  b.push_back(0);
  const auto name = [&](Bytes& to, const std::string& text) {
    const Bytes stored = Text(format, text);
    Add(to, stored.size(), 2);
    Append(to, stored);
  };
  const auto block = [&](unsigned kind, const Bytes& inside) {
    Add(b, inside.size() + 6, 4);
    Add(b, kind, 2);
    Append(b, inside);
  };
  std::vector<std::string> names;
  std::map<std::string, Bytes> owners;
  for (const Property& p : properties) {
    const auto at = std::find(names.begin(), names.end(), p.name);
    const auto number = static_cast<std::size_t>(at - names.begin());
    if (at == names.end()) names.push_back(p.name);
    Column column;
    Bytes data;
    column.type = ColumnType::Text;
    if (const auto* yes = std::get_if<bool>(&p.value)) {
      column.type = ColumnType::Boolean;
      data = {static_cast<std::uint8_t>(*yes ? 0xFF : 0)};
    } else {
      if (std::holds_alternative<std::int64_t>(p.value)) column.type = ColumnType::Long;
      data = Plain(format, column, p.value);
    }
    Bytes& to = owners[p.owner];
    Add(to, 8 + data.size(), 2);
    Add(to, 0, 1);
    Add(to, static_cast<unsigned>(column.type), 1);
    Add(to, number, 2);
    Add(to, data.size(), 2);
    Append(to, data);
  }
  Bytes list;
  for (const std::string& n : names) name(list, n);
  block(0x80, list);
  for (const auto& [owner, records] : owners) {
    Bytes head;
    name(head, owner);
    Bytes inside;
    Add(inside, head.size() + 4, 4);
    Append(inside, head);
    Append(inside, records);
    block(owner.empty() ? 0 : 1, inside);
  }
  return b;
}

}  // namespace assembler
