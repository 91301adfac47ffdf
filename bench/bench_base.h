// The payroll base and the file of hours that the benchmark works on.
#pragma once

#include <cstddef>
#include <string>

#include "base/date.h"
#include "db/connection.h"

namespace bench {

inline constexpr std::size_t kLinesPerContract = 5;

// The demo base with `contracts` more contracts in force, of which every second one has its liquidation of
// the month open, and every tenth one overtime entered in it.
void FillDatabase(db::Connection& connection, base::Date month, std::size_t contracts);

// Five lines a contract (HC, HE, HN, HF, VI) by card, the contracts in no order, lines ended by CR LF.
std::string HoursFile(std::size_t contracts);

}  // namespace bench
