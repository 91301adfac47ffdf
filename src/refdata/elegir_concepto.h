// What choosing a concept in cmbConceptos changes around it.
#pragma once

#include <string>

#include "refdata/concepts_catalogue.h"
#include "refdata/liquidation_types.h"
#include "sesion/db_session.h"
#include "settings/settings.h"

namespace refdata {

struct ConceptoElegido {
  std::string lblConcepto;      // the entry's name, "  (T.U.)" behind a user table's
  bool vaciar_txtTipo = false;  // nothing is chosen: the box of external codes is emptied too
};

// The click of cmbConceptos, for its selected item. When the company groups and the cost centre comes by
// line, cmbAgrupaDef is enabled for concepts alone: user tables take no cost centre. An id of exactly 1000
// has neither the mark nor the cost centre. lblAgrupaDef is seen when cmbAgrupaDef is.
ConceptoElegido ElegirConcepto(const sesion::DbSession& sesion, const settings::Settings& opciones,
                               const ConceptsCatalogue& catalogo, LiquidationTypes& tipos);

}  // namespace refdata
