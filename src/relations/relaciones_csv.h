// The relations as a table for a spreadsheet, and back.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "relations/code_relations.h"

namespace relations {

// UTF-8 with its mark, ";" between cells, CR LF: "codigo;color;externos;concepto;nombre;cc" and one relation
// a row. The external codes stand between commas, as they are kept, so that no spreadsheet takes "07,08" for
// a number. A code or name that does not begin with a letter has a "'" in front, which reading takes off.
std::string CsvDeRelaciones(const CodeRelations& relaciones);

struct LineaConMotivo {
  std::size_t linea = 0;  // of the file, from 1
  std::string motivo;
};
struct LecturaDeRelaciones {
  std::vector<Relacion> relaciones;     // good only when there are no errors
  std::vector<LineaConMotivo> errores;  // why nothing may be taken over
  std::vector<LineaConMotivo> avisos;   // what holds all the same and may not be meant
};
// Every row is looked at. `existe` says whether the base has that concept (a user table: its number plus
// 1000).
LecturaDeRelaciones RelacionesDeCsv(std::string_view texto, const std::function<bool(std::int32_t)>& existe);

// Why an external code cannot be part of a list, or "".
std::string RechazoDeCodigo(std::string_view codigo);
// The list of a relation with one more code.
std::string ConCodigo(std::string_view externos, std::string_view codigo);

}  // namespace relations
