#include "mdb/indexes/index_key.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "base/encoding.h"
#include "base/sort_order.h"
#include "mdb/indexes/index_key97_internal.h"

namespace mdb {
namespace {

constexpr std::uint8_t kNull = 0x00, kValue = 0x7F, kContinues = 0x09;
constexpr std::size_t kUnits = 255;  // of a text, in an index entry

std::string Columns(const Column& c) { return "la columna '" + c.name + "'"; }

template <typename T>
const T& Take(const Column& column, const Datum& datum) {
  if (const T* v = std::get_if<T>(&datum)) return *v;
  throw base::Error("El valor de " + Columns(column) + " no es del tipo de la columna");
}

void Invert(Bytes& key, std::size_t from) {
  for (std::size_t i = from; i < key.size(); ++i) key[i] = static_cast<std::uint8_t>(~key[i]);
}

void AppendReversed(Bytes& key, std::uint64_t n, std::size_t bytes) {
  for (std::size_t i = bytes; i-- > 0;) key.push_back(static_cast<std::uint8_t>(n >> (8 * i)));
}

void AppendInteger(const Column& column, const Datum& datum, std::size_t bytes, Bytes& key) {
  const std::int64_t n = column.type == ColumnType::Currency
                             ? Take<base::Currency>(column, datum).ten_thousandths
                             : Take<std::int64_t>(column, datum);
  const std::uint64_t sign = 1ULL << (8 * bytes - 1);
  if (bytes < 8 && static_cast<std::uint64_t>(n) + sign >= sign * 2)
    throw base::Error("El número " + std::to_string(n) + " no cabe en " + Columns(column));
  AppendReversed(key, static_cast<std::uint64_t>(n) ^ sign, bytes);
}

// Floating-point bits in an order that is that of their numbers.
template <typename Integer>
void AppendFloat(Integer bits, Bytes& key) {
  constexpr Integer kSign = Integer{1} << (8 * sizeof(Integer) - 1);
  AppendReversed(key, (bits & kSign) != 0 ? static_cast<Integer>(~bits) : bits | kSign, sizeof(Integer));
}

// Pieces of eight bytes; the byte after each says that more follows, or how much of the last one counts. The
// mark of "more" is not inverted in a descending index.
void AppendSlices(View v, bool descending, Bytes& key) {
  while (!v.empty()) {
    const std::size_t n = std::min<std::size_t>(v.size(), 8);
    const bool last = n == v.size();
    const std::size_t from = key.size();
    AppendBytes(key, v.first(n));
    key.resize(from + 8, 0);
    if (last) key.push_back(static_cast<std::uint8_t>(n));
    if (descending) Invert(key, from);
    if (!last) key.push_back(kContinues);
    v = v.subspan(n);
  }
}

// Old files keep a sign byte that does not go with the inversion of the rest: Access wrote it so at first and
// had to stay with it.
void AppendDecimal(const FileHeader& header, const Column& column, bool descending, const Decimal& d,
                   Bytes& key) {
  if (d.scale != column.scale)
    throw base::Error("El valor de " + Columns(column) + " no tiene los decimales de la columna");
  const std::size_t from = key.size();
  const bool fresh = header.version == Version::Ace;
  key.push_back(fresh ? 0xFF : d.negative ? 0x80 : 0x00);
  for (const std::uint32_t part : d.magnitude) AppendReversed(key, part, 4);
  if (d.negative != descending) Invert(key, from);
  if (!fresh) key[from] = d.negative ? 0x00 : 0xFF;
}

// The part of the text that an index entry looks at. A character that stands half inside is taken along, so
// that its lack of a weight is seen.
std::string_view IndexPart(std::string_view text) {
  std::size_t i = 0;
  for (std::size_t units = 0; i < text.size() && units < kUnits;)
    units += base::NextPoint(text, i) > 0xFFFF ? 2 : 1;
  return text.substr(0, i);
}

[[noreturn]] void ThrowNoWeight(const Column& column, std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t before = i;
    base::NextPoint(text, i);
    const std::string_view letter = text.substr(before, i - before);
    if (!base::HasWeights(letter))
      throw base::Error("El texto '" + std::string(text) + "' de " + Columns(column) +
                        ", que está en un índice, tiene el carácter '" + std::string(letter) +
                        "', cuyo lugar en el orden de Access no se conoce");
  }
  throw base::Error("El texto de " + Columns(column) + " no se puede ordenar");
}

void AppendText(const Column& column, bool descending, std::string_view text, Bytes& key) {
  const auto order = base::OrderOfLanguage(column.lcid);
  if (!order || column.order_version != 0)
    throw base::Error("El orden de texto de " + Columns(column) + " (" + std::to_string(column.lcid) +
                      ", versión " + std::to_string(column.order_version) + ") no se conoce");
  const std::string_view part = IndexPart(text);
  if (!base::HasWeights(part)) ThrowNoWeight(column, part);
  const std::size_t from = key.size();
  for (const char c : base::IndexKey(part, *order)) key.push_back(static_cast<std::uint8_t>(c));
  if (!descending) return;
  Invert(key, from);
  key.push_back(0);
}

// The accent section of an Access 97 key: half bytes between two 0, up to the last accented letter.
void AppendAccents97(const std::string& bytes, Bytes& key) {
  std::vector<std::uint8_t> halves;
  std::size_t plain = 0;
  for (const char c : bytes) {
    const std::uint8_t accent = kWeights97[static_cast<unsigned char>(c)].accent;
    if (accent == 0) continue;
    if (accent == 2) {
      ++plain;
      continue;
    }
    if (halves.empty()) halves.push_back(0);
    halves.insert(halves.end(), plain, 2);
    halves.push_back(accent);
    plain = 0;
  }
  if (halves.empty()) {
    key.push_back(0);
    return;
  }
  halves.push_back(0);
  if (halves.size() % 2 != 0) halves.push_back(0);
  for (std::size_t i = 0; i < halves.size(); i += 2)
    key.push_back(static_cast<std::uint8_t>(halves[i] << 4 | halves[i + 1]));
}

void AppendText97(const FileHeader& header, const Column& column, bool descending, std::string_view text,
                  Bytes& key) {
  std::size_t lost = 0;
  std::string bytes = base::ToCp1252(text, &lost);
  if (header.code_page != 1252 || lost != 0)
    throw base::Error("El orden de texto de " + Columns(column) + " no se conoce");
  bytes.resize(std::min(bytes.size(), kUnits));
  while (!bytes.empty() && bytes.back() == ' ') bytes.pop_back();
  const std::size_t from = key.size();
  for (const char c : bytes) {
    const Weight97& p = kWeights97[static_cast<unsigned char>(c)];
    key.push_back(p.initial);
    if (p.next != 0) key.push_back(p.next);
  }
  AppendAccents97(bytes, key);
  if (descending) Invert(key, from);
}

const Column* ColumnOf(const Definition& definition, const RealIndex::Part& part) {
  for (const Column& c : definition.columns)
    if (c.number == part.column) return &c;
  return nullptr;
}

template <typename Visitor>
void ForEachPart(const Definition& definition, const RealIndex& index, const Row& row, Visitor&& visitor) {
  for (const RealIndex::Part& part : index.parts) {
    const Column* column = ColumnOf(definition, part);
    const std::size_t i =
        column == nullptr ? row.size() : static_cast<std::size_t>(column - definition.columns.data());
    if (i >= row.size())
      ThrowPageDamage(definition.Page(), "un índice de la tabla '" + definition.name +
                                             "' nombra la columna número " + std::to_string(part.column) +
                                             ", que no existe");
    visitor(*column, part.descending, row[i]);
  }
}

bool HasKeys(ColumnType type) {
  const auto n = static_cast<std::uint8_t>(type);
  return n >= 1 && n <= 20 && n != 13 && n != 14 && type != ColumnType::Ole &&
         type != ColumnType::FixedBinary;
}

// What columns of other types have: the value's bytes, ascending.
void AppendSimple(const Column& column, const Datum& datum, Bytes& key) {
  switch (column.type) {
    case ColumnType::Byte: {
      const std::int64_t n = Take<std::int64_t>(column, datum);
      if (n < 0 || n > 255)
        throw base::Error("El número " + std::to_string(n) + " no cabe en " + Columns(column));
      return key.push_back(static_cast<std::uint8_t>(n));
    }
    case ColumnType::Integer:
      return AppendInteger(column, datum, 2, key);
    case ColumnType::Long:
    case ColumnType::Complex:
      return AppendInteger(column, datum, 4, key);
    case ColumnType::Currency:
    case ColumnType::BigInteger:
      return AppendInteger(column, datum, 8, key);
    case ColumnType::Single:
      return AppendFloat(std::bit_cast<std::uint32_t>(Take<float>(column, datum)), key);
    case ColumnType::Double:
      return AppendFloat(std::bit_cast<std::uint64_t>(Take<double>(column, datum)), key);
    case ColumnType::Date:
      return AppendFloat(std::bit_cast<std::uint64_t>(Take<base::Date>(column, datum).serial), key);
    default:
      throw base::Error("No se conocen las claves de índice del tipo de " + Columns(column));
  }
}

}  // namespace

