// Writing one imported datum into the liquidation that it belongs to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/date.h"
#include "base/error.h"
#include "db/db_session.h"
#include "formula/evaluator.h"
#include "formula/user_tables.h"
#include "importfile/import_grid.h"
#include "liquidation/month_data.h"
#include "liquidation/open_headers.h"
#include "liquidation/sql.h"
#include "refdata/persons_index.h"
#include "settings/settings.h"

namespace liquidation {

// The last contract looked up and the type found for it; -1: none.
struct ContractTypeCache {
  std::int32_t contrato = -1;
  std::int32_t tipo = -1;
};

// What one run of the import works on and keeps between its lines. Nothing is owned but the run's own tables.
struct Corrida {
  const db::DbSession* sesion = nullptr;
  const settings::Settings* opciones = nullptr;
  const refdata::PersonsIndex* personas = nullptr;
  formula::Evaluador* evaluador = nullptr;
  const formula::TablasUsuario* tablas = nullptr;  // as loaded before the run
  base::Fecha mes;                                 // first day of the month
  sql::CondicionesDeTipo condiciones;
  std::string texto_liquidacion;  // what cmbLiquidaciones shows
  base::SumideroErrores* errores = nullptr;

  MonthDataTable datos;
  OpenHeaders encabezados;
  ContractTypeCache cache;
  std::optional<sql::ConsultaDeTipos> consulta_tipos;  // made of the conditions when first asked

  // Of the line under way: its savepoint is set, and something was written after it.
  bool marcada = false, escribio = false;
};

// Concepts from 1000 up name the user table of that number less 1000. `cantidad` and `coeficiente` are
// overwritten with the sums. Returns "", or the system's own reason why the line was not imported, and then
// nothing was written. Throws base::Error when a statement fails or a number grows too large: the caller then
// undoes what the line wrote, which starts at the connection's savepoint when `marcada` says so.
std::string AgregarDatosALiq(Corrida& corrida, std::int32_t concepto, float& cantidad,
                             std::size_t fila_persona, const importfile::ImportRow& fila,
                             std::int64_t centro_costo, float& coeficiente);

}  // namespace liquidation
