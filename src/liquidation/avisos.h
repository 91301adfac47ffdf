// What is told before an import, because it would be written as it stands and may not be what was meant.
#pragma once

#include <string>
#include <vector>

#include "importfile/import_grid.h"
#include "liquidation/entrada_importacion.h"

namespace liquidation {

// One text in Spanish for each kind of warning that applies, naming the first cases and how many more there
// are: a contract with several monthly lines of common hours; a relation whose concept the catalogue does not
// list; a quantity, or a value that is used, that a single does not hold as it stands; a person and concept
// in several lines while summing is off. Rows that the import would refuse before writing do not count. Reads
// no base and changes nothing; time grows with the rows.
std::vector<std::string> AvisosDeImportacion(const EntradaImportacion& entrada,
                                             const std::vector<importfile::ImportRow>& filas);

}  // namespace liquidation
