// TRANSFORM … PIVOT as a query with groups: each column of the crosstab is the value's aggregates over the
// rows whose pivot is that column.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/locale.h"
#include "jetsql/ast.h"

namespace jetsql {

// A saved query is a crosstab whose columns are not known yet.
class MissingColumns : public base::Error {
 public:
  explicit MissingColumns(std::string query)
      : base::Error("La consulta de referencias cruzadas '" + query +
                    "' no tiene columnas fijas (PIVOT … IN): no se puede usar aquí"),
        query_(std::move(query)) {}
  const std::string& Query() const { return query_; }

 private:
  std::string query_;
};

// Turns a crosstab without a list of columns into the query of its pivot's values, in their order.
void AskForValues(Query& c);
// Gives it those values as its list.
void SetValues(Query& c, const std::vector<base::Value>& values);
// Adds the columns of a crosstab that has its list to the SELECT's. Literals that became names are added to
// `fixed`.
void ExpandCrosstab(Query& c, const base::Locale& locale, std::vector<int>& fixed);

}  // namespace jetsql
