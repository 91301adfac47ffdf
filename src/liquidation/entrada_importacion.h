// What an import works on. Nothing is owned.
#pragma once

#include <cstdint>
#include <string>

#include "base/date.h"
#include "formula/evaluador/evaluator.h"
#include "formula/tablas_usuario/user_tables.h"
#include "liquidation/sql.h"
#include "liquidation/testigo.h"
#include "ports/progress.h"
#include "ports/prompts.h"
#include "refdata/concepts_catalogue.h"
#include "refdata/persons_index.h"
#include "relations/code_relations.h"
#include "sesion/db_session.h"
#include "settings/settings.h"

namespace liquidation {

struct EntradaImportacion {
  const sesion::DbSession& sesion;
  const settings::Settings& opciones;
  const refdata::PersonsIndex& personas;
  const relations::CodeRelations& relaciones;
  const refdata::ConceptsCatalogue& conceptos;  // of the current options; the warnings ask it
  formula::Evaluador& evaluador;
  formula::TablasUsuario& tablas;  // reloaded before the first row and after the last
  ports::Prompts& prompts;
  ports::Progress& progreso;
  base::Date mes;  // first day of the month
  sql::CondicionesDeTipo condiciones;
  std::string texto_liquidacion;  // what cmbLiquidaciones shows
  std::int64_t centro_costo = 0;  // of cmbAgrupa; 0 when none is chosen
  bool deshacer = false;          // ends with a rollback: what would be written, without writing it
  Testigo* testigo = nullptr;     // may be null
};

}  // namespace liquidation
