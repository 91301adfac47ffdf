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

// Rows of as many cells as the first, its titles; the columns of `a_la_derecha` hold numbers.
void EscribirCuadro(std::ostream& out, const std::vector<std::vector<std::string>>& filas,
                    const std::vector<std::size_t>& a_la_derecha);

void EscribirCsv(std::ostream& out, const std::vector<informe::Linea>& lineas);
void EscribirTabla(std::ostream& out, const std::vector<informe::Linea>& lineas);
void EscribirTotales(std::ostream& out, const informe::Cuentas& cuentas, const app::Estado& estado);

// The quantities before and after, one row a contract, concept, cost centre and header.
void EscribirCambios(std::ostream& out, const std::vector<corridas::CambioDeCantidad>& cambios);

// The end of a verb that printed: `codigo`, or that of a failed write, told on the error output, when the
// output did not take all of it (closed, or full). `ademas` follows that message.
int Terminar(Flujos flujos, int codigo, std::string_view ademas = {});

}  // namespace cli
