#include "base/currency.h"

#include <limits>

#include "base/number.h"

namespace base {

Currency CurrencyOf(double units) {
  constexpr double kLast = 922337203685477.5807;
  using Limits = std::numeric_limits<std::int64_t>;
  if (units == kLast) return {Limits::max()};
  if (units == -kLast) return {Limits::min()};
  return {BankersInteger(units * 10000.0)};
}

}  // namespace base
