// Which of the loaded lines the grid shows, and in which order: a view, that changes neither the lines nor
// the order in which they are imported.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/estado.h"

namespace app {

enum class Cuales { Todas, Importadas, Rechazadas, SinContrato, SinRelacion };

struct VistaDeLineas {
  Cuales cuales = Cuales::Todas;
  std::string texto;  // in any of the columns that show, whatever its case and accents; "": every line
  bool por_resultado = false;  // sorted by the outcome, else as the lines stand
  bool descendente = false;

  bool Filtra() const { return cuales != Cuales::Todas || !texto.empty(); }
  bool Es() const { return Filtra() || por_resultado || descendente; }  // not simply the lines as they stand
  bool operator==(const VistaDeLineas&) const = default;
};

// Rows of `estado.filas`, by their number. Equal outcomes keep the order of the lines, either way. Walks the
// rows once and makes no text of a row; the sort is that of every column.
std::vector<std::uint32_t> FilasDe(const Estado& estado, const VistaDeLineas& vista, base::Date hoy);

// What would keep a line from being imported, as far as it can be known before: nothing while the base could
// not be read.
struct Faltas {
  bool contrato = false, relacion = false;
};
Faltas FaltasDe(const Estado& estado, const importfile::ImportRow& fila);  // constant time

struct CuentaDeFaltas {
  std::size_t contrato = 0, relacion = 0;  // lines; one may lack both
  bool operator==(const CuentaDeFaltas&) const = default;
};
CuentaDeFaltas ContarFaltas(const Estado& estado);  // walks the rows

// Small letters without accents, for a search; what is no western letter stays.
std::string Plegar(std::string_view texto);

}  // namespace app
