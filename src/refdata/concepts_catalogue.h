// The concepts that can take an imported value, and the user tables that can take a dated one.
#pragma once

#include "base/error.h"
#include "db/db_session.h"
#include "formula/list_control.h"
#include "formula/vector.h"
#include "settings/settings.h"

namespace refdata {

// Fields of an entry: id (user tables: Id + 1000), name, TipoDato, TipoOperacion, TipoCuota. Entry i stands
// behind item i of the combo.
struct ConceptsCatalogue {
  formula::Vector tabla;
  formula::ListControl cmbConceptos;  // items "Codigo - Nombre", datum the id

  // FindInColumn(id, catalogue, 0): entry index or -1.
  int Buscar(std::string_view id) const;
};

// Does nothing with the connection closed. A failing query leaves the single "-1" entry and an empty combo.
void ActuLSTdeConceptos(const db::DbSession& sesion, const settings::Settings& opciones,
                        ConceptsCatalogue& catalogo, base::SumideroErrores* errores = nullptr);

// Last item of that datum, or -1.
int PosEnCombo(const formula::ListControl& combo, std::int64_t valor);

}  // namespace refdata
