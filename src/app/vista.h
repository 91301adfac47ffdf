// What the grids show of the state: which field stands in which column, in which colours a row is drawn, and
// what became of the lines of the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "app/estado.h"

namespace app {

// The row field that a column of GridAImportar shows; -1 for "Resultado", which is no field, and for a name
// that is no column.
int CampoDeColumna(std::string_view columna);

// How a row is drawn; colours are 0xBBGGRR.
struct EstiloDeFila {
  std::string nombre;  // "_" and the code of the relation, or "Otras"
  std::int32_t fondo = 0, texto = 0;
  bool operator==(const EstiloDeFila&) const = default;
};

// The relation whose style the row takes. -1: the style "Otras", for a line of no relation and for a result
// that is neither empty nor "OK". Constant time.
int RelacionDeEstilo(const relations::CodeRelations& relaciones, const importfile::ImportRow& fila);
EstiloDeFila EstiloDeRelacion(const relations::CodeRelations& relaciones, int relacion);
// Black or white, whichever reads better on that ground.
std::int32_t TextoSobre(std::int32_t fondo);

// Of the last load, and of the import when there was one since.
struct Cuentas {
  std::size_t lineas = 0, en_grilla = 0, filtradas = 0, mal_formadas = 0;
  std::size_t importadas = 0, rechazadas = 0;
  bool operator==(const Cuentas&) const = default;
};
Cuentas Contar(const Estado& estado);  // walks the rows

// The concept's own name; that of its relation when the catalogue does not list it.
std::string NombreDeTotal(const Estado& estado, const liquidation::TotalConcepto& total);

}  // namespace app
