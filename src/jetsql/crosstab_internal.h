// TRANSFORM … PIVOT as a query with groups: each column of the crosstab is the value's aggregates over the
// rows whose pivot is that column.
#pragma once

#include <vector>

#include "base/locale.h"
#include "jetsql/ast.h"

namespace jetsql {

// Turns a crosstab without a list of columns into the query of its pivot's values, in their order.
void PedirValores(Consulta& c);
// Gives it those values as its list.
void DarValores(Consulta& c, const std::vector<base::Valor>& valores);
// Adds the columns of a crosstab that has its list to the SELECT's. Literals that became names are added to
// `fijos`.
void ExpandirCruce(Consulta& c, const base::Locale& locale, std::vector<int>& fijos);

}  // namespace jetsql
