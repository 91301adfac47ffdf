// Rows and errors as the texts that cases compare.
#pragma once

#include <string>

#include "db/connection.h"

namespace support {

// Numbers with ".", booleans -1 and 0, dates AAAA-MM-DD[ hh:mm:ss], NULL, (empty); control characters
// escaped.
std::string Cell(const base::Value& value);
// One line a row, cells joined with "|", sorted as lines when asked.
std::string Rows(const db::Recordset& rows, bool sorted = false);
// "name:type|…" of the columns.
std::string Header(const db::Recordset& rows);
// The description, with its number in front when it has one: "[13] …".
std::string ErrorText(const base::Error& error);

}  // namespace support