void AppendKey(const FileHeader& header, const Column& column, bool descending, const Datum& datum,
               Bytes& key) {
  const auto mark = [&](std::uint8_t b) { key.push_back(descending ? static_cast<std::uint8_t>(~b) : b); };
  if (column.type == ColumnType::Boolean) {  // never Null: a row older than the column has False
    mark(kValue);
    return mark(!IsNull(datum) && Take<bool>(column, datum) ? 0x00 : 0xFF);
  }
  if (IsNull(datum)) return mark(kNull);
  mark(kValue);
  switch (column.type) {
    case ColumnType::Text:
    case ColumnType::Memo: {
      const std::string& text = Take<std::string>(column, datum);
      return header.Jet3() ? AppendText97(header, column, descending, text, key)
                           : AppendText(column, descending, text, key);
    }
    case ColumnType::Binary:
      return AppendSlices(Take<Bytes>(column, datum), descending, key);
    case ColumnType::Guid:
      return AppendSlices(Take<Guid>(column, datum).bytes, descending, key);
    case ColumnType::ExtendedDate: {
      const std::string& t = Take<std::string>(column, datum);
      return AppendSlices(Bytes(t.begin(), t.end()), descending, key);
    }
    case ColumnType::Decimal:
      return AppendDecimal(header, column, descending, Take<Decimal>(column, datum), key);
    default:
      break;
  }
  const std::size_t from = key.size();
  AppendSimple(column, datum, key);
  if (descending) Invert(key, from);
}

