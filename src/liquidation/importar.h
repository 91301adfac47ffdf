// The import command over the loaded rows.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/error.h"
#include "formula/vectores/list_control.h"
#include "importfile/import_grid.h"
#include "liquidation/entrada_importacion.h"

namespace liquidation {

// The question before an import. `cmbAgrupa` is the cost-centre combo.
struct DatosConfirmacion {
  base::Date mes;
  std::string cmbLiquidaciones;  // text of the combo
  const formula::ListControl* cmbAgrupa = nullptr;
  bool LiqAgrup = false, CCDefEnArch = false, TipoConstruccion = false;
};
std::string TextoConfirmacion(const DatosConfirmacion& datos);

// Which headers a run may use, by the chosen entry of cmbLiquidaciones.
std::string TypeFilterDe(const formula::ListControl& cmbLiquidaciones);

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
  std::string error;  // why nothing was written: what the run needs could not be read, or it could not end
  // `error` is a fault of the storage (or of the memory): the run was undone where it happened.
  bool fallo_de_almacenamiento = false;
  bool cancelada = false;  // the operator asked to stop; `error` says that it was undone
  // Bulk updates that failed, each with its reason, in Spanish. The quantities stand.
  std::vector<std::string> actualizaciones_fallidas;
  base::ErrorSink errores;  // steps that failed and were passed over
};

// Works through the rows in their order and leaves each row's result in it: "OK" or the reason. A row that an
// error of the base refused has left nothing behind. One transaction from the first row to the last bulk
// update (the caller's, when one is under way). When it cannot begin or be committed, when what the run needs
// cannot be read, when the
// operator stops it (asked between the lines and between the statements), and at any fault of the storage,
// nothing is written, every row's result is the reason, and
// it is shown once.
Importacion Importar(const EntradaImportacion& entrada, std::vector<importfile::ImportRow>& filas);

}  // namespace liquidation
