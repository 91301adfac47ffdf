// What an import is about to do, in a few lines: what stands under its question.
#pragma once

#include <string>
#include <vector>

#include "importfile/import_grid.h"
#include "liquidation/entrada_importacion.h"
#include "liquidation/importar.h"

namespace liquidation {

struct ResumenDeImportacion {
  std::string archivo;  // path
  base::Date mes;
  std::string liquidacion;   // what cmbLiquidaciones shows
  std::size_t lineas = 0;    // of the grid
  std::size_t personas = 0;  // contracts that some line to be written belongs to
  // Each line is to be written, or counted in one of these three by the first reason that refuses it.
  std::size_t sin_contrato = 0, sin_relacion = 0, otras_rechazadas = 0;
  std::vector<TotalConcepto> conceptos;      // of the lines to be written, by concept
  std::vector<std::string> avisos;           // what may not be meant
  std::vector<std::string> importado_antes;  // runs that brought this file, or a part of it, into the month
};

// By the rules of the run, without asking the base: what a liquidation that is finished refuses is not known
// yet. The file, the warnings and the earlier runs are the caller's to fill.
ResumenDeImportacion Resumir(const EntradaImportacion& entrada,
                             const std::vector<importfile::ImportRow>& filas);

// Lines parted by CR LF: bounded, however many concepts there are.
std::string TextoDeResumen(const ResumenDeImportacion& resumen);

}  // namespace liquidation
