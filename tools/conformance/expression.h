// The expression of the dialect that a row of functions is run as.
//
// A row of a classic Basic function leaves out arguments by that language's rules: its default comparison is
// binary, the dialect's is by the sort order, so it is written out. The dialect has no Empty: it is written
// as what it counts as in its place, an empty text or 0.
#pragma once

#include <optional>
#include <string>

#include "conformance/fact_table.h"

namespace conformance {

// Why a row is not run, by the rules of docs/sql-dialect.md; none: it is. Looks at the function, the
// arguments and the locale alone.
std::optional<std::string> WhyNotServed(const Row& row);

// Nothing when the dialect has no way to say it.
std::optional<std::string> Expression(const Row& row);

// Whether LIKE is to be read with * ? #.
bool UsesDaoWildcards(const Row& row);

// A value as a literal of the dialect; nothing for a list and for a text that holds a zero byte.
std::optional<std::string> Literal(const Json& value);

}  // namespace conformance
