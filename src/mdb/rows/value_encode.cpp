#include <algorithm>
#include <bit>
#include <cmath>

#include "base/encoding.h"
#include "mdb/rows/row_encode_internal.h"
#include "mdb/rows/row_internal.h"

namespace mdb::internal {
namespace {

constexpr int kOtherType = 3421, kOutOfRange = 6, kTextTooLong = 3163;
constexpr std::size_t kMaxCompressed = 1024;  // characters; longer texts are never compressed
constexpr double kFirstDate = -657434, kPastLastDate = 2958466;  // 1 January 100, 1 January 10000

template <typename T>
const T& ValueAs(const Definition& d, const Column& c, const Datum& datum) {
  const T* value = std::get_if<T>(&datum);
  if (value == nullptr)
    throw base::Error("La " + FullName(d, c) + " no admite un valor de ese tipo", kOtherType);
  return *value;
}

std::int64_t IntegerBetween(const Definition& d, const Column& c, const Datum& datum, std::int64_t minimum,
                            std::int64_t maximum) {
  const auto n = ValueAs<std::int64_t>(d, c, datum);
  if (n < minimum || n > maximum)
    throw base::Error("El valor " + std::to_string(n) + " no cabe en la " + FullName(d, c) + ", que va de " +
                          std::to_string(minimum) + " a " + std::to_string(maximum),
                      kOutOfRange);
  return n;
}

double Finite(const Definition& d, const Column& c, double n) {
  if (!std::isfinite(n))
    throw base::Error("El valor para la " + FullName(d, c) + " no es un número", kOutOfRange);
  return n;
}

double ValidDate(const Definition& d, const Column& c, double serial) {
  // Below zero the time of day still counts forward, so the first day reaches a whole day under its number.
  if (!(serial > kFirstDate - 1 && serial < kPastLastDate))
    throw base::Error("La fecha para la " + FullName(d, c) + " está fuera de los años 100 a 9999",
                      kOutOfRange);
  return serial;
}

void EncodeDecimal(const Definition& d, const Column& c, const Decimal& n, Bytes& target) {
  Decimal integer = n;
  integer.scale = 0;
  integer.negative = false;
  const std::string digits = integer.Text();
  if (n.scale != c.scale || (digits != "0" && digits.size() > c.precision))
    throw base::Error("El número " + n.Text() + " no cabe en la " + FullName(d, c) + ", que tiene " +
                          std::to_string(c.precision) + " cifras, " + std::to_string(c.scale) +
                          " de ellas decimales",
                      kOutOfRange);
  Append8(target, n.negative && digits != "0" ? 0x80 : 0x00);
  for (const std::uint32_t word : n.magnitude) Append32(target, word);
}

// The first three groups of a GUID stand with their lowest byte first.
void EncodeGuid(const Guid& g, Bytes& target) {
  constexpr std::array<std::size_t, 16> kOrder = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  for (const std::size_t i : kOrder) Append8(target, g.bytes[i]);
}

void CheckLength(const Definition& d, const Column& c, std::size_t length, const char* of_what,
                 std::size_t per_unit) {
  if (length <= c.length) return;
  throw base::Error("El valor para la " + FullName(d, c) + " tiene " + std::to_string(length / per_unit) +
                        " " + of_what + " y caben " + std::to_string(c.length / per_unit),
                    kTextTooLong);
}

void AppendUtf16(Bytes& target, std::u16string_view text) {
  for (const char16_t u : text) Append16(target, u);
}

// A text that starts with the mark of compressed ones would be taken for one: it must be written as such,
// with the byte that switches to UTF-16 and back. Units with a zero byte cannot stand there.
void AppendWithShifts(Bytes& target, std::u16string_view text) {
  target.insert(target.end(), {0xFF, 0xFE});
  bool compressed = true;
  for (const char16_t u : text) {
    const bool is_short = u > 0 && u < 0x100;
    if (!is_short && ((u & 0xFF) == 0 || u >> 8 == 0))
      throw base::Error(
          "Un texto que empieza con la marca U+FEFF no se puede guardar con los demás caracteres"
          " que tiene");
    if (is_short != compressed) Append8(target, 0);
    compressed = is_short;
    if (is_short) {
      Append8(target, static_cast<std::uint8_t>(u));
    } else {
      Append16(target, u);
    }
  }
}

void EncodeBytes(const Definition& d, const Column& c, const Datum& datum, Bytes& target) {
  const auto& bytes = ValueAs<Bytes>(d, c, datum);
  CheckLength(d, c, bytes.size(), "bytes", 1);
  AppendBytes(target, bytes);
}

void EncodeShortText(const Definition& d, const Column& c, const Datum& datum, Bytes& target) {
  const auto& text = ValueAs<std::string>(d, c, datum);
  // Each character is one to three bytes of UTF-8 a unit, so most texts need no counting.
  if (text.size() * 2 > c.length) CheckLength(d, c, base::ToUtf16(text).size() * 2, "caracteres", 2);
  EncodeText(text, (c.extended_flags & Column::kCompressed) != 0, target);
}

}  // namespace

void EncodeText(std::string_view text, bool compress, Bytes& target) {
  const std::u16string units = base::ToUtf16(text);
  const bool latin = std::all_of(units.begin(), units.end(), [](char16_t u) { return u > 0 && u < 0x100; });
  if (compress && latin && units.size() > 2 && units.size() <= kMaxCompressed)
    return AppendWithShifts(target, units);
  if (!units.empty() && units.front() == 0xFEFF) return AppendWithShifts(target, units);
  AppendUtf16(target, units);
}

void EncodeValue(const Definition& d, const Column& c, const Datum& datum, Bytes& target) {
  switch (c.type) {
    case ColumnType::Boolean:
      return Append8(target, ValueAs<bool>(d, c, datum) ? 1 : 0);
    case ColumnType::Byte:
      return Append8(target, static_cast<std::uint8_t>(IntegerBetween(d, c, datum, 0, 255)));
    case ColumnType::Integer:
      return Append16(target, static_cast<std::uint16_t>(IntegerBetween(d, c, datum, -32768, 32767)));
    case ColumnType::Long:
      return Append32(target,
                      static_cast<std::uint32_t>(IntegerBetween(d, c, datum, -2147483648LL, 2147483647LL)));
    case ColumnType::Currency:
      return Append64(target,
                      static_cast<std::uint64_t>(ValueAs<base::Currency>(d, c, datum).ten_thousandths));
    case ColumnType::Single: {
      const float n = ValueAs<float>(d, c, datum);
      Finite(d, c, double{n});
      return Append32(target, std::bit_cast<std::uint32_t>(n));
    }
    case ColumnType::Double:
      return Append64(target, std::bit_cast<std::uint64_t>(Finite(d, c, ValueAs<double>(d, c, datum))));
    case ColumnType::Date:
      return Append64(target,
                      std::bit_cast<std::uint64_t>(ValidDate(d, c, ValueAs<base::Date>(d, c, datum).serial)));
    case ColumnType::Text:
      return EncodeShortText(d, c, datum, target);
    case ColumnType::Memo:
      return EncodeText(ValueAs<std::string>(d, c, datum), (c.extended_flags & Column::kCompressed) != 0,
                        target);
    case ColumnType::Ole:
      return AppendBytes(target, ValueAs<Bytes>(d, c, datum));
    case ColumnType::Guid:
      return EncodeGuid(ValueAs<Guid>(d, c, datum), target);
    case ColumnType::Decimal:
      return EncodeDecimal(d, c, ValueAs<Decimal>(d, c, datum), target);
    case ColumnType::Binary:
    case ColumnType::FixedBinary:
      return EncodeBytes(d, c, datum, target);
    default:
      throw base::Error("La " + FullName(d, c) + " es de un tipo que no se escribe");
  }
}

}  // namespace mdb::internal
