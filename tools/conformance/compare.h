// Whether what came out is what a table says.
//
//   numbers   within one part in 10^14, a Single in 10^6; or the same in all the digits that the table
//   writes,
//             when it writes twelve or more (serials are cut there)
//   texts     character by character
//   dates     to the half second, and they must be dates
//   true      the dialect's True, -1
#pragma once

#include <string>

#include "base/error.h"
#include "base/value.h"
#include "conformance/fact_table.h"
#include "conformance/json.h"
#include "db/recordset.h"

namespace conformance {

bool AreEqual(const Json& expected, const base::Value& got, bool ignore_case = false);
// A list of texts, as Split and an ordered column give.
bool AreEqual(const Json& expected, const std::vector<std::string>& got);
// Whether the table says that error `number` is raised.
bool ExpectsError(const Json& expected, int number);
// The rows of a query or of what is asked after a change; in any order where the row says so.
bool SameRows(const Json& expected, const db::Recordset& rows, bool sorted, bool ignore_case);

// For messages.
std::string Show(const base::Value& value);
std::string Show(const db::Recordset& rows);
std::string Show(const base::Error& error);

}  // namespace conformance
