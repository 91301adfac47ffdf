// Writing one imported datum into the liquidation that it belongs to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/error.h"
#include "importfile/import_grid.h"
#include "liquidation/entrada_importacion.h"
#include "liquidation/month_data.h"
#include "liquidation/open_headers.h"
#include "liquidation/sql.h"

namespace liquidation {

// The last contract looked up and the type found for it; -1: none.
struct ContractTypeCache {
  std::int32_t contrato = -1;
  std::int32_t tipo = -1;
};

// One run of the import: what it works on, and what it keeps between its lines.
struct Corrida {
  Corrida(const EntradaImportacion& entrada_, base::ErrorSink& errores_)
      : entrada(entrada_), errores(errores_) {}

  const EntradaImportacion& entrada;
  base::ErrorSink& errores;

  MonthDataTable datos;
  OpenHeaders encabezados;
  ContractTypeCache cache;
  std::optional<sql::ConsultaDeTipos> consulta_tipos;  // made of the conditions when first asked

  // Of the line under way: its savepoint is set, and something was written after it.
  bool marcada = false, escribio = false;
  importfile::DestinoDeLinea destino;
};

// Concepts from 1000 up name the user table of that number less 1000. `cantidad` and `coeficiente` are
// overwritten with the sums. Returns "", or the system's own reason why the line was not imported, and then
// nothing was written. Throws base::Error when a statement fails or a number grows too large: the caller then
// undoes what the line wrote, which starts at the connection's savepoint when `marcada` says so.
std::string AgregarDatosALiq(Corrida& corrida, std::int32_t concepto, float& cantidad,
                             std::size_t fila_persona, const importfile::ImportRow& fila,
                             std::int64_t centro_costo, float& coeficiente);

}  // namespace liquidation
