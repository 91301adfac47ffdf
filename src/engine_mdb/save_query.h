// A SELECT of the dialect as the rows that Access keeps of a saved query.
#pragma once

#include <string>

#include "jetsql/ast.h"
#include "mdb/queries/saved_query.h"

namespace engine_mdb {

// `query` as it was parsed with its literals in the text. The catalog finds the table of a column that a
// join names without it. Throws base::Error for what a saved query cannot be.
mdb::SavedQuery DecomposeQuery(const std::string& name, const jetsql::Query& query, jetsql::Catalog& catalog);

}  // namespace engine_mdb
