// Numbers to currencies.
#pragma once

#include "base/value.h"

namespace base {

// The last currency as a double, which lies a little outside of the range.
inline constexpr double kLastCurrency = 922337203685477.5807;

// The currency nearest to a number of units, halves of a ten-thousandth to even. As doubles the ends of the
// range lie a little outside of it: they give the first and the last currency. Throws Error 6 beyond them.
Currency CurrencyOf(double units);

}  // namespace base
