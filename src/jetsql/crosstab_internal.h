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
class FaltanColumnas : public base::Error {
 public:
  explicit FaltanColumnas(std::string consulta)
      : base::Error("La consulta de referencias cruzadas '" + consulta +
                    "' no tiene columnas fijas (PIVOT … IN): no se puede usar aquí"),
        consulta_(std::move(consulta)) {}
  const std::string& Consulta() const { return consulta_; }

 private:
  std::string consulta_;
};

// Turns a crosstab without a list of columns into the query of its pivot's values, in their order.
void PedirValores(Consulta& c);
// Gives it those values as its list.
void DarValores(Consulta& c, const std::vector<base::Valor>& valores);
// Adds the columns of a crosstab that has its list to the SELECT's. Literals that became names are added to
// `fijos`.
void ExpandirCruce(Consulta& c, const base::Locale& locale, std::vector<int>& fijos);

}  // namespace jetsql
