// Tables as mdb-export prints them, from our side and from its own.
#pragma once

#include <string>
#include <vector>

#include "mdb/catalog/catalog.h"

namespace mdb_test {

struct TablaExportada {
  bool hay = false;  // mdb-export knows the table
  std::vector<std::string> columnas;
  std::vector<std::vector<std::string>> filas;
};

// What mdb-export says of a table of the file at `ruta`: binary as hexadecimal, dates as ISO with their time,
// Null as the text kNuloExportado.
TablaExportada Exportar(const std::string& ruta, const std::string& tabla);
inline const std::string kNuloExportado = "<~null~>";

// The same from our reading, columns in the order of display.
TablaExportada Leida(mdb::Paginas& paginas, const mdb::Definicion& definicion);
// One value as mdb-export prints it.
std::string TextoExportado(const mdb::Columna& columna, const mdb::Dato& dato);

// Runs a command and gives its standard output.
std::string Salida(const std::string& orden);
// For the shell.
std::string Entrecomillado(const std::string& texto);

}  // namespace mdb_test
