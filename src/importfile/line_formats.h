// One line of the import file into its fields.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "settings/settings.h"

namespace importfile {

struct ResultadoCorte {
  std::vector<std::string>
      campos;            // delimited: as many as the line has; fixed width: five, in field-number order
  std::string estrella;  // the pieces joined with "*": what the preview shows
};

// Cuts a fixed-width line at the layout's columns; positions count characters, and what lies past the end of
// the line is empty, as is a negative length. Of two columns of one field number the later wins. Throws
// base::Error 9 when the layout cannot be cut.
ResultadoCorte DevLineaAF(std::string_view linea, const settings::FixedWidthLayout& layout);
// Five columns at most, and no column in use that names a field past the fifth.
bool SePuedeCortar(const settings::FixedWidthLayout& layout);

// Splits at every occurrence of the separator; nothing is trimmed. An empty separator gives one field.
ResultadoCorte CortarDelimitada(std::string_view linea, std::string_view separador);

// Accepts any line and answers false; an empty hook.
bool ValidoLinea(std::string_view linea);

// The rows of GridPVConf from the first lines of the last load, joined with CR LF: delimited, the pieces of
// the star line; fixed width, the fields in field-number order. A "*" inside a line parts cells too. No text
// and a layout that cannot be cut give no rows; never throws.
std::vector<std::vector<std::string>> CargarDatosPrevisual(std::string_view previa,
                                                           const settings::Settings& opciones);

}  // namespace importfile
