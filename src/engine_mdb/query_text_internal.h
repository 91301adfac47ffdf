// The parts that the text of a saved query is put together from.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "mdb/queries/saved_query.h"

namespace engine_mdb::internal {

// A name as it stands in a statement: in brackets where it would not read as one word.
std::string Quote(std::string_view name);
// The same for a name that may be qualified (Table.Column), a part at a time.
std::string QuoteCompound(std::string_view name);
// Without the blanks, semicolons and NULs that the stored texts end in.
std::string_view WithoutTail(std::string_view text);

// What follows FROM (or UPDATE): the sources joined pair by pair in the order of the join rows, the others in
// a list. Throws base::Error for a join whose sides are not two of the sources.
std::string SourcesText(std::span<const mdb::QueryRow> sources, std::span<const mdb::QueryRow> joins);

}  // namespace engine_mdb::internal
