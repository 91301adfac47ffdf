// Text of the dialect to tree, and back.
#pragma once

#include <string>
#include <string_view>

#include "jetsql/ast.h"
#include "jetsql/translate.h"

namespace jetsql {

// InText: no literal has an index (a stored query). Those of CREATE, DROP and ALTER never have one.
enum class Literals { Numbered, InText };

// One statement, with or without a ";" at its end. Throws SyntaxError.
Statement Parse(std::string_view sql, Literals literals = Literals::Numbered);

// The text of a tree before it is resolved: parsing it gives an equal tree.
std::string Print(const Statement& statement);
std::string Print(const Query& query);
std::string Print(const Select& select);  // one SELECT of a union
std::string Print(const Expr& expr);

}  // namespace jetsql
