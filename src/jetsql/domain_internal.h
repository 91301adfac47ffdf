// DLookup and its kin: an expression, a table and a condition given as texts, read as a subquery of their
// own.
#pragma once

#include <string_view>
#include <vector>

#include "jetsql/ast.h"

namespace jetsql {

bool IsDomainFunction(std::string_view function);

// Turns a call of such a function, its arguments resolved, into a subquery that is not. The condition may
// join texts and values with "&", as "id=" & id: the values become part of the subquery's tree, in quotes or
// between
// "#" too. What the texts say decides the tree, so that they are added to `fixed`. Throws base::Error for
// arguments that are no texts.
void OpenDomain(Expr& e, std::vector<int>& fixed);

}  // namespace jetsql