void MakeRowKey(const FileHeader& header, const Definition& definition, const RealIndex& index,
                const Row& row, Bytes& key) {
  key.clear();
  ForEachPart(definition, index, row, [&](const Column& column, bool descending, const Datum& datum) {
    AppendKey(header, column, descending, datum, key);
  });
}

bool AllNull(const Definition& definition, const RealIndex& index, const Row& row) {
  bool all = true;
  ForEachPart(definition, index, row, [&](const Column& column, bool, const Datum& datum) {
    all = all && column.type != ColumnType::Boolean && IsNull(datum);
  });
  return all;
}

bool AnyNull(const Definition& definition, const RealIndex& index, const Row& row) {
  bool any = false;
  ForEachPart(definition, index, row, [&](const Column& column, bool, const Datum& datum) {
    any = any || (column.type != ColumnType::Boolean && IsNull(datum));
  });
  return any;
}

std::string NoKeysReason(const FileHeader& header, const Definition& definition, const RealIndex& index) {
  for (const RealIndex::Part& part : index.parts) {
    const Column* c = ColumnOf(definition, part);
    if (c == nullptr)
      return "un índice nombra la columna número " + std::to_string(part.column) + ", que no existe";
    if (c->IsCalculated()) return Columns(*c) + " es calculada y está en un índice";
    if (c->IsText() && header.Jet3() && header.code_page != 1252)
      return Columns(*c) + " tiene la página de códigos " + std::to_string(header.code_page) +
             ", cuyo orden no se conoce";
    if (c->IsText() && !header.Jet3() && (!base::OrderOfLanguage(c->lcid) || c->order_version != 0))
      return Columns(*c) + " está en un índice con el orden de texto " + std::to_string(c->lcid) +
             " versión " + std::to_string(c->order_version) + ", que no se conoce";
    if (!HasKeys(c->type)) return Columns(*c) + " es de un tipo cuyas claves de índice no se conocen";
  }
  return {};
}

}  // namespace mdb
