// One value of an Access column, exact: nothing is rounded or converted between the file and here.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <variant>

#include "base/value.h"
#include "mdb/pages/bytes.h"

namespace mdb {

struct Guid {
  std::array<std::uint8_t, 16> bytes{};  // in the order of the printed form {00112233-4455-…}
  auto operator<=>(const Guid&) const = default;
  std::string Text() const;  // "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"
};
// Throws base::Error for a text that is none; the braces may be missing.
Guid GuidFromText(std::string_view text);

// A Numeric value: up to 28 digits. Its scale is that of its column.
struct Decimal {
  bool negative = false;
  std::array<std::uint32_t, 4> magnitude{};  // most significant first
  std::uint8_t scale = 0;
  auto operator<=>(const Decimal&) const = default;
  double Number() const;
  std::string Text() const;  // "-12.50": all digits, "." as the point
};
// With `scale` decimals, half to even; throws base::Error when 28 digits do not hold it or it is no number.
Decimal DecimalFromText(std::string_view text, std::uint8_t scale);

// Null, Boolean, the integers (Byte, Integer, Long, big), Single, Double, Currency, Date, Text and Memo
// (UTF-8; an unpaired surrogate becomes U+FFFD), Binary and OLE, GUID, Numeric.
using Datum = std::variant<base::Null, bool, std::int64_t, float, double, base::Currency, base::Date,
                           std::string, Bytes, Guid, Decimal>;
inline bool IsNull(const Datum& d) { return d.index() == 0; }
using Row = std::vector<Datum>;  // one a column of the definition, in the order of its `columns`

}  // namespace mdb
