// Writes a resolved tree as SQLite text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jetsql/ast.h"
#include "jetsql/translate.h"

namespace jetsql {

std::string WriteQuery(const Query& query, const TranslationOptions& options);
std::string WriteInsert(const Insert& change, const TranslationOptions& options);
std::string WriteDelete(const Delete& change, const TranslationOptions& options);
// The steps of an UPDATE: more than one when it changes several tables.
std::vector<std::string> WriteUpdate(const Update& change, const TranslationOptions& options);
// INSERT of a query's rows into the columns of a table, each with its type.
std::string WriteInsertOf(const Query& query, std::string_view table, const std::vector<TableColumn>& columns,
                          const TranslationOptions& options);
// A value outside any query, as it is written into a definition.
std::string WriteValue(const Expr& value, base::Type stored_as);

// "name", with its quotes doubled.
std::string NameSql(std::string_view name);
// A text, number or date as a literal of SQLite.
std::string LiteralSql(const base::Value& v);

}  // namespace jetsql
