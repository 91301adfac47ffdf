// The tables of facts: rows of functions (*.tsv) and of whole statements (*.jsonl).
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/date.h"
#include "conformance/json.h"

namespace conformance {

// One row of a *.tsv: a function, its arguments and what it gives.
struct Fila {
  std::string id;
  std::string funcion;
  std::vector<Json> args;
  std::string locale;  // "es", "en", or "invariant": any
  Json espera;
};

// One line of a *.jsonl: statements that make a base, one that is tried, and what comes of it.
struct Sentencia {
  std::string id;
  std::vector<std::string> antes;
  std::string sql;
  std::string locale = "es";
  bool comodines_dao = false;  // LIKE with * ? #
  bool sin_caso = false;       // texts of the result are compared without case
  bool ordenadas = true;
  std::vector<std::string> columnas;  // names of the result's columns; none: not asked
  Json filas;                         // of a query; null otherwise
  Json efecto;                        // of a change: affected, then, rows; or error
};

struct Tabla {
  std::string nombre;
  std::vector<Fila> filas;
  std::vector<Sentencia> sentencias;
};

// Whether a file is a table by its name (.tsv, .jsonl).
bool EsTabla(const std::filesystem::path& ruta);
// Columns are found by their headings, members by their names. Throws std::runtime_error with the place of
// what cannot be read.
Tabla LeerTabla(const std::filesystem::path& ruta);

// "today" of every row: what {YEAR} and a date without its year mean.
base::Fecha Hoy();
// The serial of "Y-M-D h:m:s". Throws std::runtime_error.
double SerieDe(std::string texto);

}  // namespace conformance
