// Where imported data may go: liquidation types with their conditions, the calendar, and the cost centres.
#pragma once

#include <string>

#include "base/error.h"
#include "formula/vectores/list_control.h"
#include "sesion/db_session.h"
#include "settings/settings.h"

namespace refdata {

struct LiquidationTypes {
  // Why the last load could not read the two conditions or the types' list, "" when it did. An empty
  // condition lets every type apply: with a reason nothing may be imported.
  std::string motivo_fallo;
  std::string TypeCondition;      // over the placeholder "[Consulta]"; empty: none
  std::string CalendarCondition;  // over the same placeholder
  // Datum 0 first ("0 - Sueldos") when there is a salary type, then one a type; the first one selected.
  formula::ListControl cmbLiquidaciones;
  formula::ListControl cmbAgrupa{.items = {}, .visible = false};  // "[Por Defecto]" first, datum 0
  formula::ListControl cmbAgrupaDef{.items = {}, .visible = false};
  std::string lblAgrupa = "C. de Costo:";
  std::string lblAgrupaDef = "C. de Costo:";
  bool lblAgrupa_visible = false;
  bool lblAgrupaDef_visible = false;
  bool CC_visible = false;  // the CC column of both grids
  int CC_ancho = 825;       // twips
};

// Rebuilds all of it. Failing statements are noted and leave what was built before them: a condition is
// emptied before its query and filled when all its rows were read, a combo emptied only when its rows have
// come. A failing list of cost centres is no reason not to import. A fault of the storage becomes the reason
// and travels on. Whether the window's layout is to be run again is the result (true for a company that
// liquidates grouped).
bool CargarTiposLiquidacion(const sesion::DbSession& sesion, const settings::Settings& opciones,
                            LiquidationTypes& tipos, base::ErrorSink* errores = nullptr);

}  // namespace refdata
