// Writes a resolved tree as SQLite text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jetsql/ast.h"
#include "jetsql/translate.h"

namespace jetsql {

std::string WriteQuery(const Consulta& query, const OpcionesTraduccion& options);
std::string WriteInsert(const Insercion& change, const OpcionesTraduccion& options);
std::string WriteDelete(const Borrado& change, const OpcionesTraduccion& options);
// The steps of an UPDATE: more than one when it changes several tables.
std::vector<std::string> WriteUpdate(const Actualizacion& change, const OpcionesTraduccion& options);
// INSERT of a query's rows into the columns of a table, each with its type.
std::string WriteInsertOf(const Consulta& query, std::string_view table,
                          const std::vector<ColumnaTabla>& columns, const OpcionesTraduccion& options);
// A value outside any query, as it is written into a definition.
std::string WriteValue(const Expr& value, base::Tipo stored_as);

// "name", with its quotes doubled.
std::string NombreSql(std::string_view nombre);
// A text, number or date as a literal of SQLite.
std::string LiteralSql(const base::Valor& v);

}  // namespace jetsql
