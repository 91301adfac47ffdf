// Whether lines were imported into the month before.
#pragma once

#include <string_view>
#include <vector>

#include "corridas/registro.h"
#include "importfile/import_grid.h"

namespace corridas {

// What an import of these rows brings, as a record keeps it. `solo_importadas`: only those with "OK".
std::vector<LineaImportada> LineasDe(const std::vector<importfile::ImportRow>& filas, bool solo_importadas);

struct ImportadaAntes {
  Resumen corrida;
  bool archivo_igual = false;  // the same bytes
  std::uint64_t lineas = 0;    // of the file at hand that this run has imported
  double horas = 0;            // of those
};

// The runs of the month that stand and brought the same file, or at least half of the lines of the smaller of
// both. Throws base::Error.
std::vector<ImportadaAntes> BuscarRepetidas(const LugarDelRegistro& lugar,
                                            const std::vector<Resumen>& corridas, std::int64_t idEmpresa,
                                            base::Date mes, std::string_view huella_archivo,
                                            const std::vector<LineaImportada>& lineas);

// One line for an operator.
std::string TextoDe(const ImportadaAntes& repetida);

}  // namespace corridas
