#include "base/currency.h"

#include <limits>

#include "base/number.h"

namespace base {

Currency CurrencyOf(double units) {
  using Limits = std::numeric_limits<std::int64_t>;
  if (units == kLastCurrency) return {Limits::max()};
  if (units == -kLastCurrency) return {Limits::min()};
  return {BankersInteger(units * 10000.0)};
}

}  // namespace base
