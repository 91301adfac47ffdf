// The concepts that can take an imported value, and the user tables that can take a dated one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/error.h"
#include "formula/vectores/list_control.h"
#include "formula/vectores/vector.h"
#include "sesion/db_session.h"
#include "settings/settings.h"

namespace refdata {

// Ids above it are user tables (their Id plus this), ids below it concepts.
inline constexpr std::int64_t kBaseTablas = 1000;

// Fields of an entry: id (user tables: Id + 1000), name, TipoDato, TipoOperacion, TipoCuota. Entry i stands
// behind item i of the combo. Before a load, and after a failing one, the table is the single entry "-1".
struct ConceptsCatalogue {
  formula::Vector tabla;
  std::string motivo_fallo;           // why the last load could not read it, "" when it did
  formula::ListControl cmbConceptos;  // items "Codigo - Nombre", datum the id

  // FindInColumn(id, catalogue, 0): entry index or -1. The "-1" entry is nobody's concept and is never
  // found: a line without a relation asks for that id. Walks the table.
  int Buscar(std::string_view id) const;
};

// With the connection closed it only sets the reason. A failing query leaves the single "-1" entry and an
// empty combo, and so does a fault of the storage, which travels on.
void ActuLSTdeConceptos(const sesion::DbSession& sesion, const settings::Settings& opciones,
                        ConceptsCatalogue& catalogo, base::ErrorSink* errores = nullptr);

// Last item of that datum, or -1.
int PosEnCombo(const formula::ListControl& combo, std::int64_t valor);

}  // namespace refdata
