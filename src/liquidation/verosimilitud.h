// What of a load may not be what was meant although nothing in it is wrong by itself.
#pragma once

#include <string>
#include <vector>

#include "importfile/import_grid.h"
#include "liquidation/entrada_importacion.h"

namespace liquidation {

// One text in Spanish for each of these that applies, naming the first cases and how many more there are:
//   - a person whose hours (quantities of clock data) add up to more than the month holds;
//   - a contract with lines that ends before the last day of the month;
//   - a quantity (with what it is added to) far from what the contract had of the concept in the three months
//   before: there are at least
//     two of them to compare with, it is more than twice the largest or less than half of the smallest, and
//     lies at least kDiferenciaMinima from it;
//   - who had one of the file's concepts in the month before, is still in the index, and has neither a line
//     nor anything of them in this month; told when at least half of those persons are in the file, so that
//     a few corrected lines do not bring a list of all the others.
// Rows that the import would refuse before writing do not count, except that a line of a person is one. What
// cannot be read is a text too; a fault of the storage travels out as base::Error. Writes nothing. Two
// queries; time grows with the rows and with the data of four months.
std::vector<std::string> Verosimilitud(const EntradaImportacion& entrada,
                                       const std::vector<importfile::ImportRow>& filas,
                                       const std::vector<importfile::LineaAparte>& aparte);
inline constexpr double kDiferenciaMinima = 8;

}  // namespace liquidation
