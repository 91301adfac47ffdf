// The report of an import or of its trial: every line with what it did, the totals that balance with the
// file, and the quantities before and after.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/date.h"
#include "corridas/cantidades.h"
#include "informe/lineas.h"
#include "liquidation/importar.h"

namespace informe {

struct DatosInforme {
  std::string archivo;  // the file of hours, by its name
  base::Date mes;
  std::string liquidacion;  // the chosen type, as its combo shows it
  bool simulado = false;    // a trial: nothing of it stands in the base
  std::string error;        // why nothing was written; "" when it was
  std::vector<Linea> lineas;
  std::vector<corridas::CambioDeCantidad> cambios;
  std::vector<liquidation::TotalConcepto> totales;
  std::map<std::int32_t, std::string> nombres;  // of concepts; a user table by its number plus 1000
};

// One row of the totals. Those of the file's lines are, row by row, all of its lines and quantities.
struct FilaDeTotales {
  std::string nombre;
  std::int32_t concepto = 0;  // 0: lines that were not imported
  std::size_t lineas = 0;
  double del_archivo = 0;  // the quantities of the lines, their formula applied; what is no number is 0
  std::optional<double> importada;
};
std::vector<FilaDeTotales> TotalesDe(const DatosInforme& datos);

// The change of the datum that the line went into; null when it changed nothing, or was not imported. Each
// line of one datum shows that of them all.
class CambiosPorLinea {
 public:
  explicit CambiosPorLinea(const std::vector<corridas::CambioDeCantidad>& cambios);
  const corridas::CambioDeCantidad* De(const Linea& linea) const;

 private:
  using Clave = std::pair<std::pair<std::int64_t, std::int64_t>, std::pair<std::int64_t, std::int64_t>>;
  std::map<Clave, const corridas::CambioDeCantidad*> por_clave_;
};

// For a Spanish spreadsheet: UTF-8 with its mark, ";" between cells, "," as the decimal sign, CR LF; texts
// that begin like a formula are made none. Three tables with an empty row between them.
std::string InformeCsv(const DatosInforme& datos);
// One page that needs nothing else: light and dark, and fit to be printed.
std::string InformeHtml(const DatosInforme& datos);

// A number as an operator writes it, with at most six decimals.
std::string TextoDeNumero(double numero);
// The quantity of a line: with a decimal comma when it is a number, else as it stands.
std::string CantidadDe(const std::string& texto);
std::string NombreDeConcepto(const DatosInforme& datos, std::int32_t concepto);

}  // namespace informe
