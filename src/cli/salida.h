// What an import prints: one row a line of the file, then the totals.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "app/estado.h"
#include "cli/lineas_de_comandos.h"
#include "informe/lineas.h"

namespace cli {

// A cell of a CSV: quoted when it holds the separator, a quote or a line end.
std::string CeldaCsv(std::string_view texto, char separador);

void EscribirCsv(std::ostream& out, const std::vector<informe::Linea>& lineas);
void EscribirTabla(std::ostream& out, const std::vector<informe::Linea>& lineas);
void EscribirTotales(std::ostream& out, const informe::Cuentas& cuentas, const app::Estado& estado);

// The end of a verb that printed: `codigo`, or that of a failed write, told on the error output, when the
// output did not take all of it (closed, or full). `ademas` follows that message.
int Terminar(Flujos flujos, int codigo, std::string_view ademas = {});

}  // namespace cli
