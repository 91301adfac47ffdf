// One value of an Access column, exact: nothing is rounded or converted between the file and here.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <variant>

#include "base/valor.h"
#include "mdb/pages/bytes.h"

namespace mdb {

struct Guid {
  std::array<std::uint8_t, 16> bytes{};  // in the order of the printed form {00112233-4455-…}
  auto operator<=>(const Guid&) const = default;
  std::string Texto() const;  // "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"
};
// Throws base::Error for a text that is none; the braces may be missing.
Guid GuidDeTexto(std::string_view texto);

// A Numeric value: up to 28 digits. Its scale is that of its column.
struct Decimal {
  bool negativo = false;
  std::array<std::uint32_t, 4> magnitud{};  // most significant first
  std::uint8_t escala = 0;
  auto operator<=>(const Decimal&) const = default;
  double Numero() const;
  std::string Texto() const;  // "-12.50": all digits, "." as the point
};
// With `escala` decimals, half to even; throws base::Error when 28 digits do not hold it or it is no number.
Decimal DecimalDeTexto(std::string_view texto, std::uint8_t escala);

// Null, Boolean, the integers (Byte, Integer, Long, big), Single, Double, Currency, Date, Text and Memo
// (UTF-8; an unpaired surrogate becomes U+FFFD), Binary and OLE, GUID, Numeric.
using Dato = std::variant<base::Nulo, bool, std::int64_t, float, double, base::Moneda, base::Fecha,
                          std::string, Bytes, Guid, Decimal>;
inline bool EsNulo(const Dato& d) { return d.index() == 0; }
using Fila = std::vector<Dato>;  // one a column of the definition, in the order of its `columnas`

}  // namespace mdb
