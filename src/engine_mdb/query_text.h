// The words of a saved query.
#pragma once

#include <string>

#include "mdb/queries/saved_query.h"

namespace engine_mdb {

// In Spanish, for messages: "de selección", "de creación de tabla", …
const char* KindName(mdb::QueryKind kind);
// Whether it gives rows and takes no parameter of a form: what may stand in a FROM.
bool GivesRows(mdb::QueryKind kind);
// The text of the query in the dialect, as its author would read it. Throws base::Error when the rows do not
// make one.
std::string QueryText(const mdb::SavedQuery& query);

}  // namespace engine_mdb
