// The import command over the loaded rows.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "formula/list_control.h"
#include "formula/user_tables.h"
#include "importfile/import_grid.h"
#include "liquidation/agregar_datos_a_liq.h"
#include "ports/progress.h"
#include "ports/prompts.h"
#include "relations/code_relations.h"

namespace liquidation {

// The question before an import. `cmbAgrupa` is the cost-centre combo.
struct DatosConfirmacion {
  base::Fecha mes;
  std::string cmbLiquidaciones;  // text of the combo
  const formula::ListControl* cmbAgrupa = nullptr;
  bool LiqAgrup = false, CCDefEnArch = false, TipoConstruccion = false;
};
std::string TextoConfirmacion(const DatosConfirmacion& datos);

// Which headers a run may use, by the chosen entry of cmbLiquidaciones.
std::string TypeFilterDe(const formula::ListControl& cmbLiquidaciones);

struct EntradaImportacion {
  db::DbSession* sesion = nullptr;
  const settings::Settings* opciones = nullptr;
  const refdata::PersonsIndex* personas = nullptr;
  const relations::CodeRelations* relaciones = nullptr;
  formula::Evaluador* evaluador = nullptr;
  formula::TablasUsuario* tablas = nullptr;  // reloaded at the end
  ports::Prompts* prompts = nullptr;
  ports::Progress* progreso = nullptr;
  base::Fecha mes;
  sql::CondicionesDeTipo condiciones;
  std::string texto_liquidacion;
  std::int32_t centro_costo = 0;  // of cmbAgrupa; 0 when none is chosen
  bool deshacer = false;          // ends with a rollback: what would be written, without writing it
};

// What the lines with "OK" brought to one concept (user tables: their number plus 1000), before any adding
// up.
struct TotalConcepto {
  std::int32_t concepto = 0;
  std::string nombre;  // of the relation
  std::size_t lineas = 0;
  double cantidad = 0;
};

struct Importacion {
  bool confirmada = false;             // the transaction was committed (or rolled back on purpose)
  std::size_t importadas = 0;          // rows with "OK"
  std::vector<TotalConcepto> totales;  // by concept
  std::string error;                   // why nothing was written, when a transaction could not begin or end
  base::SumideroErrores errores;       // steps that failed and were passed over
};

// Works through the rows in their order and leaves each row's result in it: "OK" or the reason. One
// transaction from the first row to the last bulk update (the caller's, when one is under way); when it
// cannot begin or be committed every row's result is the error's description, which is shown once.
Importacion Importar(const EntradaImportacion& entrada, std::vector<importfile::ImportRow>& filas);

}  // namespace liquidation
