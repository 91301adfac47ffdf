// Why one line of a file ends as it does: how it was cut and matched, its formula, its header, its
// statements.
#pragma once

#include <string>
#include <vector>

#include "explicacion/conexion_que_anota.h"
#include "importfile/import_grid.h"
#include "liquidation/entrada_importacion.h"
#include "liquidation/testigo.h"

namespace explicacion {

struct Explicacion {
  bool hay_linea = false;  // the file has that line
  importfile::PasosDeLinea pasos;
  bool en_grilla = false;  // it became a row, and was tried
  importfile::ImportRow fila;
  std::vector<std::string> sentencias;  // of the row, in their order
  std::string error;                    // why the trial wrote nothing at all
};

// Loads the file again up to its end for that line, and tries the import of all its rows in the grid's order,
// which is rolled back; the statements are those of that row alone. Both are the import's own code. `carga`
// and `importacion` are those of the loaded grid; the session is used through a copy, and the boxes of
// formulas are not shown.
Explicacion Explicar(importfile::EntradaCarga carga, const liquidation::EntradaImportacion& importacion,
                     std::size_t linea);

// The explanation in Spanish, one step a line.
std::vector<std::string> TextoDe(const Explicacion& explicacion,
                                 const liquidation::EntradaImportacion& importacion);

}  // namespace explicacion
