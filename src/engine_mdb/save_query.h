// A SELECT of the dialect as the rows that Access keeps of a saved query.
#pragma once

#include <string>

#include "jetsql/ast.h"
#include "mdb/queries/saved_query.h"

namespace engine_mdb {

// `consulta` as it was parsed with its literals in the text. The catalog finds the table of a column that a
// join names without it. Throws base::Error for what a saved query cannot be.
mdb::ConsultaGuardada DescomponerConsulta(const std::string& nombre, const jetsql::Consulta& consulta,
                                          jetsql::Catalogo& catalogo);

}  // namespace engine_mdb
